// SPDX-License-Identifier: Apache-2.0
//
// AAC: every sampling-frequency index, from ADTS, from extra data and from the wave format.

#include "tests/behaviour/codecs/AacFixture.h"

namespace avitest {
namespace {

using ::testing::Contains;

// ISO/IEC 14496-3, table 1.18, by index.
constexpr uint32_t kAacRates[] = {96000, 88200, 64000, 48000, 44100, 32000,
                                  24000, 22050, 16000, 12000, 11025, 8000};

Bytes configOf(unsigned objectType, unsigned index, unsigned channels) {
    const unsigned bits = objectType << 11 | index << 7 | channels << 3;
    return {static_cast<uint8_t>(bits >> 8), static_cast<uint8_t>(bits)};
}

class AacRates : public AacTest, public ::testing::WithParamInterface<unsigned> {
  protected:
    const unsigned mIndex = GetParam();
    const uint32_t mRate = kAacRates[mIndex];
};

TEST_P(AacRates, IndexOfAdtsIsPublished) {
    mStream = aacStream(2, mRate);
    openFirst(adts(1, mIndex, 2));
    EXPECT_EQ(specificConfig(), configOf(2, mIndex, 2));
    EXPECT_EQ(number(AMEDIAFORMAT_KEY_SAMPLE_RATE), static_cast<int32_t>(mRate));
    EXPECT_EQ(mLog.count("in waveFormat!"), 0u);
}

TEST_P(AacRates, IndexOfAdtsReplacesAnotherRate) {
    mStream = aacStream(2, 7350);
    openFirst(adts(1, mIndex, 2));
    EXPECT_EQ(number(AMEDIAFORMAT_KEY_SAMPLE_RATE), static_cast<int32_t>(mRate));
    EXPECT_THAT(log(),
                Contains(warning(format(
                    "AAC Sample Rate(%u) not the same as that(7350) in waveFormat!", mRate))));
}

TEST_P(AacRates, IndexOfExtraDataIsPublished) {
    setExtra(configOf(5, mIndex, 6));
    openFirst(patternBytes(40, 7));
    EXPECT_EQ(specificConfig(), configOf(5, mIndex, 6));
    EXPECT_EQ(number(AMEDIAFORMAT_KEY_SAMPLE_RATE), static_cast<int32_t>(mRate));
    EXPECT_EQ(number(AMEDIAFORMAT_KEY_CHANNEL_COUNT), 6);
}

TEST_P(AacRates, RateOfTheWaveFormatGivesTheIndex) {
    mStream = aacStream(1, mRate);
    openFirst(patternBytes(40, 7));
    EXPECT_EQ(specificConfig(), configOf(2, mIndex, 1));
    EXPECT_EQ(mLog.count("in waveFormat!"), 0u);
}

INSTANTIATE_TEST_SUITE_P(All, AacRates, ::testing::Range(0u, 12u));

using AacOddRates = AacTest;

TEST_F(AacOddRates, RateWithoutAnIndexBecomes96000) {
    for (const uint32_t rate : {7350u, 44101u, 192000u, 0u, 0xFFFFFFFFu}) {
        SCOPED_TRACE(rate);
        mStream = aacStream(2, rate);
        mStream.header.rate = 44100;
        openFirst(patternBytes(40, 7));
        EXPECT_EQ(specificConfig(), configOf(2, 0, 2));
        EXPECT_EQ(number(AMEDIAFORMAT_KEY_SAMPLE_RATE), 96000);
        EXPECT_THAT(log(),
                    Contains(warning(format(
                        "AAC Sample Rate(96000) not the same as that(%u) in waveFormat!", rate))));
    }
}

// No capture here: the warnings come with the fatal line, on stderr.
class AacBadIndex : public ExtractorFixture, public ::testing::WithParamInterface<unsigned> {
  protected:
    void open(uint32_t rate) {
        Stream stream = aacStream(2, rate);
        stream.header.rate = 44100;
        std::get<WaveFormat>(stream.format).extra = configOf(2, GetParam(), 2);
        openFile(codecFile(stream, {patternBytes(40, 7)}).build());
    }
    std::string fatal() const {
        return "frameworks/av/media/libstagefright/avi/RuvoAVIExtractor:[0-9]+ CHECK_LE\\( "
               "samplingFreqIndex,11u\\) failed: " +
               std::to_string(GetParam()) + " vs\\. 11";
    }
};

using AacBadIndexDeathTest = AacBadIndex;

TEST_P(AacBadIndexDeathTest, IndexOfExtraDataAbove11Aborts) {
    open(44100);
    EXPECT_DEATH(countTracks(), fatal());
}

TEST_P(AacBadIndexDeathTest, WarningComesBeforeTheAbort) {
    open(44100);
    EXPECT_DEATH(
        countTracks(),
        "AAC Sample Rate\\(-1\\) not the same as that\\(44100\\) in waveFormat!(.|\n)*" + fatal());
}

TEST_P(AacBadIndexDeathTest, UnknownRateInTheWaveFormatIsTheSame) {
    open(0xFFFFFFFF);
    EXPECT_DEATH(countTracks(), fatal());
}

INSTANTIATE_TEST_SUITE_P(Reserved, AacBadIndexDeathTest, ::testing::Range(12u, 16u));

}  // namespace
}  // namespace avitest
