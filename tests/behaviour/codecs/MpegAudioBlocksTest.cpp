// SPDX-License-Identifier: Apache-2.0
//
// MPEG audio whose chunks are counted in blocks, and what keeps a stream from it.

#include "tests/behaviour/codecs/MpegAudioBytes.h"

namespace avitest {
namespace {

using ::testing::Contains;

class MpegAudioBlocks : public MpegAudioConfigTest {
  protected:
    // Junk of one block, then frames.
    std::vector<Bytes> mChunks = {junk(1152), mpegFrame(), mpegFrame(),
                                  mpegFrame() + mpegFrame() + mpegFrame()};

    void setAlign(uint16_t align) { std::get<WaveFormat>(mStream.format).blockAlign = align; }
    void expectBlocks(uint32_t align, uint32_t total) {
        openChunks(mChunks);
        EXPECT_THAT(
            log(),
            Contains(warning(format("generateMPEGCodecData(): Enable block mode align %u total %u",
                                    align, total))));
        EXPECT_EQ(mLog.count(format("SCNT %zu TTSZ 0 BLKM true TTBLKS %zu", mChunks.size(),
                                    mChunks.size())),
                  1u);
    }
    void expectNoBlocks() {
        openChunks(mChunks);
        EXPECT_FALSE(isBad());
        EXPECT_EQ(mLog.count("Enable block mode"), 0u);
        EXPECT_EQ(mLog.count("BLKM true"), 0u);
    }
};

TEST_F(MpegAudioBlocks, EveryChunkCountsItsBlocksRoundedUp) {
    expectBlocks(1152, 1 + 1 + 1 + 2);
}

TEST_F(MpegAudioBlocks, FirstChunkMayHoldSeveral) {
    mChunks[0] = junk(3 * 1152);
    expectBlocks(1152, 3 + 1 + 1 + 2);
}

TEST_F(MpegAudioBlocks, BlockIsThatOfTheLayer) {
    const uint32_t header = 0xFFFF1800;  // Layer I: 48 bytes
    mChunks = {junk(384), mpegFrame(header, 48), mpegFrame(header, 48)};
    setAlign(384);
    expectBlocks(384, 3);
}

TEST_F(MpegAudioBlocks, DurationIsThatOfTheBlocks) {
    expectBlocks(1152, 5);
    // Five blocks of 1152 samples at 44100 Hz.
    EXPECT_EQ(trackFormat(0).getInt64(AMEDIAFORMAT_KEY_DURATION), 5 * 1152 * 1000000ll / 44100);
}

TEST_F(MpegAudioBlocks, HeaderInTheFirstSampleKeepsItOut) {
    mChunks[0] = mpegFrame() + mpegFrame() + junk(1152 - 2 * kLayerIIISize);
    expectNoBlocks();
}

TEST_F(MpegAudioBlocks, HeaderBehindJunkInTheFirstSampleKeepsItOut) {
    mChunks[0] = junk(1152 - 2 * kLayerIIISize) + mpegFrame() + mpegFrame();
    expectNoBlocks();
}

TEST_F(MpegAudioBlocks, OtherAlignmentKeepsItOut) {
    for (const uint16_t align : {0, 1, 576, 1151, 1153, 2304}) {
        SCOPED_TRACE(align);
        setAlign(align);
        expectNoBlocks();
    }
}

TEST_F(MpegAudioBlocks, FirstChunkOfAnotherSizeKeepsItOut) {
    for (const size_t size : {1u, 1151u, 1153u, 2303u}) {
        SCOPED_TRACE(size);
        mChunks[0] = junk(size);
        expectNoBlocks();
    }
}

TEST_F(MpegAudioBlocks, SampleSizeKeepsItOut) {
    mStream.header.sampleSize = 1;
    expectNoBlocks();
}

TEST_F(MpegAudioBlocks, SizesOfTheOtherChunksDoNotMatter) {
    mChunks[1] = mpegFrame() + mpegFrame() + junk(1);
    mChunks[2] = mpegFrame(kLayerIIIHeader, 417) + junk(1152 - 417);
    expectBlocks(1152, 1 + 1 + 1 + 2);
}

}  // namespace
}  // namespace avitest
