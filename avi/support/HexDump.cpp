// SPDX-License-Identifier: Apache-2.0
#include "support/HexDump.h"

#include <new>

#include "support/Log.h"

namespace android {

namespace {

char* putByte(uint8_t byte, HexCase digits, char* out) {
    const char* table = digits == HexCase::kUpper ? "0123456789ABCDEF" : "0123456789abcdef";
    *out++ = table[byte >> 4];
    *out++ = table[byte & 0xF];
    return out;
}

}  // namespace

std::unique_ptr<char[]> hexText(const uint8_t* data, size_t size, HexCase digits) {
    std::unique_ptr<char[]> text(new (std::nothrow) char[size * 3 + 1]);
    if (text == nullptr) return nullptr;
    char* out = text.get();
    for (size_t i = 0; i < size; ++i) {
        out = putByte(data[i], digits, out);
        *out++ = i % 16 == 15 ? '\n' : ' ';
    }
    *out = '\0';
    return text;
}

std::string hexBytes(const uint8_t* data, size_t size) {
    if (size == 0) return {};
    std::string text(size * 3 - 1, ' ');
    for (size_t i = 0; i < size; ++i) {
        putByte(data[i], HexCase::kUpper, &text[3 * i]);
    }
    return text;
}

void hexDump(const uint8_t* data, size_t size) {
    if (!extractLogEnabled()) return;
    const std::unique_ptr<char[]> text = hexText(data, size, HexCase::kLower);
    if (text != nullptr) AVI_LOGV("%s", text.get());
}

}  // namespace android
