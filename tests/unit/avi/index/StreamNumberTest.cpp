// SPDX-License-Identifier: Apache-2.0

#include "index/StreamNumber.h"

#include <gtest/gtest.h>

namespace android {
namespace {

TEST(StreamNumber, IsTheValueOfTwoDigits) {
    for (uint32_t number = 0; number < 100; ++number) {
        const auto tens = static_cast<uint8_t>('0' + number / 10);
        const auto ones = static_cast<uint8_t>('0' + number % 10);
        EXPECT_EQ(streamNumber(makeFourCC(tens, ones, 'd', 'c')), number);
    }
}

TEST(StreamNumber, LettersDoNotMatter) {
    EXPECT_EQ(streamNumber(fourcc("07wb")), 7u);
    EXPECT_EQ(streamNumber(makeFourCC('0', '7', 0, 0xFF)), 7u);
}

TEST(StreamNumber, OtherCharactersAreWeighedLikeDigits) {
    EXPECT_EQ(streamNumber(fourcc("0:dc")), 10u);
    EXPECT_EQ(streamNumber(fourcc("1/dc")), 9u);
    EXPECT_EQ(streamNumber(fourcc("/:dc")), 0u);
    EXPECT_EQ(streamNumber(fourcc("ix00")), 10u * 'i' + 'x' - 528);
    EXPECT_EQ(streamNumber(makeFourCC(0xFF, 0xFF, 0, 0)), 11u * 255 - 528);
}

TEST(StreamNumber, BelowZeroIsFarBeyondAnyStream) {
    EXPECT_EQ(streamNumber(makeFourCC(0, 0, 0, 0)), 0xFFFFFFFFu - 527);
    EXPECT_EQ(streamNumber(makeFourCC('0', '/', 'd', 'c')), 0xFFFFFFFFu);
}

}  // namespace
}  // namespace android
