// SPDX-License-Identifier: Apache-2.0
//
// Of MPEG audio in blocks a chunk without a header goes out block by block. The rest of the chunk
// was searched for a header again for each of them.

#include <ctime>

#include "tests/behaviour/mpegaudio/MpegAudioFixture.h"

namespace avitest {
namespace {

constexpr size_t kBlock = 1152;
constexpr size_t kChunk = 8192 * kBlock;

// Of processor time. Searched for each block, the chunk takes half a minute or more.
constexpr double kMostSeconds = 5;

class HeaderSearch : public MpegAudioTest {
  protected:
    // A stream of blocks: junk, frames to know it by, and one large chunk.
    void openBlocks(const Bytes& large) {
        openStream(mp3Frames(), {noise(kBlock, 99), joined(frames(2)), frame(3), large});
    }
    // Reads a track to its end; returns the number of samples.
    static size_t countOf(Track& track, double* seconds) {
        BufferGroup group;
        EXPECT_EQ(AMEDIA_OK, track.start(group));
        size_t count = 0;
        const std::clock_t begin = std::clock();
        while (track.read().status == AMEDIA_OK)
            ++count;
        *seconds = static_cast<double>(std::clock() - begin) / CLOCKS_PER_SEC;
        track.stop();
        return count;
    }
};

TEST_F(HeaderSearch, LargeChunkWithoutHeaderIsSearchedOnce) {
    openBlocks(noise(kChunk));
    double seconds = 0;
    EXPECT_EQ(3 + kChunk / kBlock, countOf(*track(0), &seconds));
    EXPECT_GT(kMostSeconds, seconds);
}

// A header without a bit rate is none to cut by, but it is found.
TEST_F(HeaderSearch, HeaderThatCannotBeUsedIsFoundOnce) {
    openBlocks(joined({noise(kChunk - 4), headerBytes(0xFFFBF000)}));
    double seconds = 0;
    EXPECT_EQ(3 + kChunk / kBlock, countOf(*track(0), &seconds));
    EXPECT_GT(kMostSeconds, seconds);
}

// Behind the large chunk frames are found again.
TEST_F(HeaderSearch, NextChunkIsSearchedFromItsBeginning) {
    const std::vector<Bytes> whole = frames(3);
    openStream(mp3Frames(), {noise(kBlock, 99), joined({whole[0], whole[1]}), noise(3 * kBlock),
                             joined({noise(50), whole[2]})});
    const std::vector<Bytes> read = readPayloads(0);
    ASSERT_EQ(6u, read.size());
    EXPECT_EQ(whole[0], read[0]);
    EXPECT_EQ(whole[1], read[1]);
    EXPECT_EQ(whole[2], read[5]);
}

}  // namespace
}  // namespace avitest
