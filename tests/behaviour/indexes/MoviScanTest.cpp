// SPDX-License-Identifier: Apache-2.0
//
// Files without an index: samples are found by walking the chunks of the movi list.

#include "tests/behaviour/indexes/IndexesFixture.h"

namespace avitest {
namespace {

using ::testing::Contains;
using ::testing::ElementsAre;

class MoviScan : public IndexesFixture {};

// Video (0) and audio (1) without an index.
AviFile unindexedTwoStreamFile() {
    AviFile avi = twoStreamFile();
    avi.segment().index.copies = 0;
    return avi;
}

TEST_F(MoviScan, SuppliesAllTracks) {
    AviFile avi = unindexedTwoStreamFile();
    openFile(avi.build());
    ASSERT_EQ(2u, countTracks());
    EXPECT_EQ(avi.payloads(0), readPayloads(0));
    EXPECT_EQ(avi.payloads(1), readPayloads(1));
}

TEST_F(MoviScan, IsAnnouncedByTwoWarnings) {
    openFile(unindexedTwoStreamFile().build());
    countTracks();
    EXPECT_THAT(log(), Contains(warning("parseFirstRIFF(): The riff doesn't have index!")));
    EXPECT_THAT(log(), Contains(warning("parseFirstRIFF(): Need to parse 'movi' and may take a "
                                        "long time.")));
}

TEST_F(MoviScan, MarksEverySampleAsKeyFrame) {
    openFile(unindexedTwoStreamFile().build());
    EXPECT_THAT(syncFlags(0), ElementsAre(true, true, true));
    EXPECT_EQ(1u, mLog.count("finished samples 3 syncSamples 3"));
    EXPECT_EQ(1u, mLog.count("finished samples 2 syncSamples 2"));
}

TEST_F(MoviScan, RangeIsPrintedWithTheExtractLogOnly) {
    AviFile avi = unindexedFile();
    const Bytes file = avi.build();
    const ChunkPlace movi = avi.place("movi0");
    const std::string text =
        format("parseMOVIMore(): setup index from %llX to %llX VS fileSize %llX",
               number(movi.headerOffset + 12), number(movi.dataOffset + movi.dataSize),
               number(file.size()));
    openFile(file);
    countTracks();
    EXPECT_EQ(0u, mLog.count("setup index"));
    setProperty(kVerboseLogProperty, "1");
    openFile(file);
    countTracks();
    EXPECT_EQ(0u, mLog.count("setup index"));
    setProperty(kExtractLogProperty, "1");
    openFile(file);
    countTracks();
    EXPECT_THAT(log(), Contains(verbose(text)));
}

TEST_F(MoviScan, TakesUncompressedFramesToo) {
    AviFile avi = unindexedFile(0);
    avi.addChunk(0, patternBytes(20));
    avi.stream(0).chunkType = "db";
    avi.addChunk(0, patternBytes(22, 1));
    openFile(avi.build());
    EXPECT_EQ(avi.payloads(0), readPayloads(0));
}

// The number decides, not the letters: writers confuse them.
TEST_F(MoviScan, LettersDoNotHaveToFitTheStream) {
    AviFile avi = unindexedTwoStreamFile();
    avi.stream(0).chunkType = "wb";
    avi.addChunk(0, patternBytes(27, 8));
    openFile(avi.build());
    EXPECT_EQ(avi.payloads(0), readPayloads(0));
}

TEST_F(MoviScan, ChunksAreOnEvenPositions) {
    AviFile avi = unindexedFile(0);
    for (uint32_t size : {1, 3, 2, 255})
        avi.addChunk(0, patternBytes(size, size));
    openFile(avi.build());
    EXPECT_EQ(avi.payloads(0), readPayloads(0));
}

TEST_F(MoviScan, EmptyVideoChunkIsADroppedFrame) {
    AviFile avi = unindexedFile(2);
    avi.addChunk(0, {});
    avi.addChunk(0, patternBytes(8, 5));
    openFile(avi.build());
    const auto samples = readAll(0);
    ASSERT_EQ(3u, samples.size());
    EXPECT_EQ(120000, samples[2].timeUs);
    EXPECT_EQ(1u, mLog.count(sampleCountLine(4)));
}

TEST_F(MoviScan, ChunkOfAStreamThatDoesNotExistIsDropped) {
    AviFile avi = unindexedFile(1);
    for (const char* id : {"01dc", "99wb", "07db", "AAdc", "zzwb", "  dc", "0:dc"})
        avi.addLooseChunk(Chunk(ChunkId::of(id), patternBytes(10)));
    avi.addChunk(0, patternBytes(21, 3));
    openFile(avi.build());
    EXPECT_EQ(avi.payloads(0), readPayloads(0));
    EXPECT_EQ(0u, mLog.count("Skip chunk at pos"));
}

TEST_F(MoviScan, PaletteChangesAreNotSupported) {
    AviFile avi = unindexedFile(1);
    avi.addLooseChunk(Chunk("00pc", patternBytes(10)));
    avi.addChunk(0, patternBytes(21, 3));
    openFile(avi.build());
    EXPECT_EQ(avi.payloads(0), readPayloads(0));
    EXPECT_THAT(log(), Contains(Text("parseDataChunk(): NOT support chunk " + idText("00pc"))));
    EXPECT_EQ(0u, mLog.count("Skip chunk at pos"));
}

TEST_F(MoviScan, OtherChunksAreSkipped) {
    AviFile avi = unindexedFile(1);
    for (const char* id : {"JUNK", "00tx", "00iv", "ix00", "00DC", "dc00"})
        avi.addLooseChunk(Chunk(ChunkId::of(id), patternBytes(11)));
    avi.addChunk(0, patternBytes(21, 3));
    openFile(avi.build());
    EXPECT_EQ(avi.payloads(0), readPayloads(0));
}

TEST_F(MoviScan, UnknownListsAreSkippedWhole) {
    AviFile avi = unindexedFile(1);
    avi.addLooseChunk(Chunk::list("abcd", {Chunk("00dc", patternBytes(12))}));
    avi.addChunk(0, patternBytes(21, 3));
    openFile(avi.build());
    EXPECT_EQ(avi.payloads(0), readPayloads(0));
    EXPECT_THAT(log(), Contains(Text("parseMOVIMore(): unknown list " + idText("abcd"))));
}

TEST_F(MoviScan, TypesOfListsArePrintedWithTheExtractLogOnly) {
    AviFile avi = unindexedFile(1);
    avi.addLooseChunk(Chunk::list("abcd"));
    avi.beginGroup();
    avi.addChunk(0, patternBytes(21, 3));
    const Bytes file = avi.build();
    openFile(file);
    countTracks();
    EXPECT_EQ(0u, mLog.count("parseMOVIMore(): type"));
    setProperty(kExtractLogProperty, "1");
    openFile(file);
    countTracks();
    EXPECT_THAT(log(), Contains(verbose("parseMOVIMore(): type " + idText("abcd"))));
    EXPECT_THAT(log(), Contains(verbose("parseMOVIMore(): type " + idText("rec "))));
}

TEST_F(MoviScan, OnlyHeadersAreRead) {
    AviFile avi = unindexedFile(5);
    const auto& source = openCounted(avi.build());
    countTracks();
    const ChunkPlace movi = avi.place("movi0");
    const uint64_t first = movi.dataOffset + 4;
    std::vector<std::pair<uint64_t, size_t>> reads;
    for (const auto& call : source.calls()) {
        const auto at = static_cast<uint64_t>(call.offset);
        if (at >= first) reads.emplace_back(at, call.size);
    }
    std::vector<std::pair<uint64_t, size_t>> headers;
    for (const MoviChunk& chunk : avi.chunks(0))
        headers.emplace_back(chunk.place.headerOffset, 12);
    EXPECT_EQ(headers, reads);
}

TEST_F(MoviScan, EmptyListGivesNothing) {
    AviFile avi = unindexedFile(0);
    openFile(avi.build());
    EXPECT_EQ(0u, countTracks());
    EXPECT_TRUE(scanned());
    EXPECT_EQ(1u, mLog.count("The track doesn't have any samples!"));
}

TEST_F(MoviScan, TracksWithoutChunksAreBadOnes) {
    AviFile avi = unindexedFile(2);
    avi.addStream(pcmStream(1, 8000, 16));
    openFile(avi.build());
    ASSERT_EQ(2u, countTracks());
    EXPECT_EQ("audio/x-unknown", mimeOf(1));
    EXPECT_EQ(avi.payloads(0), readPayloads(0));
}

TEST_F(MoviScan, IsNotDoneWhenIdx1WasReadInVain) {
    AviFile avi = unindexedFile(2);
    avi.segment().index.copies = 1;
    avi.segment().index.edit = [](std::vector<Idx1Entry>& entries) { entries.clear(); };
    avi.segment().afterIndex = {Chunk("JUNK", Bytes(8))};
    openFile(avi.build());
    EXPECT_EQ(0u, countTracks());
    EXPECT_FALSE(scanned());
}

TEST_F(MoviScan, LastMoviListIsTheOneThatIsScanned) {
    AviFile avi = unindexedFile(2);
    avi.segment().edit = [](Chunk& riff) {
        riff.add(Chunk::list("movi", {Chunk("00dc", patternBytes(50, 9))}));
        riff.add(Chunk("JUNK", Bytes(8)));
    };
    openFile(avi.build());
    EXPECT_THAT(readPayloads(0), ElementsAre(patternBytes(50, 9)));
}

}  // namespace
}  // namespace avitest
