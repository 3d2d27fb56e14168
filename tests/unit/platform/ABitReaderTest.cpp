// SPDX-License-Identifier: Apache-2.0

#include <media/stagefright/foundation/ABitReader.h>

#include "tests/unit/platform/AbortTest.h"

namespace android {
namespace {

constexpr uint8_t kBits[] = {0xa5, 0x0f, 0x12, 0x34, 0x56, 0x78};

class ABitReaderDeathTest : public testing::Test {};

TEST(ABitReader, ReadsMostSignificantBitFirst) {
    ABitReader br(kBits, sizeof(kBits));
    EXPECT_EQ(br.getBits(1), 1u);
    EXPECT_EQ(br.getBits(1), 0u);
    EXPECT_EQ(br.getBits(2), 2u);
    EXPECT_EQ(br.getBits(4), 5u);
}

TEST(ABitReader, ReadsAcrossBytes) {
    ABitReader br(kBits, sizeof(kBits));
    br.getBits(4);
    EXPECT_EQ(br.getBits(8), 0x50u);
    EXPECT_EQ(br.getBits(12), 0xf12u);
}

TEST(ABitReader, ReadsThirtyTwoAlignedBits) {
    ABitReader br(kBits, sizeof(kBits));
    EXPECT_EQ(br.getBits(32), 0xa50f1234u);
}

TEST(ABitReader, ReadsThirtyTwoUnalignedBits) {
    ABitReader br(kBits, sizeof(kBits));
    br.getBits(7);
    EXPECT_EQ(br.getBits(32), 0x87891a2bu);
}

TEST(ABitReader, ZeroBitsAreZeroAndMoveNothing) {
    ABitReader br(kBits, sizeof(kBits));
    EXPECT_EQ(br.getBits(0), 0u);
    EXPECT_EQ(br.numBitsLeft(), 48u);
}

TEST(ABitReader, EmptyDataHasNoBits) {
    ABitReader br(nullptr, 0);
    uint32_t bits = 77;
    EXPECT_EQ(br.numBitsLeft(), 0u);
    EXPECT_FALSE(br.getBitsGraceful(1, &bits));
    EXPECT_EQ(bits, 77u);
    EXPECT_EQ(br.getBits(0), 0u);
}

TEST(ABitReader, EmulationPreventionBytesAreData) {
    const uint8_t bytes[] = {0, 0, 3, 1};
    ABitReader br(bytes, sizeof(bytes));
    EXPECT_EQ(br.getBits(32), 0x301u);
}

TEST(ABitReader, NumBitsLeftCountsDown) {
    ABitReader br(kBits, 2);
    EXPECT_EQ(br.numBitsLeft(), 16u);
    br.getBits(5);
    EXPECT_EQ(br.numBitsLeft(), 11u);
    br.getBits(11);
    EXPECT_EQ(br.numBitsLeft(), 0u);
}

TEST(ABitReader, DataIsTheByteOfTheNextBit) {
    ABitReader br(kBits, 2);
    EXPECT_EQ(br.data(), kBits);
    br.getBits(7);
    EXPECT_EQ(br.data(), kBits);
    br.getBits(1);
    EXPECT_EQ(br.data(), kBits + 1);
    br.getBits(8);
    EXPECT_EQ(br.data(), kBits + 2);
}

TEST(ABitReader, GracefulReadsUpToTheLastBit) {
    ABitReader br(kBits, 2);
    uint32_t bits = 0;
    EXPECT_TRUE(br.getBitsGraceful(16, &bits));
    EXPECT_EQ(bits, 0xa50fu);
}

TEST(ABitReader, GracefulOverTheEndIsFalseAndLeavesTheOutput) {
    ABitReader br(kBits, 2);
    uint32_t bits = 77;
    EXPECT_FALSE(br.getBitsGraceful(17, &bits));
    EXPECT_EQ(bits, 77u);
}

TEST(ABitReader, GracefulOfMoreThanThirtyTwoBitsIsFalseAndReadsNothing) {
    ABitReader br(kBits, sizeof(kBits));
    uint32_t bits = 77;
    EXPECT_FALSE(br.getBitsGraceful(33, &bits));
    EXPECT_EQ(bits, 77u);
    EXPECT_EQ(br.numBitsLeft(), 48u);
}

TEST(ABitReader, ReadOverTheEndUsesUpTheRest) {
    ABitReader br(kBits, 2);
    uint32_t bits = 0;
    EXPECT_FALSE(br.getBitsGraceful(17, &bits));
    EXPECT_EQ(br.numBitsLeft(), 0u);
    EXPECT_FALSE(br.getBitsGraceful(1, &bits));
}

TEST(ABitReader, FallbackStandsInForMissingBits) {
    ABitReader br(kBits, 1);
    EXPECT_EQ(br.getBitsWithFallback(8, 5), 0xa5u);
    EXPECT_EQ(br.getBitsWithFallback(1, 5), 5u);
}

TEST(ABitReader, SkipsMoreThanThirtyTwoBits) {
    ABitReader br(kBits, sizeof(kBits));
    EXPECT_TRUE(br.skipBits(40));
    EXPECT_EQ(br.getBits(8), 0x78u);
}

TEST(ABitReader, SkipsToTheVeryEnd) {
    ABitReader br(kBits, sizeof(kBits));
    EXPECT_TRUE(br.skipBits(48));
    EXPECT_EQ(br.numBitsLeft(), 0u);
    EXPECT_TRUE(br.skipBits(0));
}

TEST(ABitReader, SkipOverTheEndIsFalse) {
    ABitReader br(kBits, sizeof(kBits));
    EXPECT_FALSE(br.skipBits(49));
    EXPECT_EQ(br.numBitsLeft(), 0u);
}

TEST(ABitReader, SkipOfAnyNumberIsSafe) {
    ABitReader br(kBits, sizeof(kBits));
    br.skipBits(3);
    EXPECT_FALSE(br.skipBits(SIZE_MAX));
}

TEST_F(ABitReaderDeathTest, GetBitsOverTheEndAborts) {
    ABitReader br(kBits, 2);
    EXPECT_ABORT(br.getBits(17), "ABitReader.cpp:[0-9]+ CHECK.*failed");
}

TEST_F(ABitReaderDeathTest, GetBitsAtTheEndAborts) {
    ABitReader br(kBits, 2);
    br.getBits(16);
    EXPECT_ABORT(br.getBits(1), "CHECK.*failed");
}

TEST_F(ABitReaderDeathTest, GetBitsOfMoreThanThirtyTwoAborts) {
    ABitReader br(kBits, sizeof(kBits));
    EXPECT_ABORT(br.getBits(33), "CHECK.*failed");
}

}  // namespace
}  // namespace android
