// SPDX-License-Identifier: Apache-2.0
//
// Raw PCM on its way to 16 bits.

#include "tests/behaviour/reading/ReadingFixture.h"

namespace avitest {
namespace {

class ReadPcm : public ReadingTest {
  protected:
    // The first sample of a mono stream of this width with one chunk.
    Bytes readPcm(uint16_t bits, const Bytes& chunk) {
        openStream(pcmStream(1, 8000, bits), {chunk});
        return StartedTrack(track(0)).sample().bytes;
    }
};

TEST_F(ReadPcm, EightBitsBecomeSigned16) {
    EXPECT_EQ(readPcm(8, {0x00, 0x80, 0xFF}), (Bytes{0x00, 0x80, 0x00, 0x00, 0x00, 0x7F}));
}

TEST_F(ReadPcm, EightBitsOfEveryValue) {
    Bytes chunk;
    Bytes expected;
    for (int value = 0; value < 256; ++value) {
        chunk.push_back(static_cast<uint8_t>(value));
        expected.push_back(0);
        expected.push_back(static_cast<uint8_t>(value ^ 0x80));
    }
    EXPECT_EQ(readPcm(8, chunk), expected);
}

TEST_F(ReadPcm, SixteenBitsAreLeftAlone) {
    EXPECT_EQ(readPcm(16, patternBytes(1001)), patternBytes(1001));
}

TEST_F(ReadPcm, TwentyFourBitsLoseTheirLowestByte) {
    EXPECT_EQ(readPcm(24, {0x01, 0x02, 0x03, 0x11, 0x12, 0x13, 0x21, 0x22, 0x23}),
              (Bytes{0x02, 0x03, 0x12, 0x13, 0x22, 0x23}));
}

TEST_F(ReadPcm, ThirtyTwoBitsLoseTheirLowerHalf) {
    EXPECT_EQ(readPcm(32, {0x01, 0x02, 0x03, 0x04, 0x11, 0x12, 0x13, 0x14}),
              (Bytes{0x03, 0x04, 0x13, 0x14}));
}

TEST_F(ReadPcm, OddSizesOf24BitsKeepTwoThirdsRoundedDown) {
    struct Row {
        size_t size, length, converted;
    };
    const Row rows[] = {{1, 0, 0}, {2, 1, 0}, {3, 2, 2}, {4, 2, 2},
                        {5, 3, 2}, {7, 4, 4}, {8, 5, 4}};
    for (const Row& row : rows) {
        SCOPED_TRACE(row.size);
        const Bytes chunk = patternBytes(row.size);
        const Bytes sample = readPcm(24, chunk);

        ASSERT_EQ(sample.size(), row.length);
        for (size_t i = 0; i < row.converted; ++i)
            EXPECT_EQ(sample[i], chunk[i / 2 * 3 + 1 + i % 2]);
    }
}

TEST_F(ReadPcm, OddSizesOf32BitsKeepHalfRoundedDown) {
    struct Row {
        size_t size, length, converted;
    };
    const Row rows[] = {{1, 0, 0}, {2, 1, 0}, {3, 1, 0}, {4, 2, 2},
                        {5, 2, 2}, {7, 3, 2}, {9, 4, 4}};
    for (const Row& row : rows) {
        SCOPED_TRACE(row.size);
        const Bytes chunk = patternBytes(row.size);
        const Bytes sample = readPcm(32, chunk);

        ASSERT_EQ(sample.size(), row.length);
        for (size_t i = 0; i < row.converted; ++i)
            EXPECT_EQ(sample[i], chunk[i / 2 * 4 + 2 + i % 2]);
    }
}

TEST_F(ReadPcm, LargestChunkOfEightBitsFitsItsBuffer) {
    const Bytes large = patternBytes(100000);
    EXPECT_EQ(readPcm(8, large).size(), 200000u);
}

TEST_F(ReadPcm, OtherWidthsAreLeftAlone) {
    // Only the extensible format gets past the check of widths.
    Stream stream = audioStream(0xFFFE, 1, 8000, 16000, 2, 12);
    std::get<WaveFormat>(stream.format).extra = ExtensibleFormat().toBytes();
    openStream(stream, {patternBytes(101)});

    EXPECT_EQ(StartedTrack(track(0)).sample().bytes, patternBytes(101));
}

TEST_F(ReadPcm, ExtensibleFormatIsConvertedByItsWidth) {
    Stream stream = audioStream(0xFFFE, 1, 8000, 24000, 3, 24);
    std::get<WaveFormat>(stream.format).extra = ExtensibleFormat().toBytes();
    openStream(stream, {{0x01, 0x02, 0x03, 0x11, 0x12, 0x13}});

    EXPECT_EQ(StartedTrack(track(0)).sample().bytes, (Bytes{0x02, 0x03, 0x12, 0x13}));
}

TEST_F(ReadPcm, OtherAudioOfEightBitsIsLeftAlone) {
    openStream(alawStream(), {{0x00, 0x80, 0xFF}});

    EXPECT_EQ(StartedTrack(track(0)).sample().bytes, (Bytes{0x00, 0x80, 0xFF}));
}

TEST_F(ReadPcm, TimesCountTheBytesOfTheFile) {
    for (const uint16_t bits : {8, 16, 24, 32}) {
        SCOPED_TRACE(bits);
        const size_t second = size_t{8000} * bits / 8;
        openStream(pcmStream(1, 8000, bits), {patternBytes(second), patternBytes(24)});

        EXPECT_EQ(timesOf(readAll(0)), (std::vector<int64_t>{0, 1000000}));
    }
}

TEST_F(ReadPcm, WideningHoldsOneBufferInTheEnd) {
    openStream(pcmStream(1, 8000, 8), {patternBytes(30), patternBytes(30)});
    StartedTrack started(track(0));
    const ReadResult first = started.read();
    EXPECT_EQ(started.group().heldCount(), 1u);
    const ReadResult second = started.read();
    EXPECT_EQ(started.group().heldCount(), 2u);
}

}  // namespace
}  // namespace avitest
