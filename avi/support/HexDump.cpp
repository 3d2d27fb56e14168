// SPDX-License-Identifier: Apache-2.0
#include "support/HexDump.h"

#include <memory>
#include <new>

#include "support/Log.h"

namespace android {

void hexDump(const uint8_t* data, size_t size) {
    static constexpr char kDigits[] = "0123456789abcdef";
    if (!extractLogEnabled()) return;
    const std::unique_ptr<char[]> text(new (std::nothrow) char[size * 3 + 1]);
    if (text == nullptr) return;
    char* out = text.get();
    for (size_t i = 0; i < size; ++i) {
        *out++ = kDigits[data[i] >> 4];
        *out++ = kDigits[data[i] & 0xF];
        *out++ = i % 16 == 15 ? '\n' : ' ';
    }
    *out = '\0';
    AVI_LOGV("%s", text.get());
}

}  // namespace android
