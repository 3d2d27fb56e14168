// SPDX-License-Identifier: Apache-2.0
//
// idx1: how it is read from the file, and what becomes of one that is cut or cannot be read.

#include <algorithm>

#include "tests/behaviour/reading/ReadingFixture.h"

namespace avitest {
namespace {

constexpr size_t kEntrySize = 16;

class LegacyIndexReads : public ReadingTest {
  protected:
    AviFile mAvi = fileOf(mjpegStream(), {patternBytes(30), patternBytes(40)});

    void fillIndex(size_t entryCount) {
        mAvi.segment().index.edit = [entryCount](std::vector<Idx1Entry>& entries) {
            entries.resize(entryCount, entries.front());
        };
    }

    // The reads within the payload of the index of segment 0, in order.
    std::vector<FaultySource::Call> indexReads(const FaultySource& source) {
        const ChunkPlace place = mAvi.place("idx1.0");
        std::vector<FaultySource::Call> result;
        for (const FaultySource::Call& call : source.calls()) {
            const auto offset = static_cast<uint64_t>(call.offset);
            const bool inside =
                offset >= place.dataOffset && offset < place.dataOffset + place.dataSize;
            if (inside) result.push_back(call);
        }
        return result;
    }
};

TEST_F(LegacyIndexReads, EntriesAreFetchedInCallsOf64KiB) {
    struct Row {
        size_t entries;
        std::vector<size_t> batches;
    };
    const Row rows[] = {{1, {1}},       {256, {256}},      {257, {257}},
                        {4096, {4096}}, {4097, {4096, 1}}, {9000, {4096, 4096, 808}}};
    for (const Row& row : rows) {
        SCOPED_TRACE(row.entries);
        fillIndex(row.entries);
        MemorySource memory(mAvi.build());
        FaultySource source(memory);
        openSource(source);
        ASSERT_EQ(countTracks(), 1u);

        std::vector<size_t> sizes;
        uint64_t expectedOffset = mAvi.place("idx1.0").dataOffset;
        for (const FaultySource::Call& call : indexReads(source)) {
            EXPECT_EQ(static_cast<uint64_t>(call.offset), expectedOffset);
            expectedOffset += call.size;
            sizes.push_back(call.size / kEntrySize);
        }
        EXPECT_EQ(sizes, row.batches);
        EXPECT_EQ(readAll(0).size(), row.entries);
    }
}

// What lies in front of a place that cannot be read is used, in whole batches.
TEST_F(LegacyIndexReads, FetchThatFailsIsMadeAgainForABatch) {
    LogCapture log;
    fillIndex(600);
    MemorySource memory(mAvi.build());
    FaultySource source(memory);
    const auto unreadable =
        static_cast<off64_t>(mAvi.place("idx1.0").dataOffset + 511 * kEntrySize);
    source.inject(Fault::error(-EIO).onOffsets(unreadable, unreadable + 1));
    openSource(source);
    countTracks();

    std::vector<size_t> sizes;
    for (const FaultySource::Call& call : indexReads(source))
        sizes.push_back(call.size / kEntrySize);
    EXPECT_EQ(sizes, (std::vector<size_t>{600, 256, 344, 256}));
    EXPECT_THAT(log, Logged(ANDROID_LOG_ERROR, "parseIDX1(): error -3EC @line"));
}

TEST_F(LegacyIndexReads, BatchesAreAnnouncedAndCountedInTheLog) {
    LogCapture log;
    fillIndex(300);
    openFile(mAvi.build());
    ASSERT_EQ(countTracks(), 1u);

    const std::string start = std::to_string(mAvi.place("idx1.0").dataOffset);
    EXPECT_THAT(log,
                Logged(ANDROID_LOG_DEBUG, "parseIDX1(): numPerRead 256, numbers 300 @" + start));
    EXPECT_THAT(log, Logged(ANDROID_LOG_DEBUG, "parseIDX1(): end (300 samples added)..."));
}

TEST_F(LegacyIndexReads, BaseOfTheFirstBatchHoldsForTheSecond) {
    // The first entry of the second batch has an offset that would say "absolute".
    mAvi.segment().index.edit = [](std::vector<Idx1Entry>& entries) {
        entries.resize(256, entries.front());
        entries.push_back({"rec ", kListEntry, 0x7FFFFFFF, 0});
        entries.push_back(entries.front());
    };
    openFile(mAvi.build());

    const std::vector<Sample> samples = readAll(0);
    ASSERT_EQ(samples.size(), 257u);
    EXPECT_EQ(samples.back().bytes, patternBytes(30));
}

TEST_F(LegacyIndexReads, PartialLastEntryIsIgnored) {
    for (const size_t tail : {1u, 7u, 8u, 14u}) {
        SCOPED_TRACE(tail);
        LogCapture log;
        mAvi.segment().index.tail = Bytes(tail, 0x30);
        openFile(mAvi.build());

        EXPECT_EQ(readAll(0).size(), 2u);
        EXPECT_THAT(log, Logged(ANDROID_LOG_DEBUG, "numbers 2 @"));
    }
}

// The pad byte counts as part of the index.
TEST_F(LegacyIndexReads, PadByteMayCompleteAnEntry) {
    LogCapture log;
    mAvi.segment().index.tail = Bytes(15, 0x30);
    openFile(mAvi.build());
    countTracks();

    EXPECT_THAT(log, Logged(ANDROID_LOG_DEBUG, "numbers 3 @"));
}

TEST_F(LegacyIndexReads, IndexWithoutEntriesAddsNothing) {
    LogCapture log;
    mAvi.segment().index.edit = [](std::vector<Idx1Entry>& entries) { entries.clear(); };
    // The walk stops 8 bytes short of the segment's end.
    mAvi.segment().afterIndex.push_back(Chunk("JUNK", Bytes(8)));
    openFile(mAvi.build());
    countTracks();

    EXPECT_THAT(log, Logged(ANDROID_LOG_DEBUG, "parseIDX1(): end (0 samples added)..."));
}

TEST_F(LegacyIndexReads, IndexPastTheEndOfTheFileIsIgnored) {
    LogCapture log;
    Bytes file = mAvi.build();
    const ChunkPlace place = mAvi.place("idx1.0");
    file.resize(place.dataOffset + place.dataSize - 1);
    openFile(file);
    countTracks();

    EXPECT_THAT(log, Logged(ANDROID_LOG_WARN, "parseIDX1(): Chunked file with wrong idx1(end " +
                                                  std::to_string(file.size() + 1) + ", fileSize " +
                                                  std::to_string(file.size()) + "), ignore it!"));
    EXPECT_EQ(log.count("samples added"), 0u);
    EXPECT_EQ(log.count("parseIDX1(): error"), 0u);
}

TEST_F(LegacyIndexReads, ShortReadFailsTheFile) {
    for (const size_t batch : {0u, 1u}) {
        SCOPED_TRACE(batch);
        LogCapture log;
        fillIndex(300);
        MemorySource memory(mAvi.build());
        FaultySource source(memory);
        const auto begin =
            static_cast<off64_t>(mAvi.place("idx1.0").dataOffset + batch * 256 * kEntrySize);
        source.inject(Fault::shortRead(16).onOffsets(begin, begin + 16));
        openSource(source);

        EXPECT_EQ(countTracks(), 0u);
        EXPECT_THAT(log, Logged(ANDROID_LOG_ERROR, "parseIDX1(): error -3EC @line"));
        EXPECT_EQ(log.count("samples added"), 0u);
    }
}

TEST_F(LegacyIndexReads, ReadErrorFailsTheFile) {
    MemorySource memory(mAvi.build());
    FaultySource source(memory);
    const auto begin = static_cast<off64_t>(mAvi.place("idx1.0").dataOffset);
    source.inject(Fault::error(-EIO).onOffsets(begin, begin + 1));
    openSource(source);

    EXPECT_EQ(countTracks(), 0u);
}

TEST_F(LegacyIndexReads, ShortReadInAFurtherSegmentKeepsTheBatchesBefore) {
    mAvi.stream(0).header.length = 1000;
    Segment& segment = mAvi.addSegment();
    segment.riffSize = 0x10000000;
    segment.index.copies = 1;
    segment.index.edit = [](std::vector<Idx1Entry>& entries) {
        entries.resize(300, entries.front());
    };
    mAvi.addChunk(0, patternBytes(50));
    MemorySource memory(mAvi.build());
    FaultySource source(memory);
    const auto begin = static_cast<off64_t>(mAvi.place("idx1.1").dataOffset + 256 * kEntrySize);
    source.inject(Fault::shortRead(16).onOffsets(begin, begin + 16));
    openSource(source);

    EXPECT_EQ(countTracks(), 1u);
    EXPECT_EQ(readAll(0).size(), 2u + 256u);
}

}  // namespace
}  // namespace avitest
