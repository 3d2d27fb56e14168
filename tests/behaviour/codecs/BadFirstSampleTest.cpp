// SPDX-License-Identifier: Apache-2.0
//
// First samples that no codec makes: every codec has a clear outcome for them.

#include "tests/behaviour/codecs/CodecsFixture.h"

namespace avitest {
namespace {

struct BadSample {
    const char* name;
    Bytes bytes;
};

const BadSample kBadSamples[] = {
    {"one byte", {0x00}},
    {"one byte of ones", {0xFF}},
    {"zeros", Bytes(64, 0x00)},
    {"ones", Bytes(64, 0xFF)},
    {"two zeros", Bytes(2, 0)},
    {"cut start code", {0, 0, 0, 1}},
    {"short start code", {0, 0, 1}},
};

class BadFirstSample : public CodecTest {
  protected:
    // Opens the stream with each bad sample in turn and calls `check` for it.
    void forEach(const Stream& stream, const std::function<void(const Bytes& first)>& check) {
        const bool isVideo = std::holds_alternative<BitmapInfo>(stream.format);
        for (const BadSample& bad : kBadSamples) {
            SCOPED_TRACE(bad.name);
            openSamples(stream, isVideo ? videoSamples(bad.bytes) : std::vector<Bytes>{bad.bytes});
            check(bad.bytes);
        }
    }
};

TEST_F(BadFirstSample, AvcPublishesNothing) {
    forEach(videoStream("H264", 320, 240, 25), [&](const Bytes& /*first*/) {
        EXPECT_EQ(mimeType(), "video/avc");
        EXPECT_EQ(buffer(AMEDIAFORMAT_KEY_CSD_AVC), std::nullopt);
        EXPECT_EQ(number(AMEDIAFORMAT_KEY_WIDTH), 320);
        EXPECT_EQ(mLog.count("generateAvcCodecData(): Can't not find start code"), 1u);
    });
}

TEST_F(BadFirstSample, HevcIsUnsupported) {
    forEach(videoStream("HEVC", 320, 240, 25), [&](const Bytes& /*first*/) {
        EXPECT_TRUE(isBad());
        EXPECT_EQ(buffer(AMEDIAFORMAT_KEY_CSD_HEVC), std::nullopt);
    });
}

// Without a picture all of the sample counts as headers.
TEST_F(BadFirstSample, Mpeg2TakesAllOfItForHeaders) {
    forEach(videoStream("MPG2", 320, 240, 25), [&](const Bytes& first) {
        EXPECT_FALSE(isBad());
        EXPECT_EQ(buffer(AMEDIAFORMAT_KEY_ESDS).value_or(Bytes()).size(), first.size() + 25);
    });
}

TEST_F(BadFirstSample, AacIsRaw) {
    forEach(frameAudioStream(0xFF, 2, 44100, 1024), [&](const Bytes& /*first*/) {
        EXPECT_EQ(number(AMEDIAFORMAT_KEY_IS_ADTS), std::nullopt);
        const Bytes esds = buffer(AMEDIAFORMAT_KEY_ESDS).value_or(Bytes());
        ASSERT_EQ(esds.size(), 24u);
        EXPECT_EQ(esds[22] << 8 | esds[23], 0x1210);
    });
}

TEST_F(BadFirstSample, AdtsHeaderThatIsCutIsFilledUpWithZeros) {
    const Stream stream = frameAudioStream(0xFF, 2, 44100, 1024);
    openSamples(stream, {{0xFF, 0xF1}});
    EXPECT_EQ(number(AMEDIAFORMAT_KEY_IS_ADTS), 1);
    EXPECT_EQ(number(AMEDIAFORMAT_KEY_SAMPLE_RATE), 96000);
    openSamples(stream, {{0xFF}});
    EXPECT_EQ(number(AMEDIAFORMAT_KEY_IS_ADTS), std::nullopt);
}

TEST_F(BadFirstSample, MpegAudioIsBad) {
    forEach(frameAudioStream(0x55, 2, 44100, 1152),
            [&](const Bytes& /*first*/) { EXPECT_EQ(mimeType(), "audio/x-unknown"); });
}

TEST_F(BadFirstSample, OtherAudioStaysAsDeclared) {
    const std::pair<Stream, const char*> kRows[] = {
        {pcmStream(), "audio/raw"},
        {frameAudioStream(0x2000, 2, 48000, 1536), "audio/ac3"},
        {frameAudioStream(0x2001, 2, 48000, 512), "audio/vnd.dts"},
        {audioOfTag(0x0002), "audio/x-adpcm-ms"}};
    for (const auto& [stream, expected] : kRows) {
        SCOPED_TRACE(expected);
        const std::string mime = expected;
        forEach(stream, [&](const Bytes& /*first*/) { EXPECT_EQ(mimeType(), mime); });
    }
}

TEST_F(BadFirstSample, EmptyAudioIsNoSample) {
    for (const uint16_t tag : {0xFF, 0x55, 0x2000, 0x2001, 0x01}) {
        SCOPED_TRACE(tag);
        openSamples(audioOfTag(tag), {Bytes()});
        EXPECT_TRUE(isBad());
    }
}

// An empty chunk in front is none, so that the next one is the first sample.
TEST_F(BadFirstSample, EmptyVideoIsPassedOver) {
    std::vector<Bytes> samples = videoSamples(Bytes(), 11);
    samples[1] = Bytes{0, 0, 1, 0xB3} + Bytes(8, 0x33) + Bytes{0, 0, 1, 0};
    openSamples(videoStream("MPG2", 320, 240, 25), samples);
    EXPECT_EQ(buffer(AMEDIAFORMAT_KEY_ESDS).value_or(Bytes()).size(), 12u + 25);
}

TEST_F(BadFirstSample, SizeThatExceedsTheFileIsUnreadable) {
    const std::pair<ChunkId, bool> kRows[] = {{"H264", true}, {"HEVC", true}, {"MPG2", false}};
    for (const auto& [fourcc, bad] : kRows) {
        SCOPED_TRACE(fourcc.text());
        AviFile avi = codecFile(videoStream(fourcc, 320, 240, 25), videoSamples(Bytes(40, 0x11)));
        avi.segment().index.edit = [](std::vector<Idx1Entry>& entries) {
            entries[0].length = 0x7FFFFFF0;
        };
        ASSERT_EQ(open(avi), 2u);
        EXPECT_EQ(isBad(), bad);
        EXPECT_EQ(buffer(AMEDIAFORMAT_KEY_ESDS), std::nullopt);
    }
}

}  // namespace
}  // namespace avitest
