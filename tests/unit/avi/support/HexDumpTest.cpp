// SPDX-License-Identifier: Apache-2.0

#include "avi/support/HexDump.h"

#include <string>
#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "avi/support/Switches.h"
#include "tests/support/LogCapture.h"

namespace android {
namespace {

using avitest::LogCapture;
using avitest::LogLine;
using ::testing::ElementsAre;
using ::testing::IsEmpty;

class HexDump : public ::testing::Test {
  protected:
    HexDump() { gSwitches.extractLog = true; }
    ~HexDump() override { gSwitches.extractLog = false; }

    // What is logged for the bytes 0, 1, 2 and so on.
    static std::vector<LogLine> dump(size_t size) {
        std::vector<uint8_t> bytes;
        for (size_t i = 0; i < size; ++i)
            bytes.push_back(static_cast<uint8_t>(i));
        const LogCapture log;
        hexDump(bytes.data(), bytes.size());
        return log.lines();
    }

    static LogLine line(const char* text) {
        return {ANDROID_LOG_VERBOSE, "RuvoAVIExtractor", text};
    }
};

TEST_F(HexDump, BytesAreFollowedByABlankEach) {
    EXPECT_THAT(dump(3), ElementsAre(line("00 01 02 ")));
}

TEST_F(HexDump, DigitsAreLowerCase) {
    const uint8_t bytes[] = {0xAB, 0xCD, 0xEF};
    const LogCapture log;
    hexDump(bytes, sizeof(bytes));
    EXPECT_THAT(log.lines(), ElementsAre(line("ab cd ef ")));
}

TEST_F(HexDump, SixteenthByteIsFollowedByALineFeed) {
    EXPECT_THAT(dump(16), ElementsAre(line("00 01 02 03 04 05 06 07 08 09 0a 0b 0c 0d 0e 0f\n")));
}

TEST_F(HexDump, EverySixteenthByteIsFollowedByALineFeed) {
    EXPECT_THAT(dump(33), ElementsAre(line("00 01 02 03 04 05 06 07 08 09 0a 0b 0c 0d 0e 0f\n"
                                           "10 11 12 13 14 15 16 17 18 19 1a 1b 1c 1d 1e 1f\n"
                                           "20 ")));
}

TEST_F(HexDump, NothingIsShownWhileTheSwitchIsOff) {
    gSwitches.extractLog = false;
    EXPECT_THAT(dump(3), IsEmpty());
}

TEST(HexLine, BytesAreUpperCaseWithBlanksBetween) {
    const uint8_t bytes[] = {0xAB, 0x0C, 0xEF};
    EXPECT_STREQ(HexLine(bytes, 3).text(), "AB 0C EF");
    EXPECT_STREQ(HexLine(bytes, 1).text(), "AB");
    EXPECT_STREQ(HexLine(bytes, 0).text(), "");
}

TEST(HexLine, EndsHaveDotsBetween) {
    const uint8_t bytes[] = {0xAB, 0x0C, 0xEF, 0x12, 0x34};
    EXPECT_STREQ(HexLine(bytes, 5, 2, 1).text(), "AB 0C...34");
    EXPECT_STREQ(HexLine(bytes, 5, 1, 2).text(), "AB...12 34");
}

TEST(HexLine, HoldsAsManyBytesAsItSays) {
    const std::vector<uint8_t> bytes(HexLine::kMaxBytes, 0x5A);
    EXPECT_EQ(std::string(HexLine(bytes.data(), bytes.size()).text()).size(), 95u);
    EXPECT_EQ(std::string(HexLine(bytes.data(), bytes.size(), 16, 16).text()).size(), 97u);
}

}  // namespace
}  // namespace android
