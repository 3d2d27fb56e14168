// SPDX-License-Identifier: Apache-2.0
//
// AAC: the descriptor made from the first sample, the extra data and the wave format.

#include "tests/behaviour/codecs/AacFixture.h"

namespace avitest {
namespace {

using ::testing::Contains;
using ::testing::Not;

class AacConfiguration : public AacTest {};

TEST_F(AacConfiguration, AdtsIsPublishedFieldByField) {
    openFirst(adts(1, 4, 2));
    EXPECT_EQ(number(AMEDIAFORMAT_KEY_AAC_PROFILE), 1);
    EXPECT_EQ(number(AMEDIAFORMAT_KEY_IS_ADTS), 1);
    EXPECT_EQ(esds(), (Bytes{0x03, 0x16, 0, 0, 0, 0x04, 0x11, 0x40, 0,    0,    0,    0,
                             0,    0,    0, 0, 0, 0,    0,    0,    0x05, 0x02, 0x12, 0x10}));
    EXPECT_EQ(mLog.count("in waveFormat!"), 0u);
}

TEST_F(AacConfiguration, LinesTellWhatWasFound) {
    openFirst(adts(1, 4, 2));
    EXPECT_THAT(
        log(), Contains(debug("AAC Codec Data: profile 1, samplingFreqIndex 4/44100, channels 2")));
    EXPECT_THAT(log(), Contains(LineFrom(ANDROID_LOG_DEBUG,
                                         "generateAACCodecData(): Make AAC ESDS(24B) done @")));
    EXPECT_TRUE(onlyLineWith("Make AAC ESDS").rfind("...") != std::string::npos);
}

TEST_F(AacConfiguration, ExtractLogDumpsTheDescriptor) {
    openSamplesLogged(mStream, {adts(1, 4, 2)});
    EXPECT_THAT(log(), Contains(verbose(hexOf(esds().value_or(Bytes())))));
    openFirst(adts(1, 4, 2));
}

TEST_F(AacConfiguration, ProfileFieldIsPublished) {
    for (const uint8_t profile : {1, 2, 3}) {
        SCOPED_TRACE(profile);
        openFirst(adts(profile, 4, 2));
        EXPECT_EQ(number(AMEDIAFORMAT_KEY_AAC_PROFILE), profile);
        EXPECT_EQ(specificConfig(), (Bytes{static_cast<uint8_t>((profile + 1) << 3 | 2), 0x10}));
    }
}

TEST_F(AacConfiguration, MainProfileCountsAsLowComplexity) {
    openFirst(adts(0, 4, 2));
    EXPECT_EQ(number(AMEDIAFORMAT_KEY_AAC_PROFILE), 1);
    EXPECT_EQ(specificConfig(), (Bytes{0x12, 0x10}));
}

TEST_F(AacConfiguration, PrivateBitTakesPartInTheChannels) {
    Bytes header = adts(1, 4, 2);
    header[2] |= 0x02;
    openFirst(header);
    EXPECT_EQ(number(AMEDIAFORMAT_KEY_CHANNEL_COUNT), 10);
    EXPECT_EQ(specificConfig(), (Bytes{0x12, 0x50}));
}

TEST_F(AacConfiguration, ChannelConfigurationsOfAdtsArePublished) {
    for (uint8_t channels = 0; channels < 8; ++channels) {
        SCOPED_TRACE(channels);
        openFirst(adts(1, 3, channels));
        EXPECT_EQ(number(AMEDIAFORMAT_KEY_CHANNEL_COUNT), channels);
        EXPECT_EQ(specificConfig(), (Bytes{0x11, static_cast<uint8_t>(0x80 | channels << 3)}));
    }
}

TEST_F(AacConfiguration, AdtsSyncMayTellMpeg2AndACheckSum) {
    for (const uint8_t second : {0xF0, 0xF1, 0xF8, 0xF9}) {
        Bytes header = adts(1, 4, 2);
        header[1] = second;
        openFirst(header);
        EXPECT_EQ(number(AMEDIAFORMAT_KEY_IS_ADTS), 1) << int{second};
    }
}

TEST_F(AacConfiguration, WhatIsNoAdtsIsRaw) {
    const std::pair<size_t, uint8_t> kChanges[] = {
        {0, 0xFE}, {1, 0xF3}, {1, 0xF5}, {1, 0xF7},
        {1, 0xE1}, {1, 0x71}, {2, 0x70},  // sampling-frequency index 12
        {2, 0x7C},                        // 15
        {3, 0x82},
    };
    for (const auto& [at, value] : kChanges) {
        SCOPED_TRACE(testing::Message() << at << " is " << int{value});
        Bytes header = adts(3, 8, 6);
        header[at] = value;
        openFirst(header);
        EXPECT_EQ(number(AMEDIAFORMAT_KEY_IS_ADTS), std::nullopt);
        EXPECT_EQ(number(AMEDIAFORMAT_KEY_AAC_PROFILE), 1);
        EXPECT_EQ(specificConfig(), (Bytes{0x12, 0x10}));
        EXPECT_EQ(mLog.count("RawAAC/"), 1u);
    }
}

// Of the frame length only the bit of 4096 bytes is looked at.
TEST_F(AacConfiguration, AdtsFramesAreShorterThan4096Bytes) {
    for (const uint8_t lengthBits : {0, 1, 2, 3}) {
        SCOPED_TRACE(int{lengthBits});
        Bytes header = adts(1, 3, 2);
        header[3] |= lengthBits;
        openFirst(header);
        const bool isAdts = lengthBits < 2;
        EXPECT_EQ(number(AMEDIAFORMAT_KEY_IS_ADTS).has_value(), isAdts);
        EXPECT_EQ(mLog.count("RawAAC/"), isAdts ? 0u : 1u);
        EXPECT_EQ(number(AMEDIAFORMAT_KEY_SAMPLE_RATE), isAdts ? 48000 : 44100);
    }
}

TEST_F(AacConfiguration, FirstSampleAloneDecidesWhetherTheStreamIsAdts) {
    openSamples(mStream, {patternBytes(64, 1), adts(1, 3, 2), adts(1, 3, 2)});
    EXPECT_EQ(number(AMEDIAFORMAT_KEY_IS_ADTS), std::nullopt);
    EXPECT_EQ(mLog.count("RawAAC/"), 1u);
    openSamples(mStream, {adts(1, 3, 2), patternBytes(64, 1), patternBytes(64, 2)});
    EXPECT_EQ(number(AMEDIAFORMAT_KEY_IS_ADTS), 1);
    EXPECT_EQ(mLog.count("AAC Codec Data"), 1u);
}

TEST_F(AacConfiguration, AdtsIsNotRaw) {
    openFirst(adts(1, 4, 2));
    EXPECT_EQ(mLog.count("RawAAC/"), 0u);
    EXPECT_EQ(mLog.count("CBR Audio duration"), 2u);  // its own and its companion's
}

TEST_F(AacConfiguration, RawSamplesGoByTheWaveFormat) {
    mStream = aacStream(1, 22050);
    openFirst(patternBytes(64, 1));
    EXPECT_EQ(specificConfig(), (Bytes{0x13, 0x88}));
    EXPECT_THAT(
        log(), Contains(debug("AAC Codec Data: profile 1, samplingFreqIndex 7/22050, channels 1")));
    EXPECT_EQ(mLog.count("in waveFormat!"), 0u);
}

TEST_F(AacConfiguration, ExtraDataIsTheConfiguration) {
    setExtra({0x12, 0x10});
    openFirst(patternBytes(64, 1));
    EXPECT_EQ(specificConfig(), (Bytes{0x12, 0x10}));
    EXPECT_THAT(log(),
                Contains(debug("AAC RAW Data: profile 1, samplingFreqIndex 4/44100, channels 2")));
    EXPECT_EQ(mLog.count("RawAAC/"), 1u);
}

TEST_F(AacConfiguration, ExtraDataWinsOverAdtsExceptForItsKeys) {
    setExtra({0x0B, 0x88});  // Main, index 7, one channel
    openFirst(adts(3, 4, 2));
    EXPECT_EQ(number(AMEDIAFORMAT_KEY_AAC_PROFILE), 3);
    EXPECT_EQ(number(AMEDIAFORMAT_KEY_IS_ADTS), 1);
    EXPECT_EQ(specificConfig(), (Bytes{0x0B, 0x88}));
    EXPECT_EQ(number(AMEDIAFORMAT_KEY_SAMPLE_RATE), 22050);
    EXPECT_EQ(number(AMEDIAFORMAT_KEY_CHANNEL_COUNT), 1);
    EXPECT_THAT(log(),
                Contains(debug("AAC RAW Data: profile 0, samplingFreqIndex 7/22050, channels 1")));
}

TEST_F(AacConfiguration, OneByteOfExtraDataIsNoConfiguration) {
    setExtra({0x0B});
    openFirst(patternBytes(64, 1));
    EXPECT_EQ(specificConfig(), (Bytes{0x12, 0x10}));
    EXPECT_EQ(mLog.count("AAC Codec Data"), 1u);
}

TEST_F(AacConfiguration, BytesBehindTheFirstTwoDoNotMatter) {
    setExtra({0x12, 0x17, 0x56, 0xE5, 0x00});
    openFirst(patternBytes(64, 1));
    EXPECT_EQ(specificConfig(), (Bytes{0x12, 0x10}));
}

TEST_F(AacConfiguration, ObjectTypeZeroStaysZero) {
    setExtra({0x02, 0x10});
    openFirst(patternBytes(64, 1));
    EXPECT_EQ(specificConfig(), (Bytes{0x02, 0x10}));
    EXPECT_THAT(
        log(),
        Contains(debug("AAC RAW Data: profile 4294967295, samplingFreqIndex 4/44100, channels 2")));
}

TEST_F(AacConfiguration, DifferentRateReplacesThatOfTheWaveFormat) {
    openFirst(adts(1, 3, 2));
    EXPECT_EQ(number(AMEDIAFORMAT_KEY_SAMPLE_RATE), 48000);
    EXPECT_THAT(
        log(),
        Contains(warning("AAC Sample Rate(48000) not the same as that(44100) in waveFormat!")));
    EXPECT_EQ(mLog.count("in waveFormat!"), 1u);
}

TEST_F(AacConfiguration, DifferentChannelsReplaceThoseOfTheWaveFormat) {
    openFirst(adts(1, 4, 6));
    EXPECT_EQ(number(AMEDIAFORMAT_KEY_CHANNEL_COUNT), 6);
    EXPECT_THAT(log(),
                Contains(warning("AAC Channel Count(6) not the same as that(2) in waveFormat!")));
    EXPECT_EQ(mLog.count("in waveFormat!"), 1u);
}

// Five channels are published as six, but the decoder is told what the wave format says.
TEST_F(AacConfiguration, FiveChannelsOfTheWaveFormatAreFive) {
    mStream = aacStream(5, 44100);
    openFirst(patternBytes(64, 1));
    EXPECT_EQ(number(AMEDIAFORMAT_KEY_CHANNEL_COUNT), 5);
    EXPECT_THAT(log(),
                Contains(warning("AAC Channel Count(5) not the same as that(6) in waveFormat!")));
}

TEST_F(AacConfiguration, EveryAacTagIsConfigured) {
    for (const uint16_t tag : {0x00FF, 0x4143, 0x706D}) {
        SCOPED_TRACE(tag);
        mStream = frameAudioStream(tag, 2, 44100, 1024);
        openFirst(adts(1, 4, 2));
        EXPECT_EQ(specificConfig(), (Bytes{0x12, 0x10}));
        EXPECT_EQ(mimeType(), "audio/mp4a-latm");
    }
}

// A stream without a length has no bit rate of its own.
TEST_F(AacConfiguration, BitRateIsThatOfTheWaveFormatUntilTheDurationIsKnown) {
    mStream.header.length = 0;
    openFirst(adts(1, 4, 2));
    EXPECT_EQ(number(AMEDIAFORMAT_KEY_BIT_RATE), 128000);
}

TEST_F(AacConfiguration, UnreadableFirstSampleGivesNoDescriptor) {
    openSamplesWithout(mStream, {adts(1, 4, 2), adts(1, 4, 2)}, {0});
    EXPECT_EQ(esds(), std::nullopt);
    EXPECT_EQ(number(AMEDIAFORMAT_KEY_AAC_PROFILE), std::nullopt);
    EXPECT_FALSE(isBad());
    EXPECT_EQ(mLog.count("AAC Codec Data"), 0u);
}

TEST_F(AacConfiguration, FirstSampleWhoseEndCannotBeReadGivesNoDescriptor) {
    AviFile avi = codecFile(mStream, {adts(1, 4, 2), adts(1, 4, 2)});
    Bytes file = avi.build();
    const ChunkPlace place = avi.chunks(0)[0].place;
    const auto end = static_cast<off64_t>(place.dataOffset + place.dataSize);
    ASSERT_EQ(openFaulty(std::move(file),
                         {android::service::Fault::shortRead(4).onOffsets(end - 1, end)}),
              2u);
    EXPECT_EQ(esds(), std::nullopt);
}

TEST_F(AacConfiguration, FirstSampleLongerThanTheFileGivesNoDescriptor) {
    AviFile avi = codecFile(mStream, {adts(1, 4, 2), adts(1, 4, 2)});
    avi.segment().index.edit = [](std::vector<Idx1Entry>& entries) {
        entries[0].length = 0x00FFFFFF;
    };
    ASSERT_EQ(open(avi), 2u);
    EXPECT_EQ(esds(), std::nullopt);
}

// The other samples are only shown.
TEST_F(AacConfiguration, ExtractLogShowsSamplesOneToNine) {
    const std::vector<Bytes> samples(12, adts(1, 4, 2));
    openSamplesLogged(mStream, samples);
    EXPECT_EQ(mLog.count("AAC sample-"), 9u);
    for (int i = 1; i < 10; ++i) {
        EXPECT_THAT(log(),
                    Contains(LineFrom(ANDROID_LOG_VERBOSE,
                                      format("generateAACCodecData(): AAC sample-%d, header FF F1 "
                                             "50 80 size %zu @",
                                             i, samples[0].size()))));
    }
}

TEST_F(AacConfiguration, ExtractLogOffShowsNoSamples) {
    openSamples(mStream, std::vector<Bytes>(12, adts(1, 4, 2)));
    EXPECT_EQ(mLog.count("AAC sample-"), 0u);
}

TEST_F(AacConfiguration, ShownSizesAreThoseOfTheChunksWhereTheTableCountsBytes) {
    mStream.header.sampleSize = 1;
    openSamplesLogged(mStream, {Bytes(100, 1), Bytes(50, 2), Bytes(30, 3)});
    EXPECT_EQ(mLog.count("AAC sample-1, header 02 02 02 02 size 50 @"), 1u);
    EXPECT_EQ(mLog.count("AAC sample-2, header 03 03 03 03 size 30 @"), 1u);
}

}  // namespace
}  // namespace avitest
