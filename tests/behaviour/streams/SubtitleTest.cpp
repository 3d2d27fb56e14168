// SPDX-License-Identifier: Apache-2.0
//
// Subtitles, which are stored as a video stream of their own compression.

#include <media/NdkMediaFormatRuvo.h>

#include "tests/behaviour/streams/StreamsFixture.h"

namespace avitest {

using ::testing::Contains;
using ::testing::Not;

namespace {

Stream ofCompression(ChunkId code) {
    return videoStream(code, 720, 576, 25);
}

}  // namespace

class SubtitleStream : public StreamsFixture {};

TEST_F(SubtitleStream, IsToldByItsCompression) {
    for (const ChunkId code : {ChunkId("DXSB"), ChunkId("DXSA"), ChunkId("dxsb"), ChunkId("dxsa"),
                               ChunkId("DxSb"), ChunkId("dXsA")}) {
        SCOPED_TRACE(code.text());
        AviFile avi = fileOf({mjpegStream(), ofCompression(code)});
        ASSERT_EQ(2u, open(avi));
        EXPECT_EQ("text/vobsub", mime(1));
        EXPECT_EQ(720, int32Of(1, AMEDIAFORMAT_KEY_WIDTH));
        EXPECT_EQ(576, int32Of(1, AMEDIAFORMAT_KEY_HEIGHT));
    }
}

// Only the codes in upper case make it a subtitle stream; others leave it a video stream, which is
// put first.
TEST_F(SubtitleStream, InUpperCaseIsNoVideo) {
    for (const ChunkId code : {ChunkId("DXSB"), ChunkId("DXSA")}) {
        SCOPED_TRACE(code.text());
        AviFile avi = fileOf({pcmStream(), ofCompression(code)});
        mLog.clear();
        ASSERT_EQ(2u, open(avi));
        EXPECT_EQ("text/vobsub", mime(1));
        EXPECT_EQ(0u, mLog.count(kPutFirst));
    }
}

TEST_F(SubtitleStream, InLowerCaseStaysAVideo) {
    for (const ChunkId code : {ChunkId("dxsb"), ChunkId("dxsa"), ChunkId("DxSB")}) {
        SCOPED_TRACE(code.text());
        AviFile avi = fileOf({pcmStream(), ofCompression(code)});
        mLog.clear();
        ASSERT_EQ(2u, open(avi));
        EXPECT_EQ("text/vobsub", mime(0));
        EXPECT_THAT(log(), Contains(debug(kPutFirst)));
    }
}

TEST_F(SubtitleStream, MakesWayForTheVideo) {
    AviFile avi = fileOf({ofCompression("DXSB"), pcmStream(), mjpegStream()});
    ASSERT_EQ(3u, open(avi));
    EXPECT_EQ("video/x-motion-jpeg", mime(0));
    EXPECT_EQ("text/vobsub", mime(1));
    EXPECT_EQ("audio/raw", mime(2));
    EXPECT_EQ(avi.payloads(2), readPayloads(0));
}

TEST_F(SubtitleStream, AloneMakesAFile) {
    AviFile avi = fileOf({ofCompression("DXSB")});
    ASSERT_EQ(1u, open(avi));
    EXPECT_EQ("text/vobsub", mime(0));
    EXPECT_EQ(std::nullopt, fileFormat().getInt32(AMEDIAFORMAT_KEY_HAS_UNSUPPORT_VIDEO));
}

TEST_F(SubtitleStream, IsReported) {
    AviFile avi = fileOf({mjpegStream(), ofCompression("DXSB")});
    ASSERT_EQ(2u, openLogged(avi));
    EXPECT_THAT(log(), Contains(debug("   compression:   DXSB(text/vobsub)")));
    EXPECT_THAT(log(), Contains(verbose("BFourCC2MIME fourcc " + idText("DXSB"))));
    EXPECT_EQ(0u, mLog.count("unknown fourcc"));
}

TEST_F(SubtitleStream, ExtraDataIsSkipped) {
    Stream stream = ofCompression("DXSB");
    std::get<BitmapInfo>(stream.format).extra = patternBytes(64);
    AviFile avi = fileOf({mjpegStream(), stream});
    ASSERT_EQ(2u, open(avi));
    EXPECT_THAT(log(), Contains(debug("parseSTRF(): Video has 64B extra config data.")));
    EXPECT_THAT(log(), Contains(warning("parseSTRF(): skip invalid codec data 64 bytes")));
    EXPECT_EQ("text/vobsub", mime(1));
}

TEST_F(SubtitleStream, FormatMustBeWhole) {
    Stream stream = ofCompression("DXSB");
    stream.edit = [](Chunk& strl) { strl.child("strf").payload.resize(38); };
    AviFile avi = fileOf({mjpegStream(), stream});
    ASSERT_EQ(1u, open(avi));
    EXPECT_THAT(log(), Contains(dropped()));
}

TEST_F(SubtitleStream, SurvivesFurtherChunksOfItsList) {
    Stream stream = ofCompression("DXSA");
    stream.name = "Subtitle - de-DE";
    AviFile avi = fileOf({mjpegStream(), stream});
    ASSERT_EQ(2u, open(avi));
    EXPECT_EQ("deu", trackFormat(1).getString(AMEDIAFORMAT_KEY_LANGUAGE));
    EXPECT_THAT(log(), Not(Contains(dropped())));
}

// Where a bitmap header has its compression a wave header has its extra size.
TEST_F(SubtitleStream, IsNeverAnAudioStream) {
    Stream stream = pcmStream();
    stream.edit = [](Chunk& strl) {
        Bytes& payload = strl.child("strf").payload;
        payload.resize(16);
        payload.insert(payload.end(), {'D', 'X', 'S', 'B'});
    };
    AviFile avi = fileOf({mjpegStream(), stream});
    ASSERT_EQ(2u, open(avi));
    EXPECT_EQ("audio/raw", mime(1));
}

}  // namespace avitest
