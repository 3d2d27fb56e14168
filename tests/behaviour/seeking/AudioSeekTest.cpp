// SPDX-License-Identifier: Apache-2.0
//
// Where audio resumes whose chunks hold samples of constant size, or one frame each.

#include "tests/behaviour/seeking/SeekingFixture.h"

namespace avitest {
namespace {

class AudioSeek : public SeekingTest {
  protected:
    void openSizes(const Stream& stream, const std::vector<size_t>& sizes) {
        AviFile avi = audioFile(stream, sizes);
        open(avi);
    }
    // Where a seek to each time lands, whatever the mode.
    void expectLandings(const std::vector<std::pair<int64_t, int>>& rows) {
        StartedTrack audio(track(0));
        for (const auto& [timeUs, chunk] : rows) {
            for (uint32_t mode = 0; mode < kModes; ++mode) {
                SCOPED_TRACE(testing::Message() << mode << " @" << timeUs);
                EXPECT_EQ(chunkAt(audio, mode, timeUs), chunk);
            }
        }
    }
    void expectEndAtFarTimes() {
        for (const int64_t timeUs : kFarTimes) {
            SCOPED_TRACE(timeUs);
            EXPECT_EQ(chunkAt(0, kPrevious, timeUs), kEndOfStream);
        }
    }
    // 1000 bytes a second.
    static Stream byteStream() {
        Stream stream = alawStream();
        stream.header.rate = 1000;
        return stream;
    }
    // One second of frames.
    static Stream frameStream() {
        Stream stream = frameAudioStream(0x57, 1, 8000, 160);
        stream.header.length = 50;
        return stream;
    }
};

TEST_F(AudioSeek, BytesLandOnTheChunkThatHoldsTheTime) {
    openSizes(byteStream(), {1000, 1000, 1000});
    expectLandings({{1500000, 1},
                    {0, 0},
                    {-1, 0},
                    {INT64_MIN, 0},
                    {999999, 0},
                    {1000000, 1},
                    {1999999, 1},
                    {2000000, 2},
                    {2999999, 2},
                    {3000000, kEndOfStream},
                    {3600000000, kEndOfStream}});
    expectEndAtFarTimes();
}

TEST_F(AudioSeek, BytesOfUnequalChunks) {
    openSizes(byteStream(), {10, 3000, 1, 500});
    expectLandings({{0, 0},
                    {9999, 0},
                    {10000, 1},
                    {3009999, 1},
                    {3010000, 2},
                    {3010999, 2},
                    {3011000, 3},
                    {3510999, 3},
                    {3511000, kEndOfStream}});
}

TEST_F(AudioSeek, SampleSizeDividesTheBytes) {
    Stream stream = alawStream();
    stream.header.scale = 7;
    stream.header.rate = 3000;
    stream.header.sampleSize = 13;
    openSizes(stream, {100, 101, 50});
    // Chunk ends: (bytes * 1000000 * 7 / 3000) / 13, each quotient cut.
    expectLandings(
        {{17947, 0}, {17948, 1}, {36075, 1}, {36076, 2}, {45050, 2}, {45051, kEndOfStream}});
}

TEST_F(AudioSeek, PcmInSampleFrames) {
    openSizes(pcmStream(2, 8000, 16), {3200, 3200, 3200});
    expectLandings({{99999, 0}, {100000, 1}, {250000, 2}, {300000, kEndOfStream}});
}

TEST_F(AudioSeek, AdpcmInBlocks) {
    constexpr uint16_t kMsAdpcm = 2;
    Stream stream = audioStream(kMsAdpcm, 1, 8000, 4096, 256, 4);
    stream.header.scale = 1;
    stream.header.rate = 16;  // blocks a second
    stream.header.sampleSize = 1;
    openSizes(stream, {512, 512, 512});
    expectLandings({{124999, 0}, {125000, 1}, {250000, 2}, {375000, kEndOfStream}});
}

TEST_F(AudioSeek, WithoutRateNoTimeIsFound) {
    Stream stream = byteStream();
    stream.header.rate = 0;
    openSizes(stream, {1000, 1000});
    expectLandings({{0, kEndOfStream}, {1, kEndOfStream}});
}

TEST_F(AudioSeek, FramesShareTheDuration) {
    openSizes(frameStream(), {20, 30, 20, 31, 20});
    // A fifth of a second each, rounded to the nearest beginning.
    expectLandings({{0, 0},
                    {-200000, 0},
                    {99000, 0},
                    {101000, 1},
                    {299000, 1},
                    {301000, 2},
                    {800000, 4},
                    {899000, 4},
                    {901000, kEndOfStream},
                    {1000000, kEndOfStream},
                    {3600000000, kEndOfStream}});
    expectEndAtFarTimes();
}

// Times in the middle of a chunk, where the rounding of the quotient and of the product decides.
TEST_F(AudioSeek, FramesShareTheDurationInFloats) {
    Stream stream = frameStream();
    stream.header.length = 500;  // ten seconds
    openSizes(stream, std::vector<size_t>(100, 20));
    expectLandings({{1450000, 15}, {2650000, 26}});
}

TEST_F(AudioSeek, FramesOfNoDurationAreTheFirst) {
    Stream stream = frameStream();
    stream.header.length = 0;
    openSizes(stream, {20, 30, 20});
    expectLandings({{0, 0}, {1, 0}, {1000000, 0}, {INT64_MAX, 0}});
}

TEST_F(AudioSeek, FramesShareTheClampedDuration) {
    AviFile avi = videoFile(groups(1, 25));
    Stream stream = frameStream();
    stream.header.length = 500;  // ten seconds, beside one of video
    addAudio(avi, avi.addStream(stream), {20, 20, 20, 20});
    open(avi);
    EXPECT_EQ(chunkAt(1, kPrevious, 500000), 2);
    EXPECT_EQ(chunkAt(1, kPrevious, 990000), kEndOfStream);
}

TEST_F(AudioSeek, ReadingGoesOnFromTheLandingChunk) {
    openSizes(byteStream(), {1000, 1000, 1000});
    StartedTrack audio(track(0));
    EXPECT_EQ(seek(audio, kPrevious, 1500000), (Landing{1, 1000000, std::nullopt}));
    EXPECT_EQ(nextChunk(audio), 2);
    EXPECT_EQ(nextChunk(audio), kEndOfStream);
    EXPECT_EQ(seek(audio, kClosest, 500000), (Landing{0, 0, std::nullopt}));
}

TEST_F(AudioSeek, SeekBeyondTheEndLeavesThePositionAlone) {
    openSizes(byteStream(), {1000, 1000, 1000});
    StartedTrack audio(track(0));
    EXPECT_EQ(chunkAt(audio, kPrevious, 500000), 0);
    EXPECT_EQ(chunkAt(audio, kPrevious, 3000000), kEndOfStream);
    EXPECT_EQ(nextChunk(audio), 1);
}

TEST_F(AudioSeek, MidiSeeksAsAudio) {
    Stream stream = byteStream();
    stream.header.type = "midi";
    openSizes(stream, {1000, 1000, 1000});
    expectLandings({{1500000, 1}, {3000000, kEndOfStream}});
}

TEST_F(AudioSeek, SubtitlesStartOver) {
    AviFile avi = fileOf(subtitleStream(), {subtitleChunk("00:00:01.000", "00:00:02.000"),
                                            subtitleChunk("00:00:03.500", "00:00:04.000"),
                                            subtitleChunk("00:01:00.000", "00:01:02.000")});
    open(avi);
    StartedTrack subtitles(track(0));
    for (const int64_t timeUs : {int64_t{-5}, int64_t{0}, int64_t{3600000000}, INT64_MAX}) {
        for (uint32_t mode = 0; mode < kModes; ++mode)
            EXPECT_EQ(seek(subtitles, mode, timeUs), (Landing{0, 1000000, std::nullopt}));
    }
    EXPECT_EQ(nextChunk(subtitles), 1);
}

}  // namespace
}  // namespace avitest
