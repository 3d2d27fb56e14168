// SPDX-License-Identifier: Apache-2.0

#include "tests/support/LogCapture.h"

#include <thread>

#include <gtest/gtest.h>

namespace avitest {
namespace {

using ::testing::ElementsAre;
using ::testing::Not;

void say(int priority, const char* text) {
    __android_log_write(priority, "Speaker", text);
}

TEST(LogCapture, RecordsPriorityTagAndTextInOrder) {
    LogCapture log;
    say(ANDROID_LOG_WARN, "first");
    __android_log_print(ANDROID_LOG_ERROR, "Other", "number %d", 2);
    EXPECT_THAT(log.lines(), ElementsAre(LogLine{ANDROID_LOG_WARN, "Speaker", "first"},
                                         LogLine{ANDROID_LOG_ERROR, "Other", "number 2"}));
}

TEST(LogCapture, RecordsVerboseLines) {
    LogCapture log;
    say(ANDROID_LOG_VERBOSE, "whisper");
    EXPECT_THAT(log, Logged(ANDROID_LOG_VERBOSE, "whisper"));
}

TEST(LogCapture, LoggedWantsTheExactPriorityAndAnyPartOfTheText) {
    LogCapture log;
    say(ANDROID_LOG_WARN, "skip multiple idx1!");
    EXPECT_THAT(log, Logged(ANDROID_LOG_WARN, "multiple"));
    EXPECT_THAT(log, Not(Logged(ANDROID_LOG_ERROR, "multiple")));
    EXPECT_THAT(log, Not(Logged(ANDROID_LOG_WARN, "idx2")));
}

TEST(LogCapture, CountMayBeOfOnePriority) {
    LogCapture log;
    say(ANDROID_LOG_INFO, "a a");
    say(ANDROID_LOG_ERROR, "b a");
    EXPECT_EQ(1u, log.count(ANDROID_LOG_ERROR, "a"));
    EXPECT_EQ(0u, log.count(ANDROID_LOG_WARN, "a"));
}

TEST(LogCapture, LinesWithATextComeInOrder) {
    LogCapture log;
    say(ANDROID_LOG_INFO, "a 1");
    say(ANDROID_LOG_ERROR, "b 2");
    say(ANDROID_LOG_ERROR, "a 3");
    EXPECT_THAT(log.linesWith("a "), ElementsAre(LogLine{ANDROID_LOG_INFO, "Speaker", "a 1"},
                                                 LogLine{ANDROID_LOG_ERROR, "Speaker", "a 3"}));
}

TEST(LogCapture, CountIsOfLinesOfAnyPriority) {
    LogCapture log;
    say(ANDROID_LOG_INFO, "a a");
    say(ANDROID_LOG_ERROR, "b a");
    say(ANDROID_LOG_ERROR, "b");
    EXPECT_EQ(2u, log.count("a"));
    log.clear();
    EXPECT_EQ(0u, log.count("a"));
}

TEST(LogCapture, RecordsFromSeveralThreads) {
    constexpr int kLines = 200;
    LogCapture log;
    const auto talk = [] {
        for (int i = 0; i < kLines; ++i)
            say(ANDROID_LOG_INFO, "line");
    };
    std::thread first(talk);
    std::thread second(talk);
    first.join();
    second.join();
    EXPECT_EQ(2u * kLines, log.count("line"));
}

TEST(LogCapture, InnerCaptureTakesTheLinesUntilItGoes) {
    LogCapture outer;
    {
        LogCapture inner;
        say(ANDROID_LOG_INFO, "inside");
        EXPECT_EQ(1u, inner.count("inside"));
    }
    say(ANDROID_LOG_INFO, "outside");
    EXPECT_EQ(0u, outer.count("inside"));
    EXPECT_EQ(1u, outer.count("outside"));
}

TEST(LogCapture, AfterwardsLinesGoToStderrAgain) {
    { LogCapture log; }
    ::testing::internal::CaptureStderr();
    say(ANDROID_LOG_WARN, "loud again");
    say(ANDROID_LOG_VERBOSE, "still hidden");
    const std::string printed = ::testing::internal::GetCapturedStderr();
    EXPECT_NE(std::string::npos, printed.find("loud again"));
    EXPECT_EQ(std::string::npos, printed.find("still hidden"));
}

TEST(LogCapture, NothingIsPrintedWhileItRecords) {
    ::testing::internal::CaptureStderr();
    {
        LogCapture log;
        say(ANDROID_LOG_ERROR, "quiet");
    }
    EXPECT_EQ("", ::testing::internal::GetCapturedStderr());
}

TEST(LogCaptureDeathTest, FatalLineIsPrintedForTheDeathTest) {
    LogCapture log;
    EXPECT_DEATH(__android_log_assert("1 == 2", "Speaker", "broken %d", 7), "broken 7");
}

}  // namespace
}  // namespace avitest
