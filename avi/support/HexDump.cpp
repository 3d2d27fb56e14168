// SPDX-License-Identifier: Apache-2.0
#include "support/HexDump.h"

#include <algorithm>
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

// At least one byte, blanks only between them; returns the end.
char* putBytes(const uint8_t* data, size_t size, char* out) {
    out = putByte(data[0], HexCase::kUpper, out);
    for (size_t i = 1; i < size; ++i) {
        *out++ = ' ';
        out = putByte(data[i], HexCase::kUpper, out);
    }
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

HexLine::HexLine(const uint8_t* data, size_t size) {
    if (size > 0) *putBytes(data, size, mText) = '\0';
}

HexLine::HexLine(const uint8_t* data, size_t size, size_t head, size_t tail) {
    char* out = putBytes(data, head, mText);
    for (int dot = 0; dot < 3; ++dot)
        *out++ = '.';
    *putBytes(data + size - tail, tail, out) = '\0';
}

void hexDump(const uint8_t* data, size_t size) {
    if (!extractLogEnabled()) return;
    const size_t shown = std::min(size, kMaxLoggedBytes);
    const std::unique_ptr<char[]> text = hexText(data, shown, HexCase::kLower);
    if (text != nullptr) AVI_LOGV("%s", text.get());
}

}  // namespace android
