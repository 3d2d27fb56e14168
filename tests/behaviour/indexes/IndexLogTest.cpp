// SPDX-License-Identifier: Apache-2.0
//
// The log of OpenDML indexes: what is always said, and what the switches add.

#include "tests/behaviour/indexes/IndexesFixture.h"

namespace avitest {
namespace {

using ::testing::Contains;
using ::testing::HasSubstr;

class IndexLog : public IndexesFixture {
  protected:
    // Opens a file of two standard indexes, of 2 frames and 1.
    void open() {
        mMade.layOut();
        mMade.super.header.chunkId = "01wb";
        mMade.super.header.longsPerEntry = 4;
        mMade.super.header.subType = 3;
        mMade.super.header.baseOffset = 0x8;
        mMade.super.header.reserved3 = 12;
        for (SuperIndex::Entry& entry : mMade.super.entries)
            entry.offset -= 8;
        mMade.parts[1].header.reserved3 = 4000000000;
        openFile(mMade.bytes());
    }

    // The lines that print a header, in their order.
    std::vector<LogLine> headerLines(const IndexHeader& header, uint32_t entries) {
        const uint64_t base = header.baseOffset;
        return {
            verbose(format("   longsPerEntry: %u", header.longsPerEntry)),
            verbose(format("   indexType:     0x%x", header.type)),
            verbose(format("   indexSubType:  0x%x", header.subType)),
            verbose(format("   entriesInUse:  %u", entries)),
            verbose(format("   ID:            %x", header.chunkId.value())),
            verbose(format("   baseOffsetL:   %X", static_cast<uint32_t>(base))),
            verbose(format("   baseOffsetH:   %X", static_cast<uint32_t>(base >> 32))),
            verbose(format("   reserved3:     %u", header.reserved3)),
        };
    }

    // Whether these lines come one after the other somewhere in the log.
    bool hasRun(const std::vector<LogLine>& run) {
        const auto lines = log();
        return std::search(lines.begin(), lines.end(), run.begin(), run.end()) != lines.end();
    }

    IndexedFile mMade{{2, 1}};
};

TEST_F(IndexLog, SuperIndexIsToldWithItsCount) {
    open();
    countTracks();
    EXPECT_EQ(1u, mLog.count("parseINDX(): The track has a super index with 2 entries..."));
}

TEST_F(IndexLog, CountIsShownAsASignedNumber) {
    mMade.layOut();
    mMade.super.header.entriesInUse = 0xFFFFFFFF;
    openFile(mMade.bytes());
    countTracks();
    EXPECT_EQ(1u, mLog.count("parseINDX(): The track has a super index with -1 entries..."));
}

TEST_F(IndexLog, EachStandardIndexIsAnnouncedWithItsParts) {
    open();
    countTracks();
    for (size_t i = 0; i < 2; ++i) {
        const SuperIndex::Entry& entry = mMade.super.entries[i];
        EXPECT_THAT(log(), Contains(debug(format(
                               "start parseChunkIndex(%zu) @(%llX + 8 + 8) with entry size %u...",
                               i, number(entry.offset), entry.size))));
    }
}

TEST_F(IndexLog, IndexInTheStreamListIsAnnouncedWithItsRange) {
    AviFile avi = unindexedFile(3);
    avi.stream(0).openDml = OpenDml::kStandard;
    avi.stream(0).edit = [](Chunk& strl) { strl.child("indx").marked("indx"); };
    openFile(avi.build());
    countTracks();
    const ChunkPlace place = avi.place("indx");
    EXPECT_THAT(log(), Contains(debug(format("start parseChunkIndex() @pos %llu, end %llu...",
                                             number(place.dataOffset),
                                             number(place.dataOffset + place.dataSize)))));
    EXPECT_EQ(0u, mLog.count("The track has a super index"));
}

TEST_F(IndexLog, EndOfAnIndexTellsTheTablesLastEntries) {
    open();
    const std::string mime = mimeOf(0);
    const auto chunks = mMade.avi.chunks(0);
    const auto base = number(mMade.parts[0].header.baseOffset);
    for (const size_t last : {1, 2}) {
        const std::string text = format(
            "[%s] sample[%zu] (baseOff %llX/%llX, size %zu, sync 1]) @line", mime.c_str(), last + 1,
            base, number(chunks[last].place.dataOffset), chunks[last].data().size());
        EXPECT_EQ(1u, mLog.count(ANDROID_LOG_DEBUG, text)) << text;
    }
    EXPECT_EQ(1u, mLog.count(ANDROID_LOG_DEBUG, "end parseChunkIndex() (2 samples added) @"));
    EXPECT_EQ(1u, mLog.count(ANDROID_LOG_DEBUG, "end parseChunkIndex() (1 samples added) @"));
}

TEST_F(IndexLog, EndOfAnEmptyIndexTellsZeros) {
    mMade.layOut();
    mMade.parts[0].header.entriesInUse = 0;
    mMade.parts[0].header.baseOffset = 0x123456789A;
    openFile(mMade.bytes());
    const std::string mime = mimeOf(0);
    EXPECT_EQ(1u,
              mLog.count(ANDROID_LOG_DEBUG,
                         "[" + mime + "] sample[0] (baseOff 123456789A/0, size 0, sync 0]) @line"));
    EXPECT_EQ(1u, mLog.count(ANDROID_LOG_DEBUG, "end parseChunkIndex() (0 samples added) @"));
}

TEST_F(IndexLog, EndOfAnAudioIndexShowsTheLastSizeAndNoKeyFlag) {
    AviFile avi = twoStreamFile();
    avi.segment().index.copies = 0;
    avi.stream(0).openDml = OpenDml::kStandard;
    avi.stream(1).openDml = OpenDml::kStandard;
    openFile(avi.build());
    const std::string mime = mimeOf(1);
    EXPECT_EQ(1u, mLog.count(ANDROID_LOG_DEBUG, "[" + mime + "] sample[2] (baseOff "));
    EXPECT_EQ(1u, mLog.count(ANDROID_LOG_DEBUG, ", size 48, sync 0]) @line"));
}

TEST_F(IndexLog, ExtractLogPrintsTheHeaders) {
    setProperty(kExtractLogProperty, "1");
    open();
    countTracks();
    const ChunkPlace super = mMade.superPlace();
    std::vector<LogLine> run = headerLines(mMade.super.header, 2);
    run.insert(run.begin(),
               verbose(format("==== parseINDX(pos: %llX, end: %llX) ====", number(super.dataOffset),
                              number(super.dataOffset + super.dataSize))));
    EXPECT_TRUE(hasRun(run));

    const ChunkPlace part = mMade.partPlace(1);
    run = headerLines(mMade.parts[1].header, 1);
    run.insert(run.begin(),
               verbose(format("==== parseChunkIndex(pos: %llu, end: %llu) ====",
                              number(part.dataOffset), number(part.dataOffset + part.dataSize))));
    EXPECT_TRUE(hasRun(run));
}

TEST_F(IndexLog, ExtractLogPrintsBytesAndFieldsOfTheEntries) {
    setProperty(kExtractLogProperty, "1");
    mMade.layOut();
    mMade.super.entries[1] = {0x1122334455667788, 0xFFFFFFFE, 10};
    openFile(mMade.bytes());
    countTracks();
    EXPECT_EQ(1u,
              mLog.count(ANDROID_LOG_VERBOSE, "88 77 66 55 44 33 22 11 FE FF FF FF 0A 00 00 00"));
    EXPECT_THAT(log(),
                Contains(verbose("aviSuperIndexEntry[1] duration 10, size 4294967294, offset "
                                 "1122334455667788")));
}

TEST_F(IndexLog, HeaderKnownFromTheStreamListIsPrintedOnce) {
    AviFile avi = unindexedFile(3);
    avi.stream(0).openDml = OpenDml::kStandard;
    setProperty(kExtractLogProperty, "1");
    openFile(avi.build());
    countTracks();
    EXPECT_EQ(1u, mLog.count("==== parseINDX(pos: "));
    EXPECT_EQ(0u, mLog.count("==== parseChunkIndex(pos: "));
    EXPECT_EQ(1u, mLog.count("   longsPerEntry: "));
}

TEST_F(IndexLog, HeaderThatIsRejectedIsPrintedAllTheSame) {
    setProperty(kExtractLogProperty, "1");
    mMade.layOut();
    mMade.super.header.type = 9;
    openFile(mMade.bytes());
    countTracks();
    EXPECT_THAT(log(), Contains(verbose("   indexType:     0x9")));
}

TEST_F(IndexLog, VerboseLogAloneAddsNothing) {
    setProperty(kVerboseLogProperty, "1");
    open();
    countTracks();
    EXPECT_EQ(0u, mLog.count("longsPerEntry"));
    EXPECT_EQ(0u, mLog.count("===="));
    EXPECT_EQ(0u, mLog.count("aviSuperIndexEntry"));
}

TEST_F(IndexLog, WithoutSwitchesNoVerboseLineComes) {
    open();
    mLog.clear();  // sniffing still follows the switches of the file before
    countTracks();
    for (const LogLine& line : log())
        EXPECT_NE(ANDROID_LOG_VERBOSE, line.priority) << line.text;
}

}  // namespace
}  // namespace avitest
