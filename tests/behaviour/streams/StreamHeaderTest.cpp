// SPDX-License-Identifier: Apache-2.0
//
// The stream header: its length, its log lines, and what it publishes.

#include <media/NdkMediaFormat.h>

#include "tests/behaviour/streams/StreamsFixture.h"

namespace avitest {

using ::testing::Contains;
using ::testing::IsSupersetOf;
using ::testing::Not;

class StreamHeaderChunk : public StreamsFixture {
  protected:
    // Opens a video stream with the given first bytes of its header, an audio stream behind it.
    size_t openWithHeaderOf(size_t bytes) {
        AviFile avi = fileOf({mjpegStream(), pcmStream()});
        editStream(avi, 0, [bytes](Chunk& strl) { strl.child("strh").payload.resize(bytes); });
        return open(avi);
    }

    // Opens a video stream of this time base and length.
    void openVideo(uint32_t rate, uint32_t scale, uint32_t length) {
        Stream stream = videoStream("MJPG", 320, 240, rate, scale);
        stream.header.length = length;
        AviFile avi = fileOf({stream});
        mLog.clear();
        ASSERT_EQ(1u, open(avi));
    }

    std::optional<int64_t> fileDuration() {
        return fileFormat().getInt64(AMEDIAFORMAT_KEY_DURATION);
    }
};

TEST_F(StreamHeaderChunk, Of48BytesIsEnough) {
    EXPECT_EQ(2u, openWithHeaderOf(48));
}

TEST_F(StreamHeaderChunk, MayBeLongerThanItsFields) {
    EXPECT_EQ(2u, openWithHeaderOf(64));
}

TEST_F(StreamHeaderChunk, Under48BytesDropsTheStream) {
    EXPECT_EQ(1u, openWithHeaderOf(46));
    EXPECT_THAT(log(), Contains(error("parseSTRH(): error -3EF @line2800")));
    EXPECT_THAT(log(), Contains(dropped()));
}

TEST_F(StreamHeaderChunk, WithoutBytesDropsTheStream) {
    EXPECT_EQ(1u, openWithHeaderOf(0));
    EXPECT_THAT(log(), Contains(error("parseSTRH(): error -3EF @line2800")));
}

TEST_F(StreamHeaderChunk, PadByteCountsAsPartOfIt) {
    EXPECT_EQ(2u, openWithHeaderOf(47));
}

TEST_F(StreamHeaderChunk, ThatCannotBeReadDropsTheStream) {
    AviFile avi = fileOf({mjpegStream(), pcmStream()});
    editStream(avi, 0, [](Chunk& strl) { strl.child("strh").marked("strh"); });
    ASSERT_EQ(1u, openUnreadable(avi, "strh", 47));
    EXPECT_THAT(log(), Contains(error("parseSTRH(): error -3EC @line2805")));
    EXPECT_THAT(log(), Contains(dropped()));
}

TEST_F(StreamHeaderChunk, RectangleIsNotRead) {
    AviFile avi = fileOf({mjpegStream(), pcmStream()});
    editStream(avi, 0, [](Chunk& strl) { strl.child("strh").marked("strh"); });
    EXPECT_EQ(2u, openUnreadable(avi, "strh", 48));
}

TEST_F(StreamHeaderChunk, KindRateAndSampleSizeAreAlwaysLogged) {
    Stream stream = pcmStream();
    stream.header.scale = 4;
    stream.header.rate = 32000;
    AviFile avi = fileOf({stream});
    ASSERT_EQ(1u, open(avi));
    EXPECT_THAT(log(), IsSupersetOf({
                           debug("   fccType:    auds"),
                           debug("   rate/scale: 32000/4"),
                           debug("   sampleSize: 4"),
                       }));
    EXPECT_EQ(0u, mLog.count("==== AVIStreamHeader ===="));
    EXPECT_EQ(0u, mLog.count("   fccHandler:"));
    EXPECT_EQ(0u, mLog.count("   rcFrame:"));
}

TEST_F(StreamHeaderChunk, AllFieldsAreLoggedOnRequest) {
    Stream stream = mjpegStream();
    stream.header.handler = "abcd";
    stream.header.flags = 65536;
    stream.header.priority = 3;
    stream.header.language = 65535;
    stream.header.initialFrames = 7;
    stream.header.start = 11;
    stream.header.length = 12;
    stream.header.suggestedBufferSize = 4096;
    stream.header.quality = 0xFFFFFFFF;
    AviFile avi = fileOf({stream});
    ASSERT_EQ(1u, openLogged(avi));
    EXPECT_THAT(log(), IsSupersetOf({
                           verbose("==== AVIStreamHeader ===="),
                           debug("   fccType:    vids"),
                           verbose("   fccHandler: abcd"),
                           verbose("   flags:      65536"),
                           verbose("   priority:   3"),
                           verbose("   language:   65535"),
                           verbose("   initFrames: 7"),
                           debug("   rate/scale: 25/1"),
                           verbose("   start:      11"),
                           verbose("   length:     12"),
                           verbose("   sugBufSize: 4096"),
                           verbose("   quality:    -1"),
                           debug("   sampleSize: 0"),
                           verbose("   rcFrame:    (0, 0, 0, 0)"),
                       }));
}

TEST_F(StreamHeaderChunk, FrameRateIsRoundedByItsFirstDecimal) {
    const struct {
        uint32_t rate, scale;
        int32_t published;
    } kCases[] = {{25, 1, 25},     {30000, 1001, 30}, {24000, 1001, 24}, {2345, 100, 23},
                  {235, 10, 24},   {234, 10, 23},     {5, 10, 1},        {4, 10, 0},
                  {1000, 1, 1000}, {1999, 1000, 2},   {7, 2, 4}};
    for (const auto& row : kCases) {
        SCOPED_TRACE(format("%u / %u", row.rate, row.scale));
        openVideo(row.rate, row.scale, 3);
        EXPECT_EQ(row.published, int32Of(0, AMEDIAFORMAT_KEY_FRAME_RATE));
        const float fps = static_cast<float>(row.rate) / static_cast<float>(row.scale);
        EXPECT_THAT(log(),
                    Contains(debug(format("set track scale %u rate %u fps %f -> %d", row.scale,
                                          row.rate, static_cast<double>(fps), row.published))));
    }
}

// Rate and scale are rounded to floats before they are divided: the exact quotients are 17.499999,
// 1677722.5, 262144.49 and 2.49999.
TEST_F(StreamHeaderChunk, FrameRateIsAQuotientOfFloats) {
    const struct {
        uint32_t rate, scale;
        int32_t published;
    } kCases[] = {{17499999, 1000000, 18},
                  {16777225, 10, 1677722},
                  {26214449, 100, 262144},
                  {41943038, 16777217, 3}};
    for (const auto& row : kCases) {
        SCOPED_TRACE(format("%u / %u", row.rate, row.scale));
        openVideo(row.rate, row.scale, 3);
        EXPECT_EQ(row.published, int32Of(0, AMEDIAFORMAT_KEY_FRAME_RATE));
    }
}

// As a float, 0x7FFFFFC0 is 2 to the 31st already.
TEST_F(StreamHeaderChunk, FrameRateBeyond31BitsIsTheLargestNumber) {
    for (const uint32_t rate : {0x7FFFFFC0u, 0x7FFFFFFFu, 0x80000000u, 0xFFFFFFFFu}) {
        SCOPED_TRACE(format("0x%08x", rate));
        openVideo(rate, 1, 0xFFFFFFFF);
        EXPECT_EQ(0x7FFFFFFF, int32Of(0, AMEDIAFORMAT_KEY_FRAME_RATE));
        EXPECT_EQ(2000000, fileDuration());
    }
    openVideo(0x7FFFFFBF, 1, 3);
    EXPECT_EQ(0x7FFFFF80, int32Of(0, AMEDIAFORMAT_KEY_FRAME_RATE));
}

TEST_F(StreamHeaderChunk, WithoutRateOrScaleGivesNoFrameRate) {
    for (const auto& [rate, scale] : {std::pair(0u, 1u), std::pair(25u, 0u), std::pair(0u, 0u)}) {
        SCOPED_TRACE(format("%u / %u", rate, scale));
        openVideo(rate, scale, 3);
        EXPECT_FALSE(trackFormat(0).contains(AMEDIAFORMAT_KEY_FRAME_RATE));
        EXPECT_EQ(std::nullopt, fileDuration());
        EXPECT_EQ(0u, mLog.count("set track scale"));
        EXPECT_THAT(log(),
                    Contains(warning("parseSTRH(): No valid frame rate info in this track.\n")));
    }
}

TEST_F(StreamHeaderChunk, OfAudioGivesNoFrameRate) {
    AviFile avi = fileOf({pcmStream()});
    ASSERT_EQ(1u, open(avi));
    EXPECT_FALSE(trackFormat(0).contains(AMEDIAFORMAT_KEY_FRAME_RATE));
    EXPECT_EQ(std::nullopt, fileDuration());
    EXPECT_EQ(0u, mLog.count("set track scale"));
}

TEST_F(StreamHeaderChunk, OfAudioWithoutRateGivesNoWarning) {
    Stream stream = pcmStream();
    stream.header.rate = 0;
    AviFile avi = fileOf({stream});
    ASSERT_EQ(1u, open(avi));
    EXPECT_EQ(0u, mLog.count("No valid frame rate info"));
}

// The rounded rate on purpose.
TEST_F(StreamHeaderChunk, FileDurationCountsByTheRoundedRate) {
    openVideo(30000, 1001, 1000);
    EXPECT_EQ(33333333, fileDuration());
}

TEST_F(StreamHeaderChunk, FileDurationIsWide) {
    openVideo(1, 1, 0xFFFFFFFF);
    EXPECT_EQ(4294967295000000, fileDuration());
}

TEST_F(StreamHeaderChunk, FileDurationIsZeroWhenTheRateRoundsToZero) {
    openVideo(4, 10, 3);
    EXPECT_EQ(0, fileDuration());
}

TEST_F(StreamHeaderChunk, WithoutLengthGivesNoFileDuration) {
    openVideo(25, 1, 0);
    EXPECT_EQ(std::nullopt, fileDuration());
    EXPECT_EQ(25, int32Of(0, AMEDIAFORMAT_KEY_FRAME_RATE));
}

TEST_F(StreamHeaderChunk, LastVideoStreamSetsTheFileDuration) {
    Stream first = mjpegStream();
    first.header.length = 100;
    Stream second = mjpegStream();
    second.header.length = 50;
    AviFile avi = fileOf({first, second});
    ASSERT_EQ(2u, open(avi));
    EXPECT_EQ(2000000, fileDuration());
}

TEST_F(StreamHeaderChunk, DisplaySizeIsThatOfTheMainHeader) {
    AviFile avi = fileOf({mjpegStream(), pcmStream()});
    avi.header.width = 720;
    avi.header.height = 576;
    ASSERT_EQ(2u, open(avi));
    EXPECT_EQ(720, int32Of(0, AMEDIAFORMAT_KEY_DISPLAY_WIDTH));
    EXPECT_EQ(576, int32Of(0, AMEDIAFORMAT_KEY_DISPLAY_HEIGHT));
    EXPECT_EQ(320, int32Of(0, AMEDIAFORMAT_KEY_WIDTH));
    EXPECT_EQ(240, int32Of(0, AMEDIAFORMAT_KEY_HEIGHT));
    EXPECT_FALSE(trackFormat(1).contains(AMEDIAFORMAT_KEY_DISPLAY_WIDTH));
}

TEST_F(StreamHeaderChunk, DisplaySizeNeedsBothMeasures) {
    for (const auto& [width, height] : {std::pair(0u, 576u), std::pair(720u, 0u)}) {
        AviFile avi = fileOf({mjpegStream()});
        avi.header.width = width;
        avi.header.height = height;
        ASSERT_EQ(1u, open(avi));
        EXPECT_FALSE(trackFormat(0).contains(AMEDIAFORMAT_KEY_DISPLAY_WIDTH));
        EXPECT_FALSE(trackFormat(0).contains(AMEDIAFORMAT_KEY_DISPLAY_HEIGHT));
    }
}

TEST_F(StreamHeaderChunk, SampleSizeOfVideoIsIgnored) {
    Stream stream = mjpegStream();
    stream.header.sampleSize = 1000;
    AviFile avi = fileOf({stream});
    ASSERT_EQ(1u, open(avi));
    EXPECT_EQ(48, int32Of(0, AMEDIAFORMAT_KEY_MAX_INPUT_SIZE));
    EXPECT_EQ(avi.payloads(0), readPayloads(0));
}

}  // namespace avitest
