// SPDX-License-Identifier: Apache-2.0
//
// The stream format chunk (strf) while it is parsed.
#pragma once

#include <stddef.h>
#include <stdint.h>

namespace android {

constexpr size_t kWaveFormatSize = 16;  // without the size of the extra data
constexpr size_t kBitmapInfoSize = 40;

struct StreamFormat {
    int64_t offset = 0;     // of the chunk's payload in the file
    size_t size = 0;        // of the payload
    size_t headerSize = 0;  // where the extra data begins
    uint8_t header[kBitmapInfoSize] = {};
};

}  // namespace android
