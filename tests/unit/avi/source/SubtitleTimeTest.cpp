// SPDX-License-Identifier: Apache-2.0

#include "source/SubtitleTime.h"

#include <gtest/gtest.h>

#include <string>

#include "tests/unit/avi/ExactBytes.h"

namespace android {
namespace {

int64_t timeOf(const std::string& text) {
    const ExactBytes bytes(std::vector<uint8_t>(text.begin(), text.end()));
    return getSubtitleDts(bytes.data(), bytes.size());
}

TEST(SubtitleTime, IsTheStartTimeInMicroseconds) {
    EXPECT_EQ(timeOf("[00:00:00.000"), 0);
    EXPECT_EQ(timeOf("[00:00:00.001"), 1000);
    EXPECT_EQ(timeOf("[00:00:01.000"), 1000000);
    EXPECT_EQ(timeOf("[00:01:00.000"), 60000000);
    EXPECT_EQ(timeOf("[01:00:00.000"), int64_t{3600} * 1000000);
    EXPECT_EQ(timeOf("[00:01:02.345"), 62345000);
    EXPECT_EQ(timeOf("[01:02:03.450-01:02:05.000] bytes"), 3723450000);
    EXPECT_EQ(timeOf("[99:99:99.999"), int64_t{99 * 3600 + 99 * 60 + 99} * 1000000 + 999000);
}

TEST(SubtitleTime, SeparatorsAreNotRead) {
    EXPECT_EQ(timeOf("\xFF"
                     "00\xFF"
                     "01\xFF"
                     "02\xFF"
                     "345"),
              62345000);
}

TEST(SubtitleTime, OtherCharactersCountByTheirDistanceFromZero) {
    EXPECT_EQ(timeOf("[00:00:0:.000"), 10000000);   // ':' follows '9'
    EXPECT_EQ(timeOf("[00:00:1/.000"), 9000000);    // '/' precedes '0'
    EXPECT_EQ(timeOf("[00:00:00.00\xFF"), 207000);  // a character is 0 to 255
}

TEST(SubtitleTime, IsNeverNegative) {
    EXPECT_EQ(timeOf("[00:00:0/.000"), 0);
    EXPECT_EQ(timeOf("[  :00:00.000"), 0);
    EXPECT_EQ(timeOf(std::string(13, '\0')), 0);
}

TEST(SubtitleTime, ChunkTooShortForATimeHasNone) {
    const std::string text = "[12:34:56.789";
    for (size_t length = 0; length < text.size(); ++length) {
        SCOPED_TRACE(length);
        EXPECT_EQ(timeOf(text.substr(0, length)), 0);
    }
    EXPECT_NE(timeOf(text), 0);
}

}  // namespace
}  // namespace android
