// SPDX-License-Identifier: Apache-2.0
// The headers that are made for extracted files, from values that no encoder here produces: cut and
// broken configurations, sizes beyond 32 bits.
#include <gmock/gmock.h>

#include "tests/support/ByteWriter.h"
#include "tools/avitool/extract/Adts.h"
#include "tools/avitool/extract/ParameterSets.h"
#include "tools/avitool/extract/Wav.h"

namespace avitest {
namespace {

using avitool::AdtsHeaders;
using avitool::NalCodec;
using avitool::WavCodec;
using avitool::WavHeader;

// A copy that ends where the allocation does, so that the sanitizers see a read behind it.
Bytes prefixOf(const Bytes& bytes, size_t length) {
    return Bytes(bytes.begin(), bytes.begin() + static_cast<Bytes::difference_type>(length));
}

uint32_t u32At(const Bytes& bytes, size_t offset) {
    uint32_t value = 0;
    for (size_t i = 4; i > 0; --i)
        value = (value & 0xFFFFFF) << 8 | bytes.at(offset + i - 1);
    return value;
}

const Bytes kAvcRecord = {1, 0x64, 0, 10, 0xFF, 0xE1, 0, 3, 0x67, 1, 2, 1, 0, 2, 0x68, 3};
const Bytes kAvcSets = {0, 0, 0, 1, 0x67, 1, 2, 0, 0, 0, 1, 0x68, 3};

Bytes hevcRecord() {
    Bytes record(22);
    const Bytes arrays = {2, 0xA0, 0, 1, 0, 2, 0x40, 1, 0xA1, 0, 2, 0, 1, 0x42, 0, 1, 0x42};
    record.insert(record.end(), arrays.begin(), arrays.end());
    return record;
}
const Bytes kHevcSets = {0, 0, 0, 1, 0x40, 1, 0, 0, 0, 1, 0x42, 0, 0, 0, 1, 0x42};

TEST(ParameterSets, OfAnAvcRecordGetStartCodes) {
    EXPECT_EQ(parameterSetStream(NalCodec::kAvc, kAvcRecord), kAvcSets);
}

TEST(ParameterSets, OfAnHevcRecordGetStartCodes) {
    EXPECT_EQ(parameterSetStream(NalCodec::kHevc, hevcRecord()), kHevcSets);
}

TEST(ParameterSets, BehindARecordNothingCounts) {
    Bytes record = kAvcRecord;
    record.push_back(0);
    EXPECT_EQ(parameterSetStream(NalCodec::kAvc, record), kAvcSets);
}

TEST(ParameterSets, OfACutRecordAreThoseThatAreWhole) {
    const auto expectPrefixes = [](NalCodec codec, const Bytes& record, const Bytes& sets) {
        for (size_t length = 0; length < record.size(); ++length) {
            SCOPED_TRACE(length);
            const Bytes got = parameterSetStream(codec, prefixOf(record, length));
            ASSERT_LT(got.size(), sets.size());
            EXPECT_EQ(got, prefixOf(sets, got.size()));
        }
    };
    expectPrefixes(NalCodec::kAvc, kAvcRecord, kAvcSets);
    expectPrefixes(NalCodec::kHevc, hevcRecord(), kHevcSets);
    EXPECT_EQ(parameterSetStream(NalCodec::kAvc, prefixOf(kAvcRecord, 12)), prefixOf(kAvcSets, 7));
}

TEST(ParameterSets, WithStartCodesStayButForZerosAtTheEnd) {
    const Bytes stream = {0, 0, 1, 0x40, 1};
    EXPECT_EQ(parameterSetStream(NalCodec::kHevc, stream), stream);
    EXPECT_EQ(parameterSetStream(NalCodec::kHevc, {0, 0, 0, 1, 0x40, 1, 0, 0}),
              (Bytes{0, 0, 0, 1, 0x40, 1}));
}

struct Beginning {
    const char* what;
    NalCodec codec;
    Bytes sample;
    bool hasSets;
};

TEST(ParameterSets, InASampleCountWhenTheyComeBeforeThePicture) {
    const Beginning beginnings[] = {
        {"AVC set", NalCodec::kAvc, {0, 0, 0, 1, 0x67, 1}, true},
        {"AVC set behind delimiter and message",
         NalCodec::kAvc,
         {0, 0, 0, 1, 9, 0xF0, 0, 0, 1, 6, 5, 0, 0, 1, 0x27},
         true},
        {"AVC picture", NalCodec::kAvc, {0, 0, 0, 1, 0x65, 1}, false},
        {"AVC set behind picture", NalCodec::kAvc, {0, 0, 1, 0x41, 1, 0, 0, 1, 0x67, 1}, false},
        {"AVC picture set alone", NalCodec::kAvc, {0, 0, 1, 0x68, 1, 0, 0, 1, 0x65}, false},
        {"HEVC video set first", NalCodec::kHevc, {0, 0, 0, 1, 0x40, 1, 0, 0, 0, 1, 0x42, 1}, true},
        {"HEVC picture", NalCodec::kHevc, {0, 0, 0, 1, 0x26, 1}, false},
        {"start code at the end", NalCodec::kAvc, {0, 0, 0, 1}, false},
        {"two bytes", NalCodec::kAvc, {0, 0}, false},
        {"nothing", NalCodec::kHevc, {}, false},
        {"no start code", NalCodec::kAvc, {0x67, 0x67, 0x67, 0x67}, false},
    };
    for (const Beginning& b : beginnings) {
        SCOPED_TRACE(b.what);
        EXPECT_EQ(beginsWithParameterSets(b.codec, b.sample.data(), b.sample.size()), b.hasSets);
    }
}

// A descriptor of lengths in one byte around this configuration.
Bytes esdsOf(const Bytes& config) {
    const auto length = static_cast<uint8_t>(config.size());
    ByteWriter out;
    out.u8(3).u8(static_cast<uint8_t>(20 + length)).fill(3);
    out.u8(4).u8(static_cast<uint8_t>(15 + length)).fill(13);
    return out.u8(5).u8(length).bytes(config).take();
}

// object type 5 | rate index 4 | channels 4 | 000
Bytes aacConfig(unsigned type, unsigned rateIndex, unsigned channels) {
    return {static_cast<uint8_t>(type << 3 | rateIndex >> 1),
            static_cast<uint8_t>((rateIndex & 1) << 7 | channels << 3)};
}

TEST(Adts, HeaderHasProfileRateChannelsAndLength) {
    const auto headers = AdtsHeaders::fromEsds(esdsOf(aacConfig(2, 4, 2)));
    ASSERT_TRUE(headers.has_value());
    EXPECT_EQ(headers->forFrame(100), (Bytes{0xFF, 0xF1, 0x50, 0x80, 0x0D, 0x7F, 0xFC}));
}

TEST(Adts, LongestFrameIsThatOfThirteenBits) {
    const auto headers = AdtsHeaders::fromEsds(esdsOf(aacConfig(1, 3, 7)));
    ASSERT_TRUE(headers.has_value());
    EXPECT_EQ(headers->forFrame(8184), (Bytes{0xFF, 0xF1, 0x0D, 0xC3, 0xFF, 0xFF, 0xFC}));
    EXPECT_EQ(headers->forFrame(8185), std::nullopt);
    EXPECT_EQ(headers->forFrame(SIZE_MAX), std::nullopt);
}

TEST(Adts, ExtensionsOfLowComplexityAreToldAsThat) {
    for (const unsigned type : {5u, 29u}) {
        const auto headers = AdtsHeaders::fromEsds(esdsOf(aacConfig(type, 7, 1)));
        ASSERT_TRUE(headers.has_value());
        EXPECT_EQ(headers->forFrame(0).value().at(2) >> 6, 1);
    }
}

TEST(Adts, WhatTheFieldsCannotTellHasNoHeaders) {
    EXPECT_FALSE(AdtsHeaders::fromEsds(esdsOf(aacConfig(0, 4, 2))).has_value());
    EXPECT_FALSE(AdtsHeaders::fromEsds(esdsOf(aacConfig(6, 4, 2))).has_value());
    EXPECT_FALSE(AdtsHeaders::fromEsds(esdsOf(aacConfig(2, 13, 2))).has_value());
    EXPECT_FALSE(AdtsHeaders::fromEsds(esdsOf(aacConfig(2, 15, 2))).has_value());
    EXPECT_FALSE(AdtsHeaders::fromEsds(esdsOf(aacConfig(2, 4, 8))).has_value());
    EXPECT_FALSE(AdtsHeaders::fromEsds(esdsOf({0x12})).has_value());
}

TEST(Adts, LengthsOfSeveralBytesAreRead) {
    Bytes esds = esdsOf(aacConfig(2, 4, 2));
    const Bytes longer = {0x80, 0x80, 0x80};
    esds.insert(esds.begin() + 1, longer.begin(), longer.end());
    EXPECT_TRUE(AdtsHeaders::fromEsds(esds).has_value());
    esds.insert(esds.begin() + 1, 0x80);
    EXPECT_FALSE(AdtsHeaders::fromEsds(esds).has_value()) << "a fifth byte";
}

TEST(Adts, ACutDescriptorHasNoHeaders) {
    const Bytes esds = esdsOf(aacConfig(2, 4, 2));
    for (size_t length = 0; length < esds.size(); ++length)
        EXPECT_FALSE(AdtsHeaders::fromEsds(prefixOf(esds, length)).has_value()) << length;
}

TEST(Wav, SizesBeyondTheirFieldsStayAtTheLargest) {
    const auto header = WavHeader::make(WavCodec::kALaw, 1, 8000, 0);
    ASSERT_TRUE(header.has_value());
    for (const uint64_t size : {uint64_t{1} << 32, uint64_t{1} << 40}) {
        const Bytes bytes = header->bytes(size);
        EXPECT_EQ(u32At(bytes, 4), UINT32_MAX);
        EXPECT_EQ(u32At(bytes, 46), UINT32_MAX) << "values";
        EXPECT_EQ(u32At(bytes, 54), UINT32_MAX);
    }
}

TEST(Wav, TheLargestSizeThatFitsIsWritten) {
    const auto header = WavHeader::make(WavCodec::kPcm16, 2, 48000, 0);
    ASSERT_TRUE(header.has_value());
    const Bytes bytes = header->bytes(UINT32_MAX - 36 - 1);
    EXPECT_EQ(u32At(bytes, 4), UINT32_MAX - 1);
    EXPECT_EQ(u32At(bytes, 40), UINT32_MAX - 37);
}

TEST(Wav, HeaderIsOfOneLength) {
    for (const WavCodec codec :
         {WavCodec::kPcm16, WavCodec::kMuLaw, WavCodec::kMsAdpcm, WavCodec::kImaAdpcm}) {
        const auto header = WavHeader::make(codec, 2, 44100, 2048);
        ASSERT_TRUE(header.has_value());
        EXPECT_EQ(header->bytes(0).size(), header->bytes(UINT64_MAX / 4).size());
    }
}

TEST(Wav, ACutBlockOfAdpcmCountsItsWholeValues) {
    const auto ima = WavHeader::make(WavCodec::kImaAdpcm, 1, 22050, 1024);
    ASSERT_TRUE(ima.has_value());
    constexpr size_t kFact = 48;
    EXPECT_EQ(u32At(ima->bytes(1024), kFact), 2041u);
    EXPECT_EQ(u32At(ima->bytes(1024 + 3), kFact), 2041u);
    EXPECT_EQ(u32At(ima->bytes(1024 + 4), kFact), 2042u);
    EXPECT_EQ(u32At(ima->bytes(1024 + 14), kFact), 2062u);
}

TEST(Wav, NumbersThatMakeNoSenseHaveNoHeader) {
    EXPECT_FALSE(WavHeader::make(WavCodec::kPcm16, 0, 48000, 0).has_value());
    EXPECT_FALSE(WavHeader::make(WavCodec::kPcm16, -1, 48000, 0).has_value());
    EXPECT_FALSE(WavHeader::make(WavCodec::kPcm16, 65535, 48000, 0).has_value());
    EXPECT_FALSE(WavHeader::make(WavCodec::kPcm16, 2, 0, 0).has_value());
    EXPECT_FALSE(WavHeader::make(WavCodec::kPcm16, 2, -1, 0).has_value());
    EXPECT_FALSE(WavHeader::make(WavCodec::kMsAdpcm, 2, 48000, 13).has_value());
    EXPECT_TRUE(WavHeader::make(WavCodec::kMsAdpcm, 2, 48000, 14).has_value());
    EXPECT_FALSE(WavHeader::make(WavCodec::kImaAdpcm, 1, 48000, 3).has_value());
    EXPECT_FALSE(WavHeader::make(WavCodec::kImaAdpcm, 1, 48000, 65535).has_value());
    EXPECT_FALSE(WavHeader::make(WavCodec::kImaAdpcm, 1, 48000, UINT32_MAX).has_value());
}

}  // namespace
}  // namespace avitest
