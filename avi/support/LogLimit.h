// SPDX-License-Identifier: Apache-2.0
//
// Keeps a file from flooding the log: while a LogLimit lives, its thread prints at most 100 errors
// and warnings of one kind, which is one text, and at the end how many more there were.
// Threading: bound to the thread that made it; at most one lives on a thread.
#pragma once

#include <stdint.h>

#include <utility>
#include <vector>

namespace android {

class LogLimit {
  public:
    LogLimit();
    ~LogLimit();
    LogLimit(const LogLimit&) = delete;
    LogLimit& operator=(const LogLimit&) = delete;

    // Counts a line with this format; false when it should not be printed. Without a limit on this
    // thread every line should.
    static bool allows(const char* format);

  private:
    bool takes(const char* format);

    std::vector<std::pair<const char*, uint32_t>> mLines;  // how many there were of each format
};

}  // namespace android
