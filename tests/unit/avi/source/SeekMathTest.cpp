// SPDX-License-Identifier: Apache-2.0
//
// Seek times turned into indices.

#include "source/SeekMath.h"

#include <gtest/gtest.h>

#include <limits>
#include <vector>

namespace android {
namespace {

constexpr int32_t kMax = std::numeric_limits<int32_t>::max();
constexpr int32_t kMin = std::numeric_limits<int32_t>::min();
constexpr int64_t kLongest = std::numeric_limits<int64_t>::max();

TEST(UnitAtTime, CountsWholeUnits) {
    EXPECT_EQ(unitAtTime(0, 1, 25), 0);
    EXPECT_EQ(unitAtTime(3100000, 1, 25), 77);  // 77.5
    EXPECT_EQ(unitAtTime(39999, 1, 25), 0);
    EXPECT_EQ(unitAtTime(40000, 1, 25), 1);
    EXPECT_EQ(unitAtTime(1000000, 1001, 30000), 29);
    EXPECT_EQ(unitAtTime(100000, 1152, 44100), 3);
}

TEST(UnitAtTime, WithoutScaleIsTheFirst) {
    EXPECT_EQ(unitAtTime(5000000, 0, 25), 0);
}

TEST(UnitAtTime, WithoutRateIsTheFirst) {
    EXPECT_EQ(unitAtTime(5000000, 1, 0), 0);
}

// The quotient by the scale comes before that by a million.
TEST(UnitAtTime, TruncatesTwice) {
    EXPECT_EQ(unitAtTime(1500000, 4, 2), 0);
    EXPECT_EQ(unitAtTime(-40000, 1, 25), 0);   // -1 + 0.5
    EXPECT_EQ(unitAtTime(-80000, 1, 25), -1);  // -2 + 0.5
}

// 2^24 + 1 is no float.
TEST(UnitAtTime, HasThePrecisionOfAFloat) {
    EXPECT_EQ(unitAtTime(int64_t{16777217} * kUsPerSecond, 1, 1), 16777216);
    EXPECT_EQ(unitAtTime(int64_t{16777219} * kUsPerSecond, 1, 1), 16777220);
}

TEST(UnitAtTime, StaysInItsRange) {
    EXPECT_EQ(unitAtTime(kLongest, 1, 1000), kMax);
    EXPECT_EQ(unitAtTime(kLongest, 1, UINT32_MAX), kMax);
    EXPECT_EQ(unitAtTime(std::numeric_limits<int64_t>::min(), 1, UINT32_MAX), kMin);
}

TEST(FrameAtTime, RoundsToTheNearest) {
    EXPECT_EQ(frameAtTime(0, 1024, 44100), 0);
    EXPECT_EQ(frameAtTime(11000, 1024, 44100), 0);  // 0.474
    EXPECT_EQ(frameAtTime(12000, 1024, 44100), 1);  // 0.517
    EXPECT_EQ(frameAtTime(1000000, 1024, 44100), 43);
    EXPECT_EQ(frameAtTime(60000000, 1, 50), 3000);
}

TEST(FrameAtTime, WithoutScaleOrRateIsTheFirst) {
    EXPECT_EQ(frameAtTime(5000000, 0, 44100), 0);
    EXPECT_EQ(frameAtTime(5000000, 1024, 0), 0);
}

TEST(FrameAtTime, StaysInItsRange) {
    EXPECT_EQ(frameAtTime(kLongest, 1, UINT32_MAX), kMax);
    EXPECT_EQ(frameAtTime(std::numeric_limits<int64_t>::min(), 1, UINT32_MAX), kMin);
}

TEST(ChunkAtTime, SharesTheDurationEvenly) {
    EXPECT_EQ(chunkAtTime(0, 1000000, 10), 0);
    EXPECT_EQ(chunkAtTime(500000, 1000000, 10), 5);
    EXPECT_EQ(chunkAtTime(540000, 1000000, 10), 5);  // 5.4
    EXPECT_EQ(chunkAtTime(560000, 1000000, 10), 6);
    EXPECT_EQ(chunkAtTime(1000000, 1000000, 10), 10);
    EXPECT_EQ(chunkAtTime(2000000, 1000000, 10), 20);
}

TEST(ChunkAtTime, WithoutDurationOrChunksIsTheFirst) {
    EXPECT_EQ(chunkAtTime(500000, 0, 10), 0);
    EXPECT_EQ(chunkAtTime(500000, 1000000, 0), 0);
}

TEST(ChunkAtTime, StaysInItsRange) {
    EXPECT_EQ(chunkAtTime(kLongest, 1, 1000), kMax);
    EXPECT_EQ(chunkAtTime(std::numeric_limits<int64_t>::min(), 1, 1000), kMin);
}

size_t firstBeyondOf(const std::vector<int64_t>& ends, int64_t limit) {
    return firstBeyond(ends.size(), limit, [&ends](size_t i) { return ends.at(i); });
}

TEST(FirstBeyond, IsTheFirstWhoseEndExceedsTheLimit) {
    const std::vector<int64_t> ends = {10, 20, 30};
    EXPECT_EQ(firstBeyondOf(ends, 0), 0u);
    EXPECT_EQ(firstBeyondOf(ends, 9), 0u);
    EXPECT_EQ(firstBeyondOf(ends, 10), 1u);
    EXPECT_EQ(firstBeyondOf(ends, 25), 2u);
    EXPECT_EQ(firstBeyondOf(ends, 29), 2u);
}

TEST(FirstBeyond, IsTheCountWhenNoneExceedsTheLimit) {
    EXPECT_EQ(firstBeyondOf({10, 20, 30}, 30), 3u);
    EXPECT_EQ(firstBeyondOf({10, 20, 30}, kLongest), 3u);
    EXPECT_EQ(firstBeyondOf({}, 0), 0u);
}

TEST(FirstBeyond, OfEqualEndsIsTheFirst) {
    EXPECT_EQ(firstBeyondOf({10, 20, 20, 20, 30}, 15), 1u);
    EXPECT_EQ(firstBeyondOf({10, 20, 20, 20, 30}, 20), 4u);
    EXPECT_EQ(firstBeyondOf({0, 0, 0}, 0), 3u);
}

TEST(FirstBeyond, AgreesWithASearchFromTheFirst) {
    std::vector<int64_t> ends;
    for (int64_t i = 0; i < 40; ++i) {
        ends.push_back(i * i / 3);
        for (int64_t limit = -1; limit <= ends.back() + 1; ++limit) {
            size_t expected = 0;
            while (expected < ends.size() && ends[expected] <= limit)
                ++expected;
            ASSERT_EQ(firstBeyondOf(ends, limit), expected);
        }
    }
}

TEST(FirstBeyond, AsksAboutTheLogarithmOfTheCount) {
    size_t asked = 0;
    const size_t found = firstBeyond(1 << 20, 700000, [&asked](size_t i) {
        ++asked;
        return static_cast<int64_t>(i);
    });
    EXPECT_EQ(found, 700001u);
    EXPECT_LE(asked, 21u);
}

}  // namespace
}  // namespace android
