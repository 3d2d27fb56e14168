// SPDX-License-Identifier: Apache-2.0

#include "avi/support/ByteWriter.h"

#include <vector>

#include <gtest/gtest.h>

namespace android {
namespace {

std::vector<uint8_t> written(const ByteWriter& out) {
    const sp<ABuffer>& buffer = out.buffer();
    return {buffer->data(), buffer->data() + buffer->size()};
}

}  // namespace

TEST(BigEndianWriter, BufferIsZeroAtFirst) {
    const ByteWriter out(5);
    EXPECT_TRUE(out.ok());
    EXPECT_EQ(written(out), std::vector<uint8_t>(5, 0));
}

TEST(BigEndianWriter, ValuesFollowEachOtherMostSignificantByteFirst) {
    ByteWriter out(8);
    const uint8_t kGiven[] = {7, 8};
    out.u8(0x112);
    out.u16(0x3456);
    out.zeros(1);
    out.bytes(kGiven, 2);
    out.u16(0x1FFFE);
    EXPECT_EQ(written(out), (std::vector<uint8_t>{0x12, 0x34, 0x56, 0, 7, 8, 0xFF, 0xFE}));
}

TEST(BigEndianWriter, WhatDoesNotFitIsLeftOut) {
    ByteWriter out(3);
    const uint8_t kGiven[] = {1, 2, 3, 4, 5};
    out.bytes(kGiven, 5);
    out.u8(9);
    out.u16(9);
    out.zeros(100);
    out.bytes(kGiven, 5);
    EXPECT_EQ(written(out), (std::vector<uint8_t>{1, 2, 3}));
}

TEST(BigEndianWriter, ValueThatFitsInPartIsWrittenInPart) {
    ByteWriter out(1);
    out.u16(0xABCD);
    EXPECT_EQ(written(out), std::vector<uint8_t>{0xAB});
}

TEST(BigEndianWriter, ZerosBehindTheEndLeaveNoRoom) {
    ByteWriter out(4);
    out.zeros(SIZE_MAX);
    out.u8(1);
    EXPECT_EQ(written(out), std::vector<uint8_t>(4, 0));
}

TEST(BigEndianWriter, NothingIsWrittenForNoBytes) {
    const uint8_t kByte = 7;
    ByteWriter out(2);
    out.bytes(&kByte, 0);
    out.zeros(0);
    out.u8(5);
    EXPECT_EQ(written(out), (std::vector<uint8_t>{5, 0}));
}

}  // namespace android
