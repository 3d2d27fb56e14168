// SPDX-License-Identifier: Apache-2.0
//
// The format of a video stream: its length, the bytes behind it, and its log lines.

#include <media/NdkMediaFormat.h>

#include "tests/behaviour/streams/StreamsFixture.h"

namespace avitest {

using ::testing::Contains;
using ::testing::IsSupersetOf;
using ::testing::Not;

class VideoFormat : public StreamsFixture {
  protected:
    // Opens a VC-1 stream, whose extra data is published, with a strf of `bytes` bytes, and an
    // audio stream behind it.
    size_t openWithFormatOf(size_t bytes) {
        mAvi = fileOf({videoWithExtra("WVC1", patternBytes(64)), pcmStream()});
        editStream(mAvi, 0, [bytes](Chunk& strl) {
            strl.child("strf").marked("strf").payload.resize(bytes);
            strl.child("strf").padByte = 0xEE;
        });
        mLog.clear();
        return open(mAvi);
    }

    std::optional<Bytes> configuration() {
        return trackFormat(0).getBuffer(AMEDIAFORMAT_KEY_CSD_0);
    }

    AviFile mAvi;
};

TEST_F(VideoFormat, Of40BytesHasNoExtraData) {
    ASSERT_EQ(2u, openWithFormatOf(40));
    EXPECT_EQ(std::nullopt, configuration());
    EXPECT_EQ(0u, mLog.count("extra config data"));
    EXPECT_EQ(0u, mLog.count("skip invalid codec data"));
}

TEST_F(VideoFormat, Under40BytesDropsTheStream) {
    for (const size_t size : {0u, 16u, 38u, 39u}) {
        SCOPED_TRACE(size);
        ASSERT_EQ(1u, openWithFormatOf(size));
        EXPECT_THAT(mLog, Logged(ANDROID_LOG_ERROR, failureOf("parseSTRF", "3EF")));
        EXPECT_THAT(log(), Contains(dropped()));
    }
}

TEST_F(VideoFormat, ThatCannotBeReadDropsTheStream) {
    mAvi = fileOf({mjpegStream(), pcmStream()});
    editStream(mAvi, 0, [](Chunk& strl) { strl.child("strf").marked("strf"); });
    ASSERT_EQ(1u, openUnreadable(mAvi, "strf", 39));
    EXPECT_THAT(mLog, Logged(ANDROID_LOG_ERROR, failureOf("parseSTRF", "3EC")));
    EXPECT_THAT(log(), Contains(dropped()));
}

// The pad byte of an odd chunk does not count.
TEST_F(VideoFormat, UpToThreeExtraBytesAreSkipped) {
    for (const size_t extra : {1u, 2u, 3u}) {
        SCOPED_TRACE(extra);
        ASSERT_EQ(2u, openWithFormatOf(40 + extra));
        EXPECT_THAT(
            log(),
            Contains(debug(format("parseSTRF(): Video has %zuB extra config data.", extra))));
        EXPECT_THAT(
            log(),
            Contains(warning(format("parseSTRF(): skip invalid codec data %zu bytes", extra))));
        EXPECT_EQ(std::nullopt, configuration());
    }
}

TEST_F(VideoFormat, FourExtraBytesAreKept) {
    ASSERT_EQ(2u, openWithFormatOf(44));
    EXPECT_THAT(log(), Contains(debug("parseSTRF(): Video has 4B extra config data.")));
    EXPECT_EQ(0u, mLog.count("skip invalid codec data"));
    Bytes expected = patternBytes(64);
    expected.resize(4);
    EXPECT_EQ(expected, configuration());
}

TEST_F(VideoFormat, PadByteIsNoExtraData) {
    ASSERT_EQ(2u, openWithFormatOf(45));
    EXPECT_THAT(log(), Contains(debug("parseSTRF(): Video has 5B extra config data.")));
    Bytes expected = patternBytes(64);
    expected.resize(5);
    EXPECT_EQ(expected, configuration());
}

TEST_F(VideoFormat, ExtraDataReachesToTheEndOfTheChunk) {
    ASSERT_EQ(2u, openWithFormatOf(104));
    EXPECT_THAT(log(), Contains(debug("parseSTRF(): Video has 64B extra config data.")));
    EXPECT_EQ(patternBytes(64), configuration());
}

TEST_F(VideoFormat, ExtraDataThatCannotBeReadDropsTheStream) {
    mAvi = fileOf({videoWithExtra("WVC1", patternBytes(64)), pcmStream()});
    editStream(mAvi, 0, [](Chunk& strl) { strl.child("strf").marked("strf"); });
    ASSERT_EQ(1u, openUnreadable(mAvi, "strf", 103));
    EXPECT_THAT(mLog, Logged(ANDROID_LOG_ERROR, failureOf("parseSTRF", "3EC")));
    EXPECT_THAT(log(), Contains(dropped()));
}

TEST_F(VideoFormat, ExtraDataBeyondTheEndOfTheFileDropsTheStream) {
    mAvi = fileOf({videoWithExtra("WVC1", patternBytes(64))});
    editStream(mAvi, 0, [](Chunk& strl) { strl.child("strf").marked("strf"); });
    Bytes file = mAvi.build();
    file.resize(mAvi.place("strf").dataOffset + 103);
    EXPECT_EQ(0u, open(file));
    EXPECT_THAT(mLog, Logged(ANDROID_LOG_ERROR, failureOf("parseSTRF", "3EC")));
    EXPECT_THAT(log(), Contains(dropped()));
}

TEST_F(VideoFormat, ExtraDataLongerThanTheFileAllocatesNothing) {
    mAvi = fileOf({videoWithExtra("WVC1", patternBytes(64))});
    editStream(mAvi, 0, [](Chunk& strl) { strl.child("strf").marked("strf").declare(0x7FFFFFF0); });
    auto& source = mSources.emplace_back(mMemory.emplace_back(mAvi.build()));
    openSource(source);
    EXPECT_EQ(0u, countTracks());
    EXPECT_THAT(mLog, Logged(ANDROID_LOG_ERROR, failureOf("parseSTRF", "3EC")));
    for (const auto& call : source.calls())
        EXPECT_LT(call.size, 0x10000u);
}

TEST_F(VideoFormat, PublishesTheSize) {
    mAvi = fileOf({videoStream("MJPG", 1920, 1088, 25)});
    ASSERT_EQ(1u, open(mAvi));
    EXPECT_EQ(1920, int32Of(0, AMEDIAFORMAT_KEY_WIDTH));
    EXPECT_EQ(1088, int32Of(0, AMEDIAFORMAT_KEY_HEIGHT));
}

// A negative height means rows from top to bottom.
TEST_F(VideoFormat, NegativeSizeIsPublishedAsItIs) {
    Stream stream = mjpegStream();
    std::get<BitmapInfo>(stream.format).width = -2;
    std::get<BitmapInfo>(stream.format).height = -240;
    mAvi = fileOf({stream});
    ASSERT_EQ(1u, open(mAvi));
    EXPECT_EQ(-2, int32Of(0, AMEDIAFORMAT_KEY_WIDTH));
    EXPECT_EQ(-240, int32Of(0, AMEDIAFORMAT_KEY_HEIGHT));
    EXPECT_THAT(log(), Contains(debug("   height:        4294967056")));
}

TEST_F(VideoFormat, SizeAndCodecAreAlwaysLogged) {
    mAvi = fileOf({mjpegStream()});
    ASSERT_EQ(1u, open(mAvi));
    EXPECT_THAT(log(), IsSupersetOf({
                           debug("   width:         320"),
                           debug("   height:        240"),
                           debug("   compression:   MJPG(video/x-motion-jpeg)"),
                       }));
    EXPECT_EQ(0u, mLog.count("==== AVIBitmapInfo ===="));
    EXPECT_EQ(0u, mLog.count("   planes:"));
    EXPECT_EQ(0u, mLog.count("BFourCC2MIME"));
}

TEST_F(VideoFormat, AllFieldsAreLoggedOnRequest) {
    Stream stream = mjpegStream();
    auto& info = std::get<BitmapInfo>(stream.format);
    info.size = 41;
    info.planes = 2;
    info.bitCount = 24;
    info.sizeImage = 0xFFFFFFFF;
    info.xPelsPerMeter = 5;
    info.yPelsPerMeter = 6;
    info.colorsUsed = 7;
    info.colorsImportant = 8;
    mAvi = fileOf({stream});
    ASSERT_EQ(1u, openLogged(mAvi));
    EXPECT_THAT(log(), IsSupersetOf({
                           verbose("BFourCC2MIME fourcc " + idText("MJPG")),
                           verbose("==== AVIBitmapInfo ===="),
                           verbose("   size:          41"),
                           debug("   width:         320"),
                           debug("   height:        240"),
                           verbose("   planes:        2"),
                           verbose("   bitCount:      24"),
                           debug("   compression:   MJPG(video/x-motion-jpeg)"),
                           verbose("   sizeImage:     4294967295"),
                           verbose("   xPelsPerMeter: 5"),
                           verbose("   yPelsPerMeter: 6"),
                           verbose("   clrUsed:       7"),
                           verbose("   clrImportant:  8"),
                       }));
}

TEST_F(VideoFormat, ExtraDataIsDumpedOnRequest) {
    mAvi = fileOf({videoWithExtra("MJPG", {0x00, 0x0F, 0xA0, 0xFF})});
    ASSERT_EQ(1u, openLogged(mAvi));
    EXPECT_THAT(log(), Contains(verbose("00 0f a0 ff ")));
}

TEST_F(VideoFormat, ExtraDataIsNotDumpedUnasked) {
    mAvi = fileOf({videoWithExtra("MJPG", {0x00, 0x0F, 0xA0, 0xFF})});
    ASSERT_EQ(1u, open(mAvi));
    EXPECT_EQ(0u, mLog.count("00 0f a0 ff"));
}

TEST_F(VideoFormat, DumpOfSixteenBytesEndsWithALineFeed) {
    mAvi = fileOf({videoWithExtra("MJPG", Bytes(16, 0x11))});
    ASSERT_EQ(1u, openLogged(mAvi));
    EXPECT_THAT(log(), Contains(verbose("11 11 11 11 11 11 11 11 11 11 11 11 11 11 11 11\n")));
}

}  // namespace avitest
