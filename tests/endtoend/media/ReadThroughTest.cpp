// SPDX-License-Identifier: Apache-2.0
//
// Every track of every media file, read from its beginning to its end: the bytes are those of the
// file at the place the index says, the table is the one that ffprobe sees, and the times follow
// from the chunks' places.

#include <gtest/gtest.h>

#include "tests/endtoend/media/Expectations.h"
#include "tests/endtoend/media/Probe.h"
#include "tests/support/ExtractorFixture.h"

namespace avitest {
namespace {

class ReadThrough : public ExtractorFixture, public ::testing::WithParamInterface<Recipe> {
  protected:
    void SetUp() override {
        mMedia = &mediaFile(GetParam());
        openFile(mMedia->bytes);
    }

    const MediaFile& media() const { return *mMedia; }

    // Calls `check(track, stream)` for every track of the file.
    template <typename Check>
    void forEachTrack(Check check) {
        const std::vector<size_t> order = media().layout.trackOrder();
        ASSERT_EQ(order.size(), countTracks());
        for (size_t track = 0; track < order.size(); ++track) {
            SCOPED_TRACE("track " + std::to_string(track));
            check(track, order[track]);
        }
    }

  private:
    const MediaFile* mMedia = nullptr;
};

// Packets of one stream, as ffprobe sees them.
std::vector<ProbedPacket> packetsOf(const std::vector<ProbedPacket>& packets, size_t stream) {
    std::vector<ProbedPacket> result;
    for (const ProbedPacket& packet : packets) {
        if (packet.stream == stream) result.push_back(packet);
    }
    return result;
}

TEST_P(ReadThrough, FormatsAreThoseOfFfprobe) {
    const std::vector<ProbedStream> streams = probeStreams(media().path);
    ASSERT_EQ(media().layout.streams.size(), streams.size());
    forEachTrack([&](size_t track, size_t stream) {
        const auto format = trackFormat(track);
        if (media().layout.streams[stream].isVideo()) {
            EXPECT_EQ(streams[stream].width, format.getInt32(AMEDIAFORMAT_KEY_WIDTH));
            EXPECT_EQ(streams[stream].height, format.getInt32(AMEDIAFORMAT_KEY_HEIGHT));
        } else {
            EXPECT_EQ(streams[stream].channels, format.getInt32(AMEDIAFORMAT_KEY_CHANNEL_COUNT));
            EXPECT_EQ(streams[stream].sampleRate, format.getInt32(AMEDIAFORMAT_KEY_SAMPLE_RATE));
        }
    });
}

TEST_P(ReadThrough, SamplesAreTheChunksThatTheIndexNames) {
    forEachTrack([&](size_t track, size_t stream) {
        const std::vector<ExpectedSample> expected = expectedSamples(media(), stream);
        const std::vector<Sample> samples = readAll(track);
        ASSERT_EQ(expected.size(), samples.size());
        ASSERT_FALSE(samples.empty());
        for (size_t i = 0; i < samples.size(); ++i)
            EXPECT_EQ(expected[i].bytes, samples[i].bytes) << "sample " << i;
    });
}

TEST_P(ReadThrough, CountsSizesAndKeyFlagsAreThoseOfFfprobe) {
    const std::vector<ProbedPacket> packets = probePackets(media().path);
    forEachTrack([&](size_t track, size_t stream) {
        const std::vector<ExpectedSample> expected = expectedSamples(media(), stream);
        const std::vector<ProbedPacket> probed = packetsOf(packets, stream);
        const std::vector<Sample> samples = readAll(track);
        ASSERT_EQ(probed.size(), samples.size());
        ASSERT_EQ(probed.size(), expected.size());
        for (size_t i = 0; i < samples.size(); ++i) {
            SCOPED_TRACE("sample " + std::to_string(i));
            EXPECT_EQ(probed[i].offset, expected[i].chunk.offset);
            EXPECT_EQ(probed[i].size, expected[i].chunk.size);
            EXPECT_EQ(probed[i].key, samples[i].sync);
        }
    });
}

TEST_P(ReadThrough, TimesFollowFromThePlacesOfTheChunks) {
    forEachTrack([&](size_t track, size_t stream) {
        const std::vector<ExpectedSample> expected = expectedSamples(media(), stream);
        const std::vector<Sample> samples = readAll(track);
        ASSERT_EQ(expected.size(), samples.size());
        for (size_t i = 0; i < samples.size(); ++i) {
            EXPECT_EQ(expected[i].timeUs, samples[i].timeUs) << "sample " << i;
            EXPECT_EQ(std::nullopt, samples[i].targetTimeUs) << "sample " << i;
        }
    });
}

std::string nameOf(const ::testing::TestParamInfo<Recipe>& info) {
    return info.param.name;
}

INSTANTIATE_TEST_SUITE_P(Video, ReadThrough, ::testing::ValuesIn(videoRecipes()), nameOf);
INSTANTIATE_TEST_SUITE_P(Audio, ReadThrough, ::testing::ValuesIn(audioRecipes()), nameOf);
INSTANTIATE_TEST_SUITE_P(Mixed, ReadThrough, ::testing::ValuesIn(mixedRecipes()), nameOf);

}  // namespace
}  // namespace avitest
