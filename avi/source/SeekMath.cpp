// SPDX-License-Identifier: Apache-2.0
#include "source/SeekMath.h"

namespace android {

int32_t unitAtTime(int64_t timeUs, uint32_t scale, uint32_t rate) {
    const int64_t units = mulDiv(timeUs, rate, scale) / kUsPerSecond;
    return clampTo<int32_t>(static_cast<float>(units) + 0.5);
}

int32_t frameAtTime(int64_t timeUs, uint32_t scale, uint32_t rate) {
    if (scale == 0) return 0;
    const float frames = static_cast<float>(rate) * static_cast<float>(timeUs) /
                         static_cast<float>(scale) / static_cast<float>(kUsPerSecond);
    return clampTo<int32_t>(frames + 0.5);
}

int32_t chunkAtTime(int64_t timeUs, int64_t durationUs, size_t count) {
    if (durationUs == 0) return 0;
    const float chunks =
        static_cast<float>(timeUs) / static_cast<float>(durationUs) * static_cast<float>(count);
    return clampTo<int32_t>(chunks + 0.5);
}

}  // namespace android
