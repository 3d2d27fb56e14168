// SPDX-License-Identifier: Apache-2.0
//
// What the look at the following frames costs: a track that is read in order takes one call of the
// source a frame, and gives what it gives without anything being kept.

#include "tests/behaviour/seeking/SeekingFixture.h"

namespace avitest {
namespace {

// Frames above this size are not fetched whole.
constexpr size_t kMostKept = 0x40000;

class FramesAhead : public SeekingTest {
  protected:
    // Opens a film of MPEG-4 frames of one size.
    void openFilm(const std::string& kinds, size_t size = 1000) {
        mFilm = AviFile();
        addFrames(mFilm, mFilm.addStream(mpeg4Stream()), kinds, size);
        open(mFilm);
    }
    // Reads the film through; returns the number of calls.
    uint64_t callsOfAll() {
        source().reset();
        EXPECT_EQ(mFilm.payloads(0), readPayloads(0));
        return source().callCount();
    }
    AviFile mFilm;
};

// The first two reads only look at the next frame: after a seek there may be no third one.
TEST_F(FramesAhead, EachFrameTakesOneCall) {
    openFilm(groups(5, 10));
    EXPECT_EQ(50u + 1, callsOfAll());
}

TEST_F(FramesAhead, BFramesTakeOneCall) {
    std::string kinds = "I";
    for (int i = 0; i < 20; ++i)
        kinds += "PBB";
    openFilm(kinds);
    EXPECT_EQ(61u + 1, callsOfAll());
}

TEST_F(FramesAhead, OtherCodecsAreNotLookedAheadIn) {
    mFilm = AviFile();
    const size_t video = mFilm.addStream(mjpegStream());
    for (uint32_t i = 0; i < 20; ++i)
        mFilm.addChunk(video, patternBytes(100, i));
    open(mFilm);
    EXPECT_EQ(20u, callsOfAll());
}

TEST_F(FramesAhead, LargeFramesAreLookedAtAlone) {
    openFilm("IPPPP", kMostKept + 1);
    EXPECT_EQ(5u + 4, callsOfAll());
    openFilm("IPPPP", kMostKept);
    EXPECT_EQ(5u + 1, callsOfAll());
}

TEST_F(FramesAhead, RowsOfManyBFramesAreKeptAsFarAsThereIsRoom) {
    openFilm("IPP" + std::string(30, 'B') + "P");
    // Sixteen are kept; the rest of the row, and the frame behind it, are looked at and read.
    EXPECT_EQ(34u + 1 + 15, callsOfAll());
}

TEST_F(FramesAhead, AreForgottenAtASeek) {
    openFilm(groups(2, 10));
    StartedTrack started(track(0));
    for (int i = 0; i < 5; ++i)
        EXPECT_EQ(i, nextChunk(started));
    EXPECT_EQ(10, chunkAt(started, kNext, 5 * kFrameUs));
    source().reset();
    EXPECT_EQ(0, chunkAt(started, kPrevious, 5 * kFrameUs));
    EXPECT_EQ(1u, source().callCount());
    for (int i = 1; i < 20; ++i)
        EXPECT_EQ(i, nextChunk(started));
}

TEST_F(FramesAhead, SeekLooksAtTheFirstBytesOfTheNextFrame) {
    openFilm(groups(2, 10));
    StartedTrack started(track(0));
    source().reset();
    EXPECT_EQ(10, chunkAt(started, kPrevious, 10 * kFrameUs));
    const uint64_t looked = source().byteCount();
    EXPECT_EQ(1000u + 256, looked);
}

// A frame that could not be fetched whole is looked at and read as if nothing were kept.
TEST_F(FramesAhead, FetchThatFailsChangesNothing) {
    openFilm(groups(1, 10));
    for (const Fault& fault : {Fault::error(-EIO), Fault::shortRead(999), Fault::shortRead(0)}) {
        source().clearFaults();
        source().inject(fault.onCall(5));
        StartedTrack started(track(0));
        source().reset();
        for (int i = 0; i < 10; ++i)
            EXPECT_EQ(started.sample().timeUs, i * kFrameUs);
        EXPECT_EQ(12u + 1, source().callCount());
    }
}

// Stopping drops what was kept, too.
TEST_F(FramesAhead, AreForgottenAtAStop) {
    openFilm(groups(1, 10));
    for (int round = 0; round < 2; ++round) {
        StartedTrack started(track(0));
        for (int i = 0; i < 5; ++i)
            EXPECT_EQ(i, nextChunk(started));
    }
}

}  // namespace
}  // namespace avitest
