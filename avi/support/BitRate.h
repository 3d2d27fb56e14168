// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <media/stagefright/foundation/AString.h>
#include <stdint.h>

namespace android {

// Appends a bit rate as text for the log: "1000bps", "125.000Kbps", "1.929Mbps". Units are binary
// and the fraction counts 1/1024ths, so that it may take four digits.
void appendBitRate(int32_t bitsPerSecond, AString* out);

}  // namespace android
