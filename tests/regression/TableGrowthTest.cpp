// SPDX-License-Identifier: Apache-2.0
//
// A sample table has a column for each thing that it keeps of a sample. When one of them could not
// grow the others did, and what was looked up in it lay outside of it.

#include <algorithm>

#include "tests/behaviour/robustness/AllocationWatch.h"
#include "tests/behaviour/seeking/SeekingFixture.h"

namespace avitest {
namespace {

constexpr size_t kTableFrames = 6000;

// Rows that tables have room for: what they grow to is asked for in one piece.
constexpr size_t kRows = 3079;
constexpr size_t kFormerRows = 2053;

// Bytes that a row takes in each column.
constexpr size_t kOffset = 8;
constexpr size_t kSize = 4;
constexpr size_t kKeyFlag = 1;

class TableGrowth : public SeekingTest {
  protected:
    void SetUp() override {
        if (!NoMemoryFor::isPossible()) GTEST_SKIP() << "the sanitizer's allocator cannot fail";
        mVideo = mAvi.addStream(mjpegStream());
        mAudio = mAvi.addStream(alawStream());
        for (uint32_t i = 0; i < kTableFrames; ++i) {
            mAvi.addChunk(mVideo, patternBytes(20 + i % 7, i), i % 50 == 0 ? kKey : kNoFlags);
            mAvi.addChunk(mAudio, patternBytes(8, i));
        }
    }
    // Opens the file while there is no memory for a column of that many bytes a row.
    void openWithoutMemoryFor(size_t bytesPerRow) {
        const LogCapture log;
        const size_t wanted = kRows * bytesPerRow;
        openFile(mAvi.build());
        const NoMemoryFor none(wanted);
        EXPECT_EQ(2u, countTracks());
        EXPECT_LT(0u, none.refusals());
        mWarnings = log.count(ANDROID_LOG_WARN, "no memory for more samples, drop the rest");
    }
    void expectFirstRows(size_t track, size_t rows) {
        std::vector<Bytes> whole = mAvi.payloads(track);
        whole.resize(rows);
        EXPECT_EQ(whole, readPayloads(track));
    }

    AviFile mAvi;
    size_t mVideo = 0;
    size_t mAudio = 0;
    size_t mWarnings = 0;
};

TEST_F(TableGrowth, WithoutMemoryForOffsetsKeepsWholeRows) {
    openWithoutMemoryFor(kOffset);
    EXPECT_EQ(2u, mWarnings);
    expectFirstRows(mVideo, kFormerRows);
    expectFirstRows(mAudio, kFormerRows);
}

TEST_F(TableGrowth, WithoutMemoryForSizesKeepsWholeRows) {
    openWithoutMemoryFor(kSize);
    EXPECT_EQ(2u, mWarnings);
    expectFirstRows(mVideo, kFormerRows);
    expectFirstRows(mAudio, kFormerRows);
}

// Sound has no such column.
TEST_F(TableGrowth, WithoutMemoryForKeyFlagsKeepsWholeRows) {
    openWithoutMemoryFor(kKeyFlag);
    EXPECT_EQ(1u, mWarnings);
    expectFirstRows(mVideo, kFormerRows);
    expectFirstRows(mAudio, kTableFrames);
}

// A table that is short of rows is one in which everything can be looked up.
TEST_F(TableGrowth, WithoutMemoryLeavesATableToSeekIn) {
    openWithoutMemoryFor(kKeyFlag);
    StartedTrack started(track(mVideo));
    for (const uint32_t mode : {kPrevious, kNext, kClosestSync, kClosest}) {
        const ReadResult result = started.track().read(mode | android::SEEK, 1500 * kFrameUs);
        ASSERT_TRUE(result.buffer);
        EXPECT_EQ(mAvi.payloads(mVideo)[1500], sampleOf(result.buffer).bytes);
    }
    EXPECT_EQ(AMEDIA_ERROR_END_OF_STREAM,
              started.track().read(kNext | android::SEEK, kFormerRows * kFrameUs).status);
}

}  // namespace
}  // namespace avitest
