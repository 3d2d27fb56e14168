// SPDX-License-Identifier: Apache-2.0
//
// The life of a track object: starts and stops again, formats, and the order in which the framework
// lets go of things.

#include <media/NdkMediaFormat.h>

#include "tests/behaviour/reading/ReadingFixture.h"

namespace avitest {
namespace {

class SourceLifecycle : public ReadingTest {
  protected:
    void SetUp() override { openStream(mjpegStream(), mChunks); }

    const std::vector<Bytes> mChunks = {patternBytes(30, 1), patternBytes(41, 2),
                                        patternBytes(50, 3)};
};

TEST_F(SourceLifecycle, EveryStartReadsFromTheBeginning) {
    const std::unique_ptr<Track> source = track(0);
    for (int i = 0; i < 3; ++i) {
        SCOPED_TRACE(i);
        const ReadRun run = readTrack(*source);
        EXPECT_EQ(payloadsOf(run.samples), mChunks);
        EXPECT_EQ(run.status, AMEDIA_ERROR_END_OF_STREAM);
    }
}

TEST_F(SourceLifecycle, StopInTheMiddleGoesBackToTheBeginning) {
    const std::unique_ptr<Track> source = track(0);
    EXPECT_EQ(readTrack(*source, {}, 2).samples.size(), 2u);

    EXPECT_EQ(payloadsOf(readTrack(*source).samples), mChunks);
}

TEST_F(SourceLifecycle, StopWithoutAReadSucceeds) {
    const std::unique_ptr<Track> source = track(0);
    BufferGroup group;
    ASSERT_EQ(source->start(group), AMEDIA_OK);
    EXPECT_EQ(source->stop(), AMEDIA_OK);
    EXPECT_EQ(group.heldCount(), 0u);
}

TEST_F(SourceLifecycle, SourcesOfOneTrackReadOnTheirOwn) {
    StartedTrack first(track(0));
    StartedTrack second(track(0));
    EXPECT_EQ(first.sample().bytes, mChunks[0]);
    EXPECT_EQ(first.sample().bytes, mChunks[1]);
    EXPECT_EQ(second.sample().bytes, mChunks[0]);
}

TEST_F(SourceLifecycle, BuffersMayBeHeldAfterStop) {
    const std::unique_ptr<Track> source = track(0);
    BufferGroup group;
    ASSERT_EQ(source->start(group), AMEDIA_OK);
    const ReadResult held = source->read();
    EXPECT_EQ(source->stop(), AMEDIA_OK);

    EXPECT_EQ(group.heldCount(), 1u);
    EXPECT_EQ(held.buffer.bytes(), mChunks[0]);
}

// The framework deletes the group between stop and the end of the track.
TEST_F(SourceLifecycle, GroupMayGoBeforeTheTrack) {
    const std::unique_ptr<Track> source = track(0);
    {
        BufferGroup group;
        ASSERT_EQ(source->start(group), AMEDIA_OK);
        EXPECT_EQ(source->read().status, AMEDIA_OK);
        EXPECT_EQ(source->stop(), AMEDIA_OK);
    }
    EXPECT_EQ(payloadsOf(readTrack(*source).samples), mChunks);
}

TEST_F(SourceLifecycle, DeletionOfAStartedTrackStopsIt) {
    BufferGroup group;
    {
        const std::unique_ptr<Track> source = track(0);
        ASSERT_EQ(source->start(group), AMEDIA_OK);
        EXPECT_EQ(source->read().status, AMEDIA_OK);
    }
    EXPECT_EQ(group.heldCount(), 0u);
}

TEST_F(SourceLifecycle, DeletionOfATrackThatNeverStartedIsFine) {
    EXPECT_NE(track(0), nullptr);
}

TEST_F(SourceLifecycle, ReadsDoNotBlockByRequest) {
    EXPECT_FALSE(track(0)->supportsNonBlockingRead());
}

TEST_F(SourceLifecycle, FormatIsTheTracksOwn) {
    const auto result = track(0)->getFormat();
    EXPECT_EQ(result.status, AMEDIA_OK);
    EXPECT_EQ(result.format.toString(), trackFormat(0).toString());
    EXPECT_EQ(result.format.getString(AMEDIAFORMAT_KEY_MIME), "video/x-motion-jpeg");
}

TEST_F(SourceLifecycle, FormatIsACopy) {
    const std::unique_ptr<Track> source = track(0);
    const auto result = source->getFormat();
    AMediaFormat_setString(result.format.get(), AMEDIAFORMAT_KEY_MIME, "video/other");
    AMediaFormat_setInt32(result.format.get(), AMEDIAFORMAT_KEY_MAX_INPUT_SIZE, 1);

    EXPECT_EQ(source->getFormat().format.getString(AMEDIAFORMAT_KEY_MIME), "video/x-motion-jpeg");
    EXPECT_EQ(payloadsOf(readTrack(*source).samples), mChunks);
}

TEST_F(SourceLifecycle, FormatCanBeAskedForWhileReading) {
    StartedTrack started(track(0));
    EXPECT_EQ(started.sample().bytes, mChunks[0]);
    EXPECT_EQ(started.track().getFormat().status, AMEDIA_OK);
    EXPECT_EQ(started.sample().bytes, mChunks[1]);
}

TEST_F(SourceLifecycle, FormatOfNoFormatFails) {
    const std::unique_ptr<Track> source = track(0);
    EXPECT_NE(source->plain()->getFormat(source->plain()->data, nullptr), AMEDIA_OK);
}

}  // namespace
}  // namespace avitest
