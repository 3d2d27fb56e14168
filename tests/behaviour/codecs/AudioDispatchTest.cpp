// SPDX-License-Identifier: Apache-2.0
//
// Which audio streams are configured, and the codecs that need no builder of their own.

#include "tests/behaviour/codecs/CodecsFixture.h"

namespace avitest {
namespace {

using ::testing::Contains;

class AudioDispatch : public CodecTest {
  protected:
    std::optional<Bytes> csd0() { return buffer(AMEDIAFORMAT_KEY_CSD_0); }
};

TEST_F(AudioDispatch, AdpcmDecodersGetTheBlockSize) {
    const std::pair<uint16_t, Bytes> kRows[] = {{2048, {0x00, 0x08, 0, 0}},
                                                {0, {0, 0, 0, 0}},
                                                {1, {1, 0, 0, 0}},
                                                {0xFFFF, {0xFF, 0xFF, 0, 0}}};
    for (const uint16_t tag : {0x0002, 0x0011}) {
        for (const auto& [align, expected] : kRows) {
            SCOPED_TRACE(testing::Message() << tag << ", " << align);
            Stream stream = audioOfTag(tag);
            std::get<WaveFormat>(stream.format).blockAlign = align;
            openSamples(stream, {patternBytes(64)});
            EXPECT_EQ(csd0(), expected);
            EXPECT_EQ(mimeType(), tag == 2 ? "audio/x-adpcm-ms" : "audio/x-adpcm-dvi-ima");
        }
    }
}

TEST_F(AudioDispatch, OtherCodecsGetNothing) {
    const std::pair<uint16_t, const char*> kRows[] = {{0x0006, "audio/g711-alaw"},
                                                      {0x0007, "audio/g711-mlaw"},
                                                      {0x0057, "audio/3gpp"},
                                                      {0x0058, "audio/amr-wb"}};
    for (const auto& [tag, expected] : kRows) {
        SCOPED_TRACE(expected);
        openSamples(audioOfTag(tag), {Bytes{0x0B, 0x77, 0, 0} + patternBytes(60)});
        EXPECT_EQ(mimeType(), expected);
        EXPECT_EQ(csd0(), std::nullopt);
        EXPECT_EQ(buffer(AMEDIAFORMAT_KEY_ESDS), std::nullopt);
    }
}

TEST_F(AudioDispatch, MimeTypeIsLoggedOnlyWithTheExtractLog) {
    openSamples(pcmStream(), {patternBytes(64)});
    EXPECT_EQ(mLog.count("generateCodecData for"), 0u);
    openSamplesLogged(pcmStream(), {patternBytes(64)});
    EXPECT_THAT(log(), Contains(verbose("generateCodecData for [audio/raw]:")));
    EXPECT_THAT(log(), Contains(verbose("generateCodecData for [audio/g711-alaw]:")));
}

TEST_F(AudioDispatch, StreamWithoutSamplesIsNotConfigured) {
    openSamplesLogged(audioOfTag(0x0002), {});
    EXPECT_TRUE(isBad());
    EXPECT_EQ(csd0(), std::nullopt);
    EXPECT_EQ(mLog.count("generateCodecData for [audio/x-adpcm-ms]:"), 0u);
}

// One sample is enough: audio is configured at the end of the parse.
TEST_F(AudioDispatch, OneSampleIsEnough) {
    openSamples(audioOfTag(0x0011), {{0x01}});
    EXPECT_NE(csd0(), std::nullopt);
}

}  // namespace
}  // namespace avitest
