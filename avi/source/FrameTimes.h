// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <stddef.h>
#include <stdint.h>

#include <vector>

#include "source/Chunk.h"
#include "source/SourceTrack.h"

namespace android {

// A row of B-frames in the table, as far as it was looked at: entries [begin, end), of which some
// could not be read. What lies at `end` is no B-frame.
struct BFrameRow {
    size_t begin = 1;  // none yet: end lies before begin
    size_t end = 0;
    std::vector<uint32_t> unreadable;  // in ascending order

    // Whether the row says how many B-frames there are from entry i on.
    bool knows(size_t i) const { return begin <= i && i <= end; }

    // Readable ones from entry i on. REQUIRES: knows(i).
    int64_t countFrom(size_t i) const;
};

// Times of samples. AVI has none: a chunk's place in the stream gives its time, corrected for the
// order in which B-frames are stored.
class FrameTimes {
  public:
    explicit FrameTimes(const SourceTrack& track) : mTrack(track) {}

    // Time in microseconds, never negative, of a chunk that was loaded to `data`.
    int64_t sampleTimeUs(const Chunk& chunk, const uint8_t* data);

    // The same by the chunk's place and type alone; 0 for subtitles.
    int64_t calculateFrameDTS(const Chunk& chunk);

  private:
    int64_t audioTimeUs(int64_t index, uint32_t bytesBefore) const;
    int64_t followingBFrames(size_t first);
    BFrameRow findRow(size_t first) const;

    const SourceTrack& mTrack;
    // The last row that was looked at: where it ends is a property of the table, and a row as long
    // as the table would else be read again for each of its frames and at each seek.
    BFrameRow mRow;
};

}  // namespace android
