// SPDX-License-Identifier: Apache-2.0

#include "avi/support/ByteReader.h"

#include <gtest/gtest.h>

namespace android {
namespace {

constexpr uint8_t kBytes[] = {0x01, 0x82, 0x03, 0x84, 0x05, 0x86, 0x07, 0x88};

TEST(ByteReader, ReadsLittleEndianIntegers) {
    uint16_t word = 0;
    uint32_t dword = 0;
    uint64_t qword = 0;
    EXPECT_TRUE(ByteReader(kBytes, 8).u16(&word));
    EXPECT_TRUE(ByteReader(kBytes, 8).u32(&dword));
    EXPECT_TRUE(ByteReader(kBytes, 8).u64(&qword));
    EXPECT_EQ(0x8201u, word);
    EXPECT_EQ(0x84038201u, dword);
    EXPECT_EQ(0x8807860584038201u, qword);
}

TEST(ByteReader, ReadsSignedIntegersAsTwosComplement) {
    const uint8_t bytes[] = {0xFE, 0xFF, 0xFF, 0xFF};
    int32_t value = 0;
    EXPECT_TRUE(ByteReader(bytes, 4).i32(&value));
    EXPECT_EQ(-2, value);
}

TEST(ByteReader, ReadsCodes) {
    const uint8_t bytes[] = {'s', 't', 'r', 'h'};
    FourCC code{};
    EXPECT_TRUE(ByteReader(bytes, 4).code(&code));
    EXPECT_EQ(fourcc("strh"), code);
}

TEST(ByteReader, MovesOnBehindWhatItRead) {
    ByteReader in(kBytes, 8);
    uint16_t word = 0;
    uint32_t dword = 0;
    EXPECT_TRUE(in.u16(&word));
    EXPECT_TRUE(in.u32(&dword));
    EXPECT_EQ(0x86058403u, dword);
    EXPECT_EQ(2u, in.remaining());
}

TEST(ByteReader, ReadThatDoesNotFitConsumesNothing) {
    ByteReader in(kBytes, 3);
    uint32_t dword = 7;
    uint64_t qword = 7;
    int32_t number = 7;
    FourCC code = fourcc("same");
    EXPECT_FALSE(in.u32(&dword));
    EXPECT_FALSE(in.u64(&qword));
    EXPECT_FALSE(in.i32(&number));
    EXPECT_FALSE(in.code(&code));
    EXPECT_EQ(7u, dword);
    EXPECT_EQ(7u, qword);
    EXPECT_EQ(7, number);
    EXPECT_EQ(fourcc("same"), code);
    EXPECT_EQ(3u, in.remaining());
}

TEST(ByteReader, WordDoesNotFitInOneByte) {
    ByteReader in(kBytes, 1);
    uint16_t word = 7;
    EXPECT_FALSE(in.u16(&word));
    EXPECT_EQ(7u, word);
    EXPECT_EQ(1u, in.remaining());
}

TEST(ByteReader, ReadsUpToTheLastByte) {
    ByteReader in(kBytes, 8);
    uint64_t qword = 0;
    EXPECT_TRUE(in.u64(&qword));
    EXPECT_EQ(0u, in.remaining());
    uint16_t word = 0;
    EXPECT_FALSE(in.u16(&word));
}

TEST(ByteReader, SkipStaysWithinTheBytes) {
    ByteReader in(kBytes, 8);
    EXPECT_TRUE(in.skip(6));
    EXPECT_FALSE(in.skip(3));
    EXPECT_EQ(2u, in.remaining());
    EXPECT_FALSE(in.skip(SIZE_MAX));
    EXPECT_TRUE(in.skip(2));
    EXPECT_TRUE(in.skip(0));
    EXPECT_FALSE(in.skip(1));
}

TEST(ByteReader, OverNothingReadsNothing) {
    ByteReader in(nullptr, 0);
    uint16_t word = 0;
    EXPECT_EQ(0u, in.remaining());
    EXPECT_FALSE(in.u16(&word));
    EXPECT_TRUE(in.skip(0));
}

}  // namespace
}  // namespace android
