// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <stddef.h>
#include <stdint.h>

#include "source/BFrameRows.h"
#include "source/Chunk.h"
#include "source/SourceTrack.h"

namespace android {

// Times of samples. AVI has none: a chunk's place in the stream gives its time, corrected for the
// order in which B-frames are stored.
class FrameTimes {
  public:
    // The frames are those of the source.
    FrameTimes(const SourceTrack& track, FramesAhead* frames)
        : mTrack(track), mBFrames(track, frames) {}

    // Time in microseconds, never negative, of a chunk that was loaded to `data`.
    int64_t sampleTimeUs(const Chunk& chunk, const uint8_t* data);

    // The same by the chunk's place and type alone; 0 for subtitles.
    int64_t calculateFrameDTS(const Chunk& chunk);

  private:
    int64_t followingBFrames(size_t i);
    int64_t audioTimeUs(int64_t index, uint32_t bytesBefore) const;

    const SourceTrack& mTrack;
    BFrameRows mBFrames;
};

}  // namespace android
