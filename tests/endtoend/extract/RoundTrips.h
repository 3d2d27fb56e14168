// SPDX-License-Identifier: Apache-2.0
// AVI files of ffmpeg's encoders, a track each, and how ffmpeg's view of the track compares with
// its view of the extracted file. One thread.
#pragma once

#include <functional>
#include <ostream>
#include <string>
#include <vector>

#include "tests/endtoend/codecs/Workshop.h"

namespace avitest {

struct RoundTrip {
    std::string name;
    std::string extension;                // of the extracted file
    std::function<std::string()> avi;     // makes the file, returns its path
    Arguments fromAvi = {"-c", "copy"};   // what ffmpeg does to the file's packets
    Arguments fromFile = {"-c", "copy"};  // and to the extracted file's
};

void PrintTo(const RoundTrip& trip, std::ostream* out);

// The parts of a line between separators.
std::vector<std::string> splitAt(char separator, const std::string& line);

// Compared packet by packet.
std::vector<RoundTrip> streamTrips();
// WAVE files, whose packets are cut in another way: compared as a whole.
std::vector<RoundTrip> waveTrips();

std::vector<RoundTrip> allTrips();

// The one of this name. Throws when there is none.
RoundTrip tripOf(const std::string& name);

}  // namespace avitest
