// SPDX-License-Identifier: Apache-2.0
//
// Which index a file's samples come from when it has several, or one for some of its streams only.

#include "tests/behaviour/indexes/IndexesFixture.h"

namespace avitest {
namespace {

using ::testing::Contains;

class IndexChoice : public IndexesFixture {
  protected:
    void parse(const Bytes& file) {
        openFile(file);
        countTracks();
    }
};

// Video (0) with an OpenDML index that knows the first frame only, and audio (1) without one.
AviFile halfIndexedFile() {
    AviFile avi = twoStreamFile();
    avi.segment().index.copies = 0;
    avi.stream(0).openDml = OpenDml::kStandard;
    avi.stream(0).edit = [](Chunk& strl) {
        Bytes& index = strl.child("indx").payload;
        index.resize(24 + 8);
        index[4] = 1;
    };
    return avi;
}

TEST_F(IndexChoice, Idx1SuppliesAllTracksWhenOneHasNoIndex) {
    AviFile avi = halfIndexedFile();
    avi.segment().index.copies = 1;
    openFile(avi.build());
    EXPECT_EQ(avi.payloads(0), readPayloads(0));
    EXPECT_EQ(avi.payloads(1), readPayloads(1));
    EXPECT_EQ(0u, mLog.count("we already have index"));
    EXPECT_FALSE(scanned());
}

TEST_F(IndexChoice, Idx1TakesTheTablesOfIndexedTracksAway) {
    AviFile avi = halfIndexedFile();
    avi.segment().index.copies = 1;
    avi.segment().index.edit = [](std::vector<Idx1Entry>& entries) { entries[0].id = "77dc"; };
    openFile(avi.build());
    const auto chunks = avi.payloads(0);
    EXPECT_EQ(std::vector<Bytes>(chunks.begin() + 1, chunks.end()), readPayloads(0));
}

// Discarded samples leave their number of key frames behind.
TEST_F(IndexChoice, Idx1KeepsTheKeyFramesOfADiscardedTableInTheCount) {
    AviFile avi = halfIndexedFile();
    avi.segment().index.copies = 1;
    openFile(avi.build());
    countTracks();
    EXPECT_EQ(1u, mLog.count("finished samples 3 syncSamples 3"));  // 1 and 2
}

TEST_F(IndexChoice, ScanSuppliesTheTrackWithoutAnIndex) {
    AviFile avi = halfIndexedFile();
    openFile(avi.build());
    EXPECT_EQ(avi.payloads(1), readPayloads(1));
    EXPECT_TRUE(scanned());
}

TEST_F(IndexChoice, ScanAddsNothingToAnIndexedTrack) {
    AviFile avi = halfIndexedFile();
    openFile(avi.build());
    EXPECT_EQ(std::vector<Bytes>(1, avi.payloads(0)[0]), readPayloads(0));
}

TEST_F(IndexChoice, ScanMendsOnlyWhatIsNotIndexed) {
    AviFile avi = twoStreamFile();
    avi.segment().index.copies = 0;
    avi.stream(0).openDml = OpenDml::kSuper;
    openFile(avi.build());
    EXPECT_EQ(avi.payloads(0), readPayloads(0));
    EXPECT_EQ(avi.payloads(1), readPayloads(1));
    EXPECT_EQ(std::vector<bool>({true, false, true}), syncFlags(0));
}

// An idx1 that turns out cut has discarded the tables by then: what is left is a scan, for all.
TEST_F(IndexChoice, ScanSuppliesWhatACutIdx1TookAway) {
    AviFile avi = twoStreamFile();
    avi.stream(0).openDml = OpenDml::kStandard;
    Bytes file = avi.build();
    file.resize(file.size() - 8);
    openFile(file);
    ASSERT_EQ(2u, countTracks());
    EXPECT_EQ(1u, mLog.count("Chunked file with wrong idx1("));
    EXPECT_TRUE(scanned());
    EXPECT_EQ(avi.payloads(1), readPayloads(1));
    EXPECT_EQ(avi.payloads(0), readPayloads(0));
}

// The mark shows that the stream list held a good index, whatever becomes of the table.
TEST_F(IndexChoice, MarkOfAnIndexStaysWhenItsTableGoes) {
    for (const size_t cut : {0u, 8u}) {
        SCOPED_TRACE(cut);
        mLog.clear();
        AviFile avi = halfIndexedFile();
        avi.segment().index.copies = 1;
        setProperty(kExtractLogProperty, "1");
        const Bytes file = avi.build();
        openFile(ByteWriter().bytes(file).cut(file.size() - cut).take());
        ASSERT_EQ(2u, countTracks());
        EXPECT_EQ(avi.payloads(0), readPayloads(0));
        EXPECT_EQ(cut > 0, scanned());
        EXPECT_EQ(1u, mLog.count("    mINDXValid              1"));
        EXPECT_EQ(1u, mLog.count("    mINDXValid              0"));
    }
}

// Video with an OpenDML index and audio without one; idx1 replaces both tables in the first RIFF,
// and a second RIFF has no index.
TEST_F(IndexChoice, ScanOfAFurtherRiffAddsToATableOfIdx1) {
    AviFile avi = twoStreamFile();
    avi.stream(0).openDml = OpenDml::kStandard;
    avi.addSegment().riffSize = kBeyondTheFile;
    avi.addChunk(0, patternBytes(32, 7));
    avi.addChunk(1, patternBytes(36, 8));
    openFile(avi.build());
    ASSERT_EQ(2u, countTracks());
    EXPECT_EQ(1u, mLog.count("This riff doesn't have index."));
    EXPECT_EQ(avi.payloads(0), readPayloads(0));
    EXPECT_EQ(avi.payloads(1), readPayloads(1));
}

TEST_F(IndexChoice, ScanSuppliesATableThatASecondIndexEmptied) {
    AviFile avi = twoStreamFile();
    avi.segment().index.copies = 0;
    avi.stream(0).openDml = OpenDml::kStandard;
    avi.stream(0).edit = [](Chunk& strl) { strl.add(Chunk("indx", Bytes(20))); };
    openFile(avi.build());
    ASSERT_EQ(2u, countTracks());
    EXPECT_TRUE(scanned());
    EXPECT_EQ(avi.payloads(0), readPayloads(0));
    EXPECT_EQ(std::vector<bool>(3, true), syncFlags(0));  // the first index knew better
    EXPECT_EQ(avi.payloads(1), readPayloads(1));
}

TEST_F(IndexChoice, SubtitlesWithoutAnIndexNeedIdx1) {
    AviFile avi = unindexedFile(3);
    avi.stream(0).openDml = OpenDml::kStandard;
    avi.addStream(videoStream("DXSB", 320, 240, 25));
    avi.addChunk(1, bytesOf("[00:00:01.000-00:00:02.000]picture"));
    avi.segment().index.copies = 1;
    openFile(avi.build());
    ASSERT_EQ(2u, countTracks());
    EXPECT_EQ(0u, mLog.count("we already have index"));
    EXPECT_EQ(1u, readAll(1).size());
}

TEST_F(IndexChoice, FailedIndexOfOneStreamLeavesThatOfAnotherAlone) {
    AviFile avi = twoStreamFile();
    avi.segment().index.copies = 0;
    avi.stream(0).openDml = OpenDml::kSuper;
    avi.stream(1).openDml = OpenDml::kSuper;
    avi.stream(1).edit = [](Chunk& strl) { strl.child("indx").payload[3] = 5; };
    openFile(avi.build());
    EXPECT_EQ(std::vector<bool>({true, false, true}), syncFlags(0));
    EXPECT_EQ(avi.payloads(1), readPayloads(1));
    EXPECT_TRUE(scanned());
}

// The indexes belong to the stream in whose list they stand, whatever the order of the tracks.
TEST_F(IndexChoice, SamplesGoToTheStreamOfTheListAlsoWhenVideoComesSecond) {
    AviFile avi;
    avi.addStream(pcmStream(1, 8000, 16));
    avi.addStream(mjpegStream());
    avi.addChunk(0, patternBytes(40, 1));
    avi.addChunk(1, patternBytes(30, 2));
    avi.addChunk(0, patternBytes(44, 3));
    avi.segment().index.copies = 0;
    for (const OpenDml form : {OpenDml::kStandard, OpenDml::kSuper}) {
        avi.stream(0).openDml = form;
        avi.stream(1).openDml = form;
        openFile(avi.build());
        ASSERT_EQ(2u, countTracks());
        EXPECT_EQ(avi.payloads(1), readPayloads(0));
        EXPECT_EQ(avi.payloads(0), readPayloads(1));
    }
}

TEST_F(IndexChoice, IndexOfADroppedStreamGoesToNoOther) {
    AviFile avi;
    avi.addStream(mjpegStream());
    avi.stream(0).header.type = "txts";
    avi.addStream(mjpegStream());
    avi.addChunk(0, patternBytes(40, 1));
    avi.addChunk(1, patternBytes(30, 2));
    avi.segment().index.copies = 0;
    avi.stream(0).openDml = OpenDml::kStandard;
    avi.stream(1).openDml = OpenDml::kStandard;
    openFile(avi.build());
    ASSERT_EQ(1u, countTracks());
    EXPECT_EQ(avi.payloads(1), readPayloads(0));
}

TEST_F(IndexChoice, IndexMayComeBeforeOtherChunksOfTheStreamList) {
    AviFile avi = unindexedFile(3);
    avi.stream(0).openDml = OpenDml::kSuper;
    avi.stream(0).name = "Camera";
    avi.stream(0).edit = [](Chunk& strl) { strl.arrange({"strh", "strf", "indx", "strn"}); };
    openFile(avi.build());
    EXPECT_EQ(avi.payloads(0), readPayloads(0));
}

using IndexChoiceDeathTest = IndexChoice;

// A track without a stream format has no MIME type yet; the first to ask for it names it so.
constexpr char kAskedByTheIndex[] =
    "CHECK\\(AMediaFormat_getString\\(mLastTrack->meta, AMEDIAFORMAT_KEY_MIME, &mime\\)\\) "
    "failed\\.";
constexpr char kAskedByTheConfiguration[] =
    "CHECK\\(AMediaFormat_getString\\(track->meta, AMEDIAFORMAT_KEY_MIME, &mime\\)\\) "
    "failed\\.";

// Video of some frames with an OpenDML index, its stream list in this order.
Bytes fileInOrder(OpenDml form, size_t frames, const std::vector<ChunkId>& order) {
    AviFile avi = unindexedFile(frames);
    avi.stream(0).openDml = form;
    avi.stream(0).edit = [&order](Chunk& strl) { strl.arrange(order); };
    return avi.build();
}

TEST_F(IndexChoiceDeathTest, IndexInFrontOfTheFormatAborts) {
    for (const OpenDml form : {OpenDml::kStandard, OpenDml::kSuper}) {
        const Bytes file = fileInOrder(form, 3, {"strh", "indx", "strf"});
        EXPECT_DEATH(parse(file), kAskedByTheIndex);
    }
}

TEST_F(IndexChoiceDeathTest, IndexInFrontOfTheStreamHeaderAborts) {
    const Bytes file = fileInOrder(OpenDml::kStandard, 3, {"indx", "strh", "strf"});
    EXPECT_DEATH(parse(file), kAskedByTheIndex);
}

// A video track is configured at its tenth sample, before its index has been read to the end.
TEST_F(IndexChoiceDeathTest, IndexOfTenFramesInFrontOfTheFormatAborts) {
    const Bytes nine = fileInOrder(OpenDml::kStandard, 9, {"strh", "indx", "strf"});
    EXPECT_DEATH(parse(nine), kAskedByTheIndex);
    const Bytes ten = fileInOrder(OpenDml::kStandard, 10, {"strh", "indx", "strf"});
    EXPECT_DEATH(parse(ten), kAskedByTheConfiguration);
}

TEST_F(IndexChoiceDeathTest, EmptyStandardIndexInFrontOfTheFormatAborts) {
    AviFile avi = unindexedFile(3);
    avi.stream(0).openDml = OpenDml::kStandard;
    avi.stream(0).edit = [](Chunk& strl) {
        strl.child("indx").payload[4] = 0;
        strl.arrange({"strh", "indx", "strf"});
    };
    const Bytes file = avi.build();
    EXPECT_DEATH(parse(file), kAskedByTheIndex);
}

TEST_F(IndexChoice, IndexInFrontOfTheFormatThatFailsDoesNotAbort) {
    AviFile avi = unindexedFile(3);
    avi.stream(0).openDml = OpenDml::kSuper;
    avi.stream(0).edit = [](Chunk& strl) {
        strl.arrange({"strh", "indx", "strf"});
        strl.child("indx").payload[3] = 2;
    };
    openFile(avi.build());
    EXPECT_EQ(avi.payloads(0), readPayloads(0));
}

TEST_F(IndexChoice, EmptySuperIndexInFrontOfTheFormatDoesNotAbort) {
    AviFile avi = twoStreamFile();
    avi.stream(0).edit = [](Chunk& strl) {
        strl.add(Chunk("indx", Bytes(24)));
        strl.arrange({"strh", "indx", "strf"});
    };
    openFile(avi.build());
    EXPECT_EQ(2u, countTracks());
}

TEST_F(IndexChoice, IndexInFrontOfTheStreamHeaderDropsTheStream) {
    AviFile avi = twoStreamFile();
    avi.stream(0).edit = [](Chunk& strl) {
        strl.add(Chunk("indx", Bytes(24)));
        strl.arrange({"indx", "strh", "strf"});
    };
    openFile(avi.build());
    ASSERT_EQ(1u, countTracks());
    EXPECT_EQ(avi.payloads(1), readPayloads(0));
}

}  // namespace
}  // namespace avitest
