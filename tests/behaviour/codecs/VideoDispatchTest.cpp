// SPDX-License-Identifier: Apache-2.0
//
// What every video track gets at its tenth sample: the framing of AVC settled, and an aspect ratio.

#include "tests/behaviour/codecs/CodecsFixture.h"

namespace avitest {
namespace {

using ::testing::Contains;
using ::testing::Not;

const LogLine kDefaultRatio = debug(
    "checkSampleAspectRatio(): No SAR found in container. Set sarWidth : sarHeight(1 : 1) as "
    "default.");
const LogLine kLengthStyle = warning("generateVideoCodecData(): Length + NALU style H264");

LogLine probedSample(size_t number) {
    return warning("generateVideoCodecData(): Start code + NALU style H264 from sample " +
                   std::to_string(number));
}

class VideoDispatch : public CodecTest {
  protected:
    void openMjpeg(size_t samples) {
        openSamples(mjpegStream(), videoSamples(patternBytes(64), samples, patternBytes(40)));
    }
    size_t probeLines() const { return mLog.count("style H264"); }
};

TEST_F(VideoDispatch, TenthSampleBringsTheDefaultRatio) {
    openMjpeg(10);
    EXPECT_EQ(number(AMEDIAFORMAT_KEY_SAR_WIDTH), 1);
    EXPECT_EQ(number(AMEDIAFORMAT_KEY_SAR_HEIGHT), 1);
    EXPECT_THAT(log(), Contains(kDefaultRatio));
}

TEST_F(VideoDispatch, NineSamplesBringNothing) {
    openMjpeg(9);
    EXPECT_EQ(number(AMEDIAFORMAT_KEY_SAR_WIDTH), std::nullopt);
    EXPECT_EQ(number(AMEDIAFORMAT_KEY_SAR_HEIGHT), std::nullopt);
    EXPECT_THAT(log(), Not(Contains(kDefaultRatio)));
}

TEST_F(VideoDispatch, FurtherSamplesDoNotBringItAgain) {
    openMjpeg(25);
    EXPECT_EQ(mLog.count(kDefaultRatio.text), 1u);
}

TEST_F(VideoDispatch, RatioOfTheContainerStays) {
    Stream stream = mjpegStream();
    stream.properties = VideoProperties();
    stream.properties->frameAspectRatio = 0x00090010;
    openSamples(stream, videoSamples(patternBytes(64), 10, patternBytes(40)));

    EXPECT_EQ(number(AMEDIAFORMAT_KEY_SAR_WIDTH), 9);
    EXPECT_EQ(number(AMEDIAFORMAT_KEY_SAR_HEIGHT), 16);
    EXPECT_THAT(log(), Not(Contains(kDefaultRatio)));
}

TEST_F(VideoDispatch, CodecsWithoutABuilderGetTheRatioOnly) {
    for (const ChunkId fourcc : {ChunkId("MJPG"), ChunkId("FMP4"), ChunkId("H263"), ChunkId("WVC1"),
                                 ChunkId("WMV3"), ChunkId("VP80"), ChunkId("FLV1")}) {
        SCOPED_TRACE(fourcc.text());
        openSamples(videoStream(fourcc, 320, 240, 25), videoSamples(unit4({0x67, 1, 2, 3})));
        EXPECT_EQ(number(AMEDIAFORMAT_KEY_SAR_WIDTH), 1);
        EXPECT_FALSE(isBad());
        for (const char* key : {AMEDIAFORMAT_KEY_CSD_AVC, AMEDIAFORMAT_KEY_CSD_HEVC,
                                AMEDIAFORMAT_KEY_ESDS, AMEDIAFORMAT_KEY_CSD_0})
            EXPECT_EQ(buffer(key), std::nullopt) << key;
        EXPECT_EQ(probeLines(), 0u);
    }
}

// Readers of the log find the container's ratio before that of the stream.
TEST_F(VideoDispatch, RatioIsLoggedBeforeTheConfiguration) {
    struct Row {
        ChunkId fourcc;
        Bytes first;
        const char* text;
    };
    const Row rows[] = {
        {"H264", unit4({0x65, 1, 2, 3}), "generateAvcCodecData(): No SPS found!!!"},
        {"HEVC", unit4({0x65, 1, 2, 3}), "generateHevcCodecData(): Found no sequence start!"},
        {"MPG2", unit3({0x00, 1, 2, 3}), "Something wrong to generateMPEG2CodecData."}};
    for (const Row& row : rows) {
        SCOPED_TRACE(row.text);
        openSamples(videoStream(row.fourcc, 320, 240, 25), videoSamples(row.first));
        std::vector<std::string> order;
        for (const LogLine& line : log()) {
            if (line == kDefaultRatio) order.push_back("ratio");
            if (line.text.find(row.text) == 0) order.push_back("configuration");
        }
        EXPECT_EQ(order, (std::vector<std::string>{"ratio", "configuration"}));
    }
}

TEST_F(VideoDispatch, MimeTypeIsLoggedOnlyWithTheExtractLog) {
    openMjpeg(10);
    EXPECT_EQ(mLog.count("generateCodecData for"), 0u);

    openSamplesLogged(mjpegStream(), videoSamples(patternBytes(64), 10, patternBytes(40)));
    EXPECT_THAT(log(), Contains(verbose("generateCodecData for [video/x-motion-jpeg]:")));
}

// Of the framing probe the outcome shows in what comes later: samples with length prefixes are
// converted, those with start codes are handed out as they are.
class AvcFraming : public VideoDispatch {
  protected:
    Stream mStream = videoStream("H264", 320, 240, 25);
    std::vector<Bytes> mSamples = videoSamples(unit4({0x65, 1, 2, 3, 4}));

    void openAllKey() {
        mLog.clear();
        AviFile avi;
        avi.addStream(mStream);
        for (const Bytes& sample : mSamples)
            avi.addChunk(0, sample, kKey);
        ASSERT_EQ(open(avi), 1u);
    }
};

TEST_F(AvcFraming, KeySamplesAreNotProbed) {
    openAllKey();
    EXPECT_EQ(probeLines(), 1u);
    EXPECT_THAT(log(), Contains(kLengthStyle));
}

TEST_F(AvcFraming, FirstOtherSampleIsProbed) {
    openSamples(mStream, mSamples);
    EXPECT_EQ(probeLines(), 2u);
    EXPECT_THAT(log(), Contains(probedSample(1)));
    EXPECT_THAT(log(), Contains(kLengthStyle));
}

TEST_F(AvcFraming, SampleLineComesFirst) {
    openSamples(mStream, mSamples);
    std::vector<LogLine> lines;
    for (const LogLine& line : log()) {
        if (line.text.find("style H264") != std::string::npos) lines.push_back(line);
    }
    EXPECT_EQ(lines, (std::vector<LogLine>{probedSample(1), kLengthStyle}));
}

TEST_F(AvcFraming, SamplesUnderFiveBytesAreNotProbed) {
    mSamples[1] = {0, 0, 0, 1};
    mSamples[2] = {0};
    mSamples[3] = {};
    openSamples(mStream, mSamples);
    EXPECT_THAT(log(), Contains(probedSample(4)));
}

TEST_F(AvcFraming, SampleOfFiveBytesIsProbed) {
    mSamples[1] = {0, 0, 0, 1, 0x41};
    openSamples(mStream, mSamples);
    EXPECT_THAT(log(), Contains(probedSample(1)));
}

// Sizes are signed here: that of an index entry that claims 2 GiB is below five bytes.
TEST_F(AvcFraming, SizesOf2GiBAndMoreAreNotProbed) {
    for (const uint32_t size : {0x80000000u, 0x80000005u, 0xFFFFFFFFu}) {
        SCOPED_TRACE(format("0x%08x", size));
        mLog.clear();
        AviFile avi = codecFile(mStream, mSamples);
        avi.segment().index.edit = [size](std::vector<Idx1Entry>& entries) {
            entries[1].length = size;
        };
        ASSERT_EQ(open(avi), 2u);
        EXPECT_THAT(log(), Contains(probedSample(2)));
        EXPECT_EQ(probeLines(), 2u);
    }
}

TEST_F(AvcFraming, SizeBelow2GiBIsProbed) {
    AviFile avi = codecFile(mStream, mSamples);
    avi.segment().index.edit = [](std::vector<Idx1Entry>& entries) {
        entries[1].length = 0x7FFFFFFF;
    };
    ASSERT_EQ(open(avi), 2u);
    EXPECT_THAT(log(), Contains(probedSample(1)));
}

TEST_F(AvcFraming, UnreadableSamplesAreSkippedSilently) {
    openSamplesWithout(mStream, mSamples, {1, 2});
    EXPECT_THAT(log(), Contains(probedSample(3)));
    EXPECT_EQ(probeLines(), 2u);
}

TEST_F(AvcFraming, NoReadableSampleLeavesLengthPrefixes) {
    openSamplesWithout(mStream, mSamples, {1, 2, 3, 4, 5, 6, 7, 8, 9});
    EXPECT_EQ(probeLines(), 1u);
    EXPECT_THAT(log(), Contains(kLengthStyle));
}

TEST_F(AvcFraming, FourByteStartCodesLeaveSamplesAsTheyAre) {
    openSamples(mStream, mSamples);
    EXPECT_EQ(readPayloads(0), mSamples);
}

// Only the code of four bytes counts.
TEST_F(AvcFraming, ThreeByteStartCodeCountsAsLengthPrefix) {
    mSamples = videoSamples(unit3({0x65, 1, 2, 3, 4}), 10, unit3({0x67, 0x9A, 0x02, 0x05}));
    openSamples(mStream, mSamples);
    EXPECT_THAT(log(), Contains(probedSample(1)));
    EXPECT_THAT(log(), Contains(kLengthStyle));
}

TEST_F(AvcFraming, ParameterSetsInTheStreamFormatLeaveNothingToProbe) {
    std::get<BitmapInfo>(mStream.format).extra =
        unit4({0x67, 0x42, 0, 30, 0xF4}) + unit4({0x68, 0xCE, 0x3C, 0x80});
    openSamples(mStream, mSamples);
    EXPECT_EQ(probeLines(), 0u);
}

TEST_F(AvcFraming, NineSamplesAreNotProbed) {
    mSamples.pop_back();
    openSamples(mStream, mSamples);
    EXPECT_EQ(probeLines(), 0u);
}

TEST_F(AvcFraming, OtherCodecsAreNotProbed) {
    openSamples(videoStream("HEVC", 320, 240, 25), mSamples);
    EXPECT_EQ(probeLines(), 0u);
}

}  // namespace
}  // namespace avitest
