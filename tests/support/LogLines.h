// SPDX-License-Identifier: Apache-2.0
//
// Lines of the plug-in's log. What tests say of it:
//
//     EXPECT_THAT(log(), Contains(error("...")));            // this whole line, this priority
//     EXPECT_THAT(log(), Contains(Text("...")));             // this whole line, any priority
//     EXPECT_THAT(mLog, Logged(ANDROID_LOG_WARN, "..."));    // a line with this part
//     EXPECT_EQ(2u, mLog.count("..."));                      // so many of them, any priority
//     EXPECT_EQ(2u, mLog.count(ANDROID_LOG_ERROR, "..."));   // so many of one priority
//
// where log() is mLog.lines().

#pragma once

#include <string>

#include "tests/support/ByteWriter.h"
#include "tests/support/LogCapture.h"

namespace avitest {

LogLine error(const std::string& text);
LogLine warning(const std::string& text);
LogLine debug(const std::string& text);
LogLine verbose(const std::string& text);

// A line with exactly this text, whatever its priority.
MATCHER_P(Text, text, "line '" + std::string(text) + "'") {
    (void)result_listener;  // the printed log says it all
    return arg.text == text;
}

// A line that contains the text, whatever its priority.
MATCHER_P(TextWith, text, "line with '" + std::string(text) + "'") {
    (void)result_listener;
    return arg.text.find(text) != std::string::npos;
}

// A line of exactly this priority that begins with the text.
MATCHER_P2(LineFrom, priority, text, "line from '" + std::string(text) + "'") {
    (void)result_listener;
    return arg.priority == priority && arg.text.compare(0, std::string(text).size(), text) == 0;
}

// "parseINDX(): error -3EF @line", whatever the line number: how a failure begins.
std::string failureOf(const std::string& function, const std::string& code);

// printf into a string.
std::string format(const char* pattern, ...) __attribute__((format(printf, 1, 2)));

// A chunk id or a compression code as the log shows it: "0x4b4e554a:JUNK".
std::string idText(ChunkId id);

}  // namespace avitest
