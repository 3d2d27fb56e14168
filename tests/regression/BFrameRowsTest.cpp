// SPDX-License-Identifier: Apache-2.0
//
// A frame's time depends on the B-frames after it. A row of them as long as the film was read to
// its end again for every frame, and at every seek.

#include <limits>

#include "tests/behaviour/seeking/SeekingFixture.h"

namespace avitest {
namespace {

constexpr size_t kFrames = 20000;

class BFrameRows : public SeekingTest {
  protected:
    // A film of which the index says that it is `first` and then one frame again and again.
    void openRow(Stream stream, const Bytes& first, const Bytes& again) {
        AviFile avi;
        const size_t video = avi.addStream(std::move(stream));
        avi.addChunk(video, first);
        avi.addChunk(video, again);
        avi.segment().index.edit = [](std::vector<Idx1Entry>& entries) {
            entries.resize(kFrames, entries.at(1));
        };
        open(avi);
    }
    static Bytes pictures(uint8_t type) { return {0, 0, 1, 0xB6, type, 1, 2}; }
};

// A length prefix may look like a start code: as they lie in the file these frames are B-frames, to
// the decoder they are none.
Bytes deceivingFrame() {
    return ByteWriter().bytes(Bytes{0, 0, 1, 0x41, 0xA0}).fill(320, 0xFF).take();
}

TEST_F(BFrameRows, EachEntryIsLookedAheadOnceWhileReading) {
    openRow(lengthPrefixedStream(4), deceivingFrame(), deceivingFrame());
    StartedTrack started(track(0));
    source().reset();
    int64_t lastUs = 0;
    for (size_t i = 0; i < kFrames; ++i) {
        const ReadResult result = started.read();
        ASSERT_TRUE(result.buffer) << i;
        lastUs = result.buffer.metaData().getInt64(AMEDIAFORMAT_KEY_TIME_US).value();
        // The frame's own place, and one place for each that follows.
        ASSERT_EQ(lastUs, static_cast<int64_t>(kFrames - 1) * kFrameUs) << i;
    }
    EXPECT_EQ(2 * kFrames - 1, source().callCount());
}

TEST_F(BFrameRows, SecondSeekLooksAheadNoMore) {
    openRow(mpeg4Stream(), pictures(0x10), pictures(0x90));
    StartedTrack started(track(0));
    const Landing first = seek(started, kPrevious, 0);
    EXPECT_EQ(first.timeUs, static_cast<int64_t>(kFrames - 1) * kFrameUs);
    source().reset();
    EXPECT_EQ(seek(started, kPrevious, 0), first);
    EXPECT_EQ(1u, source().callCount());
}

// The row is left and entered again.
TEST_F(BFrameRows, RowsAreToldApart) {
    AviFile avi = videoFile("IBBPBIBBBP");
    open(avi);
    StartedTrack started(track(0));
    for (int round = 0; round < 2; ++round) {
        EXPECT_EQ(seek(started, kPrevious, 0).timeUs, 2 * kFrameUs);
        EXPECT_EQ(seek(started, kPrevious, 5 * kFrameUs).timeUs, 8 * kFrameUs);
    }
    EXPECT_EQ(seek(started, kPrevious, 0).timeUs, 2 * kFrameUs);
    const std::vector<int64_t> places = {0, 1, 4, 3, 8, 5, 6, 7, 9};
    for (const int64_t place : places)
        EXPECT_EQ(started.sample().timeUs, place * kFrameUs);
}

// Only the last row was remembered, the other was read again at each seek.
TEST_F(BFrameRows, SeeksIntoTwoRowsByTurnsLookAheadOnce) {
    const std::string row(50, 'B');
    AviFile avi = videoFile("I" + row + "PI" + row + "P");
    open(avi);
    StartedTrack started(track(0));
    const Landing first = seek(started, kPrevious, 0);
    EXPECT_EQ(first.timeUs, 50 * kFrameUs);
    const Landing second = seek(started, kPrevious, 60 * kFrameUs);
    EXPECT_EQ(second.timeUs, 102 * kFrameUs);
    source().reset();
    EXPECT_EQ(seek(started, kPrevious, 0), first);
    EXPECT_EQ(seek(started, kPrevious, 60 * kFrameUs), second);
    EXPECT_EQ(2u, source().callCount());
}

// What a source could not give for a moment it is asked for again.
TEST_F(BFrameRows, FrameThatWasUnreadableOnceIsCounted) {
    AviFile avi = videoFile("IBBBP");
    open(avi);
    const auto frame = static_cast<off64_t>(avi.chunks(0)[2].place.dataOffset);
    StartedTrack started(track(0));
    source().inject(Fault::shortRead(3).onOffsets(frame, frame + 1));
    EXPECT_EQ(seek(started, kPrevious, 0).timeUs, 2 * kFrameUs);
    source().clearFaults();
    EXPECT_EQ(seek(started, kPrevious, 0).timeUs, 3 * kFrameUs);
}

// A source that fails for good is asked twice, not again for each frame of the row.
TEST_F(BFrameRows, UnreadableRowIsReadTwice) {
    AviFile avi = videoFile("I" + std::string(100, 'B') + "P");
    open(avi);
    const auto row = static_cast<off64_t>(avi.chunks(0)[1].place.dataOffset);
    StartedTrack started(track(0));
    source().inject(Fault::shortRead(3).onOffsets(row, std::numeric_limits<off64_t>::max()));
    for (int i = 0; i < 2; ++i)
        EXPECT_EQ(seek(started, kPrevious, 0).timeUs, 0);
    source().reset();
    EXPECT_EQ(seek(started, kPrevious, 0).timeUs, 0);
    EXPECT_EQ(1u, source().callCount());
}

// What lies after the end of a cut file will not come: it is asked for once.
TEST_F(BFrameRows, RowAfterTheEndOfTheFileIsReadOnce) {
    AviFile avi = videoFile("I" + std::string(100, 'B') + "P");
    avi.segment().index.copies = 0;
    avi.stream(0).openDml = OpenDml::kStandard;
    Bytes file = avi.build();
    file.resize(avi.chunks(0)[1].place.dataOffset);
    MemorySource memory(file);
    FaultySource cut(memory);
    openSource(cut);
    StartedTrack started(track(0));
    cut.reset();
    EXPECT_EQ(seek(started, kPrevious, 0).timeUs, 0);
    EXPECT_EQ(1u + 101, cut.callCount());
    EXPECT_EQ(seek(started, kPrevious, 0).timeUs, 0);
    EXPECT_EQ(2u + 101, cut.callCount());
}

// An unreadable frame counts for none, wherever in the row the look begins.
TEST_F(BFrameRows, UnreadableFramesAreNotCounted) {
    AviFile avi;
    const size_t video = avi.addStream(lengthPrefixedStream(4));
    for (uint8_t i = 0; i < 6; ++i)
        avi.addChunk(video, ByteWriter().bytes(deceivingFrame()).u8(i).take());
    open(avi);
    const auto unreadable = static_cast<off64_t>(avi.chunks(video)[4].place.dataOffset);
    StartedTrack started(track(0));
    source().inject(Fault::shortRead(3).onOffsets(unreadable, unreadable + 1));
    for (const int64_t place : {4, 4, 4, 4})  // one each for those that follow, but for the fifth
        EXPECT_EQ(started.sample().timeUs, place * kFrameUs);
    EXPECT_EQ(AMEDIA_ERROR_UNKNOWN, started.status());
    EXPECT_EQ(started.sample().timeUs, 5 * kFrameUs);
}

}  // namespace
}  // namespace avitest
