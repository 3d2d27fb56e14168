// SPDX-License-Identifier: Apache-2.0
#include "source/SubtitleTime.h"

#include <algorithm>

#include "support/Arithmetic.h"

namespace android {

int64_t getSubtitleDts(const uint8_t* data, size_t size) {
    constexpr size_t kTimeSize = sizeof("[HH:MM:SS.mmm") - 1;
    if (size < kTimeSize) return 0;
    const auto digit = [data](size_t i) { return int64_t{data[i]} - '0'; };
    const int64_t hours = digit(1) * 10 + digit(2);
    const int64_t minutes = digit(4) * 10 + digit(5);
    const int64_t seconds = digit(7) * 10 + digit(8);
    const int64_t milliseconds = digit(10) * 100 + digit(11) * 10 + digit(12);
    return std::max<int64_t>(
        ((hours * 60 + minutes) * 60 + seconds) * kUsPerSecond + milliseconds * 1000, 0);
}

}  // namespace android
