// SPDX-License-Identifier: Apache-2.0
//
// Calls that break the contract between framework and track end the process, each with its text.

#include "tests/behaviour/reading/ReadingFixture.h"
#include "tests/behaviour/reading/RecordingGroup.h"
#include "tests/unit/platform/AbortTest.h"

namespace avitest {
namespace {

using android::CMediaBuffer;
using android::CMediaTrack;

class SourceAbortDeathTest : public ReadingTest {
  protected:
    void SetUp() override { openStream(pcmStream(1, 8000, 8), {patternBytes(30)}); }

    // Reads once with a group that acts on acquisition `call`.
    void readWithoutBuffer(size_t call) {
        RecordingGroup group;
        group.answer(call, RecordingGroup::Answer::kNothing);
        const std::unique_ptr<Track> source = track(0);
        CMediaTrack* plain = source->plain();
        plain->start(plain->data, group.plain());
        CMediaBuffer* buffer = nullptr;
        plain->read(plain->data, &buffer, 0, 0);
    }
};

TEST_F(SourceAbortDeathTest, StartOfAStartedTrackAborts) {
    const std::unique_ptr<Track> source = track(0);
    BufferGroup group;
    ASSERT_EQ(source->start(group), AMEDIA_OK);
    EXPECT_ABORT(source->start(group), checkFailed("!mStarted"));
    EXPECT_EQ(source->stop(), AMEDIA_OK);
}

TEST_F(SourceAbortDeathTest, StopOfATrackNeverStartedAborts) {
    EXPECT_ABORT(track(0)->stop(), checkFailed("mStarted"));
}

TEST_F(SourceAbortDeathTest, SecondStopAborts) {
    const std::unique_ptr<Track> source = track(0);
    BufferGroup group;
    ASSERT_EQ(source->start(group), AMEDIA_OK);
    ASSERT_EQ(source->stop(), AMEDIA_OK);
    EXPECT_ABORT(source->stop(), checkFailed("mStarted"));
}

TEST_F(SourceAbortDeathTest, ReadOfATrackNeverStartedAborts) {
    EXPECT_ABORT(track(0)->read(), checkFailed("mStarted"));
}

TEST_F(SourceAbortDeathTest, ReadAfterStopAborts) {
    const std::unique_ptr<Track> source = track(0);
    BufferGroup group;
    ASSERT_EQ(source->start(group), AMEDIA_OK);
    ASSERT_EQ(source->stop(), AMEDIA_OK);
    EXPECT_ABORT(source->read(), checkFailed("mStarted"));
}

TEST_F(SourceAbortDeathTest, ReadAfterAFailedStartAborts) {
    AviFile avi = fileOf(mjpegStream(), {patternBytes(30)});
    avi.segment().index.edit = [](std::vector<Idx1Entry>& index) { index[0].length = 0x7FFFFFFF; };
    openFile(avi.build());
    const std::unique_ptr<Track> source = track(0);
    BufferGroup group;
    ASSERT_EQ(source->start(group), AMEDIA_ERROR_MALFORMED);
    EXPECT_ABORT(source->read(), checkFailed("mStarted"));
}

TEST_F(SourceAbortDeathTest, AcquisitionWithoutABufferAborts) {
    EXPECT_ABORT(readWithoutBuffer(0), checkFailed("mBuffer != NULL"));
}

TEST_F(SourceAbortDeathTest, AcquisitionForWiderSamplesWithoutABufferAborts) {
    EXPECT_ABORT(readWithoutBuffer(1), checkFailed("tmp != NULL"));
}

// Prefixes of one byte turn units of one byte into units of five.
TEST_F(SourceAbortDeathTest, StartCodeBeyondTheBufferAborts) {
    Bytes sample;
    for (int unit = 0; unit < 20; ++unit) {
        sample.push_back(1);
        sample.push_back(0x41);
    }
    openStream(lengthPrefixedStream(1), {sample});
    EXPECT_ABORT(readRun(0), checkFailed("dstOffset + 4 <= mBuffer->size()"));
}

}  // namespace
}  // namespace avitest
