// SPDX-License-Identifier: Apache-2.0
#include "support/HexDump.h"

#include <new>

#include "support/Log.h"

namespace android {

std::unique_ptr<char[]> hexText(const uint8_t* data, size_t size, HexCase digits) {
    static constexpr char kLower[] = "0123456789abcdef";
    static constexpr char kUpper[] = "0123456789ABCDEF";
    const char* table = digits == HexCase::kUpper ? kUpper : kLower;
    std::unique_ptr<char[]> text(new (std::nothrow) char[size * 3 + 1]);
    if (text == nullptr) return nullptr;
    char* out = text.get();
    for (size_t i = 0; i < size; ++i) {
        *out++ = table[data[i] >> 4];
        *out++ = table[data[i] & 0xF];
        *out++ = i % 16 == 15 ? '\n' : ' ';
    }
    *out = '\0';
    return text;
}

void hexDump(const uint8_t* data, size_t size) {
    if (!extractLogEnabled()) return;
    const std::unique_ptr<char[]> text = hexText(data, size, HexCase::kLower);
    if (text != nullptr) AVI_LOGV("%s", text.get());
}

}  // namespace android
