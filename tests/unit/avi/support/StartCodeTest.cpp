// SPDX-License-Identifier: Apache-2.0

#include "support/StartCode.h"

#include <gtest/gtest.h>

#include <vector>

namespace android {
namespace {

using Bytes = std::vector<uint8_t>;

size_t find(const Bytes& bytes, size_t from = 0) {
    return findStartCodePrefix(bytes.data(), bytes.size(), from);
}

// What the search means, a position at a time.
size_t findSlowly(const Bytes& bytes, size_t from) {
    for (size_t i = from; i + 2 < bytes.size(); ++i) {
        if (bytes[i] == 0 && bytes[i + 1] == 0 && bytes[i + 2] == 1) return i;
    }
    return bytes.size();
}

TEST(StartCode, IsFoundWhereItBegins) {
    EXPECT_EQ(find({0, 0, 1}), 0u);
    EXPECT_EQ(find({9, 0, 0, 1, 5}), 1u);
    EXPECT_EQ(find({0, 0, 0, 0, 1, 5}), 2u);
    EXPECT_EQ(find({0, 1, 0, 0, 1}), 2u);
}

TEST(StartCode, NoneIsTheSize) {
    EXPECT_EQ(find({}), 0u);
    EXPECT_EQ(find({0}), 1u);
    EXPECT_EQ(find({0, 0}), 2u);
    EXPECT_EQ(find({0, 0, 2}), 3u);
    EXPECT_EQ(find({0, 1, 1, 1, 0, 0}), 6u);
}

TEST(StartCode, SearchBeginsWhereItIsTold) {
    const Bytes twice = {0, 0, 1, 7, 0, 0, 1};
    EXPECT_EQ(find(twice, 0), 0u);
    EXPECT_EQ(find(twice, 1), 4u);
    EXPECT_EQ(find(twice, 4), 4u);
    EXPECT_EQ(find(twice, 5), 7u);
    EXPECT_EQ(find(twice, 7), 7u);
    EXPECT_EQ(find(twice, 100), 7u);
}

// Every text of eight bytes 0, 1 and 2, from every position.
TEST(StartCode, SkippedPositionsHoldNone) {
    for (unsigned number = 0; number < 6561; ++number) {
        Bytes bytes;
        for (unsigned rest = number; bytes.size() < 8; rest /= 3)
            bytes.push_back(static_cast<uint8_t>(rest % 3));
        for (size_t from = 0; from <= bytes.size(); ++from)
            ASSERT_EQ(find(bytes, from), findSlowly(bytes, from)) << number << " from " << from;
    }
}

}  // namespace
}  // namespace android
