// SPDX-License-Identifier: Apache-2.0
//
// Which tracks lead, which follow, and by which number.

#include "tests/behaviour/seeking/BlockFile.h"
#include "tests/behaviour/seeking/FollowingFixture.h"

namespace avitest {
namespace {

class FollowingKinds : public FollowingTest {
  protected:
    // Opens video in front of the audio stream, with these chunks.
    void openAudio(const Stream& stream, const std::vector<size_t>& sizes) {
        AviFile avi;
        addFrames(avi, avi.addStream(mpeg4Stream()), groups(10, 10));
        addAudio(avi, avi.addStream(stream), sizes);
        open(avi);
        ASSERT_EQ(countTracks(), 2u);
    }
};

TEST_F(FollowingKinds, AudioBeforeVideoInTheFile) {
    AviFile avi;
    addAudio(avi, avi.addStream(alawStream()), std::vector<size_t>(80, 400));
    addFrames(avi, avi.addStream(mpeg4Stream()), groups(10, 10));
    addAudio(avi, avi.addStream(alawStream()), std::vector<size_t>(40, 800));
    open(avi);
    // Video becomes the first track; the records go by the streams' numbers.
    EXPECT_EQ(chunkAt(0, kPrevious, kAskedUs), 30);
    EXPECT_EQ(chunkAt(1, kPrevious, kAskedUs), kSecondLanded);
    EXPECT_EQ(chunkAt(1, kPrevious, kAskedUs), kSecondAsked);
    EXPECT_EQ(chunkAt(2, kPrevious, kAskedUs), kFirstLanded);
    EXPECT_EQ(chunkAt(2, kPrevious, kAskedUs), kFirstAsked);
}

TEST_F(FollowingKinds, BehindADroppedStream) {
    AviFile avi;
    Stream dropped = alawStream();
    dropped.header.type = "text";
    avi.addStream(dropped);
    addFrames(avi, avi.addStream(mpeg4Stream()), groups(10, 10));
    addAudio(avi, avi.addStream(alawStream()), std::vector<size_t>(40, 800));
    open(avi);
    ASSERT_EQ(countTracks(), 2u);
    EXPECT_EQ(chunkAt(0, kPrevious, kAskedUs), 30);
    EXPECT_EQ(chunkAt(1, kPrevious, kAskedUs), kFirstLanded);
    EXPECT_EQ(chunkAt(1, kPrevious, kAskedUs), kFirstAsked);
}

TEST_F(FollowingKinds, UntrustedVideoLeads) {
    AviFile avi = followingFile();
    dropIndex(avi);
    open(avi);
    EXPECT_EQ(chunkAt(kVideo, kPrevious, kAskedUs), 30);
    EXPECT_EQ(chunkAt(kFirst, kPrevious, kAskedUs), kFirstLanded);
}

TEST_F(FollowingKinds, VideoOfUnknownCompressionLeads) {
    AviFile avi;
    const size_t video = avi.addStream(videoStream("ABCD", 320, 240, 25));
    addFrames(avi, video, groups(10, 10));
    addAudio(avi, avi.addStream(alawStream()), std::vector<size_t>(40, 800));
    open(avi);
    ASSERT_EQ(trackFormat(0).getString(AMEDIAFORMAT_KEY_MIME), "video/x-unknown");
    EXPECT_EQ(chunkAt(0, kPrevious, kAskedUs), 30);
    EXPECT_EQ(chunkAt(1, kPrevious, kAskedUs), kFirstLanded);
}

TEST_F(FollowingKinds, EveryVideoTrackLeads) {
    AviFile avi;
    addFrames(avi, avi.addStream(mpeg4Stream()), groups(10, 10));
    const size_t second = avi.addStream(mpeg4Stream());
    for (size_t i = 0; i < 100; ++i)
        avi.addChunk(second, mpeg4Frame('I', 1000 + i, 21));
    addAudio(avi, avi.addStream(alawStream()), std::vector<size_t>(40, 800));
    open(avi);
    EXPECT_EQ(chunkAt(0, kPrevious, kAskedUs), 30);
    EXPECT_EQ(chunkAt(1, kPrevious, 2100000), 52);
    EXPECT_EQ(chunkAt(2, kPrevious, kAskedUs), 20);
}

TEST_F(FollowingKinds, SubtitlesDoNotLead) {
    AviFile avi;
    const size_t subtitles = avi.addStream(subtitleStream());
    avi.addChunk(subtitles, subtitleChunk("00:00:02.000", "00:00:03.000"));
    addAudio(avi, avi.addStream(alawStream()), std::vector<size_t>(40, 800));
    open(avi);
    EXPECT_EQ(chunkAt(0, kPrevious, kAskedUs), 0);
    EXPECT_EQ(chunkAt(1, kPrevious, kAskedUs), kFirstAsked);
}

TEST_F(FollowingKinds, AudioDoesNotLead) {
    EXPECT_EQ(chunkAt(kFirst, kPrevious, 2000000), 20);
    EXPECT_EQ(chunkAt(kSecond, kPrevious, kAskedUs), kSecondAsked);
    EXPECT_EQ(chunkAt(kVideo, kPrevious, kAskedUs), 30);
}

TEST_F(FollowingKinds, FramedAudioFollows) {
    Stream stream = frameAudioStream(0x57, 1, 8000, 160);
    stream.header.length = 200;  // four seconds
    std::vector<size_t> sizes;
    for (size_t i = 0; i < 40; ++i)
        sizes.push_back(20 + i);
    openAudio(stream, sizes);
    chunkAt(0, kPrevious, kAskedUs);
    EXPECT_EQ(chunkAt(1, kPrevious, kAskedUs), 12);
    EXPECT_EQ(chunkAt(1, kPrevious, kAskedUs), 13);
}

TEST_F(FollowingKinds, RawAacFollows) {
    Stream stream = audioStream(0xFF, 2, 44100, 8000, 1024);
    stream.header.rate = 10240;  // ten frames a second
    stream.header.sampleSize = 1;
    std::vector<size_t> sizes;
    for (size_t i = 0; i < 40; ++i)
        sizes.push_back(371 + i);
    openAudio(stream, sizes);
    chunkAt(0, kPrevious, kAskedUs);
    EXPECT_EQ(chunkAt(1, kPrevious, kAskedUs), 12);
    EXPECT_EQ(chunkAt(1, kPrevious, kAskedUs), 13);
}

// Also for MPEG audio, whose samples are frames of a chunk: times count from the landing.
TEST_F(FollowingKinds, AudioInBlocksFollows) {
    BlockFile file = blockFile({2, 8, 8, 8, 8, 8, 8});
    addFrames(file.avi, file.avi.addStream(mpeg4Stream()), groups(10, 10));
    open(file.avi);
    for (const auto& [bytes, number] : file.firstFrames)
        learn(bytes, number);
    EXPECT_EQ(chunkAt(0, kPrevious, 700000), 10);
    StartedTrack audio(track(1));
    // 400 ms are in block 15, 700 ms in block 26.
    EXPECT_EQ(seek(audio, kPrevious, 700000), (Landing{15, 400000 + kFrameUsOfMp3, std::nullopt}));
    EXPECT_EQ(chunkAt(audio, kPrevious, 700000), 26);
}

}  // namespace
}  // namespace avitest
