// SPDX-License-Identifier: Apache-2.0
// The tool's two outputs: results on standard output, one line a problem on standard error.
// Owns the exit status: it is 1 once a problem was reported. One thread.
#pragma once

#include <string_view>
#include <system_error>

namespace avitool {

/** Standard output cannot be written; code() has the reason (EPIPE: its reader has gone). */
class OutputError : public std::system_error {
  public:
    explicit OutputError(int error);
};

class Console {
  public:
    /** Writes to standard output, buffered. Throws OutputError. */
    void write(std::string_view text);
    /** Hands everything written to the system. Throws OutputError. */
    void flush();
    /**
     * Prints "avitool: PROBLEM" to standard error, after what was written so far; control
     * characters are escaped, so that it is always one line. Throws OutputError.
     */
    void complain(std::string_view problem);
    /** Prints "avitool: FILE: PROBLEM" in the same way. */
    void complain(std::string_view file, std::string_view problem);
    /** 0, or 1 after complain(). */
    int exitStatus() const { return mComplained ? 1 : 0; }

  private:
    bool mComplained = false;
};

}  // namespace avitool
