// SPDX-License-Identifier: Apache-2.0

#include "avi/codec/MpegAudioHeader.h"

#include <map>
#include <tuple>

#include <gtest/gtest.h>

#include "avi/support/Switches.h"
#include "tests/support/LogCapture.h"

namespace android {
namespace {

// ISO/IEC 11172-3, 2.4.2.3, and 13818-3, 2.4.2.3, as printed there: one row a bit-rate index, with
// a column for each layer.
struct BitRateRow {
    int mpeg1[3];  // Layer I, II, III
    int mpeg2[3];
};
constexpr BitRateRow kBitRates[14] = {
    {{32, 32, 32}, {32, 8, 8}},         {{64, 48, 40}, {48, 16, 16}},
    {{96, 56, 48}, {56, 24, 24}},       {{128, 64, 56}, {64, 32, 32}},
    {{160, 80, 64}, {80, 40, 40}},      {{192, 96, 80}, {96, 48, 48}},
    {{224, 112, 96}, {112, 56, 56}},    {{256, 128, 112}, {128, 64, 64}},
    {{288, 160, 128}, {144, 80, 80}},   {{320, 192, 160}, {160, 96, 96}},
    {{352, 224, 192}, {176, 112, 112}}, {{384, 256, 224}, {192, 128, 128}},
    {{416, 320, 256}, {224, 144, 144}}, {{448, 384, 320}, {256, 160, 160}},
};

struct VersionRow {
    uint32_t bits;
    const char* name;
    int rates[3];
};
constexpr VersionRow kVersions[] = {
    {3, "MPEG-1", {44100, 48000, 32000}},
    {2, "MPEG-2", {22050, 24000, 16000}},
    {0, "MPEG-2.5", {11025, 12000, 8000}},
};

struct Header {
    uint32_t version = 3;
    uint32_t layer = kLayerIII;
    uint32_t bitRateIndex = 9;
    uint32_t rateIndex = 0;
    uint32_t padding = 0;

    uint32_t word() const {
        return 0xFFE00000u | version << 19 | layer << 17 | bitRateIndex << 12 | rateIndex << 10 |
               padding << 9;
    }
};

struct Decoded {
    bool valid = false;
    size_t frameSize = 0;
    uint32_t layer = 0;
    int bitRate = 0;
    int samples = 0;
};

Decoded decode(uint32_t word) {
    Decoded d;
    d.valid = parseMP3Header(word, &d.frameSize, &d.layer, &d.bitRate, &d.samples);
    return d;
}

int expectedSamples(uint32_t version, uint32_t layer) {
    if (layer == kLayerI) return 384;
    if (layer == kLayerII) return 1152;
    // Low sampling rates have half frames; those of MPEG-2 are not cut at all.
    return version == 3 ? 1152 : version == 2 ? 0 : 576;
}

// The duration of a frame times its bit rate, in slots of a byte or, in Layer I, of four.
size_t expectedSize(int samples, uint32_t layer, int bitRate, int rate, uint32_t padding) {
    const int64_t slotBits = layer == kLayerI ? 32 : 8;
    const int64_t bits = int64_t{samples} * bitRate * 1000;
    const int64_t slots = bits / (slotBits * rate) + padding;
    return static_cast<size_t>(slots * slotBits / 8);
}

}  // namespace

TEST(MpegAudioHeader, EveryCombinationIsDecoded) {
    int combinations = 0;
    for (const VersionRow& version : kVersions) {
        for (const uint32_t layer : {kLayerI, kLayerII, kLayerIII}) {
            for (uint32_t index = 1; index < 15; ++index) {
                for (uint32_t rateIndex = 0; rateIndex < 3; ++rateIndex) {
                    for (uint32_t padding = 0; padding < 2; ++padding) {
                        SCOPED_TRACE(testing::Message()
                                     << version.name << " layer field " << layer << " bit rate "
                                     << index << " rate " << rateIndex << " pad " << padding);
                        const BitRateRow& row = kBitRates[index - 1];
                        const int column = 3 - static_cast<int>(layer);
                        const int bitRate =
                            version.bits == 3 ? row.mpeg1[column] : row.mpeg2[column];
                        const int samples = expectedSamples(version.bits, layer);

                        const Decoded d =
                            decode(Header{version.bits, layer, index, rateIndex, padding}.word());
                        ASSERT_TRUE(d.valid);
                        EXPECT_EQ(d.layer, layer);
                        EXPECT_EQ(d.bitRate, bitRate);
                        EXPECT_EQ(d.samples, samples);
                        EXPECT_EQ(d.frameSize, expectedSize(samples, layer, bitRate,
                                                            version.rates[rateIndex], padding));
                        ++combinations;
                    }
                }
            }
        }
    }
    EXPECT_EQ(combinations, 3 * 3 * 14 * 3 * 2);
}

TEST(MpegAudioHeader, WellKnownFramesHaveTheirSize) {
    EXPECT_EQ(decode(0xFFFB9000).frameSize, 417u);
    EXPECT_EQ(decode(0xFFFB9200).frameSize, 418u);
    EXPECT_EQ(decode(0xFFFF1800).frameSize, 48u);  // Layer I, 32 kbit/s, 32000 Hz
    EXPECT_EQ(decode(0xFFFFEC00).valid, false);
    EXPECT_EQ(decode(0xFFFBE000).frameSize, 1044u);  // 320 kbit/s, 44100 Hz
    EXPECT_EQ(decode(0xFFFDE800).frameSize, 1728u);  // Layer II, 384 kbit/s, 32000 Hz
}

TEST(MpegAudioHeader, Mpeg2LayerIIIIsAsLongAsItsPadding) {
    EXPECT_EQ(decode(0xFFF38000).frameSize, 0u);
    EXPECT_EQ(decode(0xFFF38200).frameSize, 1u);
    EXPECT_EQ(decode(0xFFF38200).bitRate, 64);
}

TEST(MpegAudioHeader, EverySyncBitIsNeeded) {
    for (int bit = 21; bit < 32; ++bit)
        EXPECT_FALSE(decode(0xFFFB9000 & ~(uint32_t{1} << bit)).valid) << bit;
}

TEST(MpegAudioHeader, ReservedValuesAreNoHeader) {
    EXPECT_FALSE(decode(Header{1}.word()).valid);
    EXPECT_FALSE(decode(Header{3, 0}.word()).valid);
    for (const VersionRow& version : kVersions) {
        for (const uint32_t layer : {kLayerI, kLayerII, kLayerIII}) {
            EXPECT_FALSE(decode(Header{version.bits, layer, 0}.word()).valid);
            EXPECT_FALSE(decode(Header{version.bits, layer, 15}.word()).valid);
            EXPECT_FALSE(decode(Header{version.bits, layer, 9, 3}.word()).valid);
        }
    }
    EXPECT_FALSE(decode(0).valid);
    EXPECT_FALSE(decode(0xFFFFFFFF).valid);
}

TEST(MpegAudioHeader, OtherBitsDoNotMatter) {
    const Decoded expected = decode(0xFFFA9000);
    for (const int bit : {0, 1, 2, 3, 4, 5, 6, 7, 8, 16}) {
        const Decoded d = decode(0xFFFA9000 | uint32_t{1} << bit);
        EXPECT_TRUE(d.valid) << bit;
        EXPECT_EQ(d.frameSize, expected.frameSize) << bit;
    }
}

TEST(MpegAudioHeader, NoHeaderLeavesTheOutputsAlone) {
    size_t frameSize = 11;
    uint32_t layer = 12;
    int bitRate = 13;
    int samples = 14;
    EXPECT_FALSE(parseMP3Header(0xFFFBF000, &frameSize, &layer, &bitRate, &samples));
    EXPECT_EQ(std::make_tuple(frameSize, layer, bitRate, samples),
              std::make_tuple(size_t{11}, 12u, 13, 14));
}

TEST(MpegAudioHeader, EveryOutputMayBeLeftOut) {
    EXPECT_TRUE(parseMP3Header(0xFFFB9000, nullptr));
    int samples = 0;
    EXPECT_TRUE(parseMP3Header(0xFFFB9000, nullptr, nullptr, nullptr, &samples));
    EXPECT_EQ(samples, 1152);
}

TEST(MpegAudioHeader, StreamMaskCoversSyncVersionLayerAndRate) {
    EXPECT_EQ(kMpegAudioStreamMask, 0xFFFE0C00u);
}

TEST(MpegAudioHeader, FieldsAreLoggedWithTheExtractLogOnly) {
    avitest::LogCapture log;
    gSwitches.extractLog = true;
    decode(0xFFFD64C0);
    decode(0xFFFBF000);
    gSwitches.extractLog = false;
    decode(0xFFFD64C0);

    const std::vector<avitest::LogLine> expected = {
        {ANDROID_LOG_VERBOSE, "RuvoAVIExtractor",
         "header FFFD64C0 ver 3 layer 2 protect 1 smplPerfrm 1152 btrtIdx 6 btrt 96 smplingRtIdx 1 "
         "smplingRt 48000 chMod 3 padding 0 frameSize 288"}};
    EXPECT_EQ(log.lines(), expected);
}

}  // namespace android
