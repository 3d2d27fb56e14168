// SPDX-License-Identifier: Apache-2.0
//
// Starting a track: which largest samples it accepts, and what buffers it asks for.

#include <media/NdkMediaFormat.h>

#include "tests/behaviour/reading/ReadingFixture.h"
#include "tests/behaviour/reading/RecordingGroup.h"

namespace avitest {
namespace {

using android::CMediaTrack;

constexpr uint32_t kMaxInputSize = 64 * 1024 * 1024;

class SourceStart : public ReadingTest {
  protected:
    // Opens a file whose only chunk is, by its index, `size` bytes long.
    void openWithLargest(const Stream& stream, uint32_t size) {
        AviFile avi = fileOf(stream, {patternBytes(40)});
        avi.segment().index.edit = [size](std::vector<Idx1Entry>& index) {
            index[0].length = size;
        };
        openFile(avi.build());
    }

    // Starts the first track with a group whose buffers are tiny, whatever is asked for.
    media_status_t start(RecordingGroup* group) {
        mTrack = track(0);
        const media_status_t status = mTrack->plain()->start(mTrack->plain()->data, group->plain());
        if (status == AMEDIA_OK) mTrack->stop();
        return status;
    }

    RecordingGroup mGroup{16};
    std::unique_ptr<Track> mTrack;
};

TEST_F(SourceStart, LargestSampleMustLieBetween1ByteAnd64MiB) {
    struct Row {
        uint32_t size;
        media_status_t status;
    };
    const Row rows[] = {{1, AMEDIA_OK},
                        {kMaxInputSize, AMEDIA_OK},
                        {kMaxInputSize + 1, AMEDIA_ERROR_MALFORMED},
                        {0x7FFFFFFF, AMEDIA_ERROR_MALFORMED},
                        {0x80000000, AMEDIA_ERROR_MALFORMED},
                        {0xFFFFFFFF, AMEDIA_ERROR_MALFORMED}};
    for (const Row& row : rows) {
        SCOPED_TRACE(row.size);
        LogCapture log;
        RecordingGroup group(16);
        openWithLargest(mjpegStream(), row.size);

        EXPECT_EQ(start(&group), row.status);
        const bool failed = row.status != AMEDIA_OK;
        EXPECT_EQ(group.inits().size(), failed ? 0u : 1u);
        EXPECT_EQ(log.contains(ANDROID_LOG_ERROR, "start(): error -2711 @line"), failed);
    }
}

TEST_F(SourceStart, FailureLeavesTheTrackStopped) {
    openWithLargest(mjpegStream(), kMaxInputSize + 1);

    EXPECT_EQ(start(&mGroup), AMEDIA_ERROR_MALFORMED);
    // A started track would abort.
    EXPECT_EQ(mTrack->plain()->start(mTrack->plain()->data, mGroup.plain()),
              AMEDIA_ERROR_MALFORMED);
}

TEST_F(SourceStart, BuffersHaveRoomForAStartCodeAndGrowToEightOr64MiB) {
    struct Row {
        uint32_t largest;
        size_t bufferSize;
        size_t growthLimit;
    };
    const Row rows[] = {{1, 5, 8},
                        {1000, 1004, 8},
                        {8388604, 8388608, 8},
                        {8388605, 8388609, 7},
                        {20000000, 20000004, 3},
                        {33554428, 33554432, 2},
                        {33554429, 33554433, 1},
                        {kMaxInputSize - 4, kMaxInputSize, 1},
                        {kMaxInputSize, kMaxInputSize + 4, 0}};
    for (const Row& row : rows) {
        SCOPED_TRACE(row.largest);
        RecordingGroup group(16);
        openWithLargest(mjpegStream(), row.largest);
        ASSERT_EQ(start(&group), AMEDIA_OK);

        ASSERT_EQ(group.inits().size(), 1u);
        EXPECT_EQ(group.inits()[0].buffers, 2u);
        EXPECT_EQ(group.inits()[0].size, row.bufferSize);
        EXPECT_EQ(group.inits()[0].growthLimit, row.growthLimit);
    }
}

TEST_F(SourceStart, BuffersOfEightBitPcmAreTwiceAsLarge) {
    struct Row {
        uint16_t bits;
        uint32_t largest;
        size_t bufferSize;
        size_t growthLimit;
    };
    const Row rows[] = {{8, 1000, 2000, 8},
                        {8, kMaxInputSize, size_t{2} * kMaxInputSize, 0},
                        {16, 1000, 1004, 8},
                        {24, 1000, 1004, 8},
                        {32, 1000, 1004, 8}};
    for (const Row& row : rows) {
        SCOPED_TRACE(row.bits);
        RecordingGroup group(16);
        openWithLargest(pcmStream(1, 8000, row.bits), row.largest);
        ASSERT_EQ(start(&group), AMEDIA_OK);

        ASSERT_EQ(group.inits().size(), 1u);
        EXPECT_EQ(group.inits()[0].size, row.bufferSize);
        EXPECT_EQ(group.inits()[0].growthLimit, row.growthLimit);
    }
}

TEST_F(SourceStart, BuffersOfOtherEightBitAudioAreNot) {
    openWithLargest(alawStream(), 1000);
    ASSERT_EQ(start(&mGroup), AMEDIA_OK);

    EXPECT_EQ(mGroup.inits()[0].size, 1004u);
}

TEST_F(SourceStart, LogsTheFormatAndTheBufferSize) {
    openWithLargest(mjpegStream(), 1000);
    const std::string format = trackFormat(0).toString();
    LogCapture log;
    ASSERT_EQ(start(&mGroup), AMEDIA_OK);

    EXPECT_THAT(log, Logged(ANDROID_LOG_DEBUG, "+ start track " + format + " bufferSize 1004"));
}

// ADPCM is timed by blocks whatever its header says; other codecs keep the header's sample size.
TEST_F(SourceStart, AdpcmTakesItsBlockAsSampleSize) {
    struct Row {
        uint16_t formatTag;
        uint16_t bits;
        uint16_t blockAlign;
        int64_t secondUs;
    };
    const Row rows[] = {{0x02, 4, 2048, 2000},  // MS ADPCM: 4096 bytes are 2 blocks of 1 ms
                        {0x11, 4, 2048, 2000},  // IMA ADPCM
                        {0x02, 4, 0, 4096000},  // no block: bytes of 1 ms
                        {0x01, 16, 2048, 4096000}};
    for (const Row& row : rows) {
        SCOPED_TRACE(row.formatTag);
        Stream stream = audioStream(row.formatTag, 1, 8000, 1000, row.blockAlign, row.bits);
        stream.header.scale = 1;
        stream.header.rate = 1000;
        stream.header.sampleSize = 1;
        const std::vector<Bytes> chunks = {patternBytes(4096, 1), patternBytes(2048, 2)};
        openStream(stream, chunks);

        const std::vector<Sample> samples = readAll(0);
        EXPECT_EQ(payloadsOf(samples), chunks);
        EXPECT_EQ(timesOf(samples), (std::vector<int64_t>{0, row.secondUs}));
    }
}

}  // namespace
}  // namespace avitest
