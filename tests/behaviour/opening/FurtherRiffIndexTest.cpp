// SPDX-License-Identifier: Apache-2.0
//
// The index of a further RIFF.

#include "tests/behaviour/opening/FurtherRiffs.h"

namespace avitest {
namespace {

using android::service::Fault;
using ::testing::Contains;

class FurtherRiffIndex : public LoggedFixture {};

TEST_F(FurtherRiffIndex, IsKnownByFourNames) {
    for (const ChunkId id : {ChunkId("idx1"), ChunkId("idx2"), ChunkId("idx3"), ChunkId("idx4")}) {
        SCOPED_TRACE(id.text());
        AviFile avi = twoSegmentFile();
        avi.segment(1).index.id = id;
        openFile(avi.build());
        EXPECT_EQ(avi.payloads(0), readPayloads(0));
    }
}

TEST_F(FurtherRiffIndex, OtherNumbersAreUnknownChunks) {
    for (const ChunkId id : {ChunkId("idx0"), ChunkId("idx5")}) {
        SCOPED_TRACE(id.text());
        AviFile avi = twoSegmentFile();
        avi.segment(1).index.id = id;
        openVerbosely(avi.build());
        countTracks();
        EXPECT_THAT(log(), Contains(verbose("parseMoreRIFF(): unknown chunk " + idText(id))));
        EXPECT_EQ(0u, mLog.count("parseMoreRIFF(): found idx"));
    }
}

TEST_F(FurtherRiffIndex, IsLoggedWithTheNumberOfItsRiffCountedFromOne) {
    AviFile avi = twoSegmentFile();
    avi.segment(1).index.id = "idx4";
    setProperty(kExtractLogProperty, "1");
    openFile(avi.build());
    countTracks();
    EXPECT_THAT(log(), Contains(verbose("parseMoreRIFF(): found idx2")).Times(1));
}

TEST_F(FurtherRiffIndex, IsNotLoggedByTheVerboseLog) {
    setProperty(kVerboseLogProperty, "1");
    openFile(twoSegmentFile().build());
    countTracks();
    EXPECT_EQ(0u, mLog.count("found idx"));
}

TEST_F(FurtherRiffIndex, OffsetsAreRelativeToItsOwnMovi) {
    AviFile avi = twoSegmentFile();
    openFile(avi.build());
    EXPECT_EQ(avi.payloads(0), readPayloads(0));
}

TEST_F(FurtherRiffIndex, OffsetsMayBeAbsolute) {
    AviFile avi = twoSegmentFile();
    avi.segment(1).index.offsets = IndexOffsets::kAbsolute;
    openFile(avi.build());
    EXPECT_EQ(avi.payloads(0), readPayloads(0));
}

TEST_F(FurtherRiffIndex, PlaceOfItsMoviIsLogged) {
    AviFile avi = twoSegmentFile();
    setProperty(kExtractLogProperty, "1");
    openFile(avi.build());
    countTracks();
    const ChunkPlace movi = avi.place("movi1");
    EXPECT_THAT(log(),
                Contains(verbose(format("parseMOVI(): @%llu, size %llu, end...",
                                        number(movi.headerOffset), number(movi.dataSize - 4)))));
}

TEST_F(FurtherRiffIndex, SamplesOfTheFirstRiffStay) {
    AviFile avi = twoSegmentFile();
    openFile(avi.build());
    const auto samples = readPayloads(0);
    ASSERT_EQ(4u, samples.size());
    EXPECT_EQ(avi.chunks(0)[0].data(), samples[0]);
    EXPECT_EQ(avi.chunks(0)[2].data(), samples[2]);
}

TEST_F(FurtherRiffIndex, OneInFrontOfMoviIsNotRead) {
    AviFile avi = twoSegmentFile();
    avi.segment(1).edit = [](Chunk& riff) { riff.arrange({"idx2", "movi"}); };
    setProperty(kExtractLogProperty, "1");
    openFile(avi.build());
    EXPECT_EQ(2u, readPayloads(0).size());
    EXPECT_EQ(1u, mLog.count("parseMoreRIFF(): found idx2"));
}

TEST_F(FurtherRiffIndex, OneInFrontOfMoviCountsAsAnIndex) {
    AviFile avi = twoSegmentFile();
    avi.segment(1).edit = [](Chunk& riff) { riff.arrange({"idx2", "movi"}); };
    openFile(avi.build());
    EXPECT_EQ(1u, countTracks());
    EXPECT_EQ(0u, mLog.count("This riff doesn't have index."));
}

TEST_F(FurtherRiffIndex, OneAfterMoviIsReadDespiteOneBeforeIt) {
    AviFile avi = twoSegmentFile();
    avi.segment(1).edit = [](Chunk& riff) { riff.insert(0, Chunk("idx1", Bytes(16))); };
    setProperty(kExtractLogProperty, "1");
    openFile(avi.build());
    EXPECT_EQ(avi.payloads(0), readPayloads(0));
    EXPECT_EQ(2u, mLog.count("parseMoreRIFF(): found idx2"));
    EXPECT_EQ(2u, mLog.count("parseIDX1(): end (2 samples added)..."));  // one of each RIFF
    EXPECT_EQ(0u, mLog.count("This riff doesn't have index."));
}

TEST_F(FurtherRiffIndex, EachOneBehindMoviIsRead) {
    AviFile avi = twoSegmentFile();
    avi.segment(1).index.copies = 2;
    avi.segment(1).index.tail = Bytes(4);
    openFile(avi.build());
    const auto chunks = avi.payloads(0);
    const std::vector<Bytes> expected = {chunks[0], chunks[1], chunks[2],
                                         chunks[3], chunks[2], chunks[3]};
    EXPECT_EQ(expected, readPayloads(0));
    EXPECT_EQ(0u, mLog.count("Ignore multiple index!"));
}

TEST_F(FurtherRiffIndex, ErrorEndsTheRiffAndIsIgnored) {
    AviFile avi = twoSegmentFile();
    avi.segment(1).afterIndex = {Chunk("STRY", Bytes(16))};
    const Bytes file = avi.build();
    const auto data = static_cast<off64_t>(avi.place("idx1.1").dataOffset);
    setProperty(kVerboseLogProperty, "1");
    openCounted(file).inject(Fault::error(-EIO).onOffsets(data + 4, data + 5));
    EXPECT_EQ(1u, countTracks());
    EXPECT_EQ(2u, readPayloads(0).size());
    EXPECT_EQ(1u, mLog.count("parseIDX1(): error -3EC"));
    EXPECT_EQ(0u, mLog.count("unknown chunk"));
}

TEST_F(FurtherRiffIndex, IsReadAlthoughTheFirstRiffHadOne) {
    AviFile avi = twoSegmentFile();
    openFile(avi.build());
    EXPECT_EQ(4u, readPayloads(0).size());
    EXPECT_EQ(0u, mLog.count("Ignore multiple index!"));
}

}  // namespace
}  // namespace avitest
