// SPDX-License-Identifier: Apache-2.0
//
// Where MPEG audio in blocks resumes: inside a chunk, at a whole block.

#include "tests/behaviour/seeking/BlockFile.h"
#include "tests/behaviour/seeking/SeekingFixture.h"

namespace avitest {
namespace {

// In the middle of a block, so that no rounding matters.
constexpr int64_t inBlock(int block) {
    return (int64_t{2} * block + 1) * 1152 * 1000000 / 44100 / 2;
}

class BlockSeek : public SeekingTest {
  protected:
    void openChunks(const std::vector<int>& blocks) {
        mFile = blockFile(blocks);
        const LogCapture log;
        open(mFile.avi);
        ASSERT_EQ(log.count("Enable block mode"), 1u);
        for (const auto& [bytes, number] : mFile.firstFrames)
            learn(bytes, number);
    }
    BlockFile mFile;
};

// Two blocks of junk, then frames: each block begins with one of its own.
TEST_F(BlockSeek, LandsOnTheBlockThatHoldsTheTime) {
    openChunks({2, 3, 1, 4});
    StartedTrack audio(track(0));
    for (int block = 2; block < 10; ++block) {
        for (uint32_t mode = 0; mode < kModes; ++mode) {
            SCOPED_TRACE(testing::Message() << "block " << block << ", mode " << mode);
            EXPECT_EQ(chunkAt(audio, mode, inBlock(block)), block);
        }
    }
}

// As frames of video do.
TEST_F(BlockSeek, BlockNumbersHaveThePrecisionOfAFloat) {
    openChunks({2, 3, 1, 4});
    const std::pair<int, int> kRows[] = {
        {8388609, 8388609}, {16777215, 16777215}, {16777217, 16777216}, {16777219, 16777220}};
    for (const auto& [block, calculated] : kRows) {
        const LogCapture log;
        EXPECT_EQ(chunkAt(0, kPrevious, inBlock(block)), kEndOfStream);
        EXPECT_EQ(log.count("Calculated seekBlocks " + std::to_string(calculated) + " @"), 1u);
    }
}

TEST_F(BlockSeek, EdgesOfABlock) {
    openChunks({2, 3, 1, 4});
    StartedTrack audio(track(0));
    // Block 4 begins at 104489.8 us.
    EXPECT_EQ(chunkAt(audio, kPrevious, 104489), 3);
    EXPECT_EQ(chunkAt(audio, kPrevious, 104490), 4);
    EXPECT_EQ(chunkAt(audio, kPrevious, 130612), 4);
    EXPECT_EQ(chunkAt(audio, kPrevious, 130613), 5);
}

TEST_F(BlockSeek, RunningTotalsOfTenTwentyThirty) {
    openChunks({10, 10, 10});
    LogCapture log;
    StartedTrack audio(track(0));
    EXPECT_EQ(chunkAt(audio, kPrevious, inBlock(25)), 25);
    EXPECT_EQ(log.count("[audio/mpeg] seek blocks 25 block offset 1680"), 1u);  // 5 blocks of 1152
}

TEST_F(BlockSeek, BeginningIsTheFirstBlockBehindTheJunk) {
    openChunks({2, 3, 1});
    StartedTrack audio(track(0));
    for (const int64_t timeUs : {int64_t{0}, int64_t{-1}, INT64_MIN})
        EXPECT_EQ(chunkAt(audio, kPrevious, timeUs), 2);
}

TEST_F(BlockSeek, BeyondTheEnd) {
    openChunks({2, 3, 1});
    StartedTrack audio(track(0));
    EXPECT_EQ(chunkAt(audio, kPrevious, inBlock(5)), 5);
    EXPECT_EQ(chunkAt(audio, kPrevious, inBlock(6)), kEndOfStream);
    EXPECT_EQ(chunkAt(audio, kPrevious, inBlock(6000)), kEndOfStream);
    for (const int64_t timeUs : kFarTimes)
        EXPECT_EQ(chunkAt(audio, kPrevious, timeUs), kEndOfStream);
}

TEST_F(BlockSeek, SeekDropsTheRestOfTheChunkAtHand) {
    openChunks({2, 3, 1, 4});
    StartedTrack audio(track(0));
    EXPECT_EQ(chunkAt(audio, kPrevious, inBlock(6)), 6);
    EXPECT_EQ(chunkAt(audio, kPrevious, inBlock(3)), 3);
    EXPECT_EQ(chunkAt(audio, kPrevious, inBlock(9)), 9);
}

TEST_F(BlockSeek, SeekBeyondTheEndDropsTheRestOnly) {
    openChunks({2, 3, 1, 4});
    StartedTrack audio(track(0));
    EXPECT_EQ(chunkAt(audio, kPrevious, inBlock(3)), 3);
    EXPECT_EQ(chunkAt(audio, kPrevious, inBlock(10)), kEndOfStream);
    EXPECT_EQ(nextChunk(audio), 5);  // the first of the chunk behind
}

TEST_F(BlockSeek, ReadingGoesOnWithTheNextBlocks) {
    openChunks({2, 3, 1, 4});
    StartedTrack audio(track(0));
    EXPECT_EQ(chunkAt(audio, kPrevious, inBlock(3)), 3);
    // What lies behind a block's frame has no header of its own.
    EXPECT_EQ(nextChunk(audio), 4);
    EXPECT_EQ(nextChunk(audio), kUnknownChunk);
    EXPECT_EQ(nextChunk(audio), 5);
}

TEST_F(BlockSeek, FrameTimeCountsFromTheSeekTime) {
    openChunks({2, 3, 1, 4});
    StartedTrack audio(track(0));
    const int64_t timeUs = inBlock(8);
    EXPECT_EQ(seek(audio, kClosest, timeUs), (Landing{8, timeUs + kMp3FrameUs, std::nullopt}));
}

TEST_F(BlockSeek, LogsItsBlocks) {
    openChunks({2, 3, 1, 4});
    StartedTrack audio(track(0));
    const LogCapture log;
    chunkAt(audio, kPrevious, 110000);
    const std::vector<std::string> texts = textsOf(seekLines(log));
    EXPECT_THAT(texts,
                testing::ElementsAre("[audio/mpeg] Calculated seekBlocks 4 @seekTime 110000us",
                                     "[audio/mpeg] seek blocks 4 block offset 900"));
}

TEST_F(BlockSeek, LogsTheEnd) {
    openChunks({2, 3, 1});
    StartedTrack audio(track(0));
    const LogCapture log;
    chunkAt(audio, kPrevious, inBlock(6));
    EXPECT_EQ(seekLines(log).back(), error("[audio/mpeg][0] end of stream @L#"));
}

}  // namespace
}  // namespace avitest
