// SPDX-License-Identifier: Apache-2.0
//
// Which tracks lead, which follow, and by which number.

#include "tests/behaviour/reading/RecordingGroup.h"
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

// What it is called decides, not how it is sought: in lower case the subtitles' FourCC is that of a
// video stream.
TEST_F(FollowingKinds, TextInAVideoStreamNeitherLeadsNorForgets) {
    setProperty(kVerboseLogProperty, "1");
    AviFile avi;
    addFrames(avi, avi.addStream(mpeg4Stream()), groups(10, 10));
    addFrames(avi, avi.addStream(videoStream("dxsb", 320, 240, 25)), groups(5, 20), 21);
    addAudio(avi, avi.addStream(alawStream()), std::vector<size_t>(40, 800));
    open(avi);
    ASSERT_EQ(trackFormat(1).getString(AMEDIAFORMAT_KEY_MIME), "text/vobsub");
    EXPECT_EQ(chunkAt(0, kPrevious, kAskedUs), 30);
    const LogCapture log;
    EXPECT_EQ(chunkAt(1, kPrevious, kAskedUs), 20);
    EXPECT_EQ(log.count("seekTime @") + log.count("reset seekTime"), 0u);
    EXPECT_EQ(chunkAt(2, kPrevious, kAskedUs), kFirstLanded);
}

TEST_F(FollowingKinds, AudioInAVideoStreamDoesNotLead) {
    setProperty(kVerboseLogProperty, "1");
    AviFile avi;
    addFrames(avi, avi.addStream(mpeg4Stream()), groups(10, 10));
    addFrames(avi, avi.addStream(videoStream("mp4a", 320, 240, 25)), groups(5, 20), 21);
    addAudio(avi, avi.addStream(alawStream()), std::vector<size_t>(40, 800));
    open(avi);
    ASSERT_EQ(trackFormat(1).getString(AMEDIAFORMAT_KEY_MIME), "audio/mp4a-latm");
    EXPECT_EQ(chunkAt(0, kPrevious, kAskedUs), 30);
    const LogCapture log;
    EXPECT_EQ(chunkAt(1, kPrevious, kAskedUs), 20);
    EXPECT_EQ(log.count("set seekTime @"), 0u);
    EXPECT_EQ(log.count("[audio/mp4a-latm][1][20/100][I] reset seekTime to -1 after seeking."), 1u);
    EXPECT_EQ(chunkAt(2, kPrevious, kAskedUs), kFirstLanded);
}

TEST_F(FollowingKinds, FourAudioTracksFollowEachForItself) {
    AviFile avi;
    addFrames(avi, avi.addStream(mpeg4Stream()), groups(10, 10));
    for (int i = 0; i < 4; ++i)
        addAudio(avi, avi.addStream(alawStream()), std::vector<size_t>(40, 800));
    open(avi);
    chunkAt(0, kPrevious, kAskedUs);
    for (const size_t index : {4, 2, 3, 1}) {
        SCOPED_TRACE(index);
        EXPECT_EQ(chunkAt(index, kPrevious, kAskedUs), kFirstLanded);
        EXPECT_EQ(chunkAt(index, kPrevious, kAskedUs), kFirstAsked);
    }
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

// The landing chunk was loaded: what becomes of its samples does not matter.
TEST_F(FollowingKinds, AudioThatFindsNoBufferForItsSamplesForgets) {
    const Bytes frame = ByteWriter().bytes(Bytes{0xFF, 0xFB, 0x90, 0}).fill(413, 0x11).take();
    const Bytes chunk = ByteWriter().bytes(frame).bytes(frame).cut(800).take();
    for (const uint16_t tag : {uint16_t{1}, uint16_t{0x55}}) {
        SCOPED_TRACE(tag);
        AviFile avi;
        addFrames(avi, avi.addStream(mpeg4Stream()), groups(10, 10));
        const size_t audio = avi.addStream(audioStream(tag, 1, 8000, 8000, 1, 8));
        for (int i = 0; i < 40; ++i)
            avi.addChunk(audio, chunk);
        open(avi);
        chunkAt(0, kPrevious, kAskedUs);
        RecordingGroup group;
        group.answer(1, RecordingGroup::Answer::kFailure);
        GroupReader reader(track(1), &group);
        const LogCapture log;
        EXPECT_EQ(reader.track().read(android::SEEK, kAskedUs).status, AMEDIA_ERROR_UNKNOWN);
        EXPECT_EQ(log.count("[1][12/40] Unknown error(-2710) @L"), 1u);
        EXPECT_EQ(reader.track().read(android::SEEK, kAskedUs).status, AMEDIA_OK);
        EXPECT_EQ(log.count("[1][13/40] DTS/OFF/"), 1u);
    }
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
    EXPECT_EQ(seek(audio, kPrevious, 700000), (Landing{15, 400000 + kMp3FrameUs, std::nullopt}));
    EXPECT_EQ(chunkAt(audio, kPrevious, 700000), 26);
}

}  // namespace
}  // namespace avitest
