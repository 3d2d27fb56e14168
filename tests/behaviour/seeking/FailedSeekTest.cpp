// SPDX-License-Identifier: Apache-2.0
//
// What a seek beyond the end changes all the same: reading goes on where it stood, but at the time
// that was asked for, at the beginning of a chunk, and with its first buffers in the log.

#include "tests/behaviour/mpegaudio/MpegAudioFixture.h"

namespace avitest {
namespace {

constexpr int64_t kBeyondUs = 5000000;

class FailedSeek : public MpegAudioTest {
  protected:
    static void expectEnd(StartedTrack& track) {
        EXPECT_EQ(track.track().read(android::SEEK | android::SEEK_NEXT_SYNC, kBeyondUs).status,
                  AMEDIA_ERROR_END_OF_STREAM);
        EXPECT_EQ(track.group().heldCount(), 0u);
    }
};

TEST_F(FailedSeek, SetsTheRunningTimeOfFrames) {
    openStream(mp3Bytes(), frames(5));
    StartedTrack audio(track(0));
    EXPECT_EQ(audio.sample().timeUs, kMp3FrameUs);
    expectEnd(audio);
    const Sample next = audio.sample();
    EXPECT_EQ(next.bytes, frame(1));
    EXPECT_EQ(next.timeUs, kBeyondUs + kMp3FrameUs);
}

TEST_F(FailedSeek, DropsTheRestOfTheChunkAtHand) {
    openStream(mp3Bytes(), {joined(frames(3)), frame(3), frame(4)});
    StartedTrack audio(track(0));
    EXPECT_EQ(audio.sample().bytes, frame(0));
    expectEnd(audio);
    EXPECT_EQ(audio.sample().bytes, frame(3));
}

// The end of a split frame looks like a frame of its own to who reads its chunk from the beginning.
TEST_F(FailedSeek, ForgetsWhatASplitFrameTookOfTheNextChunk) {
    constexpr size_t kSplitAt = 100;
    const Bytes splitFrame = joined({frameOf(kHeader, kSplitAt), frameOf(kHeader, 317)});
    const Bytes last = joined({slice(splitFrame, kSplitAt, kFrameSize), frame(3)});
    openStream(mp3Bytes(), {joined(frames(2)), slice(splitFrame, 0, kSplitAt), last});
    for (const bool seeks : {false, true}) {
        SCOPED_TRACE(seeks);
        StartedTrack audio(track(0));
        audio.sample();
        audio.sample();
        EXPECT_EQ(audio.sample().bytes, splitFrame);
        if (seeks) expectEnd(audio);
        EXPECT_EQ(audio.sample().bytes, seeks ? slice(last, 0, kFrameSize) : frame(3));
    }
}

TEST_F(FailedSeek, StartsTheDumpsAgain) {
    openStream(mjpegStream(), std::vector<Bytes>(40, patternBytes(30)));
    StartedTrack video(track(0));
    const auto isLogged = [&video] {
        const LogCapture log;
        video.sample();
        return log.count(" DTS/OFF/") == 1;
    };
    for (int i = 0; i < 10; ++i)
        EXPECT_EQ(isLogged(), i < 5) << i;
    expectEnd(video);
    for (int i = 0; i < 10; ++i)
        EXPECT_EQ(isLogged(), i < 5) << i;
}

}  // namespace
}  // namespace avitest
