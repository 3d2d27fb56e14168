// SPDX-License-Identifier: Apache-2.0
//
// Streams of blocks: junk in front, chunks that count as whole blocks of one frame's samples. Data
// without a header then goes out block by block.

#include "tests/behaviour/mpegaudio/MpegAudioFixture.h"

namespace avitest {
namespace {

constexpr size_t kBlock = 1152;
constexpr int64_t kBlockUs = 26122;  // 1152 samples at 44100 Hz, truncated

class BlockMode : public MpegAudioTest {
  protected:
    // Chunks behind the one that makes the stream one of blocks.
    std::vector<Bytes> behindJunk(std::vector<Bytes> chunks, size_t junk = kBlock) {
        chunks.insert(chunks.begin(), noise(junk, 99));
        return chunks;
    }
    // Lengths of the frames of a stream.
    std::vector<size_t> lengthsOf(const Stream& stream, const std::vector<Bytes>& chunks) {
        std::vector<size_t> result;
        for (const Bytes& bytes : framesOf(stream, chunks))
            result.push_back(bytes.size());
        return result;
    }
    bool isBlocked(const Stream& stream, const std::vector<Bytes>& chunks) {
        const LogCapture log;
        openStream(stream, chunks);
        countTracks();
        return log.count("Enable block mode") == 1;
    }
};

TEST_F(BlockMode, IsToldWithItsBlocks) {
    LogCapture log;
    openStream(mp3Frames(), behindJunk({joined(frames(2)), noise(3000), frame(3)}, 2 * kBlock));
    ASSERT_EQ(countTracks(), 1u);
    // 2, 1, 3 and 1 blocks.
    EXPECT_THAT(log, Logged(ANDROID_LOG_WARN,
                            "generateMPEGCodecData(): Enable block mode align 1152 total 7"));
    EXPECT_THAT(log,
                Logged(ANDROID_LOG_WARN, "generateMPEGCodecData(): framed mp3? with samplesize 0"));
}

TEST_F(BlockMode, NeedsJunkInFrontOfWholeBlocks) {
    const std::vector<Bytes> good = {joined(frames(2)), frame(3)};
    EXPECT_TRUE(isBlocked(mp3Frames(), behindJunk(good)));
    EXPECT_TRUE(isBlocked(mp3Frames(), behindJunk(good, 3 * kBlock)));
    EXPECT_FALSE(isBlocked(mp3Frames(), behindJunk(good, kBlock - 1)));
    EXPECT_FALSE(isBlocked(mp3Frames(), behindJunk(good, kBlock + 1)));
    EXPECT_FALSE(isBlocked(mp3Frames(), good));
    EXPECT_FALSE(isBlocked(mp3Bytes(), behindJunk(good)));
}

TEST_F(BlockMode, NeedsABlockOfOneFramesSamples) {
    Stream stream = mp3Frames(0x50);
    std::get<WaveFormat>(stream.format).blockAlign = 576;
    EXPECT_FALSE(isBlocked(stream, behindJunk({joined(frames(2)), frame(3)})));
    std::get<WaveFormat>(stream.format).blockAlign = 0;
    EXPECT_FALSE(isBlocked(stream, behindJunk({joined(frames(2)), frame(3)})));
    std::get<WaveFormat>(stream.format).blockAlign = 384;
    const Bytes layerI = frameOf(0xFFFF1800, 48);
    EXPECT_TRUE(isBlocked(stream, behindJunk({joined({layerI, layerI}), layerI}, 384)));
}

TEST_F(BlockMode, CutsFramesAsEver) {
    EXPECT_EQ(framesOf(mp3Frames(), behindJunk({joined(frames(4))})), frames(4));
    EXPECT_EQ(framesOf(mp3Frames(), behindJunk(split(joined(frames(6)), {900, 1000}))), frames(6));
}

TEST_F(BlockMode, CutsDataWithoutHeaderIntoBlocks) {
    const Bytes bad = noise(2 * kBlock + 100, 5);
    const std::vector<Bytes> read =
        framesOf(mp3Frames(), behindJunk({joined(frames(2)), bad, frame(3)}));
    ASSERT_EQ(read.size(), 6u);
    const Bytes head = joined({headerBytes(kHeader), Bytes(12, 0)});
    EXPECT_EQ(read[2], joined({head, slice(bad, 16, kBlock)}));
    EXPECT_EQ(read[3], joined({head, slice(bad, kBlock + 16, 2 * kBlock)}));
    EXPECT_EQ(read[4], joined({head, slice(bad, 2 * kBlock + 16, 2 * kBlock + 100)}));
    EXPECT_EQ(read[5], frame(3));
}

TEST_F(BlockMode, TakesWhatIsThereOfAShorterBlock) {
    EXPECT_EQ(lengthsOf(mp3Frames(), behindJunk({joined(frames(2)), noise(kBlock - 1), frame(3)})),
              (std::vector<size_t>{kFrameSize, kFrameSize, kBlock - 1, kFrameSize}));
}

TEST_F(BlockMode, LeavesNothingOfAnExactBlock) {
    EXPECT_EQ(lengthsOf(mp3Frames(), behindJunk({joined(frames(2)), noise(kBlock), frame(3)})),
              (std::vector<size_t>{kFrameSize, kFrameSize, kBlock, kFrameSize}));
}

TEST_F(BlockMode, PutsAShortRestBehindABlockInFrontOfTheNextChunk) {
    EXPECT_EQ(lengthsOf(mp3Frames(), behindJunk({joined(frames(2)), noise(kBlock + 3), frame(3)})),
              (std::vector<size_t>{kFrameSize, kFrameSize, kBlock, kFrameSize}));
}

TEST_F(BlockMode, WithoutItHeaderlessDataStaysWhole) {
    EXPECT_EQ(
        lengthsOf(mp3Frames(), behindJunk({joined(frames(2)), noise(3000), frame(3)}, kBlock - 1)),
        (std::vector<size_t>{kFrameSize, kFrameSize, 3000, kFrameSize}));
}

TEST_F(BlockMode, WarnsOfEveryBlockWithWhatWasThere) {
    openStream(mp3Frames(), behindJunk({joined(frames(2)), noise(kBlock + 100), frame(3)}));
    LogCapture log;
    readAll(0);
    EXPECT_EQ(log.count("bad MP3 frame without header, create header for it."), 2u);
    EXPECT_THAT(log, Logged(ANDROID_LOG_WARN, "[audio/mpeg][0][2/4] 1252 bytes bad MP3 frame"));
    EXPECT_THAT(log, Logged(ANDROID_LOG_WARN, " 100 bytes bad MP3 frame"));
}

TEST_F(BlockMode, TimesBlocksByTheStreamsUnit) {
    openStream(mp3Frames(), behindJunk({joined(frames(2)), noise(2 * kBlock), frame(3)}));
    // 1 + 1 + 2 + 1 blocks; chunks share the duration, counted from the first that is no junk.
    const int64_t durationUs = int64_t{5} * 1152 * 1000000 / 44100;
    EXPECT_EQ(trackFormat(0).getInt64(AMEDIAFORMAT_KEY_DURATION), durationUs);
    const int64_t first = 2 * kMp3FrameUs;
    EXPECT_EQ(timesOf(readAll(0)),
              (std::vector<int64_t>{kMp3FrameUs, first, first + kBlockUs, first + 2 * kBlockUs,
                                    first + 2 * kBlockUs + kMp3FrameUs}));
}

// To the block that holds the time, though it is not the first of its chunk.
TEST_F(BlockMode, SeekLandsInsideAChunk) {
    const Bytes blocks = joined({frame(4), noise(kBlock - kFrameSize), frame(5),
                                 noise(kBlock - kFrameSize), frame(6), noise(50)});
    openStream(mp3Frames(), behindJunk({joined(frames(2)), blocks}));
    // Blocks 0 and 1 are the junk and the first chunk, 2 to 4 the second one.
    const std::vector<Sample> samples = readFrom(0, {android::SEEK, 3 * kBlockUs + 10}, 1);
    ASSERT_EQ(samples.size(), 1u);
    EXPECT_EQ(samples[0].bytes, frame(5));
}

}  // namespace
}  // namespace avitest
