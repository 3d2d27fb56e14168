// SPDX-License-Identifier: Apache-2.0
//
// DTS core frames: where they are looked for, and the format in their headers.

#include "tests/behaviour/codecs/DtsBytes.h"

namespace avitest {
namespace {

using ::testing::Contains;

class DtsCore : public DtsTest {};

// Table 5-4, with mono played as stereo; what users define counts as stereo.
TEST_F(DtsCore, EveryChannelArrangementIsCounted) {
    const int kChannels[] = {2, 2, 2, 2, 2, 3, 3, 4, 4, 5, 6, 6, 6, 7, 8, 8};
    for (uint32_t amode = 0; amode < 64; ++amode) {
        SCOPED_TRACE(amode);
        openFirst(dtsCore(amode, 13, 0));
        expectFormat(kDts, amode < 16 ? kChannels[amode] : 2, 48000);
    }
}

TEST_F(DtsCore, LowFrequencyEffectsAddAChannel) {
    for (uint32_t lfe = 1; lfe < 4; ++lfe) {
        SCOPED_TRACE(lfe);
        openFirst(dtsCore(9, 13, lfe));
        expectFormat(kDts, 6, 48000);
        openFirst(dtsCore(40, 13, lfe));
        expectFormat(kDts, 3, 48000);
    }
}

// Table 5-5.
TEST_F(DtsCore, EverySamplingRateIsPublished) {
    const int kRates[] = {-1,    8000, 16000, 32000, -1,    -1,    11025, 22050,
                          44100, -1,   -1,    12000, 24000, 48000, -1,    -1};
    for (uint32_t sfreq = 0; sfreq < 16; ++sfreq) {
        SCOPED_TRACE(sfreq);
        openFirst(dtsCore(2, sfreq, 0));
        expectFormat(kDts, 2, kRates[sfreq]);
    }
}

TEST_F(DtsCore, LinesTellWhatWasFound) {
    openFirst(dtsCore(9, 13, 1));
    EXPECT_THAT(
        log(),
        Contains(debug("[audio/vnd.dts] offset 0, dtsType 0, chanCount 6, sampleRate 48000")));
    EXPECT_THAT(log(), Contains(debug("generateDtsCodecData(): parseDtsMetaData OK.")));
}

TEST_F(DtsCore, ReservedRateIsLoggedAsMinusOne) {
    openFirst(dtsCore(9, 0, 1));
    EXPECT_THAT(log(),
                Contains(debug("[audio/vnd.dts] offset 0, dtsType 0, chanCount 6, sampleRate -1")));
}

TEST_F(DtsCore, ExtractLogTellsTheFields) {
    openSamplesLogged(mStream, {Bytes(3, 0x11) + dtsCore(9, 13, 2)});
    EXPECT_THAT(log(), Contains(verbose("offset 3, startCode 0x7ffe8001")));
    EXPECT_THAT(log(), Contains(verbose("Core substream channelMode 9")));
    EXPECT_THAT(log(), Contains(verbose("Core substream lowFreqEffectsFlag 2")));
    EXPECT_THAT(log(), Contains(verbose("Core substream samplingFreqIndex 13")));
}

TEST_F(DtsCore, ExtractLogOffLeavesTheFieldsOut) {
    openFirst(dtsCore(9, 13, 2));
    EXPECT_EQ(mLog.count("Core substream"), 0u);
    EXPECT_EQ(mLog.count("startCode"), 0u);
}

TEST_F(DtsCore, FourteenBitStreamHasADefaultFormat) {
    openFirst(dtsCore(9, 8, 1, 0x1FFFE800));
    expectFormat(kDts, 2, 48000);
}

TEST_F(DtsCore, FrameIsFoundAtAnyOffset) {
    for (const size_t offset : {1u, 2u, 3u, 100u}) {
        SCOPED_TRACE(offset);
        openFirst(Bytes(offset, 0x7F) + dtsCore(9, 8, 1));
        expectFormat(kDts, 6, 44100);
        EXPECT_THAT(
            log(),
            Contains(debug(format(
                "[audio/vnd.dts] offset %zu, dtsType 0, chanCount 6, sampleRate 44100", offset))));
    }
}

TEST_F(DtsCore, FirstSyncOfASampleCounts) {
    openFirst(dtsCore(9, 8, 1) + dtsCore(2, 13, 0));
    expectFormat(kDts, 6, 44100);
}

TEST_F(DtsCore, BytesBehindTheSampleCountAsZero) {
    const Bytes whole = dtsCore(9, 8, 3);
    openFirst(Bytes(whole.begin(), whole.begin() + 5));
    expectFormat(kDts, 2, -1);
    openFirst(Bytes(whole.begin(), whole.begin() + 8));
    expectFormat(kDts, 4, -1);  // two bits of the arrangement are left: 8
    openFirst(Bytes(whole.begin(), whole.begin() + 9));
    expectFormat(kDts, 5, 44100);
    openFirst(Bytes(whole.begin(), whole.begin() + 11));
    expectFormat(kDts, 6, 44100);
}

TEST_F(DtsCore, SampleUnderFiveBytesHasNoFrame) {
    openFirst({0x7F, 0xFE, 0x80, 0x01});
    expectNoFrame();
    openFirst({0x7F});
    expectNoFrame();
}

TEST_F(DtsCore, SyncCutByTheEndOfTheSampleIsNone) {
    for (const size_t kept : {1u, 2u, 3u}) {
        SCOPED_TRACE(kept);
        const Bytes sync = {0x7F, 0xFE, 0x80, 0x01};
        openFirst(Bytes(20, 0x11) +
                  Bytes(sync.begin(), sync.begin() + static_cast<ptrdiff_t>(kept)));
        expectNoFrame();
    }
}

// A sync word at the very end of a sample is not looked at.
TEST_F(DtsCore, SyncIsLookedForUpToTheFifthByteFromTheEnd) {
    const Bytes sync = {0x1F, 0xFF, 0xE8, 0x00};
    openFirst(Bytes(20, 0x11) + sync + Bytes{0x22});
    expectFormat(kDts, 2, 48000);
    EXPECT_THAT(log(), Contains(debug("[audio/vnd.dts] offset 20, dtsType 0, chanCount 2, "
                                      "sampleRate 48000")));
    openFirst(Bytes(20, 0x11) + sync);
    expectNoFrame();
}

TEST_F(DtsCore, OtherSyncsAreNone) {
    for (const uint32_t word : {0xFE7F0180u, 0xFF1F00E8u, 0x7FFE8000u, 0x64582026u}) {
        SCOPED_TRACE(word);
        openFirst(dtsCore(9, 8, 1, word));
        expectNoFrame();
    }
}

TEST_F(DtsCore, ElevenSamplesAreSearched) {
    std::vector<Bytes> samples(11, Bytes(40, 0x11));
    samples[10] = dtsCore(9, 8, 1);
    openSamples(mStream, samples);
    expectFormat(kDts, 6, 44100);

    samples.insert(samples.begin(), Bytes(40, 0x11));
    openSamples(mStream, samples);
    expectNoFrame();
}

TEST_F(DtsCore, FirstSampleWithAFrameCounts) {
    openSamples(mStream, {Bytes(40, 0x11), dtsCore(9, 8, 1), dtsCore(2, 13, 0)});
    expectFormat(kDts, 6, 44100);
    EXPECT_EQ(mLog.count("parseDtsMetaData OK."), 1u);
}

TEST_F(DtsCore, UnreadableSamplesAreSkipped) {
    openSamplesWithout(mStream, {dtsCore(2, 13, 0), dtsCore(9, 8, 1)}, {0});
    expectFormat(kDts, 6, 44100);
}

}  // namespace
}  // namespace avitest
