// SPDX-License-Identifier: Apache-2.0

#include "avi/codec/AacHeaders.h"

#include <tuple>

#include <gtest/gtest.h>

#include "tests/unit/avi/ExactBytes.h"

namespace android {
namespace {

// ISO/IEC 14496-3, table 1.18.
constexpr int32_t kAacRates[] = {96000, 88200, 64000, 48000, 44100, 32000,
                                 24000, 22050, 16000, 12000, 11025, 8000};

using Fields = std::tuple<uint32_t, uint32_t, uint32_t>;

Fields fieldsOf(const AacConfig& config) {
    return {config.profile, config.samplingFreqIndex, config.channels};
}

bool isAdts(uint8_t b0, uint8_t b1, uint8_t b2, uint8_t b3 = 0) {
    const uint8_t bytes[] = {b0, b1, b2, b3};
    return isAdtsHeader(bytes);
}

Fields adts(uint32_t profile, uint32_t index, uint32_t channels) {
    const uint8_t bytes[] = {0xFF, 0xF1,
                             static_cast<uint8_t>(profile << 6 | index << 2 | channels >> 2),
                             static_cast<uint8_t>(channels << 6)};
    return fieldsOf(readAdtsHeader(bytes));
}

}  // namespace

TEST(AdtsHeader, EverySecondByteIsToldApart) {
    for (int second = 0; second < 256; ++second) {
        const bool expected = second == 0xF0 || second == 0xF1 || second == 0xF8 || second == 0xF9;
        EXPECT_EQ(isAdts(0xFF, static_cast<uint8_t>(second), 0x50), expected) << second;
    }
}

TEST(AdtsHeader, FirstByteIsAllOnes) {
    for (int first = 0; first < 255; ++first)
        EXPECT_FALSE(isAdts(static_cast<uint8_t>(first), 0xF1, 0x50)) << first;
    EXPECT_TRUE(isAdts(0xFF, 0xF1, 0x50));
}

TEST(AdtsHeader, FrequencyIndexIsBelowTwelve) {
    for (uint32_t index = 0; index < 16; ++index) {
        EXPECT_EQ(isAdts(0xFF, 0xF1, static_cast<uint8_t>(0x40 | index << 2)), index < 12) << index;
    }
}

TEST(AdtsHeader, EveryFieldIsRead) {
    for (uint32_t profile = 0; profile < 4; ++profile) {
        for (uint32_t index = 0; index < 12; ++index) {
            for (uint32_t channels = 0; channels < 16; ++channels) {
                EXPECT_EQ(adts(profile, index, channels),
                          Fields(profile == 0 ? 1 : profile, index, channels));
            }
        }
    }
}

TEST(AudioSpecificConfig, EveryFieldIsRead) {
    for (uint32_t objectType = 1; objectType < 32; ++objectType) {
        for (uint32_t index = 0; index < 16; ++index) {
            for (uint32_t channels = 0; channels < 16; ++channels) {
                const uint32_t bits = objectType << 11 | index << 7 | channels << 3;
                const ExactBytes bytes{static_cast<uint8_t>(bits >> 8), static_cast<uint8_t>(bits)};
                EXPECT_EQ(fieldsOf(readAudioSpecificConfig(bytes.data())),
                          Fields(objectType - 1, index, channels));
            }
        }
    }
}

TEST(AudioSpecificConfig, ObjectTypeZeroWraps) {
    const ExactBytes bytes{0x02, 0x10};
    EXPECT_EQ(fieldsOf(readAudioSpecificConfig(bytes.data())), Fields(0xFFFFFFFF, 4, 2));
}

TEST(AudioSpecificConfig, WrittenBytesAreTheOnesRead) {
    for (uint32_t first = 0; first < 256; ++first) {
        for (uint32_t second = 0; second < 256; second += 8) {
            const ExactBytes bytes{static_cast<uint8_t>(first), static_cast<uint8_t>(second)};
            uint8_t out[2] = {};
            writeAudioSpecificConfig(readAudioSpecificConfig(bytes.data()), out);
            EXPECT_EQ(out[0], first);
            EXPECT_EQ(out[1], second);
        }
    }
}

TEST(AudioSpecificConfig, ChannelsAboveFifteenLoseTheirUpperBits) {
    uint8_t out[2] = {};
    writeAudioSpecificConfig({1, 4, 0x22}, out);
    EXPECT_EQ(out[0], 0x12);
    EXPECT_EQ(out[1], 0x10);
}

TEST(AacRate, EveryIndexHasItsRateAndBack) {
    for (uint32_t index = 0; index < 12; ++index) {
        EXPECT_EQ(aacRate(index), kAacRates[index]);
        EXPECT_EQ(aacFreqIndex(static_cast<uint32_t>(kAacRates[index])), index);
    }
}

TEST(AacRate, IndexAboveElevenHasNone) {
    for (const uint32_t index : {12u, 13u, 14u, 15u, 16u, 0xFFFFFFFFu})
        EXPECT_EQ(aacRate(index), -1) << index;
}

TEST(AacRate, RateWithoutAnIndexHasIndexZero) {
    for (const uint32_t rate : {0u, 1u, 7350u, 7999u, 44101u, 96001u, 192000u, 0xFFFFFFFFu})
        EXPECT_EQ(aacFreqIndex(rate), 0u) << rate;
}

}  // namespace android
