// SPDX-License-Identifier: Apache-2.0
//
// Video found by a scan: every frame is marked as key until a seek looks at its data. What was
// found is kept.

#include "tests/behaviour/seeking/SeekingFixture.h"

namespace avitest {
namespace {

using Reads = std::vector<std::pair<off64_t, size_t>>;

class UntrustedVideo : public SeekingTest {
  protected:
    void openScanned(AviFile avi) {
        mAvi = std::move(avi);
        dropIndex(mAvi);
        open(mAvi);
    }
    void openKinds(const std::string& kinds) { openScanned(videoFile(kinds)); }
    void openFrames(Stream stream, const std::vector<Bytes>& frames) {
        openScanned(fileOf(std::move(stream), frames));
    }
    // Of frame i: a look at its first bytes, or the whole of it.
    std::pair<off64_t, size_t> readOf(size_t i, size_t limit = SIZE_MAX) {
        const ChunkPlace place = mAvi.chunks(0)[i].place;
        return {static_cast<off64_t>(place.dataOffset), std::min<size_t>(place.dataSize, limit)};
    }
    Reads readsOf(const std::vector<size_t>& frames) {
        Reads result;
        for (const size_t i : frames)
            result.push_back(readOf(i));
        return result;
    }
    // The reads of a seek on a new track object.
    Reads readsOfSeek(uint32_t mode, int64_t timeUs) {
        StartedTrack video(track(0));
        source().reset();
        chunkAt(video, mode, timeUs);
        return reads();
    }

    AviFile mAvi;
};

TEST_F(UntrustedVideo, BackwardModesLandOnTheRealKeyFrameBefore) {
    for (const uint32_t mode : {kPrevious, kClosestSync, kClosest, 4u, 5u, 6u, 7u}) {
        SCOPED_TRACE(mode);
        openKinds("IPPPIPPPI");
        EXPECT_EQ(chunkAt(0, mode, 7 * kFrameUs), 4);
        EXPECT_EQ(chunkAt(0, mode, 3 * kFrameUs), 0);
        EXPECT_EQ(chunkAt(0, mode, 3600000000), 8);
    }
}

TEST_F(UntrustedVideo, NextSyncLandsOnTheRealKeyFrameBehind) {
    openKinds("IPPPIPPPIP");
    EXPECT_EQ(chunkAt(0, kNext, 1 * kFrameUs), 4);
    EXPECT_EQ(chunkAt(0, kNext, 5 * kFrameUs), 8);
    EXPECT_EQ(chunkAt(0, kNext, 9 * kFrameUs), kEndOfStream);
    EXPECT_EQ(chunkAt(0, kNext, 10 * kFrameUs), kEndOfStream);
    EXPECT_EQ(chunkAt(0, kNext, INT64_MAX), kEndOfStream);
}

TEST_F(UntrustedVideo, ClosestTellsTheFrameThatWasAskedFor) {
    openKinds("IPPPIPPP");
    StartedTrack video(track(0));
    EXPECT_EQ(seek(video, kClosest, 6 * kFrameUs), (Landing{4, 4 * kFrameUs, 6 * kFrameUs}));
}

TEST_F(UntrustedVideo, WithoutARealKeyFrameItIsTheBeginning) {
    openKinds("PPPP");
    EXPECT_EQ(chunkAt(0, kPrevious, 3 * kFrameUs), 0);
    EXPECT_EQ(chunkAt(0, kNext, 0), kEndOfStream);
}

TEST_F(UntrustedVideo, EachCandidateIsReadOnce) {
    openKinds("IPPPIPPPI");
    // 7, 6, 5, 4 are looked at; 4 is read, 5 is no B-frame.
    EXPECT_EQ(readsOfSeek(kPrevious, 7 * kFrameUs), readsOf({7, 6, 5, 4, 4, 5}));
    // Only the answers are left to be read.
    EXPECT_EQ(readsOfSeek(kPrevious, 7 * kFrameUs), readsOf({4, 5}));
    EXPECT_EQ(readsOfSeek(kPrevious, 5 * kFrameUs), readsOf({4, 5}));
}

TEST_F(UntrustedVideo, ForwardWalkLeavesItsAnswersToABackwardOne) {
    openKinds("IPPPIPPPI");
    EXPECT_EQ(readsOfSeek(kNext, 1 * kFrameUs), readsOf({1, 2, 3, 4, 4, 5}));
    EXPECT_EQ(readsOfSeek(kPrevious, 4 * kFrameUs), readsOf({4, 5}));
    EXPECT_EQ(readsOfSeek(kPrevious, 3 * kFrameUs), readsOf({0, 0, 1}));
    EXPECT_EQ(readsOfSeek(kNext, 2 * kFrameUs), readsOf({4, 5}));
}

TEST_F(UntrustedVideo, FailedWalkIsRememberedToo) {
    openKinds("PPPP");
    EXPECT_EQ(readsOfSeek(kNext, 0), readsOf({0, 1, 2, 3}));
    EXPECT_EQ(readsOfSeek(kNext, 0), Reads());
    EXPECT_EQ(readsOfSeek(kPrevious, 3 * kFrameUs), readsOf({0, 1}));
}

TEST_F(UntrustedVideo, CorrectedFlagsShowInTheSamples) {
    openKinds("IPIPPI");
    StartedTrack video(track(0));
    const auto flags = [&] {
        chunkAt(video, kPrevious, 0);
        std::string result = "?";  // that sample was read by the seek
        for (int i = 1; i < 6; ++i)
            result += video.sample().sync ? '1' : '0';
        return result;
    };
    EXPECT_EQ(flags(), "?11111");
    chunkAt(video, kPrevious, 4 * kFrameUs);
    EXPECT_EQ(flags(), "?11001");
    chunkAt(video, kNext, 1 * kFrameUs);
    EXPECT_EQ(flags(), "?01001");
}

TEST_F(UntrustedVideo, OnlyTheFirst256BytesAreLookedAt) {
    AviFile avi;
    const size_t stream = avi.addStream(mpeg4Stream());
    avi.addChunk(stream, mpeg4Frame('I', 0, 300));
    avi.addChunk(stream, mpeg4Frame('P', 1, 257));
    avi.addChunk(stream, mpeg4Frame('P', 2, 256));
    openScanned(std::move(avi));
    EXPECT_EQ(readsOfSeek(kPrevious, 2 * kFrameUs),
              (Reads{readOf(2), readOf(1, 256), readOf(0, 256), readOf(0), readOf(1, 256)}));
}

TEST_F(UntrustedVideo, KeyFrameIsToldByItsFirst256Bytes) {
    for (const auto& [codeAt, expected] : {std::pair<size_t, int>{251, 1}, {252, 0}}) {
        SCOPED_TRACE(codeAt);
        const Bytes key = mpeg4Frame('I', 9);
        const Bytes late = ByteWriter().fill(codeAt, 0xFF).bytes(key).take();
        openFrames(mpeg4Stream(), {mpeg4Frame('I', 0), late, mpeg4Frame('P', 2)});
        EXPECT_EQ(chunkAt(0, kPrevious, 2 * kFrameUs), expected);
    }
}

TEST_F(UntrustedVideo, UnreadableCandidateIsNoKeyFrame) {
    openKinds("IPPIPP");
    const off64_t at = readOf(3).first;
    source().inject(Fault::shortRead(19).onOffsets(at, at + 1));
    EXPECT_EQ(chunkAt(0, kPrevious, 4 * kFrameUs), 0);
    source().clearFaults();
    // Its flag is gone.
    EXPECT_EQ(chunkAt(0, kPrevious, 4 * kFrameUs), 0);
    EXPECT_EQ(chunkAt(0, kNext, 1 * kFrameUs), kEndOfStream);
}

TEST_F(UntrustedVideo, ReadErrorIsNoKeyFrame) {
    openKinds("IPPIPP");
    const off64_t at = readOf(3).first;
    source().inject(Fault::error(-EIO).onOffsets(at, at + 1));
    EXPECT_EQ(chunkAt(0, kPrevious, 4 * kFrameUs), 0);
}

TEST_F(UntrustedVideo, EmptyFrameIsNoKeyFrame) {
    openKinds("IP--PP");
    EXPECT_EQ(chunkAt(0, kPrevious, 3 * kFrameUs), 0);
    EXPECT_EQ(chunkAt(0, kNext, 2 * kFrameUs), kEndOfStream);
}

TEST_F(UntrustedVideo, EmptyFrameIsNotLookedAt) {
    openKinds("IP--PP");
    EXPECT_EQ(readsOfSeek(kNext, 2 * kFrameUs), readsOf({4, 5}));
    EXPECT_EQ(readsOfSeek(kPrevious, 3 * kFrameUs), readsOf({1, 0, 0, 1}));
}

TEST_F(UntrustedVideo, FramesTooShortToBeTyped) {
    openFrames(mpeg4Stream(), {mpeg4Frame('I', 0), Bytes{0, 0, 1, 0xB6}, mpeg4Frame('P', 2)});
    EXPECT_EQ(chunkAt(0, kPrevious, 2 * kFrameUs), 0);
}

TEST_F(UntrustedVideo, KeyFrameBehindAGroupHeader) {
    const Bytes group = ByteWriter().bytes(Bytes{0, 0, 1, 0xB3}).fill(8, 0x55).take();
    const Bytes key = ByteWriter().bytes(group).bytes(mpeg4Frame('I', 1)).take();
    const Bytes predicted = ByteWriter().bytes(group).bytes(mpeg4Frame('P', 2)).take();
    openFrames(mpeg4Stream(), {mpeg4Frame('I', 0), key, predicted, mpeg4Frame('P', 3)});
    EXPECT_EQ(chunkAt(0, kPrevious, 3 * kFrameUs), 1);
}

TEST_F(UntrustedVideo, AvcByItsNalUnits) {
    const Bytes idr = {0, 0, 0, 1, 0x65, 0x88, 0x81, 0};
    const Bytes slice = {0, 0, 0, 1, 0x41, 0x9A, 0x81, 1};
    const Bytes intra = {0, 0, 0, 1, 0x41, 0x88, 0x81, 2};  // a slice of an I-picture
    const Bytes delimited = {0, 0, 1, 0x09, 0x10, 0, 0, 1, 0x65, 0x88, 3};
    Stream stream = videoStream("H264", 320, 240, 25);
    openFrames(stream, {idr, slice, intra, slice, delimited, slice});
    EXPECT_EQ(chunkAt(0, kNext, 1 * kFrameUs), 2);
    EXPECT_EQ(chunkAt(0, kNext, 3 * kFrameUs), 4);
}

// The check reads what lies in the file, where there are no start codes.
TEST_F(UntrustedVideo, LengthPrefixedAvcHasNoKeyFrames) {
    const Bytes idr = {0, 0, 0, 4, 0x65, 0x88, 0x81, 0};
    const Bytes slice = {0, 0, 0, 4, 0x41, 0x9A, 0x81, 1};
    openFrames(lengthPrefixedStream(4), {idr, slice, idr, slice});
    EXPECT_EQ(chunkAt(0, kNext, kFrameUs), kEndOfStream);
    StartedTrack video(track(0));
    EXPECT_EQ(seek(video, kPrevious, 3 * kFrameUs).timeUs, 0);
    EXPECT_EQ(video.sample().timeUs, kFrameUs);
}

TEST_F(UntrustedVideo, OtherCodecsByTheFifthByte) {
    const Bytes key = {9, 9, 9, 9, 0xFD, 1};
    const Bytes predicted = {9, 9, 9, 9, 0x02, 2};
    openFrames(mjpegStream(), {{9, 9, 9, 9, 0, 0}, predicted, key, {9, 9, 9, 9, 0xFF}, predicted});
    EXPECT_EQ(chunkAt(0, kPrevious, 4 * kFrameUs), 2);
}

TEST_F(UntrustedVideo, AudioIsNotLookedAt) {
    AviFile avi;
    const size_t audio = avi.addStream(alawStream());
    addAudio(avi, audio, {800, 800, 800});
    openScanned(std::move(avi));
    EXPECT_EQ(readsOfSeek(kPrevious, 150000), readsOf({1}));
}

}  // namespace
}  // namespace avitest
