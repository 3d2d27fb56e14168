// SPDX-License-Identifier: Apache-2.0
//
// Four-character codes: the ids of RIFF chunks and lists, and the codec tags of video streams.
// A code is kept as its four bytes read as a little-endian word, which is how it lies in the file.
#pragma once

#include <stdint.h>

namespace android {

enum class FourCC : uint32_t {};

constexpr FourCC makeFourCC(uint8_t a, uint8_t b, uint8_t c, uint8_t d) {
    return FourCC{uint32_t{a} | uint32_t{b} << 8 | uint32_t{c} << 16 | uint32_t{d} << 24};
}

// fourcc("strf"): the code as text, usable as a case label.
constexpr FourCC fourcc(const char (&text)[5]) {
    return makeFourCC(static_cast<uint8_t>(text[0]), static_cast<uint8_t>(text[1]),
                      static_cast<uint8_t>(text[2]), static_cast<uint8_t>(text[3]));
}

constexpr uint32_t toWord(FourCC code) {
    return static_cast<uint32_t>(code);
}

// Character `index` (0 to 3) of the code, in file order.
constexpr uint8_t charAt(FourCC code, unsigned index) {
    return static_cast<uint8_t>(toWord(code) >> (8 * index));
}

// The code with 'A' to 'Z' folded to lower case: writers disagree on the case of codec tags.
constexpr FourCC toLower(FourCC code) {
    const auto fold = [code](unsigned index) {
        const uint8_t c = charAt(code, index);
        return static_cast<uint8_t>(c >= 'A' && c <= 'Z' ? c + ('a' - 'A') : c);
    };
    return makeFourCC(fold(0), fold(1), fold(2), fold(3));
}

// A code as text for "%s". Lives as long as the expression it is written in.
struct FourCCText {
    explicit constexpr FourCCText(FourCC code)
        : text{static_cast<char>(charAt(code, 0)), static_cast<char>(charAt(code, 1)),
               static_cast<char>(charAt(code, 2)), static_cast<char>(charAt(code, 3)), '\0'} {}
    char text[5];
};

}  // namespace android

// The five arguments of "0x%08x:%c%c%c%c".
#define FOURCC_ARGS(code)                                                            \
    ::android::toWord(code), ::android::charAt(code, 0), ::android::charAt(code, 1), \
        ::android::charAt(code, 2), ::android::charAt(code, 3)
