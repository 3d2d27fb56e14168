// SPDX-License-Identifier: Apache-2.0
//
// ADPCM is timed by its blocks, also where the stream header announces no sample size.

#include "tests/behaviour/reading/ReadingFixture.h"

namespace avitest {
namespace {

// IMA ADPCM in blocks of 256 bytes, 1000 blocks in 64 seconds.
Stream adpcmStream(uint32_t sampleSize) {
    Stream stream = audioStream(0x11, 1, 8000, 4000, 256, 4);
    stream.header.scale = 64;
    stream.header.rate = 1000;
    stream.header.sampleSize = sampleSize;
    return stream;
}

class ReadAdpcm : public ReadingTest {
  protected:
    const std::vector<Bytes> mChunks = {patternBytes(256), patternBytes(512), patternBytes(256),
                                        patternBytes(512)};
    const std::vector<int64_t> mTimes = {0, 64000, 192000, 256000};
};

TEST_F(ReadAdpcm, WithoutSampleSizeEveryChunkIsPlayedAtItsTime) {
    openStream(adpcmStream(0), mChunks);
    const std::vector<Sample> samples = readAll(0);
    EXPECT_EQ(payloadsOf(samples), mChunks);
    EXPECT_EQ(timesOf(samples), mTimes);
}

TEST_F(ReadAdpcm, WithSampleSizeEveryChunkIsPlayedAtItsTime) {
    openStream(adpcmStream(256), mChunks);
    const std::vector<Sample> samples = readAll(0);
    EXPECT_EQ(payloadsOf(samples), mChunks);
    EXPECT_EQ(timesOf(samples), mTimes);
}

}  // namespace
}  // namespace avitest
