// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <stdint.h>

#include "support/Arithmetic.h"
#include "support/FourCC.h"

namespace android {

// The stream that a chunk id such as 01wb belongs to: its two leading decimal digits. The digits
// are not checked: an id without digits yields a number that no stream has.
constexpr uint32_t streamNumber(FourCC chunkId) {
    constexpr uint32_t kAsciiZeros = 10 * '0' + '0';
    return wrapSub32(10u * charAt(chunkId, 0) + charAt(chunkId, 1), kAsciiZeros);
}

// How many streams chunk ids can name: any two bytes count as digits.
constexpr uint32_t kStreamNumbers = streamNumber(makeFourCC(0xFF, 0xFF, 0, 0)) + 1;

}  // namespace android
