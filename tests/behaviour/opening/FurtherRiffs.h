// SPDX-License-Identifier: Apache-2.0
//
// Files of several RIFF segments, for the tests of further RIFFs.

#pragma once

#include "tests/behaviour/opening/OpeningFixture.h"

namespace avitest {

// A segment's size is also the file position at which its walk ends, so an extension segment is
// walked to its end only if it claims more than the file holds.
constexpr uint32_t kBeyondTheFile = 0x30000000;

// A video stream of two frames in the first RIFF and two in a second one, which has an index of its
// own behind its movi list and claims the size.
inline AviFile twoSegmentFile(std::optional<uint32_t> secondSize = kBeyondTheFile) {
    AviFile avi = videoFile(2);
    Segment& second = avi.addSegment();
    second.riffSize = secondSize;
    second.index.copies = 1;
    second.index.id = "idx2";
    avi.addChunk(0, patternBytes(32, 7));
    avi.addChunk(0, patternBytes(36, 8));
    return avi;
}

inline unsigned long long number(uint64_t value) {
    return value;
}

}  // namespace avitest
