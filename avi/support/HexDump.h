// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <stddef.h>
#include <stdint.h>

#include <memory>

namespace android {

// The log cuts lines at 1023 characters: more bytes than these are not seen.
constexpr size_t kMaxLoggedBytes = 1024 / 3 + 1;

enum class HexCase { kLower, kUpper };

// Bytes as two hexadecimal digits and a blank each, with a line feed after every 16th; null without
// memory.
std::unique_ptr<char[]> hexText(const uint8_t* data, size_t size, HexCase digits);

// A few bytes in one line for the log, in upper case with a blank between them.
class HexLine {
  public:
    static constexpr size_t kMaxBytes = 32;

    // REQUIRES: size <= kMaxBytes.
    HexLine(const uint8_t* data, size_t size);

    // The first and the last bytes, "..." between them. REQUIRES: head + tail <= kMaxBytes, neither
    // is 0 or above size.
    HexLine(const uint8_t* data, size_t size, size_t head, size_t tail);

    const char* text() const { return mText; }

  private:
    // Each byte takes three characters, less a blank; the dots three, in place of a blank.
    char mText[3 * kMaxBytes + 2] = {};
};

// Logs bytes as lower-case hexText() at verbose priority while the extract-log switch is on.
// As many bytes as the line shows; nothing when the text cannot be allocated.
void hexDump(const uint8_t* data, size_t size);

}  // namespace android
