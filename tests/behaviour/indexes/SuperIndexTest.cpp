// SPDX-License-Identifier: Apache-2.0
//
// The index of indexes in a stream list, and the standard indexes that it points at.

#include "tests/behaviour/indexes/IndexesFixture.h"

namespace avitest {
namespace {

using ::testing::Contains;
using ::testing::ElementsAre;

class SuperIndexes : public IndexesFixture {};

TEST_F(SuperIndexes, SamplesOfAllStandardIndexesComeInTheirOrder) {
    IndexedFile made({3, 2});
    made.layOut();
    openFile(made.bytes());
    EXPECT_EQ(made.chunks(), readPayloads(0));
    EXPECT_FALSE(scanned());
}

TEST_F(SuperIndexes, OrderIsThatOfTheEntriesNotOfTheFile) {
    IndexedFile made({1, 1, 1});
    made.layOut();
    std::swap(made.super.entries[0], made.super.entries[2]);
    openFile(made.bytes());
    const auto chunks = made.chunks();
    EXPECT_THAT(readPayloads(0), ElementsAre(chunks[2], chunks[1], chunks[0]));
}

TEST_F(SuperIndexes, MakeAnIdx1Needless) {
    IndexedFile made({2, 2});
    made.avi.segment().index.copies = 1;
    made.avi.segment().index.edit = [](std::vector<Idx1Entry>& entries) { entries.resize(1); };
    made.layOut();
    openFile(made.bytes());
    EXPECT_EQ(made.chunks(), readPayloads(0));
    EXPECT_THAT(
        log(), Contains(warning("parseFirstRIFF(): we already have index, ignore idx1!")).Times(1));
}

TEST_F(SuperIndexes, OneThatIsMarkedNotInUseBehindTheLastEntryIsNotRead) {
    IndexedFile made({2, 2});
    made.layOut();
    made.super.header.entriesInUse = 1;
    openFile(made.bytes());
    const auto chunks = made.chunks();
    EXPECT_THAT(readPayloads(0), ElementsAre(chunks[0], chunks[1]));
}

TEST_F(SuperIndexes, WithoutEntriesMakeAnEmptyTableThatCounts) {
    IndexedFile made({3});
    made.avi.segment().index.copies = 1;
    made.layOut();
    made.super.header.entriesInUse = 0;
    openFile(made.bytes());
    EXPECT_EQ(0u, countTracks());
    EXPECT_EQ(1u, mLog.count("we already have index, ignore idx1!"));
    EXPECT_EQ(1u, mLog.count("The track doesn't have any samples!"));
    EXPECT_FALSE(scanned());
}

TEST_F(SuperIndexes, ReservedWordsAreAddedToTheOffsets) {
    IndexedFile made({2, 2});
    made.layOut();
    made.super.header.baseOffset = 16;
    for (SuperIndex::Entry& entry : made.super.entries)
        entry.offset -= 16;
    openFile(made.bytes());
    EXPECT_EQ(made.chunks(), readPayloads(0));
}

TEST_F(SuperIndexes, PositionsAreFormedModulo64Bits) {
    IndexedFile made({2, 2});
    made.layOut();
    made.super.header.baseOffset = 0xFFFFFFFFFFFFFF00;
    for (SuperIndex::Entry& entry : made.super.entries)
        entry.offset += 0x100;
    openFile(made.bytes());
    EXPECT_EQ(made.chunks(), readPayloads(0));
}

TEST_F(SuperIndexes, EntrySizeMayCountTheChunkHeader) {
    IndexedFile made({2, 2});
    made.layOut();
    for (SuperIndex::Entry& entry : made.super.entries)
        entry.size += 8;
    openFile(made.bytes());
    EXPECT_EQ(made.chunks(), readPayloads(0));
}

TEST_F(SuperIndexes, EntryWidthIdsAndReservedWordsOfTheIndexesAreNotLookedAt) {
    IndexedFile made({2, 2});
    made.layOut();
    made.super.header.longsPerEntry = 77;
    made.super.header.subType = 200;
    made.super.header.chunkId = "99xx";
    made.super.header.reserved3 = 0xFFFFFFFF;
    made.super.entries[0].duration = 0xFFFFFFFF;
    made.parts[1].header.longsPerEntry = 0;
    made.parts[1].header.chunkId = "55wb";
    made.parts[1].header.reserved3 = 9;
    openFile(made.bytes());
    EXPECT_EQ(made.chunks(), readPayloads(0));
}

TEST_F(SuperIndexes, WhatTheyPointAtNeedsNoChunkIdOfItsOwn) {
    IndexedFile made({3});
    made.layOut();
    Bytes file = made.bytes();
    std::fill_n(file.begin() + static_cast<ptrdiff_t>(made.partPlace(0).headerOffset), 4, 'Z');
    openFile(file);
    EXPECT_EQ(made.chunks(), readPayloads(0));
}

TEST_F(SuperIndexes, EachStreamHasItsOwn) {
    AviFile avi = twoStreamFile();
    avi.segment().index.copies = 0;
    avi.stream(0).openDml = OpenDml::kSuper;
    avi.stream(1).openDml = OpenDml::kSuper;
    openFile(avi.build());
    ASSERT_EQ(2u, countTracks());
    EXPECT_EQ(avi.payloads(0), readPayloads(0));
    EXPECT_EQ(avi.payloads(1), readPayloads(1));
    EXPECT_FALSE(scanned());
}

TEST_F(SuperIndexes, ReachTheChunksOfFurtherRiffs) {
    AviFile avi = twoStreamFile();
    avi.segment().index.copies = 0;
    avi.stream(0).openDml = OpenDml::kSuper;
    avi.stream(1).openDml = OpenDml::kSuper;
    for (uint32_t segment = 1; segment <= 3; ++segment) {
        avi.addSegment();
        avi.addChunk(0, patternBytes(33, 10 * segment));
        avi.addChunk(1, patternBytes(64, 20 * segment));
        avi.addChunk(0, patternBytes(37, 30 * segment), kNoFlags);
    }
    openFile(avi.build());
    EXPECT_EQ(avi.payloads(0), readPayloads(0));
    EXPECT_EQ(avi.payloads(1), readPayloads(1));
    EXPECT_THAT(log(), Contains(debug("parseFirstRIFF(): All frames have been indexed. No need to "
                                      "parse other riff(s).")));
}

TEST_F(SuperIndexes, SecondOneOfAStreamAddsToTheTable) {
    AviFile avi = unindexedFile(2);
    avi.stream(0).openDml = OpenDml::kSuper;
    avi.stream(0).edit = [](Chunk& strl) { strl.add(strl.child("indx")); };
    openFile(avi.build());
    const auto chunks = avi.payloads(0);
    EXPECT_THAT(readPayloads(0), ElementsAre(chunks[0], chunks[1], chunks[0], chunks[1]));
}

// Entries are read one at a time: their header and theirs alone.
TEST_F(SuperIndexes, EntriesAreReadOneByOne) {
    IndexedFile made({1, 1, 1});
    made.layOut();
    const auto& source = openCounted(made.bytes());
    countTracks();
    const uint64_t entries = made.superPlace().dataOffset + 24;
    std::vector<std::pair<uint64_t, size_t>> reads;
    for (const auto& call : source.calls()) {
        const auto at = static_cast<uint64_t>(call.offset);
        if (at >= entries && at < entries + 48) reads.emplace_back(at - entries, call.size);
    }
    EXPECT_THAT(reads,
                ElementsAre(std::pair<uint64_t, size_t>(0, 16), std::pair<uint64_t, size_t>(16, 16),
                            std::pair<uint64_t, size_t>(32, 16)));
}

class IndexBehindTheEnd : public IndexesFixture {
  protected:
    // Opens a file whose second standard index is said to be at `offset`.
    void openWithSecondAt(uint64_t offset) {
        mMade.layOut();
        mMade.super.entries[1].offset = offset;
        openFile(mMade.bytes());
    }

    IndexedFile mMade{{2, 2}};
};

TEST_F(IndexBehindTheEnd, IsSkippedAndTheFirstOneKept) {
    openWithSecondAt(0x7FFFFFFF);
    const auto chunks = mMade.chunks();
    EXPECT_THAT(readPayloads(0), ElementsAre(chunks[0], chunks[1]));
    EXPECT_FALSE(scanned());
}

TEST_F(IndexBehindTheEnd, IsLoggedWithItsDataPositionAndTheFileSize) {
    openWithSecondAt(0x7FFFFFFF);
    countTracks();
    const auto size = number(mMade.bytes().size());
    EXPECT_THAT(log(), Contains(debug(format("parseChunkIndex() to the file end~! pos %llu, "
                                             "fileSize %llu",
                                             number(0x7FFFFFFF + 8ULL), size))));
}

TEST_F(IndexBehindTheEnd, MayLieAnywhereBeyondTheFile) {
    for (const uint64_t offset : {uint64_t{1} << 32, uint64_t{1} << 62, INT64_MAX - uint64_t{7},
                                  uint64_t{1} << 63, UINT64_MAX - 8}) {
        SCOPED_TRACE(offset);
        mLog.clear();
        openWithSecondAt(offset);
        EXPECT_EQ(2u, readPayloads(0).size());
        EXPECT_EQ(1u, mLog.count("parseChunkIndex() to the file end~! pos "));
        EXPECT_EQ(0u, mLog.count("error -"));
    }
}

TEST_F(IndexBehindTheEnd, IsOneWhoseHeaderDoesNotFit) {
    mMade.layOut();
    const uint64_t size = mMade.bytes().size();
    openWithSecondAt(size - 8 - 23);
    EXPECT_EQ(2u, readPayloads(0).size());
    EXPECT_EQ(1u, mLog.count("parseChunkIndex() to the file end~!"));
}

TEST_F(IndexBehindTheEnd, IsNotOneWhoseHeaderJustFits) {
    mMade.avi.trailing = Bytes(24);
    mMade.avi.trailing[3] = 1;  // an index of chunks, without entries
    mMade.layOut();
    const uint64_t size = mMade.bytes().size();
    mMade.super.entries[1] = {size - 24 - 8, 24, 0};
    openFile(mMade.bytes());
    EXPECT_EQ(2u, readPayloads(0).size());
    EXPECT_EQ(0u, mLog.count("to the file end~!"));
    EXPECT_EQ(0u, mLog.count("parseChunkIndex(): error"));
}

TEST_F(IndexBehindTheEnd, DoesNotEndTheSuperIndex) {
    IndexedFile made({1, 1, 1});
    made.layOut();
    made.super.entries[1].offset = 1U << 30;
    openFile(made.bytes());
    const auto chunks = made.chunks();
    EXPECT_THAT(readPayloads(0), ElementsAre(chunks[0], chunks[2]));
}

}  // namespace
}  // namespace avitest
