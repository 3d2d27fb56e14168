// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <stddef.h>
#include <stdint.h>

#include <memory>
#include <string>

namespace android {

enum class HexCase { kLower, kUpper };

// Bytes as two hexadecimal digits and a blank each, with a line feed after every 16th; null without
// memory.
std::unique_ptr<char[]> hexText(const uint8_t* data, size_t size, HexCase digits);

// The same in upper case in one line, with a blank between bytes: for the few bytes of a log line.
std::string hexBytes(const uint8_t* data, size_t size);

// Logs bytes as lower-case hexText() at verbose priority while the extract-log switch is on.
// Nothing is printed when the text cannot be allocated.
void hexDump(const uint8_t* data, size_t size);

}  // namespace android
