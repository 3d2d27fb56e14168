// SPDX-License-Identifier: Apache-2.0
//
// PCM streams that carry AC-3 or DTS.

#include "tests/behaviour/codecs/DtsBytes.h"

namespace avitest {
namespace {

using ::testing::Contains;

const Bytes kAc3 = {0x0B, 0x77};
constexpr char kAc3Mime[] = "audio/ac3";
constexpr char kDtsMime[] = "audio/vnd.dts";
constexpr char kRawMime[] = "audio/raw";

Bytes plain() {
    return Bytes(64, 0x11);
}

Stream extensibleStream(uint64_t subFormatLow) {
    Stream stream = pcmStream();
    auto& wave = std::get<WaveFormat>(stream.format);
    wave.formatTag = 0xFFFE;
    ExtensibleFormat extension;
    extension.subFormatLow = subFormatLow;
    wave.extra = extension.toBytes();
    return stream;
}

class PcmConfiguration : public CodecTest {
  protected:
    Stream mStream = pcmStream();

    void openFirst(const Bytes& first) { openSamples(mStream, {first}); }
    // A plain stream with `found` as its sample number `at`.
    std::string mimeWith(const Bytes& found, size_t at) {
        std::vector<Bytes> samples(at + 1, plain());
        samples[at] = found;
        openSamples(mStream, samples);
        return mimeType();
    }
};

TEST_F(PcmConfiguration, PlainSamplesStayRaw) {
    openSamples(mStream, std::vector<Bytes>(12, plain()));
    EXPECT_EQ(mimeType(), kRawMime);
    EXPECT_EQ(number(AMEDIAFORMAT_KEY_CHANNEL_COUNT), 2);
    EXPECT_EQ(number(AMEDIAFORMAT_KEY_SAMPLE_RATE), 8000);
}

TEST_F(PcmConfiguration, Ac3SyncWordMakesAc3) {
    openFirst(kAc3 + plain());
    EXPECT_EQ(mimeType(), kAc3Mime);
    EXPECT_EQ(number(AMEDIAFORMAT_KEY_CHANNEL_COUNT), 2);
    EXPECT_EQ(number(AMEDIAFORMAT_KEY_SAMPLE_RATE), 8000);
}

TEST_F(PcmConfiguration, DtsCoreMakesDtsWithItsFormat) {
    openFirst(dtsCore(9, 13, 1));
    EXPECT_EQ(mimeType(), kDtsMime);
    EXPECT_EQ(number(AMEDIAFORMAT_KEY_CHANNEL_COUNT), 6);
    EXPECT_EQ(number(AMEDIAFORMAT_KEY_SAMPLE_RATE), 48000);
    EXPECT_THAT(log(), Contains(debug("generatePCMCodecData(): parseDtsMetaData OK.")));
}

TEST_F(PcmConfiguration, FourteenBitDtsHasADefaultFormat) {
    openFirst(Bytes{0x1F, 0xFF, 0xE8, 0x00} + plain());
    EXPECT_EQ(mimeType(), kDtsMime);
    EXPECT_EQ(number(AMEDIAFORMAT_KEY_CHANNEL_COUNT), 2);
    EXPECT_EQ(number(AMEDIAFORMAT_KEY_SAMPLE_RATE), 48000);
}

TEST_F(PcmConfiguration, DtsSubstreamNamesItsFlavour) {
    SubstreamHeader header;
    header.rateIndex = 6;
    header.channels = 8;
    openFirst(header.frame(kLosslessAsset));
    EXPECT_EQ(mimeType(), "audio/vnd.dts.hd");
    EXPECT_EQ(number(AMEDIAFORMAT_KEY_CHANNEL_COUNT), 8);
    EXPECT_EQ(number(AMEDIAFORMAT_KEY_SAMPLE_RATE), 44100);
}

TEST_F(PcmConfiguration, DtsSyncWithoutAFrameIsDtsAllTheSame) {
    SubstreamHeader header;
    header.large = true;
    header.size = 4000;
    openFirst(header.frame(kLosslessAsset, 64));
    EXPECT_EQ(mimeType(), kDtsMime);
    EXPECT_EQ(number(AMEDIAFORMAT_KEY_CHANNEL_COUNT), 2);
    EXPECT_EQ(number(AMEDIAFORMAT_KEY_SAMPLE_RATE), 8000);
    EXPECT_EQ(mLog.count("parseDtsMetaData OK."), 0u);
}

TEST_F(PcmConfiguration, FirstFindEndsTheSearch) {
    openSamples(mStream, {kAc3 + plain(), dtsCore(9, 13, 1)});
    EXPECT_EQ(mimeType(), kAc3Mime);
    openSamples(mStream, {dtsCore(9, 13, 1), kAc3 + plain()});
    EXPECT_EQ(mimeType(), kDtsMime);
}

TEST_F(PcmConfiguration, PatternsInsideASampleDoNotCount) {
    openFirst(Bytes{0x00} + kAc3 + plain());
    EXPECT_EQ(mimeType(), kRawMime);
    openFirst(Bytes{0x00} + dtsCore(9, 13, 1));
    EXPECT_EQ(mimeType(), kRawMime);
}

TEST_F(PcmConfiguration, ElevenSamplesAreInspected) {
    EXPECT_EQ(mimeWith(kAc3 + plain(), 1), kAc3Mime);
    EXPECT_EQ(mimeWith(kAc3 + plain(), 10), kAc3Mime);
    EXPECT_EQ(mimeWith(kAc3 + plain(), 11), kRawMime);
    EXPECT_EQ(mimeWith(dtsCore(9, 13, 1), 10), kDtsMime);
    EXPECT_EQ(mimeWith(dtsCore(9, 13, 1), 11), kRawMime);
}

TEST_F(PcmConfiguration, UnreadableSamplesAreSkipped) {
    openSamplesWithout(mStream, {kAc3 + plain(), dtsCore(9, 13, 1)}, {0});
    EXPECT_EQ(mimeType(), kDtsMime);
    openSamplesWithout(mStream, {kAc3 + plain()}, {0});
    EXPECT_EQ(mimeType(), kRawMime);
    EXPECT_FALSE(isBad());
}

// A short sample is looked at as 32 bytes, with what follows it in the file.
TEST_F(PcmConfiguration, ShortSampleIsInspected) {
    for (const size_t size : {2u, 3u, 31u, 32u, 33u}) {
        SCOPED_TRACE(size);
        openFirst(ByteWriter().bytes(kAc3 + plain()).cut(size).take());
        EXPECT_EQ(mimeType(), kAc3Mime);
    }
    openFirst({0x7F, 0xFE, 0x80, 0x01});
    EXPECT_EQ(mimeType(), kDtsMime);
}

TEST_F(PcmConfiguration, ShortSampleAtTheEndOfTheFileIsNot) {
    for (const size_t size : {31u, 32u}) {
        SCOPED_TRACE(size);
        AviFile avi;
        avi.addStream(mStream);
        avi.addChunk(0, ByteWriter().bytes(kAc3 + plain()).cut(size).take()).chunk.unpadded();
        avi.segment().index.offsets = IndexOffsets::kAbsolute;
        avi.segment().edit = [](Chunk& riff) { riff.arrange({"hdrl", "idx1", "movi"}); };
        Bytes file = avi.build();
        const ChunkPlace place = avi.chunks(0)[0].place;
        file.resize(place.dataOffset + place.dataSize);
        ASSERT_EQ(open(file), 1u);
        EXPECT_EQ(mimeType(), size < 32 ? kRawMime : kAc3Mime);
    }
}

TEST_F(PcmConfiguration, ExtractLogTellsTheCheckAndDumpsTheSamples) {
    openSamplesLogged(mStream, {plain(), patternBytes(100, 4)});
    EXPECT_THAT(log(),
                Contains(verbose("generatePCMCodecData(): PCM format. Try to check the raw.")));
    EXPECT_THAT(log(), Contains(verbose(hexOf(Bytes(32, 0x11)))));
    EXPECT_THAT(log(),
                Contains(verbose(hexOf(ByteWriter().bytes(patternBytes(100, 4)).cut(32).take()))));
}

TEST_F(PcmConfiguration, ExtractLogOffSaysNothing) {
    openFirst(plain());
    EXPECT_EQ(mLog.count("generatePCMCodecData"), 0u);
}

TEST_F(PcmConfiguration, ExtensibleFormatIsChecked) {
    mStream = extensibleStream(0x0010000000000001);
    openFirst(plain());
    EXPECT_EQ(mimeType(), kRawMime);
    openFirst(kAc3 + plain());
    EXPECT_EQ(mimeType(), kAc3Mime);
    openFirst(dtsCore(9, 13, 1));
    EXPECT_EQ(mimeType(), kDtsMime);
    openSamplesLogged(mStream, {plain()});
    EXPECT_THAT(log(),
                Contains(verbose(
                    "generatePCMCodecData(): PCM extensible format. Need find the real format.")));
}

// Whatever the sub-format says: A-law, mu-law, one that nobody knows.
TEST_F(PcmConfiguration, ExtensibleFormatOfAnotherCodecIsCheckedToo) {
    for (const uint64_t tag : {6u, 7u, 0x55u, 0x1234u}) {
        SCOPED_TRACE(tag);
        mStream = extensibleStream(0x0010000000000000 | tag);
        openFirst(plain());
        EXPECT_EQ(mimeType(), kRawMime);
    }
}

}  // namespace
}  // namespace avitest
