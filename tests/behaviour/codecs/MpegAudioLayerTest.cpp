// SPDX-License-Identifier: Apache-2.0
//
// MPEG audio: the layer's MIME type, and stream headers with an implausible sample size.

#include "tests/behaviour/codecs/MpegAudioBytes.h"

namespace avitest {
namespace {

using ::testing::Contains;
using ::testing::Not;

constexpr uint32_t kLayerIIHeader = 0xFFFD8000;  // 128 kbit/s, 44100 Hz
constexpr uint32_t kLayerIHeader = 0xFFFF1800;   // 32 kbit/s, 32000 Hz

class MpegAudioLayer : public MpegAudioConfigTest {};

TEST_F(MpegAudioLayer, EachLayerHasItsMimeType) {
    const struct {
        uint32_t header;
        size_t size;
        const char* mime;
        int layer;
    } kRows[] = {
        {kLayerIIIHeader, 417, "audio/mpeg", 1},   {kLayerIIIHeader | 0x200, 418, "audio/mpeg", 1},
        {kLayerIIHeader, 417, "audio/mpeg-L2", 2}, {kLayerIHeader, 48, "audio/mpeg-L1", 3},
        {0xFFE38400, 384, "audio/mpeg", 1},      // MPEG-2.5: 64 kbit/s, 12000 Hz
        {0xFFF58000, 417, "audio/mpeg-L2", 2}};  // MPEG-2: 64 kbit/s, 22050 Hz
    for (const auto& row : kRows) {
        SCOPED_TRACE(row.header);
        const Bytes frame = mpegFrame(row.header, row.size);
        openChunks({frame, frame, frame});
        EXPECT_EQ(mimeType(), row.mime);
        EXPECT_EQ(
            onlyLineWith("MP3 Header"),
            foundAt(0, 0, row.header) + format("framesize %zu, layer %d", row.size, row.layer));
    }
}

// Its frames are not cut, but the stream is known by its headers.
TEST_F(MpegAudioLayer, Mpeg2LayerIIIHasTheSizeOfItsPadding) {
    // With padding 0 the successor is the header itself.
    openChunks({mpegFrame(0xFFF38000, 208)});
    EXPECT_EQ(mimeType(), "audio/mpeg");
    EXPECT_EQ(onlyLineWith("MP3 Header"), foundAt(0, 0, 0xFFF38000) + "framesize 0, layer 1");
}

TEST_F(MpegAudioLayer, BothTagsAreConfigured) {
    for (const uint16_t tag : {0x50, 0x55}) {
        mStream = frameAudioStream(tag, 2, 44100, 1152);
        openChunks({mpegFrame(kLayerIIHeader), mpegFrame(kLayerIIHeader)});
        EXPECT_EQ(mimeType(), "audio/mpeg-L2") << tag;
    }
}

TEST_F(MpegAudioLayer, ExtractLogTellsTheHeadersFields) {
    openSamplesLogged(mStream, {mpegFrame(kLayerIIIHeader | 0x2C0, 418), mpegFrame()});
    EXPECT_THAT(log(), Contains(verbose("header FFFB92C0 ver 3 layer 1 protect 1 smplPerfrm 1152 "
                                        "btrtIdx 9 btrt 128 smplingRtIdx "
                                        "0 smplingRt 44100 chMod 3 padding 1 frameSize 418")));
}

TEST_F(MpegAudioLayer, ExtractLogOffLeavesTheFieldsOut) {
    openChunks({mpegFrame(), mpegFrame()});
    EXPECT_EQ(mLog.count("btrtIdx"), 0u);
}

class MpegAudioSampleSize : public MpegAudioConfigTest {
  protected:
    // The warning about a sample size, if there is one, and the size that the stream has then.
    void expectSize(uint32_t given, uint32_t scale, uint32_t expected) {
        mStream.header.sampleSize = given;
        mStream.header.scale = scale;
        mStream.header.rate = 16000;
        openChunks({mpegFrame(), mpegFrame()});
        const LogLine rewritten = warning(
            format("generateMPEGCodecData(): rewrite abnormal mp3 samplesize %u to 1", given));
        if (given == expected) {
            EXPECT_THAT(log(), Not(Contains(rewritten)));
        } else {
            EXPECT_THAT(log(), Contains(rewritten));
        }
        EXPECT_EQ(mLog.count(format("[audio/mpeg] S %u R 16000 SSZ %u ", scale, expected)), 1u);
    }
    const LogLine mFramed = warning("generateMPEGCodecData(): framed mp3? with samplesize 0");
};

TEST_F(MpegAudioSampleSize, LargeSizesBecomeOneWhenTheScaleIsOne) {
    expectSize(2, 1, 1);
    expectSize(417, 1, 1);
    expectSize(0xFFFFFFFF, 1, 1);
}

TEST_F(MpegAudioSampleSize, OtherScalesLeaveThemAsTheyAre) {
    expectSize(2, 2, 2);
    expectSize(417, 1152, 417);
    expectSize(2, 0, 2);
}

TEST_F(MpegAudioSampleSize, OneStaysOne) {
    expectSize(1, 1, 1);
    EXPECT_THAT(log(), Not(Contains(mFramed)));
}

TEST_F(MpegAudioSampleSize, ZeroMeansFrames) {
    expectSize(0, 1, 0);
    EXPECT_THAT(log(), Contains(mFramed));
}

}  // namespace
}  // namespace avitest
