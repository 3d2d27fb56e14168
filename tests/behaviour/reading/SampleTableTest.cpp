// SPDX-License-Identifier: Apache-2.0
//
// What the index entries of a stream make of its sample table, seen through the format, the log and
// the samples read.

#include <media/NdkMediaFormat.h>

#include "tests/behaviour/reading/ReadingFixture.h"

namespace avitest {
namespace {

class SampleTable : public ReadingTest {
  protected:
    int32_t maxInputSize(size_t track) {
        return trackFormat(track).getInt32(AMEDIAFORMAT_KEY_MAX_INPUT_SIZE).value_or(-12345);
    }

    int64_t thumbnailTimeUs() {
        const auto result = extractor().trackMetaData(0, 1);
        return result.format.getInt64(AMEDIAFORMAT_KEY_THUMBNAIL_TIME).value_or(-12345);
    }
};

TEST_F(SampleTable, FirstVideoSampleOfSizeZeroIsDropped) {
    LogCapture log;
    openStream(mjpegStream(), {{}, {}, patternBytes(30), patternBytes(40)});

    EXPECT_EQ(timesOf(readAll(0)), (std::vector<int64_t>{0, 40000}));
    EXPECT_THAT(log, Logged(ANDROID_LOG_DEBUG, "finished samples 2 syncSamples 2"));
}

TEST_F(SampleTable, LaterVideoSampleOfSizeZeroIsKeptWithItsKeyFlag) {
    LogCapture log;
    openStream(mjpegStream(), {patternBytes(30), {}, patternBytes(40)});

    EXPECT_EQ(timesOf(readAll(0)), (std::vector<int64_t>{0, 80000}));
    EXPECT_THAT(log, Logged(ANDROID_LOG_DEBUG, "finished samples 3 syncSamples 3"));
}

TEST_F(SampleTable, AudioSampleOfSizeZeroIsDroppedAnywhere) {
    LogCapture log;
    const std::vector<Bytes> kept = {patternBytes(30, 1), patternBytes(40, 2)};
    openStream(alawStream(), {{}, kept[0], {}, kept[1], {}});

    EXPECT_EQ(readPayloads(0), kept);
    EXPECT_THAT(log, Logged(ANDROID_LOG_DEBUG, "sampleCount 2"));
}

TEST_F(SampleTable, SubtitleSampleOfSizeZeroIsDropped) {
    LogCapture log;
    openStream(subtitleStream(), {subtitleChunk("00:00:01.000", "00:00:02.000"), {}});

    EXPECT_EQ(readAll(0).size(), 1u);
    EXPECT_THAT(log, Logged(ANDROID_LOG_DEBUG, "sampleCount 1"));
}

TEST_F(SampleTable, RunningTotalsGiveEachChunkItsOwnSize) {
    Stream stream = pcmStream(2, 8000, 16);
    ASSERT_EQ(stream.header.sampleSize, 4u);
    const std::vector<Bytes> chunks = {patternBytes(100, 1), patternBytes(200, 2),
                                       patternBytes(50, 3)};
    openStream(std::move(stream), chunks);

    EXPECT_EQ(readPayloads(0), chunks);
    EXPECT_EQ(maxInputSize(0), 200);
}

TEST_F(SampleTable, RunningTotalsGiveEachChunkTheTimeOfTheBytesBeforeIt) {
    Stream stream = pcmStream(2, 8000, 16);
    openStream(std::move(stream), {patternBytes(100), patternBytes(200), patternBytes(50)});

    // 0, 100 and 300 bytes of 32000 a second.
    EXPECT_EQ(timesOf(readAll(0)), (std::vector<int64_t>{0, 3125, 9375}));
}

TEST_F(SampleTable, SizesWithoutSampleSizeStandForThemselves) {
    const std::vector<Bytes> chunks = {patternBytes(100, 1), patternBytes(200, 2),
                                       patternBytes(50, 3)};
    Stream stream = alawStream();
    stream.header.sampleSize = 0;
    openStream(std::move(stream), chunks);

    EXPECT_EQ(readPayloads(0), chunks);
    EXPECT_EQ(maxInputSize(0), 200);
}

TEST_F(SampleTable, KeyFlagsOfAudioCountWithoutBeingKept) {
    LogCapture log;
    AviFile avi;
    const size_t audio = avi.addStream(alawStream());
    avi.addChunk(audio, patternBytes(10), kKey);
    avi.addChunk(audio, patternBytes(10), kNoFlags);
    openFile(avi.build());

    for (const Sample& sample : readAll(0))
        EXPECT_TRUE(sample.sync);
    EXPECT_THAT(log, Logged(ANDROID_LOG_DEBUG, "finished samples 2 syncSamples 1"));
}

TEST_F(SampleTable, ThumbnailIsTheLargestKeySample) {
    AviFile avi;
    const size_t video = avi.addStream(mjpegStream());
    avi.addChunk(video, patternBytes(20), kKey);
    avi.addChunk(video, patternBytes(90), kNoFlags);
    avi.addChunk(video, patternBytes(30), kKey);
    avi.addChunk(video, patternBytes(25), kKey);
    openFile(avi.build());

    EXPECT_EQ(thumbnailTimeUs(), 80000);
    EXPECT_EQ(maxInputSize(0), 90);
}

TEST_F(SampleTable, ThumbnailOfEqualKeySamplesIsTheFirst) {
    AviFile avi;
    const size_t video = avi.addStream(mjpegStream());
    avi.addChunk(video, patternBytes(20), kKey);
    avi.addChunk(video, patternBytes(30), kKey);
    avi.addChunk(video, patternBytes(30), kKey);
    openFile(avi.build());

    EXPECT_EQ(thumbnailTimeUs(), 40000);
}

TEST_F(SampleTable, ThumbnailWithoutKeySampleIsTheFirstSample) {
    AviFile avi;
    const size_t video = avi.addStream(mjpegStream());
    avi.addChunk(video, patternBytes(20), kNoFlags);
    avi.addChunk(video, patternBytes(30), kNoFlags);
    openFile(avi.build());

    EXPECT_EQ(thumbnailTimeUs(), 0);
}

TEST_F(SampleTable, SampleAtTheEndOfTheFileIsDroppedWithItsPlace) {
    AviFile avi = fileOf(mjpegStream(), {patternBytes(30), patternBytes(40), patternBytes(50)});
    const auto fileSize = static_cast<uint32_t>(avi.build().size());
    avi.segment().index.offsets = IndexOffsets::kAbsolute;
    avi.segment().index.edit = [fileSize](std::vector<Idx1Entry>& entries) {
        entries[1].offset = fileSize - 8;
    };
    LogCapture log;
    openFile(avi.build());

    EXPECT_EQ(readPayloads(0), (std::vector<Bytes>{patternBytes(30), patternBytes(50)}));
    const std::string size = std::to_string(fileSize);
    EXPECT_THAT(log, Logged(ANDROID_LOG_ERROR, "addSampleById(): Sample offset(" + size +
                                                   ") exceeds the fileSize(" + size + ")! @L"));
}

TEST_F(SampleTable, SampleAtTheLastByteOfTheFileIsKept) {
    AviFile avi = fileOf(mjpegStream(), {patternBytes(30), patternBytes(40)});
    const auto fileSize = static_cast<uint32_t>(avi.build().size());
    avi.segment().index.offsets = IndexOffsets::kAbsolute;
    avi.segment().index.edit = [fileSize](std::vector<Idx1Entry>& entries) {
        entries[1].offset = fileSize - 1 - 8;
    };
    LogCapture log;
    openFile(avi.build());

    EXPECT_EQ(countTracks(), 1u);
    EXPECT_EQ(log.count("exceeds the fileSize"), 0u);
    EXPECT_THAT(log, Logged(ANDROID_LOG_DEBUG, "finished samples 2 "));
}

// The table that the headers began with is emptied for the index: its largest sample as well.
TEST_F(SampleTable, IndexReplacesTheLargestSampleOfTheHeader) {
    Stream stream = alawStream();
    stream.header.sampleSize = 5000;
    openStream(std::move(stream), {patternBytes(30), patternBytes(40)});

    EXPECT_EQ(maxInputSize(0), 40);
}

TEST_F(SampleTable, IndexLongerThanAllChunksKeepsEverySample) {
    LogCapture log;
    AviFile avi = fileOf(mjpegStream(), {patternBytes(2)});
    avi.segment().index.edit = [](std::vector<Idx1Entry>& entries) {
        entries.resize(2000, entries.front());
    };
    openFile(avi.build());

    EXPECT_EQ(readAll(0).size(), 2000u);
    EXPECT_EQ(log.count("more samples than the file can hold"), 0u);
}

}  // namespace
}  // namespace avitest
