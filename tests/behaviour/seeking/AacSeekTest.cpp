// SPDX-License-Identifier: Apache-2.0
//
// Where raw AAC resumes that is counted in bytes: by frames when its chunks are one frame each, by
// the byte rate otherwise.

#include "tests/behaviour/seeking/SeekingFixture.h"

namespace avitest {
namespace {

class AacSeek : public SeekingTest {
  protected:
    // 1024 samples a chunk at 44100 Hz, 8000 bytes a second.
    static Stream aacBytes() {
        constexpr uint16_t kAac = 0xFF;
        Stream stream = audioStream(kAac, 2, 44100, 8000, 1024);
        stream.header.rate = 44100;
        stream.header.sampleSize = 1;
        return stream;
    }
    void openSizes(const Stream& stream, const std::vector<size_t>& sizes) {
        AviFile avi = audioFile(stream, sizes);
        const LogCapture log;
        open(avi);
        mVariable = log.count("RawAAC/VBR Audio ") == 1;
        mConstant = log.count("RawAAC/CBR Audio ") == 1;
    }
    void expectLandings(const std::vector<std::pair<int64_t, int>>& rows) {
        StartedTrack audio(track(0));
        for (const auto& [timeUs, chunk] : rows) {
            SCOPED_TRACE(timeUs);
            EXPECT_EQ(chunkAt(audio, kPrevious, timeUs), chunk);
        }
    }

    bool mVariable = false;
    bool mConstant = false;
};

// A frame takes 23220 us; times are rounded to the nearest beginning of one.
TEST_F(AacSeek, VariableRateCountsFrames) {
    openSizes(aacBytes(), {371, 380, 300, 371, 390});
    ASSERT_TRUE(mVariable);
    expectLandings({{0, 0},
                    {-1, 0},
                    {11600, 0},
                    {11620, 1},
                    {34820, 1},
                    {34840, 2},
                    {92880, 4},
                    {104480, 4},
                    {104500, kEndOfStream},
                    {3600000000, kEndOfStream},
                    {int64_t{1} << 31, kEndOfStream},
                    {INT64_MAX, kEndOfStream}});
}

// Times in the middle of a frame, where the rounding of each product and quotient decides.
TEST_F(AacSeek, VariableRateCountsInFloats) {
    std::vector<size_t> sizes;
    for (size_t i = 0; i < 70; ++i)
        sizes.push_back(300 + i);
    openSizes(aacBytes(), sizes);
    ASSERT_TRUE(mVariable);
    expectLandings({{499229, 21}, {1010068, 44}, {1497687, 64}, {1520907, 66}});
}

TEST_F(AacSeek, VariableRateOfNoScaleIsTheFirstFrame) {
    Stream stream = aacBytes();
    stream.header.scale = 0;
    openSizes(stream, {371, 380, 300});
    expectLandings({{0, 0}, {1000000, 0}, {INT64_MAX, 0}});
}

TEST_F(AacSeek, VariableRateLandingHasItsFramesTime) {
    openSizes(aacBytes(), {371, 380, 300, 371});
    StartedTrack audio(track(0));
    EXPECT_EQ(seek(audio, kPrevious, 50000), (Landing{2, 46439, std::nullopt}));
    EXPECT_EQ(nextChunk(audio), 3);
}

// One chunk cannot tell its rate: by 8000 bytes a second.
TEST_F(AacSeek, ConstantRateCountsBytesOfTheByteRate) {
    openSizes(aacBytes(), {4000});
    ASSERT_TRUE(mConstant);
    expectLandings({{0, 0}, {499999, 0}, {500000, kEndOfStream}, {INT64_MAX, kEndOfStream}});
}

// Without a byte rate a stream counts as one of constant rate, whatever its chunks' sizes.
TEST_F(AacSeek, WithoutByteRateItSearchesTheRunningTotals) {
    Stream stream = aacBytes();
    std::get<WaveFormat>(stream.format).avgBytesPerSec = 0;
    stream.header.sampleSize = 2;
    openSizes(stream, {371, 380, 300});
    ASSERT_TRUE(mConstant);
    // The chunks' ends are (bytes * 1000000 * 1024 / 44100) / 2.
    expectLandings({{0, 0},
                    {4307299, 0},
                    {4307301, 1},
                    {8719000, 1},
                    {8719100, 2},
                    {12202000, 2},
                    {12203000, kEndOfStream}});
}

TEST_F(AacSeek, AdtsIsCountedInBytesOfTheStreamHeader) {
    AviFile avi;
    Stream stream = aacBytes();
    stream.header.scale = 1;
    stream.header.rate = 1000;
    const size_t audio = avi.addStream(stream);
    for (const uint8_t i : {1, 2, 3}) {
        Bytes data = patternBytes(500, i);
        const Bytes header = {0xFF, 0xF1, 0x50, 0x80};
        std::copy(header.begin(), header.end(), data.begin());
        avi.addChunk(audio, data);
    }
    open(avi);
    expectLandings({{499999, 0}, {500000, 1}, {1499999, 2}, {1500000, kEndOfStream}});
}

TEST_F(AacSeek, WithoutSampleSizeFramesShareTheDuration) {
    Stream stream = aacBytes();
    stream.header.sampleSize = 0;
    stream.header.scale = 1;
    stream.header.rate = 4;
    for (const int64_t seconds : {1, 3}) {
        SCOPED_TRACE(seconds);
        stream.header.length = static_cast<uint32_t>(4 * seconds);
        openSizes(stream, {371, 380, 300, 371});
        ASSERT_TRUE(mVariable);
        expectLandings({{0, 0},
                        {124000 * seconds, 0},
                        {126000 * seconds, 1},
                        {874000 * seconds, 3},
                        {876000 * seconds, kEndOfStream}});
        StartedTrack audio(track(0));
        EXPECT_EQ(seek(audio, kPrevious, 500000 * seconds).timeUs, 500000 * seconds);
    }
}

}  // namespace
}  // namespace avitest
