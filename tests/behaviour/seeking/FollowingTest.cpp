// SPDX-License-Identifier: Apache-2.0
//
// Audio goes where the video landed, once.

#include "tests/behaviour/seeking/FollowingFixture.h"

namespace avitest {
namespace {

class Following : public FollowingTest {};

TEST_F(Following, WithoutAVideoSeekAudioGoesWhereItIsAsked) {
    EXPECT_EQ(chunkAt(kFirst, kPrevious, kAskedUs), kFirstAsked);
    EXPECT_EQ(chunkAt(kSecond, kPrevious, kAskedUs), kSecondAsked);
}

TEST_F(Following, AudioGoesWhereTheVideoLanded) {
    StartedTrack audio(track(kFirst));
    EXPECT_EQ(chunkAt(kVideo, kPrevious, kAskedUs), 30);
    EXPECT_EQ(seek(audio, kPrevious, kAskedUs), (Landing{kFirstLanded, kLandedUs, std::nullopt}));
}

TEST_F(Following, OnlyTheNextSeekFollows) {
    StartedTrack audio(track(kFirst));
    chunkAt(kVideo, kPrevious, kAskedUs);
    EXPECT_EQ(chunkAt(audio, kPrevious, kAskedUs), kFirstLanded);
    EXPECT_EQ(chunkAt(audio, kPrevious, kAskedUs), kFirstAsked);
    EXPECT_EQ(chunkAt(audio, kPrevious, kAskedUs), kFirstAsked);
}

TEST_F(Following, EveryAudioTrackHasItsOwnRecord) {
    chunkAt(kVideo, kPrevious, kAskedUs);
    EXPECT_EQ(chunkAt(kSecond, kPrevious, kAskedUs), kSecondLanded);
    EXPECT_EQ(chunkAt(kSecond, kPrevious, kAskedUs), kSecondAsked);
    EXPECT_EQ(chunkAt(kFirst, kPrevious, kAskedUs), kFirstLanded);
    EXPECT_EQ(chunkAt(kFirst, kPrevious, kAskedUs), kFirstAsked);
}

TEST_F(Following, TheLatestLandingCounts) {
    StartedTrack video(track(kVideo));
    chunkAt(video, kPrevious, kAskedUs);
    chunkAt(video, kNext, kAskedUs);
    EXPECT_EQ(chunkAt(kFirst, kPrevious, kAskedUs), 16);
}

TEST_F(Following, TheRequestedTimeDoesNotMatter) {
    for (const int64_t timeUs : {int64_t{1}, int64_t{3900000}, INT64_MAX}) {
        SCOPED_TRACE(timeUs);
        chunkAt(kVideo, kPrevious, kAskedUs);
        EXPECT_EQ(chunkAt(kFirst, kPrevious, timeUs), kFirstLanded);
    }
}

TEST_F(Following, AskedForTheBeginningAudioGoesThereAndForgets) {
    for (const int64_t timeUs : {int64_t{0}, int64_t{-1}, INT64_MIN}) {
        SCOPED_TRACE(timeUs);
        chunkAt(kVideo, kPrevious, kAskedUs);
        EXPECT_EQ(chunkAt(kFirst, kPrevious, timeUs), 0);
        EXPECT_EQ(chunkAt(kFirst, kPrevious, kAskedUs), kFirstAsked);
    }
}

TEST_F(Following, LandingAtTheBeginningIsALanding) {
    EXPECT_EQ(chunkAt(kVideo, kPrevious, 300000), 0);
    EXPECT_EQ(chunkAt(kFirst, kPrevious, 300000), 0);
    EXPECT_EQ(chunkAt(kFirst, kPrevious, 300000), 3);
}

TEST_F(Following, PlainReadsNeitherFollowNorForget) {
    StartedTrack audio(track(kFirst));
    chunkAt(kVideo, kPrevious, kAskedUs);
    EXPECT_EQ(nextChunk(audio), 0);
    EXPECT_EQ(nextChunk(audio), 1);
    EXPECT_EQ(chunkAt(audio, kPrevious, kAskedUs), kFirstLanded);
}

TEST_F(Following, PlainReadsOfVideoTellNothing) {
    StartedTrack video(track(kVideo));
    for (int i = 0; i < 5; ++i)
        nextChunk(video);
    EXPECT_EQ(chunkAt(kFirst, kPrevious, kAskedUs), kFirstAsked);
}

TEST_F(Following, ReadsBehindALandingTellNothing) {
    StartedTrack video(track(kVideo));
    chunkAt(video, kPrevious, kAskedUs);
    for (int i = 0; i < 20; ++i)
        nextChunk(video);
    EXPECT_EQ(chunkAt(kFirst, kPrevious, kAskedUs), kFirstLanded);
}

TEST_F(Following, AnotherSourceOfTheAudioTrackTakesTheTime) {
    StartedTrack one(track(kFirst));
    StartedTrack other(track(kFirst));
    chunkAt(kVideo, kPrevious, kAskedUs);
    EXPECT_EQ(chunkAt(one, kPrevious, kAskedUs), kFirstLanded);
    EXPECT_EQ(chunkAt(other, kPrevious, kAskedUs), kFirstAsked);
}

TEST_F(Following, SourcesMadeLaterFollow) {
    chunkAt(kVideo, kPrevious, kAskedUs);
    EXPECT_EQ(chunkAt(kFirst, kPrevious, kAskedUs), kFirstLanded);
}

TEST_F(Following, StoppingForgetsNothing) {
    BufferGroup groups[2];
    const std::unique_ptr<Track> audio = track(kFirst);
    ASSERT_EQ(audio->start(groups[0]), AMEDIA_OK);
    chunkAt(kVideo, kPrevious, kAskedUs);
    ASSERT_EQ(audio->stop(), AMEDIA_OK);
    ASSERT_EQ(audio->start(groups[1]), AMEDIA_OK);
    EXPECT_EQ(sampleOf(audio->read(android::SEEK, kAskedUs).buffer).timeUs, kLandedUs);
    EXPECT_EQ(audio->stop(), AMEDIA_OK);
}

TEST_F(Following, FailedVideoSeekTellsNothing) {
    StartedTrack video(track(kVideo));
    EXPECT_EQ(chunkAt(video, kNext, 60000000), kEndOfStream);
    EXPECT_EQ(chunkAt(kFirst, kPrevious, kAskedUs), kFirstAsked);
    chunkAt(video, kPrevious, kAskedUs);
    EXPECT_EQ(chunkAt(video, kNext, 60000000), kEndOfStream);
    EXPECT_EQ(chunkAt(kFirst, kPrevious, kAskedUs), kFirstLanded);
}

TEST_F(Following, UnreadableLandingFrameTellsNothing) {
    AviFile avi = followingFile();
    open(avi);
    const auto at = static_cast<off64_t>(avi.chunks(0)[30].place.dataOffset);
    source().inject(Fault::shortRead(1).onOffsets(at, at + 1));
    EXPECT_EQ(chunkAt(kVideo, kPrevious, kAskedUs), kOtherFailure);
    EXPECT_EQ(chunkAt(kFirst, kPrevious, kAskedUs), kFirstAsked);
}

TEST_F(Following, AudioThatEndsBeforeTheLandingKeepsTheRecord) {
    AviFile avi;
    addFrames(avi, avi.addStream(mpeg4Stream()), groups(10, 10));
    addAudio(avi, avi.addStream(alawStream()), std::vector<size_t>(10, 800));
    open(avi);
    StartedTrack audio(track(1));
    chunkAt(0, kPrevious, kAskedUs);
    EXPECT_EQ(chunkAt(audio, kPrevious, 500000), kEndOfStream);
    EXPECT_EQ(chunkAt(audio, kPrevious, 500000), kEndOfStream);
    EXPECT_EQ(chunkAt(audio, kPrevious, 0), 0);
    EXPECT_EQ(chunkAt(audio, kPrevious, 500000), 5);
}

TEST_F(Following, LandingTimeIsThatOfTheFrameNotTheTarget) {
    StartedTrack video(track(kVideo));
    EXPECT_EQ(seek(video, kClosest, kAskedUs), (Landing{30, kLandedUs, 1280000}));
    EXPECT_EQ(chunkAt(kFirst, kClosest, kAskedUs), kFirstLanded);
}

TEST_F(Following, LandingTimeCountsTheBFramesBehind) {
    std::string kinds;
    for (int i = 0; i < 10; ++i)
        kinds += "IBBBBPBBPP";
    AviFile avi = followingFile(kinds);
    open(avi);
    // Frame 30 is shown after four others: at 1360 ms.
    EXPECT_EQ(chunkAt(kVideo, kPrevious, kAskedUs), 30);
    EXPECT_EQ(chunkAt(kFirst, kPrevious, kAskedUs), 13);
    EXPECT_EQ(chunkAt(kSecond, kPrevious, kAskedUs), 27);
}

TEST_F(Following, OtherFilesAreNotConcerned) {
    AviFile avi = followingFile();
    const Bytes file = avi.build();
    MemorySource memory(file);
    const auto other = android::service::Extractor::open(pluginUnderTest(), memory);
    ASSERT_NE(other, nullptr);
    chunkAt(kVideo, kPrevious, kAskedUs);
    StartedTrack audio(other->track(kFirst));
    EXPECT_EQ(chunkAt(audio, kPrevious, kAskedUs), kFirstAsked);
}

}  // namespace
}  // namespace avitest
