// SPDX-License-Identifier: Apache-2.0
//
// Where data of an MPEG-audio stream is cut, and the times of the cuts.

#include "source/MpegAudioCutter.h"

#include <gtest/gtest.h>

#include <limits>
#include <vector>

namespace android {
namespace {

using Bytes = std::vector<uint8_t>;
using Kind = MpegAudioCut::Kind;

constexpr uint32_t kHeader = 0xFFFB9000;  // MPEG-1 Layer III, 128 kbit/s, 44100 Hz
constexpr size_t kFrameSize = 417;

TrackInfo streamOf(uint32_t header, uint32_t scale = 1152, uint32_t rate = 44100) {
    TrackInfo info;
    info.mMP3Header = header;
    info.mScale = scale;
    info.mRate = rate;
    return info;
}

// Zeros with a header at `position`.
Bytes dataWith(uint32_t header, size_t position, size_t length) {
    Bytes result(length, 0);
    for (size_t i = 0; i < 4; ++i)
        result[position + i] = static_cast<uint8_t>(header >> (24 - 8 * i));
    return result;
}

MpegAudioCut cutOf(const Bytes& data, MpegAudioCutter cutter = MpegAudioCutter(streamOf(kHeader))) {
    const Bytes exact(data);  // nothing behind its end
    return cutter.cut(exact.data(), exact.size());
}

MpegAudioCut frameCut(size_t size, int bitRate, Kind kind = Kind::kFrame) {
    MpegAudioCut cut;
    cut.kind = kind;
    cut.size = size;
    cut.found.bitRate = bitRate;
    return cut;
}

TEST(MpegAudioCutter, IsActiveOnceAHeaderIsKnown) {
    EXPECT_TRUE(MpegAudioCutter(streamOf(kHeader)).isActive());
    EXPECT_TRUE(MpegAudioCutter(streamOf(0x80000000)).isActive());
    EXPECT_FALSE(MpegAudioCutter(streamOf(0)).isActive());
    EXPECT_FALSE(MpegAudioCutter(streamOf(1)).isActive());
    EXPECT_FALSE(MpegAudioCutter(streamOf(0x7FFFFFFF)).isActive());
}

TEST(MpegAudioCutter, CutsAFrameAnywhere) {
    for (const size_t start : {0u, 1u, 3u, 4u, 1000u}) {
        SCOPED_TRACE(start);
        const MpegAudioCut cut = cutOf(dataWith(kHeader, start, start + kFrameSize));
        EXPECT_EQ(cut.kind, Kind::kFrame);
        EXPECT_EQ(cut.start, start);
        EXPECT_EQ(cut.size, kFrameSize);
        EXPECT_EQ(cut.found.header, kHeader);
        EXPECT_EQ(cut.found.bitRate, 128);
    }
}

TEST(MpegAudioCutter, FrameOneByteTooLongForTheDataIsSpanning) {
    for (const size_t start : {0u, 5u}) {
        const MpegAudioCut cut = cutOf(dataWith(kHeader, start, start + kFrameSize - 1));
        EXPECT_EQ(cut.kind, Kind::kSpanning);
        EXPECT_EQ(cut.start, start);
        EXPECT_EQ(cut.size, kFrameSize);
    }
}

TEST(MpegAudioCutter, HeaderAtTheVeryEndIsSpanning) {
    const MpegAudioCut cut = cutOf(dataWith(kHeader, 20, 24));
    EXPECT_EQ(cut.kind, Kind::kSpanning);
    EXPECT_EQ(cut.start, 20u);
}

TEST(MpegAudioCutter, HeaderCutByTheEndIsNone) {
    for (size_t missing = 1; missing < 4; ++missing) {
        SCOPED_TRACE(missing);
        Bytes data = dataWith(kHeader, 20, 24);
        data.resize(24 - missing);
        const MpegAudioCut cut = cutOf(data);
        EXPECT_EQ(cut.kind, Kind::kHeaderless);
        EXPECT_EQ(cut.found.header, 0u);
        EXPECT_EQ(cut.start, 0u);
        EXPECT_EQ(cut.size, data.size());
    }
}

TEST(MpegAudioCutter, BelowAHeaderIsARest) {
    for (size_t length = 1; length < 4; ++length) {
        const MpegAudioCut cut = cutOf(Bytes(length, 0xFF));
        EXPECT_EQ(cut.kind, Kind::kRest);
        EXPECT_EQ(cut.start, 0u);
        EXPECT_EQ(cut.size, length);
    }
}

// Sync, version, layer and sampling rate tell a stream's frames; all other bits are free.
TEST(MpegAudioCutter, AcceptsHeadersThatDifferInFreeBitsOnly) {
    for (int bit = 0; bit < 32; ++bit) {
        SCOPED_TRACE(bit);
        const uint32_t header = kHeader ^ 1u << bit;
        const bool isFree = (bit < 10 || bit == 16) || (bit >= 12 && bit < 16);
        const MpegAudioCut cut = cutOf(dataWith(header, 0, 2000));
        EXPECT_EQ(cut.found.header, isFree ? header : 0u);
    }
}

TEST(MpegAudioCutter, HeaderWithoutBitRateNeedsAnotherForTheWholeData) {
    for (const uint32_t header : {0xFFFB0000u, 0xFFFBF000u}) {
        const MpegAudioCut cut = cutOf(dataWith(header, 7, 2000));
        EXPECT_EQ(cut.kind, Kind::kHeaderless);
        EXPECT_EQ(cut.start, 0u);
        EXPECT_EQ(cut.size, 2000u);
    }
}

TEST(MpegAudioCutter, Mpeg2LayerThreeIsARestFromItsBeginning) {
    for (const uint32_t header : {0xFFF38000u, 0xFFF38200u}) {
        const MpegAudioCutter cutter(streamOf(header));
        const MpegAudioCut cut = cutOf(dataWith(header, 9, 300), cutter);
        EXPECT_EQ(cut.kind, Kind::kRest);
        EXPECT_EQ(cut.start, 0u);
        EXPECT_EQ(cut.size, 300u);
    }
}

TEST(MpegAudioCutter, BlockModeLimitsHeaderlessDataOnly) {
    TrackInfo info = streamOf(kHeader);
    info.mBlockMode = true;
    info.mBlockAlign = 1152;
    const MpegAudioCutter cutter(info);
    EXPECT_EQ(cutOf(Bytes(3000, 0), cutter).size, 1152u);
    EXPECT_EQ(cutOf(Bytes(1152, 0), cutter).size, 1152u);
    EXPECT_EQ(cutOf(Bytes(1151, 0), cutter).size, 1151u);
    EXPECT_EQ(cutOf(Bytes(3, 0), cutter).size, 3u);
    EXPECT_EQ(cutOf(dataWith(kHeader, 0, 3000), cutter).size, kFrameSize);
}

// Cuts `data` to its end, a created header written where one is made, and says where each cut found
// one. `forget`: every cut searches from the beginning.
std::vector<int> positionsIn(Bytes data, size_t blockSize, bool forget) {
    TrackInfo info = streamOf(kHeader);
    info.mBlockMode = true;
    info.mBlockAlign = static_cast<uint32_t>(blockSize);
    MpegAudioCutter cutter(info);
    std::vector<int> positions;
    for (size_t at = 0; at < data.size();) {
        if (forget) cutter.beginData();
        const MpegAudioCut cut = cutter.cut(data.data() + at, data.size() - at);
        positions.push_back(cut.found.position);
        if (cut.kind == Kind::kHeaderless) cutter.createHeader(data.data() + at, data.size() - at);
        at += cut.start + cut.size;
    }
    return positions;
}

TEST(MpegAudioCutter, WhatWasSearchedIsNotSearchedAgain) {
    for (const uint32_t header : {kHeader, 0xFFFBF000u}) {  // the second has no bit rate
        for (const size_t blockSize : {1u, 4u, 15u, 16u, 17u, 100u, 1152u}) {
            for (const size_t position : {0u, 1u, 50u, 99u, 100u, 101u, 583u}) {
                SCOPED_TRACE(position);
                const Bytes data = dataWith(header, position, 1000);
                EXPECT_EQ(positionsIn(data, blockSize, false), positionsIn(data, blockSize, true));
            }
        }
    }
}

TEST(MpegAudioCutter, OtherDataIsSearchedFromItsBeginning) {
    TrackInfo info = streamOf(kHeader);
    info.mBlockMode = true;
    info.mBlockAlign = 100;
    MpegAudioCutter cutter(info);
    cutter.cut(Bytes(3000, 0).data(), 3000);
    cutter.beginData();
    EXPECT_EQ(cutter.cut(dataWith(kHeader, 20, 3000).data(), 3000).found.position, 20);
}

TEST(MpegAudioCutter, BlockAlignWithoutBlockModeLimitsNothing) {
    TrackInfo info = streamOf(kHeader);
    info.mBlockAlign = 1152;
    EXPECT_EQ(cutOf(Bytes(3000, 0), MpegAudioCutter(info)).size, 3000u);
}

TEST(MpegAudioCutter, BlockModeWithoutBlocksStillAdvances) {
    TrackInfo info = streamOf(kHeader);
    info.mBlockMode = true;
    EXPECT_EQ(cutOf(Bytes(3000, 0), MpegAudioCutter(info)).size, 3000u);
}

TEST(MpegAudioCutter, CreatedHeaderIsTheStreamsWithZerosBehind) {
    for (const size_t length : {4u, 5u, 15u, 16u, 17u, 100u}) {
        SCOPED_TRACE(length);
        Bytes data(length, 0x77);
        MpegAudioCutter(streamOf(0xFFFA92C4)).createHeader(data.data(), data.size());
        Bytes expected(length, 0x77);
        for (size_t i = 4; i < length && i < 16; ++i)
            expected[i] = 0;
        const Bytes header = {0xFF, 0xFA, 0x92, 0xC4};
        std::copy(header.begin(), header.end(), expected.begin());
        EXPECT_EQ(data, expected);
    }
}

TEST(MpegAudioCutter, TimeOfAFrameIsThatOfItsEnd) {
    MpegAudioCutter cutter(streamOf(kHeader));
    EXPECT_EQ(cutter.stamp(frameCut(417, 128), 0), 26062);
    EXPECT_EQ(cutter.stamp(frameCut(418, 128), 0), 26062 + 26125);
}

TEST(MpegAudioCutter, TimeOfASpanningFrameIsThatOfItsBeginning) {
    MpegAudioCutter cutter(streamOf(kHeader));
    EXPECT_EQ(cutter.stamp(frameCut(417, 128, Kind::kSpanning), 0), 0);
    EXPECT_EQ(cutter.stamp(frameCut(417, 128, Kind::kSpanning), 0), 26062);
    EXPECT_EQ(cutter.stamp(frameCut(417, 128, Kind::kSpanning), 100000), 100000);
    EXPECT_EQ(cutter.stamp(frameCut(417, 128), 0), 100000 + 2 * 26062);
}

TEST(MpegAudioCutter, TimeOfHeaderlessDataIsOneUnitOn) {
    MpegAudioCutter cutter(streamOf(kHeader));
    EXPECT_EQ(cutter.stamp(frameCut(300, 0, Kind::kHeaderless), 0), 26122);  // 1152 / 44100 s
    EXPECT_EQ(cutter.stamp(frameCut(300, 0, Kind::kHeaderless), 0), 2 * 26122);
}

TEST(MpegAudioCutter, TimeOfARestIsTheRunningTime) {
    MpegAudioCutter cutter(streamOf(kHeader));
    cutter.setTime(5000);
    EXPECT_EQ(cutter.stamp(frameCut(3, 0, Kind::kRest), 0), 5000);
    EXPECT_EQ(cutter.stamp(frameCut(3, 0, Kind::kRest), 7000), 7000);
    EXPECT_EQ(cutter.stamp(frameCut(3, 0, Kind::kRest), 0), 7000);
}

TEST(MpegAudioCutter, TimeIsNeverBeforeTheChunk) {
    for (const Kind kind : {Kind::kFrame, Kind::kSpanning, Kind::kHeaderless, Kind::kRest}) {
        MpegAudioCutter cutter(streamOf(kHeader));
        EXPECT_EQ(cutter.stamp(frameCut(417, 128, kind), 1000000), 1000000);
        cutter.setTime(3000000);
        EXPECT_GE(cutter.stamp(frameCut(417, 128, kind), 1000000), 3000000);
    }
}

// Scale times a million, modulo 2^32.
TEST(MpegAudioCutter, UnitIsFormedIn32Bits) {
    MpegAudioCutter cutter(streamOf(kHeader, 5000, 1000));  // 5000000000 becomes 705032704
    EXPECT_EQ(cutter.stamp(frameCut(300, 0, Kind::kHeaderless), 0), 705032);
}

TEST(MpegAudioCutter, UnitOfAStreamWithoutRateIsZero) {
    MpegAudioCutter cutter(streamOf(kHeader, 1152, 0));
    EXPECT_EQ(cutter.stamp(frameCut(300, 0, Kind::kHeaderless), 0), 0);
}

TEST(MpegAudioCutter, TimeStaysAtTheEndOfItsRange) {
    constexpr int64_t kEnd = std::numeric_limits<int64_t>::max();
    for (const Kind kind : {Kind::kFrame, Kind::kSpanning, Kind::kHeaderless}) {
        MpegAudioCutter cutter(streamOf(kHeader));
        cutter.setTime(kEnd - 1);
        cutter.stamp(frameCut(417, 128, kind), 0);
        EXPECT_EQ(cutter.stamp(frameCut(417, 128, kind), 0), kEnd);
    }
}

}  // namespace
}  // namespace android
