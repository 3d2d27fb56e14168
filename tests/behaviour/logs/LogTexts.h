// SPDX-License-Identifier: Apache-2.0
//
// Every text that the plug-in logs, in tables by topic; scripts/check-log-texts.py compares them
// with the source, so that no text is without a row. Field engineers filter captured logs by them.
//
// A row begins with the format as the source has it. The tables are constants.

#pragma once

#include <cstddef>

#include "tests/behaviour/logs/Scenarios.h"

namespace avitest {

// When a text is printed.
enum class Gate {
    kAlways,
    kExtractLog,  // while the extract-log switch is on
    kVerboseLog,  // while the verbose-log switch is on
    kDumps,       // a line from the middle of a track: while the verbose-log switch is on; the same
                  // text about the first five or the last buffers is printed always
};

constexpr int kVerbose = ANDROID_LOG_VERBOSE;
constexpr int kDebug = ANDROID_LOG_DEBUG;
constexpr int kWarning = ANDROID_LOG_WARN;
constexpr int kError = ANDROID_LOG_ERROR;

struct LogText {
    const char* text;
    int priority;
    Gate gate;
    Scenario scenario;
    const char* line;  // one whole line of the scenario, as a pattern (LogPattern.h): what varies
                       // from run to run, and source lines that nobody filters by, are left open
    Scenario without;  // a scenario without any such line; null when every file brings one
};

// A failed assertion: the text behind the location, and a scenario that ends with it.
struct FatalText {
    const char* text;
    Scenario scenario;
};

// A text that no file and no call from outside brings about; `line` is as it would be.
struct UnreachedText {
    const char* text;
    const char* line;
    const char* reason;
};

template <typename Row>
struct Rows {
    const Row* rows;
    size_t count;
    const Row* begin() const { return rows; }
    const Row* end() const { return rows + count; }
};

extern const Rows<LogText> kOpeningTexts;
extern const Rows<LogText> kStreamTexts;
extern const Rows<LogText> kIndexTexts;
extern const Rows<LogText> kTrackDumpTexts;
extern const Rows<LogText> kCodecTexts;
extern const Rows<LogText> kSourceTexts;
extern const Rows<FatalText> kFatalTexts;
extern const Rows<UnreachedText> kUnreachedTexts;

}  // namespace avitest
