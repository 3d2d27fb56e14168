// SPDX-License-Identifier: Apache-2.0
#include "service/Track.h"

#include <gtest/gtest.h>

#include "tests/unit/service/GoodPluginFixture.h"

namespace android::service {
namespace {

constexpr uint32_t kSeek = CMediaTrackReadOptions::SEEK;
constexpr uint32_t kNonBlocking = CMediaTrackReadOptions::NONBLOCKING;

class TrackTest : public GoodPluginTest {
  protected:
    // Opens the first track of a file with these samples and starts it.
    void startTrack(const std::string& samples) {
        mSource = std::make_unique<MemorySource>(bytesOf("GOOD" + samples));
        mTrack = Extractor::open(mPlugin, *mSource)->track(0);
        ASSERT_EQ(AMEDIA_OK, mTrack->start(mGroup));
    }
    std::unique_ptr<MemorySource> mSource;
    BufferGroup mGroup;
    std::unique_ptr<Track> mTrack;
};

TEST_F(TrackTest, FormatIsTheTracks) {
    startTrack("abc");
    const FormatResult result = mTrack->getFormat();
    EXPECT_EQ(AMEDIA_OK, result.status);
    EXPECT_EQ("test/good", result.format.getString(AMEDIAFORMAT_KEY_MIME));
    EXPECT_EQ(3u, result.format.getSize("samples"));
}

TEST_F(TrackTest, StartHandsOverTheGroup) {
    startTrack("abc");
    EXPECT_EQ(1u, mGroup.bufferCount());
    EXPECT_EQ(2u, mGroup.growthLimit());
}

TEST_F(TrackTest, ReadGivesTheSamplesInTurn) {
    startTrack("ab");
    for (const uint8_t expected : {'a', 'b'}) {
        ReadResult result = mTrack->read();
        EXPECT_EQ(AMEDIA_OK, result.status);
        ASSERT_TRUE(result.buffer);
        EXPECT_EQ(std::vector<uint8_t>{expected}, result.buffer.bytes());
    }
}

TEST_F(TrackTest, ReadAfterTheLastSampleIsTheEnd) {
    startTrack("a");
    mTrack->read();
    ReadResult result = mTrack->read();
    EXPECT_EQ(AMEDIA_ERROR_END_OF_STREAM, result.status);
    EXPECT_FALSE(result.buffer);
}

TEST_F(TrackTest, BufferCarriesItsTime) {
    startTrack("ab");
    mTrack->read();
    EXPECT_EQ(1000, mTrack->read().buffer.metaData().getInt64(AMEDIAFORMAT_KEY_TIME_US));
}

TEST_F(TrackTest, BufferGoesBackWithItsResult) {
    startTrack("ab");
    {
        ReadResult result = mTrack->read();
        EXPECT_EQ(1u, mGroup.heldCount());
    }
    EXPECT_EQ(0u, mGroup.heldCount());
}

TEST_F(TrackTest, SeekOptionsAndPositionArePassed) {
    startTrack("abcd");
    EXPECT_EQ(std::vector<uint8_t>{'c'}, mTrack->read(kSeek, 2000).buffer.bytes());
    EXPECT_EQ(std::vector<uint8_t>{'d'}, mTrack->read(0, 0).buffer.bytes()) << "no seek asked for";
    EXPECT_EQ(std::vector<uint8_t>{'a'}, mTrack->read(kSeek, 0).buffer.bytes());
}

TEST_F(TrackTest, NonBlockingOptionIsPassed) {
    startTrack("abc");
    ReadResult first = mTrack->read();
    ReadResult second = mTrack->read();
    ReadResult third = mTrack->read(kNonBlocking);
    EXPECT_EQ(AMEDIA_ERROR_UNKNOWN, third.status);
    EXPECT_FALSE(third.buffer);
}

TEST_F(TrackTest, ErrorComesWithoutABuffer) {
    startTrack("E");
    ReadResult result = mTrack->read();
    EXPECT_EQ(AMEDIA_ERROR_MALFORMED, result.status);
    EXPECT_FALSE(result.buffer);
}

TEST_F(TrackTest, BufferThatComesWithAnErrorIsNotLost) {
    startTrack("B");
    {
        ReadResult result = mTrack->read();
        EXPECT_EQ(AMEDIA_ERROR_IO, result.status);
        EXPECT_TRUE(result.buffer);
    }
    EXPECT_EQ(0u, mGroup.heldCount());
}

TEST_F(TrackTest, StatusOfStopIsPassed) {
    startTrack("a");
    EXPECT_EQ(AMEDIA_OK, mTrack->stop());
    EXPECT_EQ(AMEDIA_ERROR_INVALID_OPERATION, mTrack->stop());
}

TEST_F(TrackTest, StoppedTrackMayStartWithAnotherGroup) {
    startTrack("ab");
    mTrack->stop();
    BufferGroup other;
    EXPECT_EQ(AMEDIA_OK, mTrack->start(other));
    ReadResult result = mTrack->read();
    EXPECT_EQ(1u, other.heldCount());
    EXPECT_EQ(0u, mGroup.heldCount());
}

TEST_F(TrackTest, NonBlockingSupportIsThePlugins) {
    startTrack("a");
    EXPECT_TRUE(mTrack->supportsNonBlockingRead());
    mTrack->plain()->supportsNonBlockingRead = [](void*) { return false; };
    EXPECT_FALSE(mTrack->supportsNonBlockingRead());
}

}  // namespace
}  // namespace android::service
