// SPDX-License-Identifier: Apache-2.0
//
// The buffers that a track cut into frames asks for: room for frames that span chunks and for rests
// in front of one.

#include "tests/behaviour/mpegaudio/MpegAudioFixture.h"

namespace avitest {
namespace {

using android::CMediaTrack;

class CutBuffers : public MpegAudioTest {
  protected:
    // What the first track asks of its group when its last chunk is, by the index, `largest` bytes
    // long.
    RecordingGroup::Init initFor(const Stream& stream, const std::vector<Bytes>& chunks,
                                 uint32_t largest) {
        AviFile avi = fileOf(stream, chunks);
        avi.segment().index.edit = [largest](std::vector<Idx1Entry>& index) {
            index.back().length = largest;
        };
        openFile(avi.build());
        RecordingGroup group(16);
        const std::unique_ptr<Track> source = track(0);
        CMediaTrack* plain = source->plain();
        EXPECT_EQ(plain->start(plain->data, group.plain()), AMEDIA_OK);
        EXPECT_EQ(source->stop(), AMEDIA_OK);
        EXPECT_EQ(group.inits().size(), 1u);
        return group.inits().empty() ? RecordingGroup::Init() : group.inits()[0];
    }
};

TEST_F(CutBuffers, AreFourTimesTheLargestChunkAndGrowToEightOr64MiB) {
    struct Row {
        uint32_t largest;
        size_t bufferSize;
        size_t growthLimit;
    };
    const Row rows[] = {
        {835, 3340, 8},          {2097152, 8388608, 8},   {2097153, 8388612, 7},
        {8388608, 33554432, 2},  {8388609, 33554436, 1},  {16777216, 67108864, 1},
        {16777217, 67108868, 0}, {20000000, 80000000, 0}, {67108864, 268435456, 0},
    };
    for (const Row& row : rows) {
        SCOPED_TRACE(row.largest);
        const RecordingGroup::Init init =
            initFor(mp3Bytes(), {joined(frames(2)), frame(2)}, row.largest);
        EXPECT_EQ(init.buffers, 2u);
        EXPECT_EQ(init.size, row.bufferSize);
        EXPECT_EQ(init.growthLimit, row.growthLimit);
    }
}

TEST_F(CutBuffers, AreAsLargeForFramesThatCannotBeCut) {
    const Bytes first = frameOf(0xFFF38000, 208);
    EXPECT_EQ(initFor(mp3Bytes(), {joined({first, first}), first}, 1000).size, 4000u);
}

TEST_F(CutBuffers, OfAnUnfinishedChunkAreGivenBackByStop) {
    openStream(mp3Bytes(), {joined(frames(5))});
    BufferGroup group;
    const std::unique_ptr<Track> source = track(0);
    ASSERT_EQ(source->start(group), AMEDIA_OK);
    ASSERT_EQ(source->read().status, AMEDIA_OK);
    EXPECT_EQ(group.heldCount(), 1u);  // the rest of the chunk
    EXPECT_EQ(source->stop(), AMEDIA_OK);
    EXPECT_EQ(group.heldCount(), 0u);
}

TEST_F(CutBuffers, AreTwoWhileAFrameIsOut) {
    openStream(mp3Bytes(), {joined(frames(2))});
    StartedTrack started(track(0));
    {
        const ReadResult first = started.read();
        ASSERT_EQ(first.status, AMEDIA_OK);
        EXPECT_EQ(started.group().heldCount(), 2u);
        const ReadResult second = started.read();
        ASSERT_EQ(second.status, AMEDIA_OK);
        EXPECT_EQ(started.group().heldCount(), 2u);  // the chunk's own went back
    }
    EXPECT_EQ(started.group().heldCount(), 0u);
}

TEST_F(CutBuffers, AreAllBackAtTheEndOfTheStream) {
    openStream(mp3Bytes(), split(joined(frames(9)), {900, 500, 30, 1000}));
    StartedTrack started(track(0));
    while (started.status() == AMEDIA_OK) {
    }
    EXPECT_EQ(started.group().heldCount(), 0u);
}

// Chunks of 104 bytes make buffers of 416, into which no frame of 417 goes.
TEST_F(CutBuffers, TooSmallForAFrameFailTheRead) {
    const Bytes chunk = frameOf(kHeader, 104);
    openStream(mp3Bytes(), {chunk, chunk, chunk, chunk, chunk});
    StartedTrack started(track(0));
    for (int i = 0; i < 5; ++i) {
        SCOPED_TRACE(i);
        const LogCapture log;
        EXPECT_EQ(started.status(), AMEDIA_ERROR_UNKNOWN);
        EXPECT_THAT(log, Logged(ANDROID_LOG_ERROR, "[audio/mpeg][0][" + std::to_string(i) +
                                                       "/5] Unknown error(-2710) @L"));
        EXPECT_EQ(started.group().heldCount(), 0u);
    }
    EXPECT_EQ(started.status(), AMEDIA_ERROR_END_OF_STREAM);
}

TEST_F(CutBuffers, JustLargeEnoughTakeAFrame) {
    const Bytes chunk = frameOf(kHeader, 105);  // buffers of 420
    const std::vector<Bytes> read = framesOf(mp3Bytes(), {chunk, chunk, chunk, chunk});
    EXPECT_EQ(read, (std::vector<Bytes>{slice(joined({chunk, chunk, chunk, chunk}), 0, 417)}));
}

TEST_F(CutBuffers, AsLargeAsAFrameTakeIt) {
    const Bytes chunk = frameOf(kHeader | 0x400, 96);  // 48 kHz: frames and buffers of 384
    const Bytes whole = joined({chunk, chunk, chunk, chunk});
    EXPECT_EQ(framesOf(mp3Bytes(), {chunk, chunk, chunk, chunk}), (std::vector<Bytes>{whole}));
}

// On the device a buffer's size counts more than may be written: frames of 417 bytes do not go into
// buffers for which 416 were asked.
TEST_F(CutBuffers, LargerThanAskedForAreNotFilled) {
    const Bytes chunk = frameOf(kHeader, 104);
    openStream(mp3Bytes(), {chunk, chunk, chunk, chunk, chunk});
    for (const size_t beyond : {size_t{1}, kReportedBeyond, size_t{4096}}) {
        SCOPED_TRACE(beyond);
        RecordingGroup group(0, beyond);
        GroupReader reader(track(0), &group);
        for (int i = 0; i < 5; ++i)
            EXPECT_EQ(reader.status(), AMEDIA_ERROR_UNKNOWN);
        EXPECT_EQ(reader.status(), AMEDIA_ERROR_END_OF_STREAM);
        EXPECT_TRUE(group.isUnwrittenBeyond());
    }
}

TEST_F(CutBuffers, SmallerThanAskedForAreNotOverrun) {
    openStream(mp3Bytes(), {joined(frames(2)), frame(2), joined(frames(2))});
    for (const size_t size : {1u, 16u, 416u, 417u, 418u, 833u, 834u}) {
        SCOPED_TRACE(size);
        RecordingGroup group(size);
        GroupReader reader(track(0), &group);
        size_t reads = 0;
        while (reader.status() != AMEDIA_ERROR_END_OF_STREAM)
            ASSERT_LT(++reads, 10u);
    }
}

}  // namespace
}  // namespace avitest
