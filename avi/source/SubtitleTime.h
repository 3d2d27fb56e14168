// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <stddef.h>
#include <stdint.h>

namespace android {

// Start time in microseconds of a subtitle chunk, which begins with "[HH:MM:SS.mmm". Separators and
// digits are not checked: other bytes give a wrong time, but none before 0. 0 when the chunk is too
// short for one.
int64_t getSubtitleDts(const uint8_t* data, size_t size);

}  // namespace android
