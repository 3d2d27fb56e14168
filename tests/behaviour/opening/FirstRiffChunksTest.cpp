// SPDX-License-Identifier: Apache-2.0
//
// The chunks and lists at the top level of the first RIFF.

#include "tests/behaviour/opening/OpeningFixture.h"

namespace avitest {
namespace {

using android::service::Fault;
using ::testing::Contains;
using ::testing::Not;

class FirstRiffChunks : public LoggedFixture {};

TEST_F(FirstRiffChunks, RiffHeaderIsLogged) {
    setProperty(kExtractLogProperty, "1");
    const Bytes file = videoFile().build();
    openFile(file);
    countTracks();
    EXPECT_THAT(log(), Contains(verbose(format("parseFirstRIFF(): ID 46464952, size %zX, "
                                               "type 20495641",
                                               file.size() - 8))));
}

TEST_F(FirstRiffChunks, EachChunkIsTracedWithItsPaddedSize) {
    AviFile avi = videoFile();
    avi.segment().beforeMovi = {Chunk("JUNK", Bytes(5)).marked("junk")};
    setProperty(kVerboseLogProperty, "1");
    openFile(avi.build());
    countTracks();
    EXPECT_THAT(
        log(),
        Contains(verbose(format("parseFirstRIFF(): ID 0x4b4e554a:JUNK at pos 0x%llX, list.size: "
                                "0x5, 0x6",
                                static_cast<unsigned long long>(avi.place("junk").headerOffset)))));
}

TEST_F(FirstRiffChunks, JunkIsSkippedEverywhere) {
    AviFile avi = videoFile();
    Segment& segment = avi.segment();
    for (std::vector<Chunk>* place :
         {&segment.beforeHeaders, &segment.beforeMovi, &segment.afterMovi, &segment.afterIndex}) {
        *place = {Chunk("JUNK", Bytes(7)), Chunk("JUNK"), Chunk("JUNK", Bytes(16))};
    }
    openVerbosely(avi.build());
    EXPECT_EQ(avi.payloads(0), readPayloads(0));
    EXPECT_EQ(0u, mLog.count("unknown chunk"));
}

// idx2, idx3 and idx4 are indexes of further RIFFs.
TEST_F(FirstRiffChunks, NumberedIndexIsAnUnknownChunk) {
    size_t unknown = 0;
    for (const ChunkId id : {ChunkId("idx2"), ChunkId("idx3"), ChunkId("idx4")}) {
        AviFile avi = videoFile();
        avi.segment().beforeMovi = {Chunk(id, Bytes(16))};
        openVerbosely(avi.build());
        EXPECT_EQ(avi.payloads(0), readPayloads(0));
        EXPECT_EQ(++unknown, mLog.count("unknown chunk"));
    }
}

TEST_F(FirstRiffChunks, ChunkBehindAnOddOneStartsAfterThePadByte) {
    AviFile avi = videoFile();
    avi.segment().beforeMovi = {Chunk("STRY", Bytes(3))};
    openFile(avi.build());
    EXPECT_EQ(avi.payloads(0), readPayloads(0));
}

TEST_F(FirstRiffChunks, SizeAndPadAreAddedIn32Bits) {
    AviFile avi = videoFile();
    avi.segment().beforeMovi = {Chunk("STRY").declare(0xFFFFFFFF)};
    openVerbosely(avi.build());
    EXPECT_EQ(avi.payloads(0), readPayloads(0));
    EXPECT_EQ(1u, mLog.count("list.size: 0xFFFFFFFF, 0x0"));
}

TEST_F(FirstRiffChunks, ChunkBeyondTheEndOfTheFileEndsTheWalk) {
    AviFile avi = videoFile();
    avi.segment().afterIndex = {Chunk("STRY", Bytes(4)).declare(0xFFFFFFFE)};
    openFile(avi.build());
    EXPECT_EQ(avi.payloads(0), readPayloads(0));
}

TEST_F(FirstRiffChunks, UnknownListIsSkippedWithAWarning) {
    AviFile avi = videoFile();
    avi.segment().beforeMovi = {Chunk::list("odml", {Chunk("dmlh", Bytes(248))})};
    openFile(avi.build());
    EXPECT_EQ(1u, countTracks());
    EXPECT_THAT(log(), Contains(warning("parseFirstRIFF(): unknown list " + idText("odml"))));
}

TEST_F(FirstRiffChunks, RiffWithinTheRiffIsAnUnknownChunk) {
    AviFile avi = videoFile();
    avi.segment().beforeMovi = {Chunk::list("AVI ", {}, "RIFF")};
    openVerbosely(avi.build());
    EXPECT_EQ(1u, countTracks());
    EXPECT_THAT(log(), Contains(verbose("parseFirstRIFF(): unknown chunk " + idText("RIFF"))));
}

TEST_F(FirstRiffChunks, ListTypesOutsideAListAreUnknownChunks) {
    AviFile avi = videoFile();
    avi.segment().beforeMovi = {Chunk("movi", Bytes(4)), Chunk("hdrl", Bytes(4))};
    openVerbosely(avi.build());
    EXPECT_EQ(avi.payloads(0), readPayloads(0));
    EXPECT_THAT(log(), Contains(verbose("parseFirstRIFF(): unknown chunk " + idText("movi"))));
    EXPECT_THAT(log(), Contains(verbose("parseFirstRIFF(): unknown chunk " + idText("hdrl"))));
}

TEST_F(FirstRiffChunks, BrokenInfoListIsIgnored) {
    AviFile avi = videoFile();
    avi.segment().beforeMovi = {Chunk::list("INFO", {Chunk("INAM", Bytes(2)).declare(0x7FFFFFFF)})};
    openFile(avi.build());
    EXPECT_EQ(avi.payloads(0), readPayloads(0));
}

TEST_F(FirstRiffChunks, InfoListIsNoUnknownList) {
    AviFile avi = videoFile();
    avi.segment().beforeMovi = {infoList({{"INAM", "A title"}})};
    openFile(avi.build());
    EXPECT_EQ(1u, countTracks());
    EXPECT_EQ(0u, mLog.count("unknown list"));
}

TEST_F(FirstRiffChunks, PlaceOfMoviIsLogged) {
    AviFile avi = videoFile();
    setProperty(kExtractLogProperty, "1");
    openFile(avi.build());
    countTracks();
    const ChunkPlace movi = avi.place("movi0");
    EXPECT_THAT(log(),
                Contains(verbose(format("parseMOVI(): @%llu, size %llu, end...",
                                        static_cast<unsigned long long>(movi.headerOffset),
                                        static_cast<unsigned long long>(movi.dataSize - 4)))));
}

TEST_F(FirstRiffChunks, MoviWithoutRoomForItsTypeIsFourBytesShortOfNothing) {
    AviFile avi = videoFile();
    avi.segment().edit = [](Chunk& riff) { riff.child("movi").declare(0); };
    setProperty(kExtractLogProperty, "1");
    openFile(avi.build());
    countTracks();
    EXPECT_EQ(1u, mLog.count("size 4294967292, end..."));
}

TEST_F(FirstRiffChunks, PlaceOfMoviIsNotLoggedByTheVerboseLog) {
    setProperty(kVerboseLogProperty, "1");
    openFile(videoFile().build());
    countTracks();
    EXPECT_EQ(0u, mLog.count("parseMOVI()"));
}

TEST_F(FirstRiffChunks, NoMoviIsMalformed) {
    AviFile avi = videoFile();
    avi.segment().edit = [](Chunk& riff) { riff.children.resize(1); };
    openFile(avi.build());
    EXPECT_EQ(0u, countTracks());
    EXPECT_THAT(log(), Contains(error("parseFirstRIFF(): error -3EF @line4208")));
    EXPECT_THAT(log(), Contains(error("readMetaData(): error(-1007) happens when parse file!")));
}

TEST_F(FirstRiffChunks, NoHeaderListLeavesNoUsableTrack) {
    AviFile avi = videoFile();
    avi.segment().edit = [](Chunk& riff) { riff.children.erase(riff.children.begin()); };
    openFile(avi.build());
    EXPECT_EQ(0u, countTracks());
    EXPECT_THAT(log(), Contains(error("parseFirstRIFF(): error -3F2 @line4276")));
}

TEST_F(FirstRiffChunks, MoviInFrontOfTheHeadersIsFound) {
    AviFile avi = videoFile();
    avi.segment().edit = [](Chunk& riff) { riff.arrange({"movi", "hdrl", "idx1"}); };
    openFile(avi.build());
    EXPECT_EQ(avi.payloads(0), readPayloads(0));
}

TEST_F(FirstRiffChunks, ErrorOfTheHeaderListEndsTheParse) {
    AviFile avi = videoFile();
    avi.header.streams = 2;
    openVerbosely(avi.build());
    EXPECT_EQ(0u, countTracks());
    EXPECT_THAT(log(), Contains(error("readMetaData(): error(-1007) happens when parse file!")));
    EXPECT_EQ(0u, mLog.count("parseMOVI()"));
    EXPECT_EQ(0u, mLog.count("found idx"));
}

}  // namespace
}  // namespace avitest
