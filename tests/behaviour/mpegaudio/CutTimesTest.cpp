// SPDX-License-Identifier: Apache-2.0
//
// Times of frames: a running time that each frame's own length moves on, pulled forward by the
// times of chunks.

#include "tests/behaviour/mpegaudio/CuttingModel.h"

namespace avitest {
namespace {

class CutTimes : public MpegAudioTest {
  protected:
    // Reads the only track and compares every frame with the model's.
    void expectLikeModel(const Stream& stream, ModelStream model,
                         const std::vector<Bytes>& chunks) {
        openStream(stream, chunks);
        model.durationUs = trackFormat(0).getInt64(AMEDIAFORMAT_KEY_DURATION).value_or(0);
        std::vector<int64_t> times;
        for (const ModelRead& read : CuttingModel(model, chunks).readAll())
            times.push_back(read.timeUs);
        EXPECT_EQ(timesOf(readAll(0)), times);
    }
};

TEST_F(CutTimes, OfAChunkRunOnWithTheFrames) {
    openStream(mp3Bytes(), {joined(frames(4))});
    EXPECT_EQ(timesOf(readAll(0)), (std::vector<int64_t>{kMp3FrameUs, 2 * kMp3FrameUs,
                                                         3 * kMp3FrameUs, 4 * kMp3FrameUs}));
}

TEST_F(CutTimes, FollowTheBitRateOfEachFrame) {
    openStream(mp3Bytes(), {joined({frameOf(0xFFFB1000, 104), frameOf(0xFFFBE000, 1044),
                                    frameOf(0xFFFB9200, 418), frame()})});
    // 104 * 8000 / 32, 1044 * 8000 / 320, 418 * 8000 / 128, 417 * 8000 / 128
    EXPECT_EQ(timesOf(readAll(0)),
              (std::vector<int64_t>{26000, 26000 + 26100, 52100 + 26125, 78225 + 26062}));
}

TEST_F(CutTimes, AreNeverBeforeTheChunk) {
    openStream(mp3Bytes(4000), {joined(frames(2)), frame(2), frame(3)});
    EXPECT_EQ(timesOf(readAll(0)),
              (std::vector<int64_t>{kMp3FrameUs, 2 * kMp3FrameUs, 208500, 312750}));
}

TEST_F(CutTimes, RunAheadOfChunksThatAreTooEarly) {
    openStream(mp3Bytes(64000), {joined(frames(2)), frame(2), frame(3)});
    EXPECT_EQ(timesOf(readAll(0)), (std::vector<int64_t>{kMp3FrameUs, 2 * kMp3FrameUs,
                                                         3 * kMp3FrameUs, 4 * kMp3FrameUs}));
}

// Unlike a whole one it begins where the one before ended, so that two in a row have one time.
TEST_F(CutTimes, OfASplitFrameIsThatOfItsBeginning) {
    openStream(mp3Bytes(64000), split(joined(frames(4)), {2 * kFrameSize + 100}));
    EXPECT_EQ(timesOf(readAll(0)), (std::vector<int64_t>{kMp3FrameUs, 2 * kMp3FrameUs,
                                                         2 * kMp3FrameUs, 4 * kMp3FrameUs}));
}

TEST_F(CutTimes, OfASplitFrameIsThatOfALaterChunk) {
    openStream(mp3Bytes(4000), split(joined(frames(4)), {2 * kFrameSize, 100}));
    // The second chunk begins at 208500 us, the third at 233500 us.
    EXPECT_EQ(timesOf(readAll(0)), (std::vector<int64_t>{kMp3FrameUs, 2 * kMp3FrameUs, 208500,
                                                         208500 + 2 * kMp3FrameUs}));
}

TEST_F(CutTimes, OfAStreamOfChunksShareTheDuration) {
    Stream stream = mp3Frames();
    stream.header.length = 1000;  // much longer than the frames
    const int64_t durationUs = int64_t{1000} * 1152 * 1000000 / 44100;
    openStream(stream, frames(4));
    EXPECT_EQ(timesOf(readAll(0)), (std::vector<int64_t>{kMp3FrameUs, durationUs / 4,
                                                         durationUs * 2 / 4, durationUs * 3 / 4}));
}

TEST_F(CutTimes, OfManyPackingsAreThoseOfTheModel) {
    const Bytes all = joined(frames(20));
    for (const uint32_t rate : {4000u, 15000u, 16000u, 17000u, 64000u}) {
        for (size_t size = 40; size < 2000; size += 131) {
            SCOPED_TRACE(std::to_string(rate) + " " + std::to_string(size));
            std::vector<size_t> sizes = {2 * kFrameSize};
            sizes.insert(sizes.end(), (all.size() - sizes[0]) / size, size);
            ModelStream model;
            model.rate = rate;
            expectLikeModel(mp3Bytes(rate), model, split(all, sizes));
        }
    }
}

TEST_F(CutTimes, OfAStreamOfChunksAreThoseOfTheModel) {
    const Bytes all = joined(frames(20));
    for (size_t size = 140; size < 2000; size += 331) {
        SCOPED_TRACE(size);
        std::vector<size_t> sizes = {2 * kFrameSize};
        sizes.insert(sizes.end(), (all.size() - sizes[0]) / size, size);
        ModelStream model;
        model.countsBytes = false;
        model.scale = 1152;
        model.rate = 44100;
        expectLikeModel(mp3Frames(), model, split(all, sizes));
    }
}

TEST_F(CutTimes, RunOnFromTheTimeOfASeek) {
    openStream(mp3Bytes(), frames(10));
    // Chunk 3 lasts from 78187 to 104250 us.
    const std::vector<Sample> samples = readFrom(0, {android::SEEK, 100000}, 2);
    ASSERT_EQ(samples.size(), 2u);
    EXPECT_EQ(samples[0].bytes, frame(3));
    EXPECT_EQ(samples[0].timeUs, 100000 + kMp3FrameUs);
    EXPECT_EQ(samples[1].timeUs, 100000 + 2 * kMp3FrameUs);
}

TEST_F(CutTimes, OfASeekBeforeTheBeginningRunOnFromZero) {
    openStream(mp3Bytes(), frames(10));
    const std::vector<Sample> samples = readFrom(0, {android::SEEK, -5}, 1);
    ASSERT_EQ(samples.size(), 1u);
    EXPECT_EQ(samples[0].bytes, frame(0));
    EXPECT_EQ(samples[0].timeUs, kMp3FrameUs);
}

TEST_F(CutTimes, SeekDropsTheRestOfTheChunk) {
    openStream(mp3Bytes(), {joined(frames(6)), joined({frame(6), frame(7)})});
    StartedTrack started(track(0));
    EXPECT_EQ(started.sample().bytes, frame(0));
    const ReadResult result = started.track().read(android::SEEK, 170000);
    ASSERT_EQ(result.status, AMEDIA_OK);
    EXPECT_EQ(sampleOf(result.buffer).bytes, frame(6));
}

TEST_F(CutTimes, SeekForgetsTheBytesASplitFrameTook) {
    openStream(mp3Bytes(), split(joined(frames(6)), {2 * kFrameSize + 100}));
    StartedTrack started(track(0));
    for (int i = 0; i < 3; ++i)
        EXPECT_EQ(started.sample().bytes, frame(static_cast<uint32_t>(i)));
    const ReadResult result = started.track().read(android::SEEK, 0);
    ASSERT_EQ(result.status, AMEDIA_OK);
    EXPECT_EQ(sampleOf(result.buffer).bytes, frame(0));
}

TEST_F(CutTimes, RunOnAfterARestart) {
    openStream(mp3Bytes(), frames(5));
    const std::unique_ptr<Track> source = track(0);
    EXPECT_EQ(readTrack(*source, {}, 2).samples[1].timeUs, 2 * kMp3FrameUs);
    const ReadRun again = readTrack(*source, {}, 1);
    ASSERT_EQ(again.samples.size(), 1u);
    EXPECT_EQ(again.samples[0].bytes, frame(0));
    EXPECT_EQ(again.samples[0].timeUs, 3 * kMp3FrameUs);
}

}  // namespace
}  // namespace avitest
