// SPDX-License-Identifier: Apache-2.0
//
// Where a scan ends: cut chunks and lists, unreadable headers, sizes that lie; and the record lists
// that group chunks.

#include <cerrno>

#include "tests/behaviour/indexes/IndexesFixture.h"

namespace avitest {
namespace {

using android::service::Fault;
using android::service::FaultySource;
using ::testing::Contains;
using ::testing::ElementsAre;

class MoviScanEnd : public IndexesFixture {
  protected:
    // Opens the file cut after `size` bytes.
    void openCut(const Bytes& file, uint64_t size) {
        openFile(Bytes(file.begin(), file.begin() + static_cast<ptrdiff_t>(size)));
    }

    // Opens the file, of which only `whole` chunks are samples and what is behind them is not.
    void expectIncompleteBehind(size_t whole, Bytes file) {
        openFile(std::move(file));
        EXPECT_EQ(whole, readPayloads(0).size());
        EXPECT_EQ(1u, mLog.count("skip last incomplete chunk/list at "));
    }

    // Opens the file through a source that fails where the header of a chunk lies, and counts the
    // samples that are found.
    void expectSamples(size_t count, AviFile& avi, size_t unreadable, const Fault& fault) {
        mLog.clear();
        FaultySource& source = openCounted(avi.build());
        const auto header = static_cast<off64_t>(avi.chunks(0)[unreadable].place.headerOffset);
        source.inject(fault.onOffsets(header, header + 12));
        EXPECT_EQ(1u, countTracks());
        EXPECT_EQ(1u, mLog.count(sampleCountLine(count)));
    }
};

std::string incomplete(uint64_t from, uint64_t to) {
    return format("parseMOVIMore(): skip last incomplete chunk/list at %llu-%llu", number(from),
                  number(to));
}

TEST_F(MoviScanEnd, CutChunkIsLeftOut) {
    AviFile avi = unindexedFile(3);
    const Bytes file = avi.build();
    const ChunkPlace last = avi.chunks(0)[2].place;
    for (const uint64_t kept : {last.dataSize - 1, uint64_t{4}}) {
        SCOPED_TRACE(kept);
        mLog.clear();
        openCut(file, last.dataOffset + kept);
        EXPECT_EQ(2u, readPayloads(0).size());
        EXPECT_THAT(log(),
                    Contains(Text(incomplete(last.headerOffset, last.dataOffset + last.dataSize))));
    }
}

TEST_F(MoviScanEnd, ChunkThatJustFitsIsTaken) {
    AviFile avi = unindexedFile(3);
    openFile(avi.build());
    EXPECT_EQ(3u, readPayloads(0).size());
    EXPECT_EQ(0u, mLog.count("incomplete"));
}

TEST_F(MoviScanEnd, MissingPadByteMakesTheLastChunkIncomplete) {
    AviFile avi = unindexedFile(2);
    avi.addChunk(0, patternBytes(31, 4));
    Bytes file = avi.build();
    file.pop_back();
    expectIncompleteBehind(2, file);
}

TEST_F(MoviScanEnd, CutHeaderIsUnreadable) {
    AviFile avi = unindexedFile(3);
    const Bytes file = avi.build();
    const uint64_t header = avi.chunks(0)[2].place.headerOffset;
    for (const uint64_t kept : {1, 7, 8, 9, 11}) {
        SCOPED_TRACE(kept);
        mLog.clear();
        openCut(file, header + kept);
        EXPECT_EQ(2u, readPayloads(0).size());
        EXPECT_THAT(log(), Contains(Text(format("parseMOVIMore(): Failed to read header at %llu, "
                                                "stop parsing",
                                                number(header)))));
    }
}

// The type of a list is read with every header, whatever the chunk is.
TEST_F(MoviScanEnd, ChunkOfLessThan4BytesAtTheFilesEndIsUnreadable) {
    AviFile avi = unindexedFile(2);
    avi.addChunk(0, patternBytes(2, 4));
    openFile(avi.build());
    EXPECT_EQ(2u, readPayloads(0).size());
    EXPECT_EQ(1u, mLog.count("Failed to read header at "));
}

TEST_F(MoviScanEnd, EightLastBytesWithASizeOf0EndTheScanQuietly) {
    AviFile avi = unindexedFile(2);
    avi.addChunk(0, {});
    openFile(avi.build());
    EXPECT_EQ(2u, readPayloads(0).size());
    EXPECT_EQ(1u, mLog.count(sampleCountLine(2)));
    EXPECT_EQ(0u, mLog.count("Failed to read header"));
    EXPECT_EQ(0u, mLog.count("incomplete"));
}

TEST_F(MoviScanEnd, ReadErrorKeepsWhatWasFound) {
    AviFile avi = unindexedFile(4);
    expectSamples(2, avi, 2, Fault::error(-EIO));
    const uint64_t header = avi.chunks(0)[2].place.headerOffset;
    EXPECT_EQ(1u, mLog.count(format("Failed to read header at %llu, stop", number(header))));
}

TEST_F(MoviScanEnd, ChunkLongerThanTheListIsLeftOut) {
    AviFile avi = unindexedFile(2);
    MoviChunk& last = avi.addChunk(0, patternBytes(30, 3));
    last.chunk.declare(34);
    avi.segment().afterMovi = {Chunk("JUNK", Bytes(100))};
    expectIncompleteBehind(2, avi.build());
}

TEST_F(MoviScanEnd, LargestSizesAreIncomplete) {
    for (const uint32_t size : {0xFFFFFFFFU, 0xFFFFFFFEU, 0x80000000U, 0x7FFFFFFFU}) {
        SCOPED_TRACE(size);
        mLog.clear();
        AviFile avi = unindexedFile(2);
        avi.addChunk(0, patternBytes(30, 3)).chunk.declare(size);
        avi.addChunk(0, patternBytes(30, 4));
        expectIncompleteBehind(2, avi.build());
    }
}

// The end is logged in 64 bits, made even, although the size is the largest.
TEST_F(MoviScanEnd, EndOfAnIncompleteChunkDoesNotWrap) {
    for (const uint32_t size : {0xFFFFFFFFU, 0xFFFFFFFEU}) {
        for (const ChunkId id : {ChunkId("00dc"), ChunkId("LIST")}) {
            SCOPED_TRACE(format("%s 0x%08x", id.text().c_str(), size));
            mLog.clear();
            AviFile avi = unindexedFile(2);
            avi.addLooseChunk(Chunk(id, bytesOf("rec ")).declare(size).marked("cut"));
            openFile(avi.build());
            EXPECT_EQ(2u, readPayloads(0).size());
            const uint64_t from = avi.place("cut").headerOffset;
            const uint64_t padded = uint64_t{size} + size % 2;
            EXPECT_THAT(log(), Contains(Text(incomplete(from, from + 8 + padded))));
        }
    }
}

TEST_F(MoviScanEnd, CutRecordListIsLeftOutWhole) {
    AviFile avi = unindexedFile(2);
    avi.beginGroup();
    avi.addChunk(0, patternBytes(30, 3));
    avi.addChunk(0, patternBytes(32, 4));
    Bytes file = avi.build();
    file.pop_back();
    expectIncompleteBehind(2, file);
}

TEST_F(MoviScanEnd, OddListSizeIsMadeEven) {
    AviFile avi = unindexedFile(2);
    avi.addChunk(0, patternBytes(31, 3));  // its pad byte lies behind the list's size
    avi.segment().edit = [](Chunk& riff) {
        Chunk& movi = riff.child("movi");
        uint32_t size = 4;
        for (const Chunk& chunk : movi.children)
            size += 8 + static_cast<uint32_t>(chunk.payload.size());
        movi.declare(size);
    };
    openFile(avi.build());
    EXPECT_EQ(avi.payloads(0), readPayloads(0));
}

TEST_F(MoviScanEnd, ChunksBehindTheListAreNotSamples) {
    AviFile avi = unindexedFile(2);
    avi.segment().afterMovi = {Chunk("00dc", patternBytes(30, 3))};
    openFile(avi.build());
    EXPECT_EQ(2u, readPayloads(0).size());
}

// A recorder that lost power has left the list's size at 0.
TEST_F(MoviScanEnd, ListOfSize0GoesOnToTheEndOfTheFile) {
    AviFile avi = unindexedFile(3);
    avi.segment().riffSize = 0x10000000;
    avi.segment().edit = [](Chunk& riff) { riff.child("movi").declare(0); };
    openFile(avi.build());
    EXPECT_EQ(avi.payloads(0), readPayloads(0));
}

TEST_F(MoviScanEnd, EveryCutOfAFileKeepsTheWholeChunks) {
    AviFile avi = unindexedFile(4);
    avi.beginGroup();
    avi.addChunk(0, patternBytes(12, 9));
    const Bytes file = avi.build();
    const auto chunks = avi.chunks(0);
    for (uint64_t size = chunks[0].place.headerOffset; size <= file.size(); ++size) {
        SCOPED_TRACE(size);
        size_t whole = 0;
        for (const MoviChunk& chunk : chunks)
            whole += chunk.place.dataOffset + chunk.place.dataSize <= size ? 1 : 0;
        mLog.clear();
        openCut(file, size);
        countTracks();
        EXPECT_EQ(1u, mLog.count(sampleCountLine(whole)));
    }
}

class RecordLists : public MoviScanEnd {
  protected:
    // A chunk, a list of two chunks and a chunk.
    static AviFile recordFile() {
        AviFile avi = unindexedFile(1);
        avi.beginGroup();
        avi.addChunk(0, patternBytes(20, 1));
        avi.addChunk(0, patternBytes(22, 2));
        avi.endGroup();
        avi.addChunk(0, patternBytes(24, 3));
        return avi;
    }
};

TEST_F(RecordLists, ChunksOfAllStreamsAreFound) {
    AviFile avi = twoStreamFile();
    avi.segment().index.copies = 0;
    for (uint32_t i = 0; i < 3; ++i) {
        avi.beginGroup();
        avi.addChunk(0, patternBytes(30 + i, i));
        avi.addChunk(1, patternBytes(20, 5 + i));
    }
    avi.endGroup();
    avi.addChunk(0, patternBytes(33, 8));
    openFile(avi.build());
    EXPECT_EQ(avi.payloads(0), readPayloads(0));
    EXPECT_EQ(avi.payloads(1), readPayloads(1));
    EXPECT_EQ(0u, mLog.count("unknown list"));
}

TEST_F(RecordLists, EmptyOneIsPassed) {
    AviFile avi = unindexedFile(1);
    avi.addLooseChunk(Chunk::list("rec "));
    avi.addChunk(0, patternBytes(33, 8));
    openFile(avi.build());
    EXPECT_EQ(avi.payloads(0), readPayloads(0));
}

TEST_F(RecordLists, ChunkThatOverrunsItsListEndsTheList) {
    AviFile avi = unindexedFile(1);
    avi.beginGroup();
    avi.addChunk(0, patternBytes(20, 1));
    avi.addChunk(0, patternBytes(22, 2)).chunk.declare(24);
    avi.endGroup();
    avi.addChunk(0, patternBytes(24, 3));
    openFile(avi.build());
    const auto chunks = avi.payloads(0);
    EXPECT_THAT(readPayloads(0), ElementsAre(chunks[0], chunks[1], chunks[3]));
    EXPECT_EQ(0u, mLog.count("incomplete"));
}

TEST_F(RecordLists, ListThatOverrunsMoviEndsTheScan) {
    AviFile avi = unindexedFile(1);
    avi.addLooseChunk(Chunk::list("rec ", {Chunk("00dc", patternBytes(20, 1))}).declare(36));
    expectIncompleteBehind(1, avi.build());
}

TEST_F(RecordLists, ListsWithinAreUnknownChunks) {
    AviFile avi = unindexedFile(1);
    const Chunk inner = Chunk::list("rec ", {Chunk("00dc", patternBytes(20, 1))});
    avi.addLooseChunk(Chunk::list("rec ", {inner, Chunk("00dc", patternBytes(26, 2))}));
    openFile(avi.build());
    EXPECT_THAT(readPayloads(0), ElementsAre(avi.chunks(0)[0].data(), patternBytes(26, 2)));
}

TEST_F(RecordLists, UnreadableHeaderEndsTheListOnly) {
    AviFile avi = recordFile();
    for (const size_t bytes : {0, 1, 7, 9, 11}) {
        SCOPED_TRACE(bytes);
        expectSamples(3, avi, 2, Fault::shortRead(bytes));
        EXPECT_EQ(0u, mLog.count("Failed to read header"));
    }
}

// Eight bytes are a whole header; only a list has a type. What an empty chunk at the very end would
// hold lies behind the file.
TEST_F(RecordLists, EmptyChunkInTheLast8BytesOfTheFileIsTakenAndLiesBehindIt) {
    AviFile avi = unindexedFile(1);
    avi.beginGroup();
    avi.addChunk(0, patternBytes(20, 1));
    avi.addChunk(0, {});
    openFile(avi.build());
    countTracks();
    EXPECT_EQ(1u, mLog.count(sampleCountLine(2)));
    EXPECT_EQ(1u, mLog.count("exceeds the fileSize"));
}

TEST_F(RecordLists, HeaderOfWhichOnly8BytesComeIsTaken) {
    AviFile avi = recordFile();
    expectSamples(4, avi, 2, Fault::shortRead(8));
}

}  // namespace
}  // namespace avitest
