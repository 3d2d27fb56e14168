// SPDX-License-Identifier: Apache-2.0

#include "avi/support/BitRate.h"

#include <string>

#include <gtest/gtest.h>

namespace android {
namespace {

std::string textOf(int32_t bitsPerSecond) {
    AString text;
    appendBitRate(bitsPerSecond, &text);
    return text.c_str();
}

TEST(BitRate, UpToOneKiloIsShownInBits) {
    EXPECT_EQ("0bps", textOf(0));
    EXPECT_EQ("1000bps", textOf(1000));
    EXPECT_EQ("1024bps", textOf(1024));
}

TEST(BitRate, UpToOneMegaIsShownInKilobits) {
    EXPECT_EQ("1.001Kbps", textOf(1025));
    EXPECT_EQ("125.000Kbps", textOf(128000));
    EXPECT_EQ("1024.000Kbps", textOf(1048576));
}

TEST(BitRate, AboveOneMegaIsShownInMegabits) {
    EXPECT_EQ("1.000Mbps", textOf(1048577));
    EXPECT_EQ("1.476Mbps", textOf(1536000));
    EXPECT_EQ("1.929Mbps", textOf(2000000));
    EXPECT_EQ("2047.1023Mbps", textOf(INT32_MAX));
}

TEST(BitRate, FractionCountsBinaryPartsInUpToFourDigits) {
    EXPECT_EQ("1.1023Kbps", textOf(2047));
    EXPECT_EQ("2.000Kbps", textOf(2048));
}

TEST(BitRate, NegativeRateIsShownInBits) {
    EXPECT_EQ("-5bps", textOf(-5));
}

TEST(BitRate, IsAppended) {
    AString text("rate ");
    appendBitRate(1000, &text);
    EXPECT_STREQ("rate 1000bps", text.c_str());
}

}  // namespace
}  // namespace android
