// SPDX-License-Identifier: Apache-2.0
//
// Data without a frame header in the middle of a stream: it gets the header that the stream began
// with, so that the decoder stays in step.

#include <algorithm>

#include "tests/behaviour/mpegaudio/MpegAudioFixture.h"

namespace avitest {
namespace {

// `bytes` with `header` over the first four and zeros over the next twelve.
Bytes withHeader(Bytes bytes, uint32_t header = kHeader) {
    const Bytes first = headerBytes(header);
    std::copy(first.begin(), first.end(), bytes.begin());
    for (size_t i = 4; i < std::min<size_t>(16, bytes.size()); ++i)
        bytes[i] = 0;
    return bytes;
}

class MissingHeader : public MpegAudioTest {
  protected:
    // The lines about missing headers while the first track is read.
    std::vector<LogLine> warnings() {
        const LogCapture log;
        readAll(0);
        std::vector<LogLine> result;
        for (const LogLine& line : log.lines()) {
            if (line.text.find("bad MP3 frame") != std::string::npos) result.push_back(line);
        }
        return result;
    }
    void expectWarning(const std::string& text) {
        const std::vector<LogLine> found = warnings();
        ASSERT_EQ(found.size(), 1u);
        EXPECT_EQ(found[0].priority, ANDROID_LOG_WARN);
        EXPECT_EQ(found[0].text, text);
    }
};

TEST_F(MissingHeader, IsCreatedForTheWholeChunk) {
    const Bytes bad = noise(300, 7);
    EXPECT_EQ(framesOf(mp3Bytes(), {joined(frames(2)), bad, frame(3)}),
              (std::vector<Bytes>{frame(0), frame(1), withHeader(bad), frame(3)}));
}

TEST_F(MissingHeader, IsCreatedForTheRestOfAChunk) {
    const Bytes bad = noise(55, 7);
    EXPECT_EQ(framesOf(mp3Bytes(), {joined({frame(0), frame(1), bad}), frame(3)}),
              (std::vector<Bytes>{frame(0), frame(1), withHeader(bad), frame(3)}));
}

TEST_F(MissingHeader, IsCreatedWithTwelveZerosAtMost) {
    for (const size_t size : {5u, 8u, 15u, 16u, 17u, 40u}) {
        SCOPED_TRACE(size);
        const Bytes bad(size, 0x55);
        Bytes expected = {0xFF, 0xFB, 0x90, 0x00};
        expected.resize(std::min<size_t>(size, 16), 0);
        expected.resize(size, 0x55);
        EXPECT_EQ(framesOf(mp3Bytes(), {joined(frames(2)), bad, frame(3)}),
                  (std::vector<Bytes>{frame(0), frame(1), expected, frame(3)}));
    }
}

TEST_F(MissingHeader, IsThatOfTheStreamsFirstFrame) {
    const Bytes first = frameOf(0xFFFA92C4, 418, 1);
    const Bytes bad = noise(100);
    EXPECT_EQ(framesOf(mp3Bytes(), {joined({first, frame(1)}), bad, frame(2)}),
              (std::vector<Bytes>{first, frame(1), withHeader(bad, 0xFFFA92C4), frame(2)}));
}

// A header that agrees with the stream's but gives no size hides the frames behind it as well.
TEST_F(MissingHeader, IsCreatedOverAHeaderWithoutBitRate) {
    for (const uint32_t header : {0xFFFB0000u, 0xFFFBF000u}) {
        SCOPED_TRACE(header);
        const Bytes bad = joined({noise(3), frameOf(header, 100), frame(5)});
        EXPECT_EQ(framesOf(mp3Bytes(), {joined(frames(2)), bad, frame(3)}),
                  (std::vector<Bytes>{frame(0), frame(1), withHeader(bad), frame(3)}));
    }
}

// A header needs its four bytes.
TEST_F(MissingHeader, IsNotFoundInTheLastThreeBytes) {
    const Bytes bad = joined({noise(20), slice(headerBytes(kHeader), 0, 3)});
    EXPECT_EQ(framesOf(mp3Bytes(), {joined(frames(2)), bad, frame(3)}),
              (std::vector<Bytes>{frame(0), frame(1), withHeader(bad), frame(3)}));
}

TEST_F(MissingHeader, IsFoundInTheLastFourBytes) {
    const std::vector<Bytes> all = frames(4);
    EXPECT_EQ(
        framesOf(mp3Bytes(), {joined({all[0], all[1]}), joined({noise(20), slice(all[2], 0, 4)}),
                              joined({slice(all[2], 4, kFrameSize), all[3]})}),
        all);
}

TEST_F(MissingHeader, IsCreatedForZerosAndForOnes) {
    for (const uint8_t value : {0x00, 0xFF}) {
        const Bytes bad(64, value);
        EXPECT_EQ(framesOf(mp3Bytes(), {joined(frames(2)), bad, frame(3)}),
                  (std::vector<Bytes>{frame(0), frame(1), withHeader(bad), frame(3)}));
    }
}

TEST_F(MissingHeader, IsToldWithTheChunk) {
    openStream(mp3Bytes(), {joined(frames(2)), noise(300), frame(3)});
    expectWarning(
        "[audio/mpeg][0][1/3] 300 bytes bad MP3 frame without header, create header for it.");
}

TEST_F(MissingHeader, IsToldWithTheTypeOfTheLayer) {
    const Bytes first = frameOf(0xFFFDA000, 626);
    openStream(mp3Bytes(), {joined({first, first}), first, noise(9)});
    expectWarning(
        "[audio/mpeg-L2][0][2/3] 9 bytes bad MP3 frame without header, create header for it.");
}

TEST_F(MissingHeader, IsToldWithoutChunkWhenNoneWasLoaded) {
    openStream(mp3Bytes(), {joined(frames(2)), joined({frame(3), noise(30)})});
    expectWarning("[audio/mpeg][0] 30 bytes bad MP3 frame without header, create header for it.");
}

// Four bytes of the one chunk and the three of the next.
TEST_F(MissingHeader, IsToldWithoutTypeWhenTwoChunksWerePutTogether) {
    openStream(mp3Bytes(), {joined(frames(2)), noise(4), noise(3), frame(3)});
    expectWarning("[0][2/4] 7 bytes bad MP3 frame without header, create header for it.");
}

TEST_F(MissingHeader, IsToldWhateverTheSwitches) {
    for (const char* value : {"0", "1"}) {
        setProperty(kExtractLogProperty, value);
        setProperty(kVerboseLogProperty, value);
        openStream(mp3Bytes(), {joined(frames(2)), noise(300), frame(3)});
        EXPECT_EQ(warnings().size(), 1u);
    }
}

TEST_F(MissingHeader, IsNotToldOfAStreamWithAllHeaders) {
    openStream(mp3Bytes(), split(joined(frames(6)), {1000, 400, 3, 500}));
    EXPECT_TRUE(warnings().empty());
}

TEST_F(MissingHeader, MovesTheTimeByOneUnitOfTheStream) {
    // Chunk times that stay behind the running time.
    Stream stream = mp3Bytes();
    stream.header.scale = 30;
    stream.header.rate = 3000000;
    openStream(stream, {joined(frames(2)), noise(300), noise(200)});
    // 30 s / 3000000 is a unit of 10 us.
    EXPECT_EQ(timesOf(readAll(0)),
              (std::vector<int64_t>{kMp3FrameUs, 2 * kMp3FrameUs, 2 * kMp3FrameUs + 10,
                                    2 * kMp3FrameUs + 20}));
}

TEST_F(MissingHeader, IsNeverBeforeItsChunk) {
    openStream(mp3Bytes(8000), {joined(frames(2)), noise(300), frame(3)});
    EXPECT_EQ(timesOf(readAll(0)),
              (std::vector<int64_t>{kMp3FrameUs, 2 * kMp3FrameUs, 104250, 141750}));
}

// A microsecond product that does not fit 32 bits wraps: 5000000000 - 4294967296 = 705032704.
TEST_F(MissingHeader, CountsItsUnitIn32Bits) {
    Stream stream = mp3Bytes();
    stream.header.scale = 5000;
    stream.header.rate = 1000000000;  // a byte takes 5 us
    std::get<WaveFormat>(stream.format).avgBytesPerSec = 16000;
    openStream(stream, {joined(frames(2)), noise(300), frame(3)});
    // The chunk time (834 bytes) is 4170; the unit is 705032704 / 1000000000: 0.
    EXPECT_EQ(timesOf(readAll(0)), (std::vector<int64_t>{kMp3FrameUs, 2 * kMp3FrameUs,
                                                         2 * kMp3FrameUs, 3 * kMp3FrameUs}));
}

}  // namespace
}  // namespace avitest
