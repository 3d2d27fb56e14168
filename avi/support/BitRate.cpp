// SPDX-License-Identifier: Apache-2.0
#include "support/BitRate.h"

#include <stdio.h>

namespace android {

namespace {

void appendBinaryFraction(int32_t whole, int32_t parts, const char* unit, AString* out) {
    char text[32];
    snprintf(text, sizeof(text), "%d.%03d%s", whole, parts, unit);
    out->append(text);
}

}  // namespace

void appendBitRate(int32_t bitsPerSecond, AString* out) {
    constexpr int32_t kKilo = 1024;
    constexpr int32_t kMega = 1024 * kKilo;
    if (bitsPerSecond > kMega) {
        appendBinaryFraction(bitsPerSecond / kMega, bitsPerSecond / kKilo % kKilo, "Mbps", out);
    } else if (bitsPerSecond > kKilo) {
        appendBinaryFraction(bitsPerSecond / kKilo, bitsPerSecond % kKilo, "Kbps", out);
    } else {
        out->append(bitsPerSecond);
        out->append("bps");
    }
}

}  // namespace android
