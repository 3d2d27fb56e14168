// SPDX-License-Identifier: Apache-2.0
//
// What ends a scan early: too many unknown chunks, too many empty headers in a row.

#include "tests/behaviour/indexes/IndexesFixture.h"

namespace avitest {
namespace {

using ::testing::Contains;
using ::testing::ElementsAre;

constexpr char kUnknownLimit[] = "parseMOVIMore(): Unknown chunk num > 100, stop scaning!";

class MoviScanLimits : public IndexesFixture {
  protected:
    // A frame in front of what the test adds.
    MoviScanLimits() : mAvi(unindexedFile(1)) {}

    void addJunk(size_t count, ChunkId id = "JUNK", size_t size = 4) {
        for (size_t i = 0; i < count; ++i)
            mAvi.addLooseChunk(Chunk(id, Bytes(size, 7)));
    }

    void addEmptyHeaders(size_t count) {
        for (size_t i = 0; i < count; ++i)
            mAvi.addLooseChunk(Chunk(uint32_t{0}));
    }

    void addFrame() { mAvi.addChunk(0, patternBytes(30, 77)); }

    // The number of frames that a scan finds; each is the next of those that were added.
    size_t scannedFrames() {
        openFile(mAvi.build());
        const auto chunks = mAvi.payloads(0);
        const auto samples = readPayloads(0);
        EXPECT_LE(samples.size(), chunks.size());
        EXPECT_TRUE(std::equal(samples.begin(), samples.end(), chunks.begin()));
        return samples.size();
    }

    AviFile mAvi;
};

TEST_F(MoviScanLimits, NinetyNineUnknownChunksAreSkipped) {
    addJunk(99);
    addFrame();
    EXPECT_EQ(2u, scannedFrames());
    EXPECT_EQ(0u, mLog.count(kUnknownLimit));
}

TEST_F(MoviScanLimits, TheHundredthUnknownChunkStopsTheScan) {
    addJunk(100);
    addFrame();
    EXPECT_EQ(1u, scannedFrames());
    EXPECT_THAT(log(), Contains(Text(std::string(kUnknownLimit))).Times(1));
}

TEST_F(MoviScanLimits, UnknownChunksAreCountedOverTheWholeList) {
    for (size_t i = 0; i < 100; ++i) {
        addJunk(1);
        addFrame();
    }
    EXPECT_EQ(100u, scannedFrames());  // the first one and 99
    EXPECT_EQ(1u, mLog.count(kUnknownLimit));
}

TEST_F(MoviScanLimits, IndexChunksAndSubtitlesCountAsUnknown) {
    addJunk(50, "ix00");
    addJunk(50, "00tx");
    addFrame();
    EXPECT_EQ(1u, scannedFrames());
    EXPECT_EQ(1u, mLog.count(kUnknownLimit));
}

TEST_F(MoviScanLimits, IdOfZerosWithASizeIsAnUnknownChunk) {
    addJunk(100, uint32_t{0});
    addFrame();
    EXPECT_EQ(1u, scannedFrames());
    EXPECT_EQ(1u, mLog.count(kUnknownLimit));
}

TEST_F(MoviScanLimits, PaletteChangesDoNotCountAsUnknown) {
    addJunk(99);
    addJunk(150, "00pc");
    addFrame();
    EXPECT_EQ(2u, scannedFrames());
    EXPECT_EQ(0u, mLog.count(kUnknownLimit));
}

TEST_F(MoviScanLimits, UnknownListsDoNotCountAsUnknownChunks) {
    addJunk(99);
    for (size_t i = 0; i < 150; ++i)
        mAvi.addLooseChunk(Chunk::list("abcd"));
    addFrame();
    EXPECT_EQ(2u, scannedFrames());
    EXPECT_EQ(0u, mLog.count(kUnknownLimit));
}

TEST_F(MoviScanLimits, ChunksWithoutATrackDoNotCountAsUnknown) {
    addJunk(99);
    addJunk(150, "42dc");
    addFrame();
    EXPECT_EQ(2u, scannedFrames());
    EXPECT_EQ(0u, mLog.count(kUnknownLimit));
}

TEST_F(MoviScanLimits, TheHundredthUnknownChunkWithinARecordListEndsTheListOnly) {
    mAvi.beginGroup();
    addFrame();
    addJunk(100);
    addFrame();
    mAvi.endGroup();
    mAvi.addChunk(0, patternBytes(44, 5));
    openFile(mAvi.build());
    const auto chunks = mAvi.payloads(0);
    EXPECT_THAT(readPayloads(0), ElementsAre(chunks[0], chunks[1], chunks[3]));
    EXPECT_THAT(log(), Contains(Text(std::string(kUnknownLimit))).Times(1));
}

// The limit is met exactly or never: a record list has used it up.
TEST_F(MoviScanLimits, NoLimitIsLeftAfterARecordListReachedIt) {
    mAvi.beginGroup();
    addJunk(100);
    mAvi.endGroup();
    addJunk(250);
    mAvi.beginGroup();
    addJunk(250);
    addFrame();
    mAvi.endGroup();
    addFrame();
    EXPECT_EQ(3u, scannedFrames());
    EXPECT_EQ(1u, mLog.count(kUnknownLimit));
}

TEST_F(MoviScanLimits, UnknownChunksWithinRecordListsCountForTheScan) {
    mAvi.beginGroup();
    addJunk(60);
    mAvi.endGroup();
    addJunk(40);
    addFrame();
    EXPECT_EQ(1u, scannedFrames());
    EXPECT_EQ(1u, mLog.count(kUnknownLimit));
}

TEST_F(MoviScanLimits, NineHundredNinetyNineEmptyHeadersAreSkipped) {
    addEmptyHeaders(999);
    addFrame();
    EXPECT_EQ(2u, scannedFrames());
    EXPECT_EQ(0u, mLog.count("Failed to parseDataChunk()!"));
}

TEST_F(MoviScanLimits, TheThousandthEmptyHeaderStopsTheScan) {
    addEmptyHeaders(1000);
    addFrame();
    EXPECT_EQ(1u, scannedFrames());
    EXPECT_EQ(1u, mLog.count(ANDROID_LOG_ERROR, failureOf("parseDataChunk", kUnsupported)));
    EXPECT_THAT(log(),
                Contains(Text(std::string("parseMOVIMore(): Failed to parseDataChunk()! err = "
                                          "-1010")))
                    .Times(1));
}

TEST_F(MoviScanLimits, EmptyHeadersAreCountedInARow) {
    for (size_t i = 0; i < 3; ++i) {
        addEmptyHeaders(999);
        addFrame();
    }
    EXPECT_EQ(4u, scannedFrames());
}

TEST_F(MoviScanLimits, AnyOtherHeaderEndsARowOfEmptyOnes) {
    const std::vector<Chunk> others = {Chunk("JUNK"), Chunk("00pc"), Chunk("00dc"), Chunk("77wb"),
                                       Chunk(uint32_t{0}, Bytes(2))};
    for (const Chunk& other : others) {
        SCOPED_TRACE(idText(other.id));
        mAvi = unindexedFile(1);
        addEmptyHeaders(999);
        mAvi.addLooseChunk(other);
        addEmptyHeaders(999);
        addFrame();
        openFile(mAvi.build());
        EXPECT_EQ(mAvi.payloads(0), readPayloads(0));
    }
}

TEST_F(MoviScanLimits, EmptyHeadersAreNoUnknownChunks) {
    addEmptyHeaders(500);
    addJunk(99);
    addEmptyHeaders(500);
    addFrame();
    EXPECT_EQ(2u, scannedFrames());
    EXPECT_EQ(0u, mLog.count(kUnknownLimit));
}

TEST_F(MoviScanLimits, ARecordListStartsTheRowOfEmptyHeadersAnew) {
    addEmptyHeaders(999);
    mAvi.beginGroup();
    addEmptyHeaders(999);
    addFrame();
    mAvi.endGroup();
    addFrame();
    EXPECT_EQ(3u, scannedFrames());
}

TEST_F(MoviScanLimits, AThousandEmptyHeadersWithinARecordListEndTheListOnly) {
    mAvi.beginGroup();
    addEmptyHeaders(1000);
    addFrame();
    mAvi.endGroup();
    mAvi.addChunk(0, patternBytes(44, 5));
    openFile(mAvi.build());
    const auto chunks = mAvi.payloads(0);
    EXPECT_THAT(readPayloads(0), ElementsAre(chunks[0], chunks[2]));
    EXPECT_EQ(1u, mLog.count(ANDROID_LOG_ERROR, failureOf("parseDataChunk", kUnsupported)));
    EXPECT_EQ(0u, mLog.count("Failed to parseDataChunk()!"));
}

TEST_F(MoviScanLimits, ListOfZerosTakesAThousandReads) {
    mAvi.addLooseChunk(Chunk("00dc", patternBytes(10)));
    mAvi.segment().edit = [](Chunk& riff) {
        riff.child("movi").children.assign(100000, Chunk(uint32_t{0}));
    };
    const auto& source = openCounted(mAvi.build());
    EXPECT_EQ(0u, countTracks());
    EXPECT_LT(source.callCount(), 1100u);
}

}  // namespace
}  // namespace avitest
