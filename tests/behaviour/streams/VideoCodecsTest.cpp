// SPDX-License-Identifier: Apache-2.0
//
// The MIME type of a video stream by its compression, in whatever case it is written.

#include <cctype>

#include <media/NdkMediaFormatRuvo.h>

#include "tests/behaviour/streams/StreamsFixture.h"
#include "tests/support/CodecTable.h"

namespace avitest {

using ::testing::Contains;
using ::testing::Not;

namespace {

std::string upper(std::string text) {
    for (char& c : text)
        c = static_cast<char>(std::toupper(static_cast<unsigned char>(c)));
    return text;
}

// First and third letter in upper case.
std::string mixed(std::string text) {
    const std::string other = upper(text);
    text[0] = other[0];
    text[2] = other[2];
    return text;
}

}  // namespace

class VideoCodec : public StreamsFixture {
  protected:
    std::string mimeOf(ChunkId code) {
        AviFile avi = fileOf({videoStream(code, 320, 240, 25)});
        mLog.clear();
        return open(avi) == 1 ? mime(0) : "no track";
    }

    std::optional<int32_t> unsupported() {
        return fileFormat().getInt32(AMEDIAFORMAT_KEY_HAS_UNSUPPORT_VIDEO);
    }
};

class KnownVideoCodec : public VideoCodec, public ::testing::WithParamInterface<VideoCodecRow> {};

TEST_P(KnownVideoCodec, IsFoundInWhateverCase) {
    const std::string code = GetParam().code;
    for (const std::string& spelled : {code, upper(code), mixed(code)}) {
        SCOPED_TRACE(spelled);
        EXPECT_EQ(GetParam().mime, mimeOf(ChunkId::of(spelled)));
        EXPECT_EQ(0u, mLog.count("unknown fourcc"));
        EXPECT_THAT(log(),
                    Contains(debug("   compression:   " + spelled + "(" + GetParam().mime + ")")));
        EXPECT_EQ(std::nullopt, unsupported());
    }
}

INSTANTIATE_TEST_SUITE_P(Table, KnownVideoCodec, ::testing::ValuesIn(kVideoCodecs),
                         [](const auto& param) { return std::string(param.param.code); });

TEST_F(VideoCodec, OutsideTheTableIsUnknown) {
    const ChunkId kCodes[] = {"XVID", "DIVX", "DX50", "divx", "MPG4", "wmv1",      "H265",
                              "vp90", "av01", "mp42", "MJPA", "    ", uint32_t{0}, 0xFFFFFFFF};
    for (const ChunkId code : kCodes) {
        SCOPED_TRACE(idText(code));
        EXPECT_EQ("video/x-unknown", mimeOf(code));
        EXPECT_EQ(1, unsupported());
        EXPECT_THAT(log(), Not(Contains(dropped())));
    }
}

TEST_F(VideoCodec, OutsideTheTableIsReportedAsItIsSpelled) {
    mimeOf("XviD");
    EXPECT_THAT(log(), Contains(warning("unknown fourcc " + idText("XviD"))));
}

TEST_F(VideoCodec, OnlyLettersAreFolded) {
    // Each differs from a known code in bit 5 of a character that is no letter.
    for (const ChunkId code : {ChunkId("AVC\x11"),
                               ChunkId("H\x12"
                                       "64"),
                               ChunkId("VP8\x10")})
        EXPECT_EQ("video/x-unknown", mimeOf(code));
}

TEST_F(VideoCodec, UnknownOneIsStillRead) {
    AviFile avi = fileOf({videoStream("XVID", 320, 240, 25)});
    ASSERT_EQ(1u, open(avi));
    EXPECT_EQ(320, int32Of(0, AMEDIAFORMAT_KEY_WIDTH));
    EXPECT_EQ(25, int32Of(0, AMEDIAFORMAT_KEY_FRAME_RATE));
    EXPECT_EQ(avi.payloads(0), readPayloads(0));
}

TEST_F(VideoCodec, OneUnknownStreamMarksTheFile) {
    AviFile avi = fileOf({mjpegStream(), videoStream("XVID", 320, 240, 25)});
    ASSERT_EQ(2u, open(avi));
    EXPECT_EQ(1, unsupported());
    EXPECT_EQ("video/x-motion-jpeg", mime(0));
}

TEST_F(VideoCodec, MotionJpegIsReported) {
    mimeOf("MjpG");
    EXPECT_THAT(log(), Contains(warning("mjpeg fourcc " + idText("MjpG"))));
}

TEST_F(VideoCodec, OtherKnownOnesAreNotReported) {
    mimeOf("H263");
    EXPECT_EQ(0u, mLog.count(" fourcc 0x"));
}

}  // namespace avitest
