// SPDX-License-Identifier: Apache-2.0
//
// What the tests of opening a file share: small files. One thread.

#pragma once

#include <string>
#include <vector>

#include "tests/support/AviBuilder.h"
#include "tests/support/LoggedFixture.h"

namespace avitest {

// Any line with exactly this text, whatever its priority.
MATCHER_P(Text, text, "line '" + std::string(text) + "'") {
    (void)result_listener;  // the printed log says it all
    return arg.text == text;
}

// One video stream of `frames` chunks, all key frames, of growing size.
AviFile videoFile(size_t frames = 3);

// A video stream (number 0) of three frames and a PCM stream (number 1) of two chunks.
AviFile twoStreamFile();

// The payloads of a stream's chunks, as reading its track should give them.
std::vector<Bytes> chunkBytes(const AviFile& avi, size_t stream);

class OpeningFixture : public LoggedFixture {
  protected:
    // Payloads of all samples of a track.
    std::vector<Bytes> sampleBytes(size_t track);
};

}  // namespace avitest
