// SPDX-License-Identifier: Apache-2.0
//
// Where video resumes when its index is trusted: on a key frame, by the mode of the seek.

#include "tests/behaviour/seeking/SeekingFixture.h"

namespace avitest {
namespace {

constexpr uint32_t kBackwardModes[] = {kPrevious, kClosestSync, kClosest, 4, 5, 6, 7};

class VideoSeek : public SeekingTest {
  protected:
    // 25 frames a second, a key frame every 50, 200 in all.
    void SetUp() override {
        AviFile avi = videoFile(groups(4, 50));
        open(avi);
    }
    void openKinds(const std::string& kinds, uint32_t rate = 25, uint32_t scale = 1) {
        AviFile avi = videoFile(kinds, rate, scale);
        open(avi);
    }
};

TEST_F(VideoSeek, PreviousSyncLandsOnTheKeyFrameBefore) {
    StartedTrack video(track(0));
    EXPECT_EQ(seek(video, kPrevious, 3100000), (Landing{50, 2000000, std::nullopt}));
}

TEST_F(VideoSeek, NextSyncLandsOnTheKeyFrameBehind) {
    StartedTrack video(track(0));
    EXPECT_EQ(seek(video, kNext, 3100000), (Landing{100, 4000000, std::nullopt}));
}

TEST_F(VideoSeek, ClosestSyncIsPreviousSync) {
    StartedTrack video(track(0));
    EXPECT_EQ(seek(video, kClosestSync, 3900000), (Landing{50, 2000000, std::nullopt}));
}

TEST_F(VideoSeek, ClosestTellsTheFrameThatWasAskedFor) {
    StartedTrack video(track(0));
    EXPECT_EQ(seek(video, kClosest, 3100000), (Landing{50, 2000000, 3080000}));
}

TEST_F(VideoSeek, OtherModesArePreviousSync) {
    StartedTrack video(track(0));
    for (const uint32_t mode : {4u, 5u, 6u, 7u}) {
        SCOPED_TRACE(mode);
        EXPECT_EQ(seek(video, mode, 3100000), (Landing{50, 2000000, std::nullopt}));
    }
}

TEST_F(VideoSeek, OnAKeyFrameEveryModeLandsThere) {
    StartedTrack video(track(0));
    for (uint32_t mode = 0; mode < kModes; ++mode) {
        SCOPED_TRACE(mode);
        EXPECT_EQ(chunkAt(video, mode, 100 * kFrameUs), 100);
    }
}

TEST_F(VideoSeek, AFramesLastMicrosecondBelongsToIt) {
    StartedTrack video(track(0));
    for (uint32_t mode : kBackwardModes)
        EXPECT_EQ(chunkAt(video, mode, 100 * kFrameUs - 1), 50);
    EXPECT_EQ(chunkAt(video, kNext, 101 * kFrameUs - 1), 100);
    EXPECT_EQ(chunkAt(video, kNext, 101 * kFrameUs), 150);
}

TEST_F(VideoSeek, NegativeTimesAndZeroAreTheBeginning) {
    StartedTrack video(track(0));
    for (const int64_t timeUs : {int64_t{0}, int64_t{-1}, int64_t{-5000000}, INT64_MIN}) {
        for (uint32_t mode = 0; mode < kModes; ++mode) {
            SCOPED_TRACE(testing::Message() << mode << " @" << timeUs);
            const std::optional<int64_t> target =
                mode == kClosest ? std::optional<int64_t>(0) : std::nullopt;
            EXPECT_EQ(seek(video, mode, timeUs), (Landing{0, 0, target}));
        }
    }
}

TEST_F(VideoSeek, LastFrame) {
    openKinds("IPPIPPI");
    StartedTrack video(track(0));
    for (uint32_t mode = 0; mode < kModes; ++mode)
        EXPECT_EQ(chunkAt(video, mode, 6 * kFrameUs), 6);
    EXPECT_EQ(nextChunk(video), kEndOfStream);
}

TEST_F(VideoSeek, NextSyncBehindTheLastKeyFrameIsTheEnd) {
    StartedTrack video(track(0));
    EXPECT_EQ(chunkAt(video, kNext, 150 * kFrameUs), 150);
    EXPECT_EQ(chunkAt(video, kNext, 151 * kFrameUs), kEndOfStream);
    EXPECT_EQ(chunkAt(video, kNext, 199 * kFrameUs), kEndOfStream);
    EXPECT_EQ(chunkAt(video, kNext, 200 * kFrameUs), kEndOfStream);
}

TEST_F(VideoSeek, BeyondTheEndBackwardModesStartAtTheLastFrame) {
    StartedTrack video(track(0));
    for (uint32_t mode : kBackwardModes) {
        SCOPED_TRACE(mode);
        EXPECT_EQ(chunkAt(video, mode, 200 * kFrameUs), 150);
        EXPECT_EQ(chunkAt(video, mode, 3600000000), 150);
    }
}

TEST_F(VideoSeek, ClosestBeyondTheEndMeansTheLastFrame) {
    StartedTrack video(track(0));
    EXPECT_EQ(seek(video, kClosest, 3600000000), (Landing{150, 6000000, 199 * kFrameUs}));
}

TEST_F(VideoSeek, TimesThatNoFileReaches) {
    StartedTrack video(track(0));
    for (const int64_t timeUs : kFarTimes) {
        SCOPED_TRACE(timeUs);
        EXPECT_EQ(chunkAt(video, kNext, timeUs), kEndOfStream);
        EXPECT_EQ(chunkAt(video, kPrevious, timeUs), 150);
        EXPECT_EQ(seek(video, kClosest, timeUs), (Landing{150, 6000000, 199 * kFrameUs}));
    }
}

// Counted in millions of frames a second, 2^31 us are far more frames than an index can number.
TEST_F(VideoSeek, FrameNumbersBeyond31BitsAreTheLastFrame) {
    for (const uint32_t rate : {1000000u, 0xFFFFFFFFu}) {
        openKinds("IPPIPP", rate);
        for (const int64_t timeUs : kFarTimes) {
            SCOPED_TRACE(testing::Message() << rate << " @" << timeUs);
            EXPECT_EQ(chunkAt(0, kPrevious, timeUs), 3);
            EXPECT_EQ(chunkAt(0, kNext, timeUs), kEndOfStream);
        }
    }
}

TEST_F(VideoSeek, ReadingGoesOnFromTheLandingFrame) {
    StartedTrack video(track(0));
    EXPECT_EQ(chunkAt(video, kNext, 3100000), 100);
    EXPECT_EQ(nextChunk(video), 101);
    EXPECT_EQ(nextChunk(video), 102);
}

TEST_F(VideoSeek, TargetTimeIsOnTheLandingFrameOnly) {
    StartedTrack video(track(0));
    EXPECT_EQ(seek(video, kClosest, 3100000).targetUs, 3080000);
    for (int i = 0; i < 5; ++i)
        EXPECT_EQ(video.sample().targetTimeUs, std::nullopt);
    EXPECT_EQ(seek(video, kPrevious, 3100000).targetUs, std::nullopt);
}

TEST_F(VideoSeek, AfterTheEndOfTheStream) {
    StartedTrack video(track(0));
    ASSERT_EQ(chunkAt(video, kPrevious, 150 * kFrameUs), 150);
    while (nextChunk(video) != kEndOfStream) {
    }
    EXPECT_EQ(chunkAt(video, kPrevious, 3100000), 50);
    EXPECT_EQ(nextChunk(video), 51);
}

TEST_F(VideoSeek, SeekBeyondTheEndLeavesThePositionAlone) {
    StartedTrack video(track(0));
    EXPECT_EQ(chunkAt(video, kPrevious, 3100000), 50);
    EXPECT_EQ(chunkAt(video, kNext, 3600000000), kEndOfStream);
    EXPECT_EQ(nextChunk(video), 51);
}

TEST_F(VideoSeek, StoppingRewinds) {
    BufferGroup group;
    const std::unique_ptr<Track> source = track(0);
    ASSERT_EQ(source->start(group), AMEDIA_OK);
    EXPECT_EQ(sampleOf(source->read(android::SEEK, 3100000).buffer).timeUs, 2000000);
    ASSERT_EQ(source->stop(), AMEDIA_OK);
    BufferGroup second;
    ASSERT_EQ(source->start(second), AMEDIA_OK);
    EXPECT_EQ(sampleOf(source->read().buffer).timeUs, 0);
    EXPECT_EQ(sampleOf(source->read(android::SEEK, 3100000).buffer).timeUs, 2000000);
    EXPECT_EQ(source->stop(), AMEDIA_OK);
}

TEST_F(VideoSeek, WithoutTheSeekBitTheTimeIsIgnored) {
    StartedTrack video(track(0));
    EXPECT_EQ(sampleOf(video.track().read(kNext, 3100000).buffer).timeUs, 0);
    EXPECT_EQ(sampleOf(video.track().read(android::NONBLOCKING | kClosest, 3100000).buffer).timeUs,
              kFrameUs);
}

TEST_F(VideoSeek, OtherBitsAreNoPartOfTheMode) {
    StartedTrack video(track(0));
    EXPECT_EQ(chunkAt(video, android::NONBLOCKING | kNext, 3100000), 100);
    EXPECT_EQ(chunkAt(video, 0xFFFFFFE0 | kNext, 3100000), 100);
}

TEST_F(VideoSeek, SourcesOfOneTrackSeekForThemselves) {
    StartedTrack first(track(0));
    StartedTrack second(track(0));
    EXPECT_EQ(chunkAt(first, kPrevious, 3100000), 50);
    EXPECT_EQ(nextChunk(second), 0);
    EXPECT_EQ(nextChunk(first), 51);
}

TEST_F(VideoSeek, WithoutKeyFramesEveryBackwardSeekIsTheBeginning) {
    openKinds("PPPPPP");
    for (uint32_t mode : kBackwardModes) {
        SCOPED_TRACE(mode);
        EXPECT_EQ(chunkAt(0, mode, 4 * kFrameUs), 0);
    }
    EXPECT_EQ(chunkAt(0, kNext, 0), kEndOfStream);
}

TEST_F(VideoSeek, BeforeTheFirstKeyFrameIsTheBeginning) {
    openKinds("PPPIPP");
    EXPECT_EQ(chunkAt(0, kPrevious, 2 * kFrameUs), 0);
    EXPECT_EQ(chunkAt(0, kNext, 2 * kFrameUs), 3);
    EXPECT_EQ(chunkAt(0, kNext, 0), 3);
}

TEST_F(VideoSeek, TrustedFlagsAreNotComparedWithTheData) {
    AviFile avi = videoFile("PPPPPP");
    avi.segment().index.edit = [](std::vector<Idx1Entry>& index) {
        for (size_t i = 0; i < index.size(); ++i)
            index[i].flags = i == 2 ? kKey : kNoFlags;
    };
    open(avi);
    EXPECT_EQ(chunkAt(0, kPrevious, 4 * kFrameUs), 2);
    EXPECT_EQ(chunkAt(0, kNext, 1 * kFrameUs), 2);
}

TEST_F(VideoSeek, EmptyKeyFrameIsLandedOnAndSkipped) {
    openKinds("IPPk-PI-");
    EXPECT_EQ(chunkAt(0, kPrevious, 5 * kFrameUs), 5);
    EXPECT_EQ(chunkAt(0, kNext, 1 * kFrameUs), 5);
    openKinds("IPPk");
    EXPECT_EQ(chunkAt(0, kPrevious, 3 * kFrameUs), kEndOfStream);
}

TEST_F(VideoSeek, TimeOfTheLandingFrameFollowsItsBFrames) {
    openKinds("IPBBIBBPBB");
    StartedTrack video(track(0));
    EXPECT_EQ(seek(video, kPrevious, 5 * kFrameUs), (Landing{4, 6 * kFrameUs, std::nullopt}));
    EXPECT_EQ(seek(video, kClosest, 5 * kFrameUs), (Landing{4, 6 * kFrameUs, 5 * kFrameUs}));
}

TEST_F(VideoSeek, RatesThatAreNoWholeNumber) {
    openKinds(groups(6, 10), 30000, 1001);
    StartedTrack video(track(0));
    // 999999 us are 29.97 frames; the target is the time of frame 29.
    EXPECT_EQ(seek(video, kClosest, 999999), (Landing{20, 667333, 967633}));
    EXPECT_EQ(chunkAt(video, kNext, 999999), 30);
}

TEST_F(VideoSeek, WithoutScaleEveryTimeIsTheBeginning) {
    openKinds("IPPIPP", 25, 0);
    for (const int64_t timeUs : {int64_t{100000}, INT64_MAX}) {
        EXPECT_EQ(chunkAt(0, kPrevious, timeUs), 0);
        EXPECT_EQ(chunkAt(0, kNext, timeUs), 0);
    }
}

TEST_F(VideoSeek, WithoutRateEveryTimeIsTheBeginning) {
    openKinds("IPPIPP", 0, 1);
    StartedTrack video(track(0));
    EXPECT_EQ(seek(video, kClosest, 100000), (Landing{0, 0, 0}));
    EXPECT_EQ(chunkAt(video, kNext, INT64_MAX), 0);
}

TEST_F(VideoSeek, OneFrame) {
    openKinds("I");
    EXPECT_EQ(chunkAt(0, kNext, kFrameUs - 1), 0);
    EXPECT_EQ(chunkAt(0, kNext, kFrameUs), kEndOfStream);
    EXPECT_EQ(chunkAt(0, kPrevious, kFrameUs), 0);
}

}  // namespace
}  // namespace avitest
