// SPDX-License-Identifier: Apache-2.0
//
// What the reads of a track gave, one by one, for comparison with an undisturbed session. Plain
// values and functions.

#pragma once

#include <iosfwd>
#include <optional>
#include <vector>

#include "service/Track.h"
#include "tests/support/ExtractorFixture.h"

namespace avitest {

// What one read gave.
struct Outcome {
    media_status_t status = AMEDIA_OK;
    std::optional<Sample> sample;  // with AMEDIA_OK alone
};

bool operator==(const Outcome& a, const Outcome& b);
void PrintTo(const Outcome& outcome, std::ostream* out);

// Whether both have the same status and the same bytes: times may differ.
bool haveSameBytes(const Outcome& a, const Outcome& b);

// Reads once, `seek` first. The read hands out a buffer exactly when it succeeds.
Outcome readOnce(android::service::Track& track, const SeekRequest& seek = {});

// Reads `count` times, through errors and the end of the stream.
std::vector<Outcome> readTimes(android::service::Track& track, size_t count);

// Reads to the end of the stream, which is the last outcome.
std::vector<Outcome> readToEnd(android::service::Track& track);

// Whether the outcomes end with those of `all` from number `from` on, by their bytes.
bool endWith(const std::vector<Outcome>& outcomes, const std::vector<Outcome>& all, size_t from);

// Whether samples are cut from the track's chunks: MPEG audio.
bool isCutIntoFrames(const android::service::Track& track);

// Frames of MPEG audio that a fault may cost: those that a chunk of the test files holds or shares
// with its neighbours. Wrong bytes may be taken for a longer frame.
constexpr size_t kFramesOfAChunk = 4;

}  // namespace avitest
