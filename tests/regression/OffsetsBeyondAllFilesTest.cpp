// SPDX-License-Identifier: Apache-2.0
//
// OpenDML indexes count from a 64-bit base, so that a damaged one may point near either end of the
// range. The end of such a chunk was added up beyond the range, which is a crash on the device.

#include "tests/behaviour/seeking/SeekingFixture.h"

namespace avitest {
namespace {

class OffsetsBeyondAllFiles : public SeekingTest {
  protected:
    // A stream whose index has one chunk, at `offset`.
    void openWithChunkAt(Stream stream, uint64_t offset) {
        AviFile avi;
        const size_t number = avi.addStream(std::move(stream));
        avi.segment().index.copies = 0;
        avi.addChunk(number, {0, 0, 0, 2, 0x65, 0x88, 7, 8});
        avi.stream(number).edit = [&](Chunk& strl) {
            StandardIndex index;
            index.header.baseOffset = offset;
            index.entries = {{0, 8}};
            strl.add(Chunk("indx", index.toBytes()));
        };
        open(avi);
    }
};

// Before, at and after where eight bytes still fit, and in the middle of the range.
constexpr uint64_t kFarOffsets[] = {0x7FFFFFFFFFFFFFFF, 0x7FFFFFFFFFFFFFF8, 0x7FFFFFFFFFFFFFF7,
                                    0x4000000000000000};
constexpr uint64_t kNegativeOffsets[] = {0x8000000000000000, 0xFFFFFFFFFFFFFF00,
                                         0xFFFFFFFFFFFFFFFF};

TEST_F(OffsetsBeyondAllFiles, ChunkBehindTheEndEndsTheStream) {
    for (const uint64_t offset : kFarOffsets) {
        SCOPED_TRACE(offset);
        openWithChunkAt(mjpegStream(), offset);
        StartedTrack started(track(0));
        EXPECT_EQ(AMEDIA_ERROR_END_OF_STREAM, started.status());
    }
}

TEST_F(OffsetsBeyondAllFiles, LengthPrefixedChunkBehindTheEndEndsTheStream) {
    for (const uint64_t offset : kFarOffsets) {
        SCOPED_TRACE(offset);
        openWithChunkAt(lengthPrefixedStream(4), offset);
        StartedTrack started(track(0));
        EXPECT_EQ(AMEDIA_ERROR_END_OF_STREAM, started.status());
    }
}

TEST_F(OffsetsBeyondAllFiles, ChunkBelowTheBeginningIsAnError) {
    for (const uint64_t offset : kNegativeOffsets) {
        SCOPED_TRACE(offset);
        for (const Stream& stream : {mjpegStream(), lengthPrefixedStream(4)}) {
            openWithChunkAt(stream, offset);
            StartedTrack started(track(0));
            EXPECT_EQ(AMEDIA_ERROR_UNKNOWN, started.status());
        }
    }
}

TEST_F(OffsetsBeyondAllFiles, SourceIsNotAskedForBytesThatNoFileHas) {
    for (const uint64_t offset : kNegativeOffsets) {
        SCOPED_TRACE(offset);
        openWithChunkAt(mjpegStream(), offset);
        StartedTrack started(track(0));
        source().reset();
        started.status();
        EXPECT_EQ(0u, source().callCount());
    }
}

}  // namespace
}  // namespace avitest
