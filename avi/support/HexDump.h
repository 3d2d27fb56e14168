// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <stddef.h>
#include <stdint.h>

namespace android {

// Logs bytes as "%02x" and a blank each, with a line feed after every 16th, at verbose priority
// while the extract-log switch is on. Nothing is printed when the text cannot be allocated.
void hexDump(const uint8_t* data, size_t size);

}  // namespace android
