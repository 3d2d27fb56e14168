// SPDX-License-Identifier: Apache-2.0
//
// Streams of frames, pieces of frames and noise, in chunks of any size: each read gives what the
// model gives, and whatever the data, reading comes to an end.

#include <random>

#include "tests/behaviour/mpegaudio/CuttingModel.h"

namespace avitest {
namespace {

// Random numbers that are the same on every machine.
class Dice {
  public:
    explicit Dice(uint32_t seed) : mEngine(seed) {}
    // From `low` to `high`.
    size_t roll(size_t low, size_t high) { return low + mEngine() % (high - low + 1); }

    Bytes bytes(size_t size) {
        Bytes result(size);
        for (uint8_t& byte : result)
            byte = static_cast<uint8_t>(mEngine());
        return result;
    }
    // Bytes of which every other may begin a header.
    Bytes syncBytes(size_t size) {
        Bytes result(size);
        for (uint8_t& byte : result)
            byte = roll(0, 1) == 0 ? uint8_t{0xFF} : static_cast<uint8_t>(mEngine());
        return result;
    }

  private:
    std::mt19937 mEngine;
};

// A header of the usual stream with any bit rate, those that say nothing among them.
uint32_t anyHeader(Dice* dice) {
    return (kHeader & ~0xF000u) | static_cast<uint32_t>(dice->roll(0, 15)) << 12 |
           (dice->roll(0, 1) == 0 ? 0 : kPaddingBit);
}

Bytes anyPiece(Dice* dice) {
    switch (dice->roll(0, 5)) {
        case 0:
            return dice->bytes(dice->roll(1, 300));
        case 1:
            return dice->syncBytes(dice->roll(1, 40));
        case 2:
            return noise(dice->roll(1, 20));
        case 3:
            return frameOf(anyHeader(dice), dice->roll(5, 700));
        default:
            return frame(static_cast<uint32_t>(dice->roll(0, 1000)));
    }
}

// Two frames that tell the reader what stream it is, then anything, cut into chunks of up to
// `largest` bytes.
std::vector<Bytes> anyChunks(Dice* dice, size_t pieces, size_t largest) {
    Bytes data = frame(77);
    for (size_t i = 0; i < pieces; ++i)
        data = joined({data, anyPiece(dice)});
    std::vector<size_t> sizes;
    for (size_t total = 0; total < data.size(); total += sizes.back())
        sizes.push_back(dice->roll(1, dice->roll(0, 3) == 0 ? 6 : largest));
    std::vector<Bytes> chunks = split(data, sizes);
    chunks.insert(chunks.begin(), joined(frames(2)));
    return chunks;
}

class RandomData : public MpegAudioTest {
  protected:
    // Reads the first track to its end, whatever fails meanwhile.
    void expectLikeModel(CuttingModel model) {
        StartedTrack started(track(0));
        while (true) {
            const ModelRead expected = model.read();
            const ReadResult result = started.read();
            ASSERT_EQ(result.status, expected.status);
            if (result.status == AMEDIA_ERROR_END_OF_STREAM) return;
            if (result.status != AMEDIA_OK) continue;
            const Sample sample = sampleOf(result.buffer);
            ASSERT_EQ(sample.bytes, expected.bytes);
            ASSERT_EQ(sample.timeUs, expected.timeUs);
            ASSERT_TRUE(sample.sync);
        }
    }

    const LogCapture mQuiet;  // thousands of lines
};

TEST_F(RandomData, OfAStreamOfBytesIsCutLikeTheModel) {
    for (uint32_t seed = 0; seed < 150; ++seed) {
        SCOPED_TRACE(seed);
        Dice dice(seed);
        const std::vector<Bytes> chunks = anyChunks(&dice, 30, dice.roll(20, 1500));
        ModelStream stream;
        stream.rate = static_cast<uint32_t>(dice.roll(4000, 40000));
        openStream(mp3Bytes(stream.rate), chunks);
        expectLikeModel(CuttingModel(stream, chunks));
        if (HasFatalFailure()) return;
    }
}

TEST_F(RandomData, OfAStreamOfChunksIsCutLikeTheModel) {
    for (uint32_t seed = 1000; seed < 1100; ++seed) {
        SCOPED_TRACE(seed);
        Dice dice(seed);
        const std::vector<Bytes> chunks = anyChunks(&dice, 30, dice.roll(20, 1500));
        openStream(mp3Frames(), chunks);
        ModelStream stream;
        stream.countsBytes = false;
        stream.scale = 1152;
        stream.rate = 44100;
        stream.durationUs = trackFormat(0).getInt64(AMEDIAFORMAT_KEY_DURATION).value_or(0);
        expectLikeModel(CuttingModel(stream, chunks));
        if (HasFatalFailure()) return;
    }
}

TEST_F(RandomData, OfAStreamOfBlocksIsCutLikeTheModel) {
    for (uint32_t seed = 2000; seed < 2100; ++seed) {
        SCOPED_TRACE(seed);
        Dice dice(seed);
        std::vector<Bytes> chunks = anyChunks(&dice, 30, dice.roll(20, 4000));
        chunks.insert(chunks.begin(), noise(1152));
        openStream(mp3Frames(), chunks);
        ModelStream stream;
        stream.countsBytes = false;
        stream.scale = 1152;
        stream.rate = 44100;
        stream.blockSize = 1152;
        stream.firstChunk = 1;
        stream.durationUs = trackFormat(0).getInt64(AMEDIAFORMAT_KEY_DURATION).value_or(0);
        expectLikeModel(CuttingModel(stream, chunks));
        if (HasFatalFailure()) return;
    }
}

// Chunks so small that many a frame does not fit a buffer.
TEST_F(RandomData, InTinyChunksIsCutLikeTheModel) {
    for (uint32_t seed = 3000; seed < 3050; ++seed) {
        SCOPED_TRACE(seed);
        Dice dice(seed);
        const size_t largest = dice.roll(60, 110);
        std::vector<Bytes> chunks = anyChunks(&dice, 10, largest);
        chunks.erase(chunks.begin());
        // In place of two frames, of which the second confirms the first.
        chunks.insert(chunks.begin(), 2, frameOf(kHeader, largest));
        openStream(mp3Bytes(), chunks);
        expectLikeModel(CuttingModel(ModelStream(), chunks));
        if (HasFatalFailure()) return;
    }
}

TEST_F(RandomData, WithoutAnyOrderComesToAnEnd) {
    for (uint32_t seed = 4000; seed < 4150; ++seed) {
        SCOPED_TRACE(seed);
        Dice dice(seed);
        AviFile avi;
        const size_t audio =
            avi.addStream(dice.roll(0, 1) == 0 ? mp3Bytes(16000, 0x50) : mp3Frames(0x50));
        avi.addChunk(avi.addStream(mjpegStream()), patternBytes(100));
        size_t total = 0;
        const size_t count = dice.roll(1, 40);
        for (size_t i = 0; i < count; ++i) {
            const size_t size = dice.roll(1, 400);
            avi.addChunk(audio, dice.roll(0, 1) == 0 ? dice.bytes(size) : dice.syncBytes(size));
            total += size;
        }
        openFile(avi.build());
        ASSERT_EQ(countTracks(), 2u);
        StartedTrack started(track(1));  // video comes first
        size_t reads = 0;
        size_t bytes = 0;
        while (true) {
            const ReadResult result = started.read();
            if (result.status == AMEDIA_ERROR_END_OF_STREAM) break;
            ++reads;
            if (result.buffer) bytes += result.buffer.rangeLength();
            ASSERT_LE(reads, total + count);
        }
        EXPECT_LE(bytes, total);  // nothing twice
        EXPECT_EQ(started.group().heldCount(), 0u);
    }
}

TEST_F(RandomData, IsReadFromAnyTimeToTheEnd) {
    for (uint32_t seed = 5000; seed < 5060; ++seed) {
        SCOPED_TRACE(seed);
        Dice dice(seed);
        std::vector<Bytes> chunks = anyChunks(&dice, 20, dice.roll(20, 1500));
        size_t total = 0;
        if (dice.roll(0, 1) == 0) chunks.insert(chunks.begin(), noise(1152));
        for (const Bytes& chunk : chunks)
            total += chunk.size();
        openStream(dice.roll(0, 1) == 0 ? mp3Bytes() : mp3Frames(), chunks);
        StartedTrack started(track(0));
        for (int seek = 0; seek < 5; ++seek) {
            const auto timeUs = static_cast<int64_t>(dice.roll(0, 900000));
            media_status_t status = started.track().read(android::SEEK, timeUs).status;
            for (size_t reads = dice.roll(0, 100); reads > 0 && status == AMEDIA_OK; --reads)
                status = started.status();
        }
        size_t reads = 0;
        while (started.status() != AMEDIA_ERROR_END_OF_STREAM)
            ASSERT_LE(++reads, total);
        EXPECT_EQ(started.group().heldCount(), 0u);
    }
}

}  // namespace
}  // namespace avitest
