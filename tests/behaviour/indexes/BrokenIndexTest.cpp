// SPDX-License-Identifier: Apache-2.0
//
// A table that came from a scan is not trusted for seeking: each frame is looked at before a seek
// lands on it. Every other table is.

#include "tests/behaviour/indexes/IndexesFixture.h"

namespace avitest {
namespace {

constexpr uint32_t kToPreviousSync =
    android::CMediaTrackReadOptions::SEEK | android::CMediaTrackReadOptions::SEEK_PREVIOUS_SYNC;

class BrokenIndex : public IndexesFixture {
  protected:
    // The frame on which a seek to the sync sample before `frame` lands.
    int64_t landing(int64_t frame) {
        const auto samples = readFrom(0, {kToPreviousSync, 40000 * frame}, 1);
        return samples.size() == 1 ? samples[0].timeUs / 40000 : -1;
    }
};

// A VOP of type I (0) or P (1), different in each place.
Bytes vop(uint8_t type, uint32_t seed) {
    ByteWriter out;
    out.u8(0).u8(0).u8(1).u8(0xB6).u8(static_cast<uint8_t>(type << 6)).u32(seed).fill(20, 0x55);
    return out.take();
}

// Frames 0 and 3 of six are key frames.
AviFile mpeg4File() {
    AviFile avi;
    avi.addStream(videoStream("FMP4", 320, 240, 25));
    for (uint32_t i = 0; i < 6; ++i)
        avi.addChunk(0, vop(i % 3 == 0 ? 0 : 1, i), i % 3 == 0 ? kKey : kNoFlags);
    avi.segment().index.copies = 0;
    return avi;
}

TEST_F(BrokenIndex, IsThatOfAScannedTrack) {
    openFile(mpeg4File().build());
    EXPECT_EQ(3, landing(5));
    EXPECT_EQ(0u, mLog.count("seek mBrokenIndex:0"));
    EXPECT_EQ(1u, mLog.count("seek sync index: 3 @L"));
}

TEST_F(BrokenIndex, RemembersWhatTheFramesWere) {
    openFile(mpeg4File().build());
    EXPECT_EQ(3, landing(5));
    mLog.clear();
    EXPECT_EQ(3, landing(4));
    EXPECT_EQ(1u, mLog.count("seek mBrokenIndex:1 -- isSyncSample:-127, index: 3 @L"));
}

TEST_F(BrokenIndex, FramesAreLookedAtFromTheTargetBack) {
    AviFile avi = mpeg4File();
    const auto& source = openCounted(avi.build());
    const auto track = extractor().track(0);
    const uint64_t before = source.callCount();
    readTrack(*track, {kToPreviousSync, 200000}, 1);
    std::vector<uint64_t> probed;
    const auto calls = source.calls();
    for (size_t i = before; i < calls.size() && probed.size() < 3; ++i)
        probed.push_back(static_cast<uint64_t>(calls[i].offset));
    const auto chunks = avi.chunks(0);
    EXPECT_EQ(std::vector<uint64_t>({chunks[5].place.dataOffset, chunks[4].place.dataOffset,
                                     chunks[3].place.dataOffset}),
              probed);
}

TEST_F(BrokenIndex, IsNotThatOfOpenDmlIndexes) {
    for (const OpenDml form : {OpenDml::kStandard, OpenDml::kSuper}) {
        AviFile avi = mpeg4File();
        avi.stream(0).openDml = form;
        mLog.clear();
        openFile(avi.build());
        EXPECT_EQ(3, landing(5));
        EXPECT_EQ(1u, mLog.count("seek mBrokenIndex:0 -- isSyncSample:1, index: 3 @L"));
    }
}

TEST_F(BrokenIndex, IsNotThatOfIdx1) {
    AviFile avi = mpeg4File();
    avi.segment().index.copies = 1;
    openFile(avi.build());
    EXPECT_EQ(3, landing(5));
    EXPECT_EQ(1u, mLog.count("seek mBrokenIndex:0 -- isSyncSample:1, index: 3 @L"));
}

// Every video track is marked when the file is scanned, also one whose own index is good.
TEST_F(BrokenIndex, IsThatOfAllVideoWhenAnyTrackNeededTheScan) {
    AviFile avi = mpeg4File();
    avi.stream(0).openDml = OpenDml::kStandard;
    avi.addStream(pcmStream(1, 8000, 16));
    avi.addChunk(1, patternBytes(40));
    openFile(avi.build());
    EXPECT_EQ(3, landing(5));
    EXPECT_TRUE(scanned());
    EXPECT_EQ(0u, mLog.count("seek mBrokenIndex:0"));
    EXPECT_EQ(1u, mLog.count("seek sync index: 3 @L"));
}

TEST_F(BrokenIndex, IsNotThatOfAScannedFurtherRiff) {
    AviFile avi = mpeg4File();
    avi.segment().index.copies = 1;
    avi.addSegment().riffSize = 0x30000000;
    avi.addChunk(0, vop(1, 99), kNoFlags);
    openFile(avi.build());
    EXPECT_EQ(6, landing(6));  // found by the scan, so a key frame by its flag
    EXPECT_EQ(1u, mLog.count("seek mBrokenIndex:0 -- isSyncSample:1, index: 6 @L"));
}

}  // namespace
}  // namespace avitest
