// SPDX-License-Identifier: Apache-2.0
//
// Writers fill the room that they reserved with zeros. Each eight of them, an empty chunk, took a
// read of the source, and in the header list a line of the log.

#include "tests/support/AviBuilder.h"
#include "tests/support/LoggedFixture.h"

namespace avitest {
namespace {

constexpr size_t kPadding = 1 << 20;
constexpr uint64_t kMostReads = 150;  // one for each 8 bytes would be 131072

constexpr char kUnknownZeros[] = "unknown chunk 0x00000000";

class ZeroPadding : public LoggedFixture {
  protected:
    ZeroPadding() {
        mAvi.addStream(mjpegStream());
        mAvi.addChunk(0, patternBytes(40));
    }
    // Opens the file and counts the reads of the source until its track is known.
    void expectFewReads() {
        android::service::FaultySource& source = openCounted(mAvi.build());
        EXPECT_EQ(1u, countTracks());
        EXPECT_GT(kMostReads, source.callCount());
        EXPECT_EQ(mAvi.payloads(0), readPayloads(0));
    }
    // Zeros as a chunk that only looks like one to the builder: an empty one, and more of them.
    static Chunk zeros(size_t size = kPadding) {
        return Chunk(uint32_t{0}, Bytes(size - 8)).declare(0);
    }

    AviFile mAvi;
};

TEST_F(ZeroPadding, BehindTheRiffIsReadThroughAWindow) {
    mAvi.trailing = Bytes(kPadding);
    expectFewReads();
}

TEST_F(ZeroPadding, InTheRiffIsReadThroughAWindow) {
    mAvi.segment().beforeMovi = {zeros()};
    expectFewReads();
}

TEST_F(ZeroPadding, InTheHeaderListIsReadThroughAWindow) {
    mAvi.editHeaders = [](Chunk& hdrl) { hdrl.add(zeros()); };
    expectFewReads();
}

TEST_F(ZeroPadding, InTheHeaderListIsLoggedOnceARun) {
    mAvi.editHeaders = [](Chunk& hdrl) { hdrl.add(zeros()); };
    expectFewReads();
    EXPECT_EQ(1u, mLog.count(kUnknownZeros));
    EXPECT_EQ(0u, mLog.count("more lines like"));
}

TEST_F(ZeroPadding, OfTwoRunsInTheHeaderListIsLoggedTwice) {
    mAvi.editHeaders = [](Chunk& hdrl) {
        hdrl.add(zeros(800)).add(Chunk("ABCD", Bytes(4))).add(zeros(800));
    };
    expectFewReads();
    EXPECT_EQ(2u, mLog.count(kUnknownZeros));
}

}  // namespace
}  // namespace avitest
