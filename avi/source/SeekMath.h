// SPDX-License-Identifier: Apache-2.0
//
// Times to indices and back, as functions over numbers. Where players depend on it, the precision
// is that of the devices' 32-bit floats; results are clamped to the range of their type.
#pragma once

#include <stddef.h>
#include <stdint.h>

#include "support/Arithmetic.h"

namespace android {

// Frame or block at `timeUs` of a stream with rate / scale units a second; 0 when scale is 0. Whole
// units are counted, a part of one is cut off; their count passes through a float.
int32_t unitAtTime(int64_t timeUs, uint32_t scale, uint32_t rate);

// The same for raw AAC of one frame a chunk, all in floats.
int32_t frameAtTime(int64_t timeUs, uint32_t scale, uint32_t rate);

// Chunk at `timeUs` of a stream of `count` chunks that take equally long, in floats; 0 when the
// duration is 0.
int32_t chunkAtTime(int64_t timeUs, int64_t durationUs, size_t count);

// First index in [0, count) whose endOf(index) exceeds `limit`; count when there is none. `endOf`
// must not decrease.
template <typename EndOf>
size_t firstBeyond(size_t count, int64_t limit, EndOf endOf) {
    size_t low = 0;
    size_t high = count;
    while (low < high) {
        const size_t middle = low + (high - low) / 2;
        if (endOf(middle) > limit) {
            high = middle;
        } else {
            low = middle + 1;
        }
    }
    return low;
}

}  // namespace android
