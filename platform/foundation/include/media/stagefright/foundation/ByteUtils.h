// SPDX-License-Identifier: Apache-2.0
//
// Big-endian integers in memory, and four-character codes. Nothing is checked: the caller has made
// sure that the bytes are there. Any alignment will do.
#pragma once

#include <cstddef>
#include <cstdint>

namespace android {

/// The code of four characters, the first in the most significant byte.
constexpr uint32_t FOURCC(unsigned char c1, unsigned char c2, unsigned char c3, unsigned char c4) {
    return uint32_t{c1} << 24 | uint32_t{c2} << 16 | uint32_t{c3} << 8 | c4;
}

/// The code written as text: FOURCC("RIFF").
template <size_t N>
constexpr uint32_t FOURCC(const char (&s)[N]) {
    static_assert(N == 5, "a FourCC has four characters");
    return FOURCC(static_cast<unsigned char>(s[0]), static_cast<unsigned char>(s[1]),
                  static_cast<unsigned char>(s[2]), static_cast<unsigned char>(s[3]));
}

/// The integer in the 2, 4 or 8 bytes at `p`.
inline uint16_t U16_AT(const uint8_t* p) {
    return static_cast<uint16_t>(p[0] << 8 | p[1]);
}

inline uint32_t U32_AT(const uint8_t* p) {
    return uint32_t{p[0]} << 24 | uint32_t{p[1]} << 16 | uint32_t{p[2]} << 8 | p[3];
}

inline uint64_t U64_AT(const uint8_t* p) {
    return uint64_t{U32_AT(p)} << 32 | U32_AT(p + 4);
}

}  // namespace android
