// SPDX-License-Identifier: Apache-2.0
//
// Raw AAC whose chunks differ in size is stored one frame a chunk.

#include "tests/behaviour/codecs/AacFixture.h"

namespace avitest {
namespace {

class VariableRate : public AacTest {
  protected:
    // Opens raw samples of these sizes; the line about the stream's duration, without its numbers.
    std::string kindOf(const std::vector<size_t>& sizes) {
        std::vector<Bytes> samples;
        for (const size_t size : sizes)
            samples.emplace_back(size, 0x21);
        openSamples(mStream, samples);
        return kind();
    }
    std::string kind() const {
        const std::string line = onlyLineWith("[audio/mp4a-latm] RawAAC/");
        return line.substr(0, line.find("duration"));
    }
    const std::string mVariable = "[audio/mp4a-latm] RawAAC/VBR Audio ";
    const std::string mConstant = "[audio/mp4a-latm] RawAAC/CBR Audio ";
};

TEST_F(VariableRate, FirstTwoSizesDecide) {
    EXPECT_EQ(kindOf({371, 380}), mVariable);
    EXPECT_EQ(kindOf({371, 371}), mConstant);
    EXPECT_EQ(kindOf({371, 371, 500, 12}), mConstant);
    EXPECT_EQ(kindOf({371, 500, 500, 500}), mVariable);
}

TEST_F(VariableRate, OneSizeThatDividesTheOtherIsNotEnough) {
    EXPECT_EQ(kindOf({371, 742}), mVariable);
    EXPECT_EQ(kindOf({742, 371}), mVariable);
}

TEST_F(VariableRate, OfATableOfTotalsTheSizesAreCompared) {
    mStream.header.sampleSize = 1;
    EXPECT_EQ(kindOf({371, 371}), mConstant);
    EXPECT_EQ(kindOf({371, 380}), mVariable);
}

TEST_F(VariableRate, EmptyChunksAreNotCounted) {
    EXPECT_EQ(kindOf({0, 371, 371}), mConstant);
    EXPECT_EQ(kindOf({0, 371, 0, 380}), mVariable);
}

TEST_F(VariableRate, OneSampleIsConstant) {
    EXPECT_EQ(kindOf({371}), mConstant);
}

TEST_F(VariableRate, NoByteRateIsConstant) {
    std::get<WaveFormat>(mStream.format).avgBytesPerSec = 0;
    EXPECT_EQ(kindOf({371, 380}), mConstant);
}

TEST_F(VariableRate, AdtsIsConstant) {
    openSamples(mStream, {adts(1, 4, 2), adts(1, 4, 2) + Bytes(9, 1)});
    EXPECT_EQ(mLog.count("VBR Audio "), 0u);
    EXPECT_EQ(mLog.count("[audio/mp4a-latm] CBR Audio duration"), 1u);
}

TEST_F(VariableRate, OtherCodecsAreConstant) {
    openSamples(frameAudioStream(0x2000, 2, 48000, 1536), {Bytes(371, 1), Bytes(380, 1)});
    EXPECT_EQ(mLog.count("VBR Audio "), 0u);
    EXPECT_EQ(mLog.count("[audio/ac3] CBR Audio duration"), 1u);
}

}  // namespace
}  // namespace avitest
