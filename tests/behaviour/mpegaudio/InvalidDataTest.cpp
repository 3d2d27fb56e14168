// SPDX-License-Identifier: Apache-2.0
//
// Junk in front of the first frame: it is not handed out, and chunks of nothing else take no time.

#include "tests/behaviour/mpegaudio/MpegAudioFixture.h"

namespace avitest {
namespace {

class InvalidData : public MpegAudioTest {};

TEST_F(InvalidData, ChunksOfJunkAreLeftOut) {
    for (const Stream& stream : {mp3Bytes(), mp3Frames()}) {
        EXPECT_EQ(framesOf(stream, {noise(100), joined(frames(3))}), frames(3));
        EXPECT_EQ(framesOf(stream, {noise(100), noise(1), noise(2000), joined(frames(3))}),
                  frames(3));
    }
}

TEST_F(InvalidData, JunkInTheFirstFramesChunkIsLeftOut) {
    for (const size_t size : {1u, 3u, 4u, 100u, 5000u}) {
        SCOPED_TRACE(size);
        EXPECT_EQ(framesOf(mp3Bytes(), {joined({noise(size), joined(frames(3))})}), frames(3));
    }
}

TEST_F(InvalidData, ChunksOfJunkTakeNoTimeInAStreamOfBytes) {
    openStream(mp3Bytes(8000), {noise(100), noise(900), joined(frames(2)), frame(2)});
    EXPECT_EQ(timesOf(readAll(0)), (std::vector<int64_t>{kMp3FrameUs, 2 * kMp3FrameUs, 104250}));
}

TEST_F(InvalidData, ChunksOfJunkTakeNoTimeInAStreamOfChunks) {
    Stream stream = mp3Frames();
    stream.header.length = 400;
    openStream(stream, {noise(100), noise(900), joined(frames(2)), frame(2)});
    const int64_t durationUs = int64_t{400} * 1152 * 1000000 / 44100;
    EXPECT_EQ(timesOf(readAll(0)),
              (std::vector<int64_t>{kMp3FrameUs, 2 * kMp3FrameUs, durationUs / 4}));
}

// Its own chunk is read from the beginning.
TEST_F(InvalidData, JunkInTheFirstFramesChunkTakesItsTime) {
    openStream(mp3Bytes(8000), {joined({noise(1000), frame(0), frame(1)}), frame(2)});
    EXPECT_EQ(timesOf(readAll(0)), (std::vector<int64_t>{kMp3FrameUs, 2 * kMp3FrameUs, 229250}));
}

TEST_F(InvalidData, SeekToTheBeginningStaysBehindTheJunk) {
    openStream(mp3Bytes(), {noise(100), noise(900), joined(frames(2)), frame(2)});
    const std::vector<Sample> samples = readFrom(0, {android::SEEK, 0});
    EXPECT_EQ(payloadsOf(samples), frames(3));
}

TEST_F(InvalidData, LoneSyncBitsAreJunk) {
    // Like a header, but neither behind its frame nor in the next chunk is a second one.
    const Bytes decoy = frameOf(kHeader, 300, 5);
    EXPECT_EQ(framesOf(mp3Bytes(), {decoy, noise(500), joined(frames(3))}), frames(3));
}

// Of the decoy's stream there are no frames, so the real ones are what the track is made of.
TEST_F(InvalidData, HeaderOfAnotherStreamInJunkDoesNotMisleadTheReader) {
    const Bytes decoy = frameOf(0xFFFD9400, 300, 5);
    EXPECT_EQ(framesOf(mp3Bytes(), {joined({decoy, joined(frames(3))})}), frames(3));
}

// Two frames confirm each other; what is cut from then on begins with the first match.
TEST_F(InvalidData, DecoyInTheFirstFramesChunkIsCutAsAFrame) {
    const Bytes chunk = joined({headerBytes(kHeader), noise(50), joined(frames(3))});
    const std::vector<Bytes> read = framesOf(mp3Bytes(), {chunk});
    ASSERT_FALSE(read.empty());
    EXPECT_EQ(read[0], slice(chunk, 0, kFrameSize));
}

TEST_F(InvalidData, FrameConfirmedByTheNextChunkIsTheFirst) {
    for (const size_t inside : {0u, 1u, 2u, 3u}) {
        SCOPED_TRACE(inside);
        const Bytes all = joined(frames(3));
        EXPECT_EQ(framesOf(mp3Bytes(), split(all, {kFrameSize + inside})), frames(3));
    }
}

TEST_F(InvalidData, OnlyFrameOfTheOnlyChunkIsTheFirst) {
    EXPECT_EQ(framesOf(mp3Bytes(), {frame(1)}), (std::vector<Bytes>{frame(1)}));
    EXPECT_EQ(framesOf(mp3Bytes(), {noise(500), frame(1)}), (std::vector<Bytes>{frame(1)}));
}

}  // namespace
}  // namespace avitest
