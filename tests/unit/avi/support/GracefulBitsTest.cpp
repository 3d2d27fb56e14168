// SPDX-License-Identifier: Apache-2.0

#include "avi/support/GracefulBits.h"

#include <array>
#include <vector>

#include <gtest/gtest.h>

#include "tests/unit/avi/ExactBytes.h"
#include "tests/unit/platform/SpsBuilder.h"

namespace android {
namespace {

using Bytes = std::vector<uint8_t>;

// Bits in a heap block of just their bytes.
class Bits {
  public:
    explicit Bits(const Bytes& bytes) : mBytes(bytes), mBits(mBytes.data(), mBytes.size()) {}
    GracefulBits* operator->() { return &mBits; }
    GracefulBits* get() { return &mBits; }

  private:
    ExactBytes mBytes;
    GracefulBits mBits;
};

// What each kind of read gives.
using Values = std::array<int64_t, 5>;

Values readEverything(GracefulBits* bits) {
    Values values{};
    values[0] = bits->u(8);
    values[1] = bits->flag() ? 1 : 0;
    values[2] = bits->ue();
    values[3] = bits->se();
    values[4] = bits->u(32);
    return values;
}

constexpr Values kRow = {0xC3, 1, 5, -2, 0xFEDCBA98};

// Those values in 51 bits, and five zeros.
Bytes rowBytes() {
    return SpsBits().u(8, 0xC3).u(1, 1).ue(5).se(-2).u(32, 0xFEDCBA98).bytes();
}

// The row of reads, cut after `kept` bits. They end with a byte: zeros in front fill up the first.
Bytes cutRow(const Bytes& row, size_t kept, size_t filling) {
    SpsBits bits;
    bits.u(static_cast<unsigned>(filling), 0);
    for (size_t bit = 0; bit < kept; ++bit)
        bits.u(1, row[bit / 8] >> (7 - bit % 8) & 1u);
    return bits.bytes();
}

void expectNothingMore(GracefulBits* bits) {
    EXPECT_FALSE(bits->ok());
    EXPECT_EQ(readEverything(bits), Values{});
    EXPECT_EQ(bits->u(0), 0u);
    bits->skip(0);
    EXPECT_FALSE(bits->ok());
}

// `zeros` of them, a one, and as many ones again.
Bytes longCode(unsigned zeros) {
    SpsBits bits;
    for (unsigned i = 0; i < zeros; ++i)
        bits.u(1, 0);
    bits.u(1, 1);
    for (unsigned i = 0; i < zeros; ++i)
        bits.u(1, 1);
    return bits.bytes();
}

}  // namespace

TEST(GracefulBits, BitsAreReadMostSignificantFirst) {
    Bits bits({0xA5, 0x0F, 0x12, 0x34, 0x56, 0x78});
    EXPECT_TRUE(bits->flag());
    EXPECT_FALSE(bits->flag());
    EXPECT_EQ(bits->u(2), 2u);
    EXPECT_EQ(bits->u(0), 0u);
    EXPECT_EQ(bits->u(8), 0x50u);
    EXPECT_EQ(bits->u(4), 0xFu);
    EXPECT_EQ(bits->u(32), 0x12345678u);
    EXPECT_TRUE(bits->ok());
}

TEST(GracefulBits, EveryKindReadsToTheLastBit) {
    Bits bits(rowBytes());
    EXPECT_EQ(readEverything(bits.get()), kRow);
    EXPECT_EQ(bits->u(5), 0u);
    EXPECT_TRUE(bits->ok());
    EXPECT_FALSE(bits->flag());
    EXPECT_FALSE(bits->ok());
}

TEST(GracefulBits, ReadsFromTheOneThatRunsOutGiveZero) {
    constexpr std::array<size_t, 5> kEnds = {8, 9, 14, 19, 51};
    for (size_t kept = 0; kept < kEnds.back(); ++kept) {
        SCOPED_TRACE(kept);
        const size_t filling = (8 - kept % 8) % 8;
        Bits bits(cutRow(rowBytes(), kept, filling));
        bits->skip(filling);
        ASSERT_TRUE(bits->ok());

        const Values values = readEverything(bits.get());
        for (size_t i = 0; i < kEnds.size(); ++i)
            EXPECT_EQ(values[i], kEnds[i] <= kept ? kRow[i] : 0) << "read " << i;
        expectNothingMore(bits.get());
    }
}

TEST(GracefulBits, NoDataHasNoBits) {
    GracefulBits bits(nullptr, 0);
    EXPECT_TRUE(bits.ok());
    EXPECT_EQ(bits.u(0), 0u);
    EXPECT_TRUE(bits.ok());
    EXPECT_FALSE(bits.flag());
    expectNothingMore(&bits);
}

TEST(GracefulBits, BitsLeftAreLostToAReadThatWantsMore) {
    Bits bits({0xFF, 0xFF});
    EXPECT_EQ(bits->u(17), 0u);
    expectNothingMore(bits.get());
}

TEST(GracefulBits, MoreThanThirtyTwoBitsAtOnceAreNone) {
    Bits bits(Bytes(8, 0xFF));
    EXPECT_EQ(bits->u(33), 0u);
    expectNothingMore(bits.get());
}

TEST(GracefulBits, SkipsAnyNumberThatIsThere) {
    Bits bits({0, 0, 0, 0, 0, 0x2A});
    bits->skip(40);
    EXPECT_EQ(bits->u(8), 0x2Au);
    bits->skip(0);
    EXPECT_TRUE(bits->ok());
}

TEST(GracefulBits, SkipBeyondTheEndIsTheEnd) {
    for (const size_t count : {size_t{17}, size_t{64}, SIZE_MAX}) {
        SCOPED_TRACE(count);
        Bits bits({0xFF, 0xFF});
        bits->skip(count);
        expectNothingMore(bits.get());
    }
}

TEST(GracefulBits, UnsignedCodesOfEveryLength) {
    Bits bits(SpsBits().ue(0).ue(1).ue(2).ue(3).ue(6).ue(7).ue(254).ue(255).bytes());
    for (const uint32_t value : {0u, 1u, 2u, 3u, 6u, 7u, 254u, 255u})
        EXPECT_EQ(bits->ue(), value);
    for (unsigned zeros = 0; zeros < 32; ++zeros) {
        SCOPED_TRACE(zeros);
        Bits longest(longCode(zeros));
        EXPECT_EQ(longest->ue(), (uint64_t{2} << zeros) - 2);
        EXPECT_TRUE(longest->ok());
    }
}

TEST(GracefulBits, CodeOfThirtyOneZerosIsTheLongest) {
    Bits smallest(SpsBits().u(31, 0).u(1, 1).u(31, 0).u(1, 1).bytes());
    EXPECT_EQ(smallest->ue(), 0x7FFFFFFFu);
    EXPECT_TRUE(smallest->flag());
    Bits largest(SpsBits().ue(0xFFFFFFFE).u(1, 1).bytes());
    EXPECT_EQ(largest->ue(), 0xFFFFFFFEu);
    EXPECT_TRUE(largest->flag());
}

TEST(GracefulBits, CodeOfThirtyTwoZerosIsNone) {
    for (const unsigned zeros : {32u, 33u, 63u, 64u, 100u}) {
        SCOPED_TRACE(zeros);
        Bits unsignedCode(longCode(zeros));
        EXPECT_EQ(unsignedCode->ue(), 0u);
        expectNothingMore(unsignedCode.get());
        Bits signedCode(longCode(zeros));
        EXPECT_EQ(signedCode->se(), 0);
        expectNothingMore(signedCode.get());
    }
}

TEST(GracefulBits, ZerosToTheEndAreNoCode) {
    for (size_t size = 1; size < 20; ++size) {
        SCOPED_TRACE(size);
        Bits bits(Bytes(size, 0));
        EXPECT_EQ(bits->ue(), 0u);
        expectNothingMore(bits.get());
    }
}

TEST(GracefulBits, CodeCutAfterItsOneIsNone) {
    Bits bits({0x01, 0xFF});  // seven zeros need seven bits, eight are left
    EXPECT_EQ(bits->ue(), 254u);
    Bits cut({0x01});
    EXPECT_EQ(cut->ue(), 0u);
    expectNothingMore(cut.get());
}

TEST(GracefulBits, SignedCodesBeginPositive) {
    Bits bits(SpsBits().ue(0).ue(1).ue(2).ue(3).ue(4).ue(5).ue(6).bytes());
    for (const int64_t value : {0, 1, -1, 2, -2, 3, -3})
        EXPECT_EQ(bits->se(), value);
}

TEST(GracefulBits, LargestSignedCodesKeepTheirSign) {
    Bits positive(SpsBits().ue(0xFFFFFFFD).bytes());
    EXPECT_EQ(positive->se(), 0x7FFFFFFF);
    Bits negative(SpsBits().ue(0xFFFFFFFE).bytes());
    EXPECT_EQ(negative->se(), -0x7FFFFFFF);
}

}  // namespace android
