// SPDX-License-Identifier: Apache-2.0
//
// MP3, of which ffmpeg writes one frame a chunk. Apart from the other sounds, because what a sample
// is does not follow from the chunks alone.

#include <gtest/gtest.h>

#include "tests/endtoend/media/Expectations.h"
#include "tests/support/ExtractorFixture.h"

namespace avitest {
namespace {

class Mp3Media : public ExtractorFixture {
  protected:
    void SetUp() override { openFile(mediaFile(mp3Recipe()).bytes); }
};

TEST_F(Mp3Media, SamplesAreWholeChunks) {
    ASSERT_EQ(1u, countTracks());
    const std::vector<ExpectedSample> expected = expectedSamples(mediaFile(mp3Recipe()), 0);
    const std::vector<Sample> samples = readAll(0);
    ASSERT_EQ(expected.size(), samples.size());
    for (size_t i = 0; i < samples.size(); ++i) {
        EXPECT_EQ(expected[i].bytes, samples[i].bytes) << "sample " << i;
        EXPECT_TRUE(samples[i].sync) << "sample " << i;
    }
}

TEST_F(Mp3Media, ChunksShareTheDurationEvenly) {
    const std::vector<ExpectedSample> expected = expectedSamples(mediaFile(mp3Recipe()), 0);
    const std::vector<Sample> samples = readAll(0);
    ASSERT_EQ(expected.size(), samples.size());
    for (size_t i = 0; i < samples.size(); ++i)
        EXPECT_EQ(expected[i].timeUs, samples[i].timeUs) << "sample " << i;
}

TEST_F(Mp3Media, FormatIsThatOfTheFile) {
    const auto format = trackFormat(0);
    EXPECT_EQ("audio/mpeg", format.getString(AMEDIAFORMAT_KEY_MIME));
    EXPECT_EQ(2, format.getInt32(AMEDIAFORMAT_KEY_CHANNEL_COUNT));
    EXPECT_EQ(44100, format.getInt32(AMEDIAFORMAT_KEY_SAMPLE_RATE));
}

}  // namespace
}  // namespace avitest
