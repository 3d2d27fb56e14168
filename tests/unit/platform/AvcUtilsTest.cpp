// SPDX-License-Identifier: Apache-2.0

#include <media/stagefright/foundation/ABitReader.h>
#include <media/stagefright/foundation/avc_utils.h>

#include <cerrno>
#include <vector>

#include "tests/unit/platform/AbortTest.h"

namespace android {
namespace {

using Bytes = std::vector<uint8_t>;

class AvcUtilsDeathTest : public testing::Test {};

// One call of getNextNALUnit on a stream, with what it answered.
struct NalCall {
    NalCall(const Bytes& bytes, bool startCodeFollows)
        : stream(bytes), rest(stream.data()), restSize(stream.size()) {
        status = getNextNALUnit(&rest, &restSize, &nal, &nalSize, startCodeFollows);
    }
    Bytes unit() const { return {nal, nal + nalSize}; }

    Bytes stream;
    const uint8_t* rest;
    size_t restSize;
    const uint8_t* nal = nullptr;
    size_t nalSize = 99;
    status_t status = OK;
};

TEST(NextNalUnit, ThreeByteCodesDelimitAUnit) {
    NalCall call({0, 0, 1, 0x67, 0x42, 0, 0, 1, 0x68, 0xce}, false);
    EXPECT_EQ(call.status, OK);
    EXPECT_EQ(call.unit(), (Bytes{0x67, 0x42}));
    EXPECT_EQ(call.rest, call.stream.data() + 5);
    EXPECT_EQ(call.restSize, 5u);
}

TEST(NextNalUnit, FourByteCodesDelimitAUnit) {
    NalCall call({0, 0, 0, 1, 0x67, 0x42, 0, 0, 0, 1, 0x68, 0xce}, false);
    EXPECT_EQ(call.status, OK);
    EXPECT_EQ(call.unit(), (Bytes{0x67, 0x42}));
    EXPECT_EQ(call.rest, call.stream.data() + 7);
    EXPECT_EQ(call.restSize, 5u);
}

TEST(NextNalUnit, BytesBeforeTheFirstCodeArePassedOver) {
    NalCall call({9, 8, 1, 0, 1, 0, 0, 1, 0x67, 0x42}, true);
    EXPECT_EQ(call.status, OK);
    EXPECT_EQ(call.unit(), (Bytes{0x67, 0x42}));
}

TEST(NextNalUnit, TrailingZerosBeforeACodeAreStripped) {
    NalCall call({0, 0, 1, 0x67, 0x42, 0, 0, 0, 0, 0, 1, 0x68, 0xce}, false);
    EXPECT_EQ(call.unit(), (Bytes{0x67, 0x42}));
}

TEST(NextNalUnit, TrailingZerosAtTheEndAreStripped) {
    NalCall call({0, 0, 1, 0x67, 0x42, 0, 0}, true);
    EXPECT_EQ(call.status, OK);
    EXPECT_EQ(call.unit(), (Bytes{0x67, 0x42}));
}

TEST(NextNalUnit, ZerosInsideStay) {
    NalCall call({0, 0, 1, 0x67, 0, 0, 3, 0, 1, 0x42}, true);
    EXPECT_EQ(call.unit(), (Bytes{0x67, 0, 0, 3, 0, 1, 0x42}));
}

TEST(NextNalUnit, FirstByteStaysEvenIfZero) {
    NalCall call({0, 0, 1, 0, 0, 0}, true);
    EXPECT_EQ(call.unit(), (Bytes{0}));
}

TEST(NextNalUnit, LastUnitIsHeldBackWhileNoCodeFollows) {
    NalCall call({0, 0, 1, 0x67, 0x42}, false);
    EXPECT_EQ(call.status, -EAGAIN);
    EXPECT_EQ(call.nal, nullptr);
    EXPECT_EQ(call.nalSize, 0u);
    EXPECT_EQ(call.rest, call.stream.data());
    EXPECT_EQ(call.restSize, 5u);
}

TEST(NextNalUnit, LastUnitIsReturnedIfACodeFollows) {
    NalCall call({0, 0, 1, 0x67, 0x42}, true);
    EXPECT_EQ(call.status, OK);
    EXPECT_EQ(call.unit(), (Bytes{0x67, 0x42}));
    EXPECT_EQ(call.rest, nullptr);
    EXPECT_EQ(call.restSize, 0u);
}

TEST(NextNalUnit, CodeAtTheVeryEndGivesAUnitOfLengthZero) {
    NalCall call({0, 0, 1}, true);
    EXPECT_EQ(call.status, OK);
    EXPECT_EQ(call.nal, call.stream.data() + 3);
    EXPECT_EQ(call.nalSize, 0u);
    EXPECT_EQ(call.restSize, 0u);
}

TEST(NextNalUnit, CodeAtTheVeryEndIsHeldBackWhileNoCodeFollows) {
    EXPECT_EQ(NalCall({0, 0, 1}, false).status, -EAGAIN);
}

TEST(NextNalUnit, AdjacentCodesGiveAUnitOfLengthZero) {
    NalCall call({0, 0, 1, 0, 0, 1, 0x68, 0xce}, true);
    EXPECT_EQ(call.status, OK);
    EXPECT_EQ(call.nalSize, 0u);
    EXPECT_EQ(call.rest, call.stream.data() + 3);
}

TEST(NextNalUnit, FollowingCodeWithTwoBytesIsResumed) {
    NalCall call({0, 0, 1, 0x67, 0, 0, 1, 0x68, 0xce}, true);
    EXPECT_EQ(call.unit(), (Bytes{0x67}));
    EXPECT_EQ(call.rest, call.stream.data() + 4);
    EXPECT_EQ(call.restSize, 5u);
}

TEST(NextNalUnit, FollowingCodeWithOneByteIsDropped) {
    NalCall call({0, 0, 1, 0x67, 0, 0, 1, 0x68}, true);
    EXPECT_EQ(call.unit(), (Bytes{0x67}));
    EXPECT_EQ(call.rest, nullptr);
    EXPECT_EQ(call.restSize, 0u);
}

TEST(NextNalUnit, FollowingCodeWithoutBytesIsDropped) {
    NalCall call({0, 0, 1, 0x67, 0, 0, 1}, true);
    EXPECT_EQ(call.unit(), (Bytes{0x67}));
    EXPECT_EQ(call.rest, nullptr);
    EXPECT_EQ(call.restSize, 0u);
}

TEST(NextNalUnit, FewerThanThreeBytesAreLeftAlone) {
    NalCall call({0, 1}, true);
    EXPECT_EQ(call.status, -EAGAIN);
    EXPECT_EQ(call.rest, call.stream.data());
    EXPECT_EQ(call.restSize, 2u);
}

TEST(NextNalUnit, StreamWithoutCodeKeepsItsLastTwoBytes) {
    NalCall call({5, 6, 7, 0, 0}, true);
    EXPECT_EQ(call.status, -EAGAIN);
    EXPECT_EQ(call.nal, nullptr);
    EXPECT_EQ(call.rest, call.stream.data() + 3);
    EXPECT_EQ(call.restSize, 2u);
}

TEST(NextNalUnit, EmptyStreamHasNoUnit) {
    const uint8_t* data = nullptr;
    size_t size = 0;
    const uint8_t* nal = nullptr;
    size_t nalSize = 99;
    EXPECT_EQ(getNextNALUnit(&data, &size, &nal, &nalSize, true), -EAGAIN);
    EXPECT_EQ(nalSize, 0u);
}

TEST(NextNalUnit, RepeatedCallsWalkTheStream) {
    const Bytes stream = {0, 0, 0, 1, 9, 0xf0, 0, 0, 1, 0x67, 0x42, 0, 0, 0, 1, 0x68, 0xce};
    const uint8_t* data = stream.data();
    size_t size = stream.size();
    std::vector<Bytes> units;
    const uint8_t* nal = nullptr;
    size_t nalSize = 0;
    while (getNextNALUnit(&data, &size, &nal, &nalSize, true) == OK) {
        units.emplace_back(nal, nal + nalSize);
    }
    EXPECT_EQ(units, (std::vector<Bytes>{{9, 0xf0}, {0x67, 0x42}, {0x68, 0xce}}));
}

TEST(ParseUE, ReadsExpGolombCodes) {
    // 1 | 010 | 011 | 00100 | 0001000
    const uint8_t bytes[] = {0xa6, 0x41, 0x00};
    ABitReader br(bytes, sizeof(bytes));
    EXPECT_EQ(parseUE(&br), 0u);
    EXPECT_EQ(parseUE(&br), 1u);
    EXPECT_EQ(parseUE(&br), 2u);
    EXPECT_EQ(parseUE(&br), 3u);
    EXPECT_EQ(parseUE(&br), 7u);
}

TEST(ParseUE, ReadsTheLargestCode) {
    const uint8_t bytes[] = {0, 0, 0, 1, 0xff, 0xff, 0xff, 0xfe};
    ABitReader br(bytes, sizeof(bytes));
    EXPECT_EQ(parseUE(&br), 0xfffffffeu);
    EXPECT_EQ(br.numBitsLeft(), 1u);
}

TEST_F(AvcUtilsDeathTest, UEOfMoreThanThirtyTwoBitsAborts) {
    const uint8_t bytes[] = {0, 0, 0, 0, 0x80, 0, 0, 0, 0};
    ABitReader br(bytes, sizeof(bytes));
    EXPECT_ABORT(parseUE(&br), "CHECK_LT.*failed: 32 vs. 32");
}

TEST_F(AvcUtilsDeathTest, UEOverTheEndAborts) {
    const uint8_t bytes[] = {0, 0};
    ABitReader br(bytes, sizeof(bytes));
    EXPECT_ABORT(parseUE(&br), "CHECK.*failed");
}

TEST(AvcProfile, NamesOfKnownProfiles) {
    EXPECT_STREQ(AVCProfileToString(0x42), "Baseline");
    EXPECT_STREQ(AVCProfileToString(0x4d), "Main");
    EXPECT_STREQ(AVCProfileToString(0x58), "Extended");
    EXPECT_STREQ(AVCProfileToString(0x64), "High");
    EXPECT_STREQ(AVCProfileToString(0x6e), "High 10");
    EXPECT_STREQ(AVCProfileToString(0x7a), "High 422");
    EXPECT_STREQ(AVCProfileToString(0xf4), "High 444");
    EXPECT_STREQ(AVCProfileToString(0x2c), "CAVLC 444 Intra");
}

TEST(AvcProfile, OthersAreUnknown) {
    EXPECT_STREQ(AVCProfileToString(0), "Unknown");
    EXPECT_STREQ(AVCProfileToString(0x53), "Unknown");
    EXPECT_STREQ(AVCProfileToString(0xff), "Unknown");
}

}  // namespace
}  // namespace android
