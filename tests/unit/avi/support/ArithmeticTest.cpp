// SPDX-License-Identifier: Apache-2.0

#include "avi/support/Arithmetic.h"

#include <cmath>
#include <limits>

#include <gtest/gtest.h>

namespace android {
namespace {

constexpr int64_t kMax64 = std::numeric_limits<int64_t>::max();
constexpr int64_t kMin64 = std::numeric_limits<int64_t>::min();

TEST(Arithmetic, WrapAdd32IsModulo32Bits) {
    EXPECT_EQ(5u, wrapAdd32(2, 3));
    EXPECT_EQ(0u, wrapAdd32(0xFFFFFFFF, 1));
    EXPECT_EQ(0xFFFFFFFEu, wrapAdd32(0xFFFFFFFF, 0xFFFFFFFF));
}

TEST(Arithmetic, WrapSub32IsModulo32Bits) {
    EXPECT_EQ(1u, wrapSub32(3, 2));
    EXPECT_EQ(0xFFFFFFFFu, wrapSub32(2, 3));
    EXPECT_EQ(1u, wrapSub32(0, 0xFFFFFFFF));
    EXPECT_EQ(0u, wrapSub32(0xFFFFFFFF, 0xFFFFFFFF));
}

TEST(Arithmetic, WrapMul32IsModulo32Bits) {
    EXPECT_EQ(6u, wrapMul32(2, 3));
    EXPECT_EQ(1u, wrapMul32(0xFFFFFFFF, 0xFFFFFFFF));
    EXPECT_EQ(1363100160u, wrapMul32(wrapMul32(5000, 1001), 1000000));
}

TEST(Arithmetic, PaddedSizeIsTheNextEvenNumber) {
    EXPECT_EQ(0u, paddedSize(0));
    EXPECT_EQ(2u, paddedSize(1));
    EXPECT_EQ(2u, paddedSize(2));
    EXPECT_EQ(0xFFFFFFFEu, paddedSize(0xFFFFFFFE));
    EXPECT_EQ(0u, paddedSize(0xFFFFFFFF));
}

TEST(Arithmetic, DivideOrZeroHasNoResultWithoutADivisor) {
    EXPECT_EQ(3u, divideOrZero(7u, 2u));
    EXPECT_EQ(-3, divideOrZero(-7, 2));
    EXPECT_EQ(0u, divideOrZero(7u, 0u));
    EXPECT_EQ(0, divideOrZero<int64_t>(kMin64, 0));
}

TEST(Arithmetic, SaturateToInt64KeepsWhatFits) {
    EXPECT_EQ(kMax64, saturateToInt64(kMax64));
    EXPECT_EQ(kMin64, saturateToInt64(kMin64));
    EXPECT_EQ(-1, saturateToInt64(-1));
    EXPECT_EQ(kMax64, saturateToInt64(Wide{kMax64} + 1));
    EXPECT_EQ(kMin64, saturateToInt64(Wide{kMin64} - 1));
}

TEST(Arithmetic, SaturateToUint32KeepsWhatFits) {
    EXPECT_EQ(0xFFFFFFFFu, saturateToUint32(0xFFFFFFFF));
    EXPECT_EQ(0xFFFFFFFFu, saturateToUint32(uint64_t{1} << 32));
    EXPECT_EQ(12u, saturateToUint32(12));
}

TEST(Arithmetic, MulDivFormsAWideProduct) {
    EXPECT_EQ(kMax64, mulDiv(kMax64, 1000000, 1000000));
    EXPECT_EQ(kMax64, mulDiv(kMax64, 2, 1));
    EXPECT_EQ(kMin64, mulDiv(kMin64, 2, 1));
}

TEST(Arithmetic, MulDivTruncatesTowardsZero) {
    EXPECT_EQ(3, mulDiv(7, 1, 2));
    EXPECT_EQ(-3, mulDiv(-7, 1, 2));
    EXPECT_EQ(0, mulDiv(7, 1, 0));
}

TEST(Arithmetic, UnitsToUsIsExact) {
    EXPECT_EQ(33366, unitsToUs(1, 1001, 30000));
    EXPECT_EQ(166833333, unitsToUs(5000, 1001, 30000));
    EXPECT_EQ(-40000, unitsToUs(-1, 1, 25));
}

TEST(Arithmetic, UnitsToUsWithoutARateIsZero) {
    EXPECT_EQ(0, unitsToUs(5000, 1001, 0));
}

TEST(Arithmetic, UnitsToUsSaturates) {
    EXPECT_EQ(kMax64, unitsToUs(kMax64, 0xFFFFFFFF, 1));
    EXPECT_EQ(kMin64, unitsToUs(kMin64, 0xFFFFFFFF, 1));
}

TEST(Arithmetic, ClampToTruncatesWhatFits) {
    EXPECT_EQ(23, clampTo<int32_t>(23.99));
    EXPECT_EQ(-23, clampTo<int32_t>(-23.99));
    EXPECT_EQ(2147483646, clampTo<int32_t>(2147483646.5));
}

TEST(Arithmetic, ClampToGivesTheNearestLimit) {
    EXPECT_EQ(INT32_MAX, clampTo<int32_t>(2147483648.0));
    EXPECT_EQ(INT32_MIN, clampTo<int32_t>(-2147483649.0));
    EXPECT_EQ(kMax64, clampTo<int64_t>(9223372036854775808.0));
    EXPECT_EQ(kMin64, clampTo<int64_t>(-1e300));
    EXPECT_EQ(0u, clampTo<uint32_t>(-0.5));
    EXPECT_EQ(0xFFFFFFFFu, clampTo<uint32_t>(4294967296.0));
    EXPECT_EQ(0xFFFFFFFFu, clampTo<uint32_t>(4294967295.0));
}

TEST(Arithmetic, ClampToOfInfinityIsALimit) {
    EXPECT_EQ(kMax64, clampTo<int64_t>(HUGE_VAL));
    EXPECT_EQ(kMin64, clampTo<int64_t>(-HUGE_VAL));
}

TEST(Arithmetic, ClampToOfNoNumberIsZero) {
    EXPECT_EQ(0, clampTo<int64_t>(std::nan("")));
}

}  // namespace
}  // namespace android
