// SPDX-License-Identifier: Apache-2.0
//
// MP3 stream headers whose sample size contradicts their rates. What was made of it shows in the
// line that sums the track up: scale (S), rate (R), sample size (SSZ), block (BLKA).

#include "tests/behaviour/streams/StreamsFixture.h"

namespace avitest {

using ::testing::Contains;

namespace {

constexpr uint32_t kRate = 44100;

// Streams of 44100 samples a second.
struct Mp3Header {
    uint32_t scale = 1152;
    uint32_t rate = kRate;
    uint16_t block = 1152;
    uint32_t sampleSize = 0;
    uint32_t bytesPerSec = 16000;
};

Stream mp3Stream(const Mp3Header& header, uint16_t tag = 0x55) {
    Stream result = frameAudioStream(tag, 2, kRate, header.block, header.bytesPerSec);
    result.header.scale = header.scale;
    result.header.rate = header.rate;
    result.header.sampleSize = header.sampleSize;
    return result;
}

}  // namespace

class Mp3SampleSize : public StreamsFixture {
  protected:
    void expectSize(const Mp3Header& header, uint32_t expected, uint16_t tag = 0x55) {
        AviFile avi = fileOf({mp3Stream(header, tag)});
        mLog.clear();
        ASSERT_EQ(1u, open(avi));
        EXPECT_THAT(
            log(), Contains(debug(format(
                       "[audio/mpeg] S %u R %u SSZ %u BLKA %u BPS 0 SPS %u AVGBPS %u", header.scale,
                       header.rate, expected, header.block, kRate, header.bytesPerSec))));
    }
};

TEST_F(Mp3SampleSize, OneIsLeftAlone) {
    expectSize({1, 16000, 1, 1}, 1);
    expectSize({1152, kRate, 1152, 1}, 1);
}

TEST_F(Mp3SampleSize, OfFramesIsCleared) {
    expectSize({1152, kRate, 1152, 417}, 0);
}

// 44100 / 1152 and 76 / 2 are both 38, without their fractions.
TEST_F(Mp3SampleSize, IsClearedByWholeRates) {
    expectSize({2, 76, 1152, 417}, 0);
    expectSize({2, 77, 1152, 417}, 0);
}

TEST_F(Mp3SampleSize, OfOtherRatesIsKept) {
    expectSize({2, 78, 1152, 417}, 417);
    expectSize({417, 16000, 1, 417}, 417);
}

TEST_F(Mp3SampleSize, WithoutBlockIsKept) {
    expectSize({1152, kRate, 0, 417}, 417);
}

TEST_F(Mp3SampleSize, WithoutScaleIsKept) {
    expectSize({0, kRate, 1152, 417}, 417);
    expectSize({0, kRate, 65535, 417}, 417);  // though no whole block takes a second either
}

TEST_F(Mp3SampleSize, ZeroWithTheFramesRateIsKept) {
    expectSize({1152, kRate, 1152, 0}, 0);
    expectSize({2, 77, 1152, 0}, 0);
}

TEST_F(Mp3SampleSize, ZeroWithoutBlockComparesWithLayerThreeFrames) {
    expectSize({1152, kRate, 0, 0}, 0);
    expectSize({2, 77, 0, 0}, 0);
}

TEST_F(Mp3SampleSize, ZeroWithAnotherRateCountsTheBytesOfAUnit) {
    expectSize({2, 78, 1152, 0}, 410);     // 16000 * 2 / 78
    expectSize({1152, kRate, 4, 0}, 417);  // 16000 * 1152 / 44100
    expectSize({1152, kRate, 1, 0}, 417);
    expectSize({576, kRate, 0, 0}, 208);  // 16000 * 576 / 44100
}

TEST_F(Mp3SampleSize, ZeroCountsTheBytesOfAUnitBeyond32Bits) {
    expectSize({1152, kRate, 4, 0, 16000000}, 417959);  // 18432000000 / 44100
    expectSize({50000, kRate, 4, 0, 100000}, 113378);   // 5000000000 / 44100
    expectSize({0x7FFFFFFF, kRate, 4, 0, 0x7FFFFFFF}, 0xFFFFFFFF);
}

TEST_F(Mp3SampleSize, ZeroWithoutScaleStaysZero) {
    expectSize({0, kRate, 1152, 0}, 0);
}

TEST_F(Mp3SampleSize, OfOtherMpegTagIsLeftAlone) {
    expectSize({1152, kRate, 1152, 417}, 417, 0x50);
    expectSize({576, kRate, 0, 0}, 0, 0x50);
}

TEST_F(Mp3SampleSize, WithoutRateDoesNoHarm) {
    for (const uint32_t sampleSize : {0u, 417u}) {
        AviFile avi = fileOf({mjpegStream(), mp3Stream({1152, 0, 1152, sampleSize})});
        ASSERT_EQ(2u, open(avi));
        EXPECT_EQ("audio/mpeg", mime(1));
    }
}

TEST_F(Mp3SampleSize, OfHugestTermsDoesNoHarm) {
    Stream stream = mp3Stream({0xFFFFFFFF, 1, 0, 0});
    std::get<WaveFormat>(stream.format).avgBytesPerSec = 0xFFFFFFFF;
    AviFile avi = fileOf({mjpegStream(), stream});
    ASSERT_EQ(2u, open(avi));
    EXPECT_EQ("audio/mpeg", mime(1));
}

}  // namespace avitest
