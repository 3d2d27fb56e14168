// SPDX-License-Identifier: Apache-2.0

#include "support/PaddedBytes.h"

#include <gtest/gtest.h>

#include <vector>

namespace android {
namespace {

TEST(PaddedBytes, BytesBeyondTheEndAreZero) {
    const std::vector<uint8_t> data = {1, 2, 3};
    const PaddedBytes bytes(data.data(), data.size());
    EXPECT_EQ(bytes.byteAt(0), 1);
    EXPECT_EQ(bytes.byteAt(2), 3);
    EXPECT_EQ(bytes.byteAt(3), 0);
    EXPECT_EQ(bytes.byteAt(SIZE_MAX), 0);
}

TEST(PaddedBytes, WordsAreBigEndianAndPadded) {
    const std::vector<uint8_t> data = {0x81, 2, 3, 4, 5};
    const PaddedBytes bytes(data.data(), data.size());
    EXPECT_EQ(bytes.wordAt(0), 0x81020304u);
    EXPECT_EQ(bytes.wordAt(1), 0x02030405u);
    EXPECT_EQ(bytes.wordAt(3), 0x04050000u);
    EXPECT_EQ(bytes.wordAt(5), 0u);
    EXPECT_EQ(PaddedBytes(nullptr, 0).wordAt(0), 0u);
}

TEST(PaddedBytes, WhatFollowsMayBeNothing) {
    const std::vector<uint8_t> data = {1, 2, 3};
    const PaddedBytes bytes(data.data(), data.size());
    EXPECT_EQ(bytes.from(1).byteAt(0), 2);
    EXPECT_EQ(bytes.from(1).size(), 2u);
    EXPECT_EQ(bytes.from(3).size(), 0u);
    EXPECT_EQ(bytes.from(SIZE_MAX).size(), 0u);
}

}  // namespace
}  // namespace android
