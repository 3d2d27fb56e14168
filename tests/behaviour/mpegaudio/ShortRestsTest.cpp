// SPDX-License-Identifier: Apache-2.0
//
// Ends of chunks too short to be looked at on their own: they are read on with the next chunk.

#include "tests/behaviour/mpegaudio/MpegAudioFixture.h"

namespace avitest {
namespace {

class ShortRests : public MpegAudioTest {};

TEST_F(ShortRests, OfOneToThreeBytesGoInFrontOfTheNextChunk) {
    const std::vector<Bytes> all = frames(4);
    for (const size_t rest : {1u, 2u, 3u}) {
        SCOPED_TRACE(rest);
        EXPECT_EQ(framesOf(mp3Bytes(), split(joined(all), {2 * kFrameSize + rest})), all);
    }
}

TEST_F(ShortRests, OfJunkGoInFrontOfTheNextChunkAndAreLeftOut) {
    const std::vector<Bytes> all = frames(4);
    for (const size_t rest : {1u, 2u, 3u}) {
        SCOPED_TRACE(rest);
        EXPECT_EQ(framesOf(mp3Bytes(), {joined({all[0], all[1], noise(rest)}), all[2], all[3]}),
                  all);
    }
}

TEST_F(ShortRests, OfFourBytesAreLookedAt) {
    const std::vector<Bytes> all = frames(3);
    const std::vector<Bytes> read =
        framesOf(mp3Bytes(), {joined({all[0], all[1], noise(4)}), all[2]});
    EXPECT_EQ(read, (std::vector<Bytes>{all[0], all[1], headerBytes(kHeader), all[2]}));
}

TEST_F(ShortRests, AtTheEndOfTheStreamAreDropped) {
    const std::vector<Bytes> all = frames(2);
    for (const size_t rest : {1u, 2u, 3u}) {
        SCOPED_TRACE(rest);
        EXPECT_EQ(framesOf(mp3Bytes(), {joined({all[0], all[1], noise(rest)})}), all);
    }
}

TEST_F(ShortRests, AtTheEndOfTheStreamEndItAgainAndAgain) {
    openStream(mp3Bytes(), {joined({frame(1), frame(2), noise(2)})});
    StartedTrack started(track(0));
    EXPECT_EQ(started.status(), AMEDIA_OK);
    EXPECT_EQ(started.status(), AMEDIA_OK);
    for (int i = 0; i < 3; ++i)
        EXPECT_EQ(started.status(), AMEDIA_ERROR_END_OF_STREAM);
}

// A split frame took all of a chunk but `left` bytes.
TEST_F(ShortRests, BehindASplitFrameGoInFrontOfTheNextChunk) {
    const std::vector<Bytes> all = frames(5);
    for (const size_t left : {0u, 1u, 2u, 3u, 4u, 5u}) {
        SCOPED_TRACE(left);
        EXPECT_EQ(framesOf(mp3Bytes(), split(joined(all), {2 * kFrameSize + 100, 317 + left})),
                  all);
    }
}

TEST_F(ShortRests, OfFourBytesBehindASplitFrameAreNotLookedAtAlone) {
    const std::vector<Bytes> all = frames(4);
    const std::vector<Bytes> chunks = {joined({all[0], all[1], slice(all[2], 0, 100)}),
                                       joined({slice(all[2], 100, kFrameSize), noise(4)}), all[3]};
    EXPECT_EQ(framesOf(mp3Bytes(), chunks), all);
}

TEST_F(ShortRests, OfFiveBytesBehindASplitFrameAreLookedAtAlone) {
    const std::vector<Bytes> all = frames(4);
    const std::vector<Bytes> chunks = {joined({all[0], all[1], slice(all[2], 0, 100)}),
                                       joined({slice(all[2], 100, kFrameSize), noise(5)}), all[3]};
    const Bytes created = joined({headerBytes(kHeader), {0}});
    EXPECT_EQ(framesOf(mp3Bytes(), chunks),
              (std::vector<Bytes>{all[0], all[1], all[2], created, all[3]}));
}

TEST_F(ShortRests, BehindASplitFrameAtTheEndOfTheStreamAreDropped) {
    const std::vector<Bytes> all = frames(3);
    for (const size_t left : {0u, 1u, 2u, 3u, 4u}) {
        SCOPED_TRACE(left);
        const std::vector<Bytes> chunks = {joined({all[0], all[1], slice(all[2], 0, 100)}),
                                           joined({slice(all[2], 100, kFrameSize), noise(left)})};
        EXPECT_EQ(framesOf(mp3Bytes(), chunks), all);
    }
}

// Chunks below five bytes: a whole one is as good as a rest.
TEST_F(ShortRests, ChunksOfUpToFourBytesGoInFrontOfTheNext) {
    const std::vector<Bytes> all = frames(4);
    for (const size_t size : {1u, 2u, 3u, 4u}) {
        SCOPED_TRACE(size);
        const std::vector<Bytes> chunks = {joined({all[0], all[1]}), slice(all[2], 0, size),
                                           slice(all[2], size, kFrameSize), all[3]};
        EXPECT_EQ(framesOf(mp3Bytes(), chunks), all);
    }
}

TEST_F(ShortRests, AndAShortChunkGoInFrontOfTheChunkBehindIt) {
    const std::vector<Bytes> all = frames(4);
    const std::vector<Bytes> chunks =
        split(joined(all), {2 * kFrameSize + 1, 1, kFrameSize - 2});  // a rest of one, one more
    EXPECT_EQ(framesOf(mp3Bytes(), chunks), all);
}

// Two short chunks are put together; what makes less than a header goes out as it is.
TEST_F(ShortRests, PutTogetherButStillBelowAHeaderComeAsTheyAre) {
    const std::vector<Bytes> all = frames(3);
    const std::vector<Bytes> chunks = {joined({all[0], all[1]}), noise(1, 1), noise(2, 2), all[2]};
    LogCapture log;
    EXPECT_EQ(framesOf(mp3Bytes(), chunks),
              (std::vector<Bytes>{all[0], all[1], joined({noise(1, 1), noise(2, 2)}), all[2]}));
    EXPECT_EQ(log.count("bad MP3 frame"), 0u);
}

TEST_F(ShortRests, PutTogetherButStillBelowAHeaderDoNotMoveTheTime) {
    // Twice the usual byte rate, so that the running time is ahead of the chunks'.
    openStream(mp3Bytes(32000), {joined(frames(2)), noise(1, 1), noise(2, 2), frame(3)});
    EXPECT_EQ(timesOf(readAll(0)), (std::vector<int64_t>{kMp3FrameUs, 2 * kMp3FrameUs,
                                                         2 * kMp3FrameUs, 3 * kMp3FrameUs}));
}

TEST_F(ShortRests, OfTheLastChunkAloneEndTheStream) {
    for (const size_t size : {1u, 2u, 3u, 4u}) {
        SCOPED_TRACE(size);
        EXPECT_EQ(framesOf(mp3Bytes(), {joined(frames(2)), noise(size)}), frames(2));
    }
}

TEST_F(ShortRests, LastChunkOfFiveBytesIsRead) {
    const std::vector<Bytes> read = framesOf(mp3Bytes(), {joined(frames(2)), noise(5)});
    ASSERT_EQ(read.size(), 3u);
    EXPECT_EQ(read[2], joined({headerBytes(kHeader), {0}}));
}

}  // namespace
}  // namespace avitest
