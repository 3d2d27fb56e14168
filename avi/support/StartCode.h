// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <stddef.h>
#include <stdint.h>

namespace android {

constexpr size_t kStartCodePrefixSize = 3;

// Position of the next start code prefix (00 00 01) that begins at or after `from`; `size` when
// there is none. Prefixes do not overlap: the search goes on kStartCodePrefixSize bytes later.
inline size_t findStartCodePrefix(const uint8_t* data, size_t size, size_t from) {
    for (size_t i = from; i < size && size - i >= kStartCodePrefixSize;) {
        if (data[i + 2] > 1) {
            i += kStartCodePrefixSize;  // no prefix has this byte
        } else if (data[i] == 0 && data[i + 1] == 0 && data[i + 2] == 1) {
            return i;
        } else {
            ++i;
        }
    }
    return size;
}

}  // namespace android
