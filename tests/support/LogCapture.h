// SPDX-License-Identifier: Apache-2.0
//
// Records what the code under test logs while an object of this class lives, instead of printing
// it. Captures nest: the innermost one records; when it goes, the one around it goes on, and after
// the outermost one lines go to stderr again at the minimum priority that was set before.
//
// A fatal line (a failed CHECK, LOG_ALWAYS_FATAL) ends the process after it was logged. It is
// recorded and printed to stderr all the same, so that EXPECT_DEATH finds its text. Test fatal
// lines that way: an aborter set with __android_log_set_aborter runs under liblog's lock, so one
// that throws leaves the lock taken and the next change of the aborter waits forever. This class
// leaves it alone.
//
// Threads: lines may come from any thread and the queries may be called meanwhile from any thread;
// construction and destruction belong to one thread at a time, innermost first.

#pragma once

#include <cstddef>
#include <iosfwd>
#include <mutex>
#include <string>
#include <string_view>
#include <vector>

#include <android/log.h>
#include <gmock/gmock.h>

namespace avitest {

struct LogLine {
    int priority = ANDROID_LOG_UNKNOWN;  // ANDROID_LOG_VERBOSE to ANDROID_LOG_FATAL
    std::string tag;
    std::string text;
};

bool operator==(const LogLine& a, const LogLine& b);
void PrintTo(const LogLine& line, std::ostream* out);

class LogCapture {
  public:
    // Starts to record, from VERBOSE up.
    LogCapture();
    LogCapture(const LogCapture&) = delete;
    LogCapture& operator=(const LogCapture&) = delete;
    ~LogCapture();

    // Everything recorded so far, in order.
    std::vector<LogLine> lines() const;
    // Whether a line of exactly this priority contains `text`.
    bool contains(int priority, std::string_view text) const;
    // How many lines contain `text`: of whatever priority, or of exactly this one.
    size_t count(std::string_view text) const;
    size_t count(int priority, std::string_view text) const;
    // The lines that contain `text`, in order.
    std::vector<LogLine> linesWith(std::string_view text) const;
    // Forgets what was recorded.
    void clear();

  private:
    static void record(const __android_logger_data* data, const char* message);

    LogCapture* mOuter = nullptr;
    int mOuterPriority = ANDROID_LOG_DEFAULT;
    std::vector<LogLine> mLines;  // guarded by one lock for all captures
};

// Prints the recorded lines, one a line.
void PrintTo(const LogCapture& capture, std::ostream* out);

// EXPECT_THAT(log, Logged(ANDROID_LOG_WARN, "skip multiple idx1!"));
MATCHER_P2(Logged, priority, text,
           std::string(negation ? "has no line" : "has a line") + " of priority " +
               std::to_string(priority) + " with '" + text + "'") {
    (void)result_listener;  // the printed capture says it all
    return arg.contains(priority, text);
}

}  // namespace avitest
