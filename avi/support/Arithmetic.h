// SPDX-License-Identifier: Apache-2.0
//
// Arithmetic on numbers that a file dictates. Whatever wraps or saturates on purpose has a name
// here; all other arithmetic of the plug-in must not overflow, since the platform compiles
// extractors with trapping overflow checks.
#pragma once

#include <stdint.h>

#include <limits>

namespace android {

constexpr int64_t kUsPerSecond = 1000000;

// 32-bit sums and products modulo 2^32: AVI 1.0 sizes and offsets are 32-bit words.
constexpr uint32_t wrapAdd32(uint32_t a, uint32_t b) {
    return static_cast<uint32_t>(uint64_t{a} + b);
}

constexpr uint32_t wrapSub32(uint32_t a, uint32_t b) {
    return static_cast<uint32_t>((uint64_t{1} << 32) + a - b);
}

constexpr uint32_t wrapMul32(uint32_t a, uint32_t b) {
    return static_cast<uint32_t>(uint64_t{a} * b);
}

// File positions of OpenDML indexes, modulo 2^64.
constexpr uint64_t wrapAdd64(uint64_t a, uint64_t b) {
    return static_cast<uint64_t>(static_cast<unsigned __int128>(a) + b);
}

// A chunk's payload size with its pad byte; RIFF chunks start on even offsets.
constexpr uint32_t paddedSize(uint32_t size) {
    return wrapAdd32(size, size & 1);
}

// Quotient, or 0 when there is nothing to divide by.
template <typename T>
constexpr T divideOrZero(T dividend, T divisor) {
    return divisor == 0 ? T{0} : dividend / divisor;
}

// Wide enough for the product of a 64-bit count, a 32-bit scale and microseconds.
using Wide = __int128;

constexpr int64_t saturateToInt64(Wide value) {
    if (value > std::numeric_limits<int64_t>::max()) return std::numeric_limits<int64_t>::max();
    if (value < std::numeric_limits<int64_t>::min()) return std::numeric_limits<int64_t>::min();
    return static_cast<int64_t>(value);
}

constexpr int64_t saturatingAdd(int64_t a, int64_t b) {
    return saturateToInt64(Wide{a} + b);
}

constexpr int32_t saturateToInt32(int64_t value) {
    if (value > std::numeric_limits<int32_t>::max()) return std::numeric_limits<int32_t>::max();
    if (value < std::numeric_limits<int32_t>::min()) return std::numeric_limits<int32_t>::min();
    return static_cast<int32_t>(value);
}

// The low 32 bits, as formats hold numbers that players read as int32.
constexpr int32_t lowInt32(int64_t value) {
    return static_cast<int32_t>(static_cast<uint32_t>(value & 0xFFFFFFFF));
}

constexpr uint32_t saturateToUint32(uint64_t value) {
    return value > UINT32_MAX ? UINT32_MAX : static_cast<uint32_t>(value);
}

// a * b / divisor with the product formed wide, truncated towards zero; 0 when divisor is 0.
constexpr int64_t mulDiv(int64_t a, int64_t b, int64_t divisor) {
    return saturateToInt64(divideOrZero(Wide{a} * b, Wide{divisor}));
}

// Duration in microseconds of `units` of a stream whose time base is scale / rate seconds.
constexpr int64_t unitsToUs(int64_t units, uint32_t scale, uint32_t rate) {
    return saturateToInt64(divideOrZero(Wide{units} * kUsPerSecond * scale, Wide{rate}));
}

// Conversion of a computed time or index to an integer type: the nearest representable value
// instead of undefined behaviour; not-a-number becomes 0.
template <typename Integer>
constexpr Integer clampTo(double value) {
    // The largest values of 64-bit types are not doubles: compare with the power of two above.
    constexpr Integer kHalfAbove = std::numeric_limits<Integer>::max() / 2 + 1;
    constexpr double kAbove = 2.0 * kHalfAbove;
    if (!(value == value)) return 0;
    if (value >= kAbove) return std::numeric_limits<Integer>::max();
    if (value <= static_cast<double>(std::numeric_limits<Integer>::min())) {
        return std::numeric_limits<Integer>::min();
    }
    return static_cast<Integer>(value);
}

}  // namespace android
