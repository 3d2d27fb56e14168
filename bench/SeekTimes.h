// SPDX-License-Identifier: Apache-2.0
//
// Times to seek to, the same in each run: all over the file, in no order.
#pragma once

#include <cstdint>

#include "bench/Shapes.h"

namespace avibench {

class SeekTimes {
  public:
    // REQUIRES: frames > 0
    SeekTimes(const Shape& shape, uint32_t frames) : mRate(frameRateOf(shape)), mFrames(frames) {}

    // The number of a frame.
    uint32_t nextFrame() {
        mState = mState * 6364136223846793005 + 1442695040888963407;  // Knuth's MMIX generator
        return static_cast<uint32_t>((mState >> 33) % mFrames);
    }
    // A time within that frame.
    int64_t timeOf(uint32_t frame) const {
        return (int64_t{2} * frame + 1) * 500000 * mRate.scale / mRate.rate;
    }

  private:
    const FrameRate mRate;
    const uint32_t mFrames;
    uint64_t mState = 1;
};

}  // namespace avibench
