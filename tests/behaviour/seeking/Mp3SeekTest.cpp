// SPDX-License-Identifier: Apache-2.0
//
// Where MPEG audio resumes that is counted in bytes or in chunks. Reading never begins in the junk
// in front of the first frame, and frames are timed from the time of the seek.

#include "tests/behaviour/mpegaudio/MpegAudioFixture.h"
#include "tests/behaviour/seeking/BlockFile.h"

namespace avitest {
namespace {

class Mp3Seek : public MpegAudioTest {
  protected:
    static constexpr size_t kJunk = 100;

    // A frame a chunk, of 16000 bytes a second, behind a chunk of junk.
    void openBehindJunk() {
        std::vector<Bytes> chunks = frames(5);
        chunks.insert(chunks.begin(), noise(kJunk, 99));
        openStream(mp3Bytes(), chunks);
    }
    // The first sample behind a seek; it must be frame number `expected`.
    int64_t timeOfFrame(uint32_t expected, int64_t timeUs, uint32_t mode = 0) {
        const std::vector<Sample> samples = readFrom(0, {android::SEEK | mode, timeUs}, 1);
        if (samples.empty()) return -1;
        EXPECT_EQ(samples[0].bytes, frame(expected));
        EXPECT_EQ(samples[0].targetTimeUs, std::nullopt);
        return samples[0].timeUs;
    }
};

TEST_F(Mp3Seek, BytesCountTheJunk) {
    openBehindJunk();
    // The chunks end at 6250, 32312, 58375, ... us.
    for (uint32_t mode = 0; mode < 8; ++mode) {
        EXPECT_EQ(timeOfFrame(0, 32311, mode), 32311 + kMp3FrameUs);
        EXPECT_EQ(timeOfFrame(1, 32312, mode), 32312 + kMp3FrameUs);
        EXPECT_EQ(timeOfFrame(4, 130000, mode), 130000 + kMp3FrameUs);
    }
}

TEST_F(Mp3Seek, ATimeInTheJunkIsTheFirstFrame) {
    openBehindJunk();
    EXPECT_EQ(timeOfFrame(0, 0), kMp3FrameUs);
    EXPECT_EQ(timeOfFrame(0, -1), kMp3FrameUs);
    EXPECT_EQ(timeOfFrame(0, 6249), 6249 + kMp3FrameUs);
}

TEST_F(Mp3Seek, BeyondTheEnd) {
    openBehindJunk();
    EXPECT_EQ(timeOfFrame(4, 136561), 136561 + kMp3FrameUs);  // of 2185 bytes
    for (const int64_t timeUs : {int64_t{136562}, int64_t{1} << 31, INT64_MAX})
        EXPECT_TRUE(readFrom(0, {android::SEEK, timeUs}).empty());
}

TEST_F(Mp3Seek, ChunksShareTheDuration) {
    Stream stream = mp3Frames();
    stream.header.length = 5;
    openStream(stream, frames(5));
    constexpr int64_t kChunkUs = 26122;
    for (uint32_t i = 0; i < 5; ++i) {
        const int64_t timeUs = i * kChunkUs + 5000;
        EXPECT_EQ(timeOfFrame(i, timeUs), timeUs + kMp3FrameUs);
    }
    EXPECT_TRUE(readFrom(0, {android::SEEK, 5 * kChunkUs}).empty());
}

TEST_F(Mp3Seek, SeekDropsTheRestOfTheChunkAtHand) {
    openStream(mp3Bytes(), {joined(frames(3)), frame(3), frame(4)});
    StartedTrack audio(track(0));
    EXPECT_EQ(audio.sample().bytes, frame(0));
    EXPECT_EQ(sampleOf(audio.track().read(android::SEEK, 80000).buffer).bytes, frame(3));
    EXPECT_EQ(audio.sample().bytes, frame(4));
    EXPECT_EQ(sampleOf(audio.track().read(android::SEEK, 50000).buffer).bytes, frame(0));
    EXPECT_EQ(audio.sample().bytes, frame(1));
}

}  // namespace
}  // namespace avitest
