// SPDX-License-Identifier: Apache-2.0
//
// MP3, of which ffmpeg writes one frame a chunk. Apart from the other sounds, because it is cut
// into frames and timed by them.

#include <gtest/gtest.h>

#include <algorithm>

#include "tests/endtoend/media/Expectations.h"
#include "tests/support/ExtractorFixture.h"

namespace avitest {
namespace {

class Mp3Media : public ExtractorFixture {
  protected:
    void SetUp() override { openFile(mediaFile(mp3Recipe()).bytes); }
};

TEST_F(Mp3Media, SamplesAreFramesAndFramesAreChunks) {
    ASSERT_EQ(1u, countTracks());
    const std::vector<ExpectedSample> expected = expectedSamples(mediaFile(mp3Recipe()), 0);
    const std::vector<Sample> samples = readAll(0);
    ASSERT_EQ(expected.size(), samples.size());
    for (size_t i = 0; i < samples.size(); ++i) {
        EXPECT_EQ(expected[i].bytes, samples[i].bytes) << "sample " << i;
        EXPECT_TRUE(samples[i].sync) << "sample " << i;
    }
}

// The time of a frame is where it ends, by the bit rate of all frames before and its own, but never
// before its chunk's share of the duration.
TEST_F(Mp3Media, TimesRunOnByTheBitRate) {
    constexpr int64_t kBitRate = 96;
    const std::vector<ExpectedSample> expected = expectedSamples(mediaFile(mp3Recipe()), 0);
    const std::vector<Sample> samples = readAll(0);
    ASSERT_EQ(expected.size(), samples.size());
    int64_t runningUs = 0;
    for (size_t i = 0; i < samples.size(); ++i) {
        const auto size = static_cast<int64_t>(samples[i].bytes.size());
        runningUs = std::max(expected[i].timeUs, runningUs + size * 8000 / kBitRate);
        EXPECT_EQ(runningUs, samples[i].timeUs) << "sample " << i;
    }
}

TEST_F(Mp3Media, FormatIsThatOfTheFile) {
    const auto format = trackFormat(0);
    EXPECT_EQ("audio/mpeg", format.getString(AMEDIAFORMAT_KEY_MIME));
    EXPECT_EQ(2, format.getInt32(AMEDIAFORMAT_KEY_CHANNEL_COUNT));
    EXPECT_EQ(44100, format.getInt32(AMEDIAFORMAT_KEY_SAMPLE_RATE));
}

}  // namespace
}  // namespace avitest
