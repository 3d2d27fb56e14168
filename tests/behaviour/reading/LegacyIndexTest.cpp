// SPDX-License-Identifier: Apache-2.0
//
// idx1: what its offsets count from, and which entries make a sample.

#include "tests/behaviour/reading/ReadingFixture.h"

namespace avitest {
namespace {

class LegacyIndex : public ReadingTest {
  protected:
    const std::vector<Bytes> mChunks = {patternBytes(30, 1), patternBytes(41, 2),
                                        patternBytes(50, 3)};
    AviFile mAvi = fileOf(mjpegStream(), mChunks);

    IndexOptions& index() { return mAvi.segment().index; }

    void expectAllChunks() {
        openFile(mAvi.build());
        EXPECT_EQ(readPayloads(0), mChunks);
    }

    // Fills up in front of the movi list, so that its header lies at `offset`.
    void placeMoviAt(uint64_t offset) {
        mAvi.build();
        const uint64_t now = mAvi.place("movi0").headerOffset;
        ASSERT_LE(now + 8, offset);
        mAvi.segment().beforeMovi.push_back(Chunk("JUNK", Bytes(offset - now - 8)));
    }
};

TEST_F(LegacyIndex, OffsetsBelowTheMoviHeaderCountFromItsTypeWord) {
    placeMoviAt(2048);
    index().edit = [](std::vector<Idx1Entry>& entries) { entries[0].offset = 4; };

    expectAllChunks();
    EXPECT_EQ(mAvi.chunks(0)[0].place.dataOffset, 2068u);
}

TEST_F(LegacyIndex, OffsetsFromTheStartOfTheFileAreTakenAsTheyAre) {
    index().offsets = IndexOffsets::kAbsolute;

    expectAllChunks();
}

TEST_F(LegacyIndex, FirstOffsetEqualToTheMoviHeaderMakesOffsetsAbsolute) {
    placeMoviAt(2048);
    index().offsets = IndexOffsets::kAbsolute;
    index().edit = [](std::vector<Idx1Entry>& entries) {
        entries.insert(entries.begin(), {"LIST", kListEntry, 2048, 100});
    };

    expectAllChunks();
}

TEST_F(LegacyIndex, FirstOffsetOneBelowTheMoviHeaderMakesOffsetsRelative) {
    placeMoviAt(2048);
    index().edit = [](std::vector<Idx1Entry>& entries) {
        entries.insert(entries.begin(), {"LIST", kListEntry, 2047, 100});
    };

    expectAllChunks();
}

TEST_F(LegacyIndex, ListEntryInFirstPlaceDecidesTheBase) {
    // Absolute offsets behind a list entry that says "relative" point behind the file.
    placeMoviAt(2048);
    index().offsets = IndexOffsets::kAbsolute;
    index().edit = [](std::vector<Idx1Entry>& entries) {
        entries.insert(entries.begin(), {"rec ", kListEntry, 4, 100});
    };
    LogCapture log;
    openFile(mAvi.build());
    countTracks();

    EXPECT_EQ(log.count("addSampleById(): Sample offset("), mChunks.size());
}

TEST_F(LegacyIndex, OnlyTheFirstEntryDecidesTheBase) {
    placeMoviAt(2048);
    index().edit = [](std::vector<Idx1Entry>& entries) {
        entries.insert(entries.begin() + 1, {"rec ", kListEntry, 0x10000, 100});
    };

    expectAllChunks();
}

TEST_F(LegacyIndex, ListEntriesAreSkippedAndNotCounted) {
    LogCapture log;
    index().edit = [](std::vector<Idx1Entry>& entries) {
        Idx1Entry list = entries[1];
        list.flags = kListEntry | kKey;
        entries.insert(entries.begin() + 1, list);
    };

    expectAllChunks();
    EXPECT_THAT(log, Logged(ANDROID_LOG_DEBUG, "parseIDX1(): end (3 samples added)..."));
}

TEST_F(LegacyIndex, GroupsOfChunksAreReadThroughTheirEntries) {
    AviFile avi;
    const size_t video = avi.addStream(mjpegStream());
    avi.segment().index.listsIndexed = true;
    for (const Bytes& chunk : mChunks) {
        avi.beginGroup();
        avi.addChunk(video, chunk);
    }
    avi.endGroup();
    openFile(avi.build());

    EXPECT_EQ(readPayloads(0), mChunks);
}

TEST_F(LegacyIndex, KeyFlagAloneMakesASampleAKeySample) {
    struct Row {
        uint32_t flags;
        bool isKey;
    };
    const Row rows[] = {{0, false}, {kKey, true}, {0xFFFFFFEE, false}, {0xFFFFFFFE, true}};
    for (const Row& row : rows) {
        SCOPED_TRACE(row.flags);
        index().edit = [&row](std::vector<Idx1Entry>& entries) { entries[1].flags = row.flags; };
        openFile(mAvi.build());

        const std::vector<Sample> samples = readAll(0);
        ASSERT_EQ(samples.size(), 3u);
        EXPECT_EQ(samples[1].sync, row.isKey);
    }
}

TEST_F(LegacyIndex, OffsetsWrapAt32Bits) {
    // The sum of base, offset and chunk header comes out as the place of the second chunk.
    placeMoviAt(2048);
    mAvi.segment().beforeHeaders.push_back(Chunk("JUNK", mChunks[1]).marked("early"));
    mAvi.build();
    const uint64_t base = mAvi.place("movi0").dataOffset;
    const uint64_t early = mAvi.place("early").headerOffset;
    ASSERT_LT(early, base);
    index().edit = [base, early](std::vector<Idx1Entry>& entries) {
        entries[1].offset = static_cast<uint32_t>((uint64_t{1} << 32) + early - base);
    };

    expectAllChunks();
}

TEST_F(LegacyIndex, FurtherSegmentAddsToTheTablesWithABaseOfItsOwn) {
    const Bytes later = patternBytes(60, 4);
    Segment& segment = mAvi.addSegment();
    segment.index.copies = 1;
    segment.riffSize = 0x10000000;  // sizes are taken as file positions
    mAvi.addChunk(0, later);
    mAvi.stream(0).header.length = 5;
    openFile(mAvi.build());

    std::vector<Bytes> expected = mChunks;
    expected.push_back(later);
    EXPECT_EQ(readPayloads(0), expected);
}

TEST_F(LegacyIndex, FurtherSegmentContinuesRunningTotals) {
    AviFile avi = fileOf(pcmStream(1, 8000, 16), mChunks);
    Segment& segment = avi.addSegment();
    segment.index.copies = 1;
    segment.riffSize = 0x10000000;
    avi.addChunk(0, patternBytes(60, 4));
    openFile(avi.build());

    const std::vector<Sample> samples = readAll(0);
    ASSERT_EQ(samples.size(), 4u);
    EXPECT_EQ(samples[3].bytes, patternBytes(60, 4));
    EXPECT_EQ(samples[3].timeUs, (30 + 41 + 50) * 1000000 / 16000);
}

TEST_F(LegacyIndex, IndexInFrontOfTheHeadersIsIgnored) {
    LogCapture log;
    mAvi.segment().edit = [](Chunk& riff) { riff.arrange({"idx1", "hdrl", "movi"}); };
    openFile(mAvi.build());
    countTracks();

    EXPECT_THAT(log,
                Logged(ANDROID_LOG_WARN, "parseFirstRIFF(): we already have index, ignore idx1!"));
    EXPECT_EQ(log.count("samples added"), 0u);
}

TEST_F(LegacyIndex, SecondIndexIsSkipped) {
    LogCapture log;
    index().copies = 2;

    expectAllChunks();
    EXPECT_THAT(log, Logged(ANDROID_LOG_WARN, "parseFirstRIFF(): skip multiple idx1!"));
    EXPECT_EQ(log.count("samples added"), 1u);
}

}  // namespace
}  // namespace avitest
