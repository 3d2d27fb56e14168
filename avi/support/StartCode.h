// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <stddef.h>
#include <stdint.h>
#include <string.h>

namespace android {

constexpr size_t kStartCodePrefixSize = 3;

// Position of the next start code prefix (00 00 01) that begins at or after `from`; `size` when
// there is none. Prefixes do not overlap: the search goes on kStartCodePrefixSize bytes later.
inline size_t findStartCodePrefix(const uint8_t* data, size_t size, size_t from) {
    for (size_t i = from + kStartCodePrefixSize - 1; i < size; ++i) {
        const void* one = memchr(data + i, 1, size - i);
        if (one == nullptr) break;
        i = static_cast<size_t>(static_cast<const uint8_t*>(one) - data);
        if (data[i - 2] == 0 && data[i - 1] == 0) return i - 2;
    }
    return size;
}

}  // namespace android
