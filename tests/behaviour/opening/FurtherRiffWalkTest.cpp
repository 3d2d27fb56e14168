// SPDX-License-Identifier: Apache-2.0
//
// The walk over a further RIFF: its header, its end, its chunks. What goes wrong there never costs
// the file.

#include <cstring>

#include "tests/behaviour/opening/FurtherRiffs.h"

namespace avitest {
namespace {

using android::service::Fault;
using android::service::FaultySource;
using android::service::MemorySource;
using ::testing::Contains;
using ::testing::Not;

constexpr char kStop[] = "parseMoreRIFF(): Unknown chunk num > 50, stop scaning!";

class FurtherRiffWalk : public LoggedFixture {
  protected:
    // The file opens, and the second RIFF brought nothing.
    void expectFirstRiffAlone() {
        EXPECT_EQ(1u, countTracks());
        EXPECT_EQ(2u, readPayloads(0).size());
    }
    void expectBothRiffs() {
        EXPECT_EQ(1u, countTracks());
        EXPECT_EQ(4u, readPayloads(0).size());
    }
};

TEST_F(FurtherRiffWalk, HeaderIsLogged) {
    setProperty(kExtractLogProperty, "1");
    openFile(twoSegmentFile().build());
    countTracks();
    EXPECT_THAT(log(),
                Contains(verbose("parseMoreRIFF(): ID 46464952, size 30000000, type 58495641")));
}

TEST_F(FurtherRiffWalk, FormTypeIsNotChecked) {
    AviFile avi = twoSegmentFile();
    avi.segment(1).form = "WAVE";
    openFile(avi.build());
    expectBothRiffs();
}

TEST_F(FurtherRiffWalk, SizeBeyondTheFileIsChunkedAndWalkedToItsEnd) {
    AviFile avi = twoSegmentFile();
    setProperty(kExtractLogProperty, "1");
    const Bytes file = avi.build();
    openFile(file);
    expectBothRiffs();
    EXPECT_THAT(log(),
                Contains(warning(format("parseMoreRIFF(): file seems to be chunked (%u + 8) > %zu",
                                        kBeyondTheFile, file.size()))));
    EXPECT_THAT(
        log(), Contains(verbose(format("parseMoreRIFF(): RIFF size 30000000(%u), pos: %llu ~ %zu",
                                       kBeyondTheFile, number(avi.place("riff1").headerOffset + 12),
                                       file.size()))));
    EXPECT_THAT(
        log(),
        Contains(verbose(format("parseMoreRIFF() end @%zX(%zu)", file.size(), file.size()))));
}

TEST_F(FurtherRiffWalk, TrueSizeIsTakenForAFilePositionAndEndsTheWalkAtOnce) {
    AviFile avi = twoSegmentFile(std::nullopt);
    setProperty(kExtractLogProperty, "1");
    const Bytes file = avi.build();
    openFile(file);
    expectFirstRiffAlone();
    const auto start = avi.place("riff1").headerOffset;
    const auto size = number(file.size() - start - 8);
    EXPECT_THAT(log(),
                Contains(verbose(format("parseMoreRIFF(): RIFF size %llX(%llu), pos: %llu ~ %llu",
                                        size, size, number(start + 12), size))));
    EXPECT_THAT(log(), Contains(verbose(format("parseMoreRIFF() end @%llX(%llu)",
                                               number(start + 12), number(start + 12)))));
    EXPECT_EQ(0u, mLog.count("parseMoreRIFF(): file seems to be chunked"));
}

TEST_F(FurtherRiffWalk, SizeWithinTheFileEndsTheWalkAtThatPosition) {
    AviFile avi = twoSegmentFile();
    avi.build();
    // One past the beginning of the index, which is thereby the last chunk.
    avi.segment(1).riffSize = static_cast<uint32_t>(avi.place("idx1.1").headerOffset + 1);
    openFile(avi.build());
    expectBothRiffs();
    EXPECT_EQ(0u, mLog.count("parseMoreRIFF(): file seems to be chunked"));
}

TEST_F(FurtherRiffWalk, ChunkAtThePositionOfTheSizeIsNotWalked) {
    AviFile avi = twoSegmentFile();
    avi.build();
    avi.segment(1).riffSize = static_cast<uint32_t>(avi.place("idx1.1").headerOffset);
    setProperty(kExtractLogProperty, "1");
    openFile(avi.build());
    expectBothRiffs();
    EXPECT_EQ(0u, mLog.count("parseMoreRIFF(): found idx"));
    EXPECT_EQ(1u, mLog.count("This riff doesn't have index."));
}

// Eight bytes less than the file: as if this header stood before the whole file.
TEST_F(FurtherRiffWalk, SizeUpToTheFilesEndIsNotChunked) {
    AviFile avi = twoSegmentFile();
    avi.segment(1).afterIndex = {Chunk("STRY")};  // in the last eight bytes, which are not walked
    const auto size = static_cast<uint32_t>(avi.build().size() - 8);
    avi.segment(1).riffSize = size;
    openVerbosely(avi.build());
    expectBothRiffs();
    EXPECT_EQ(0u, mLog.count("parseMoreRIFF(): file seems to be chunked"));
    EXPECT_EQ(0u, mLog.count("unknown chunk"));
    EXPECT_THAT(log(), Contains(verbose(format("parseMoreRIFF() end @%X(%u)", size, size))));
}

TEST_F(FurtherRiffWalk, SizeOneBeyondTheFilesEndIsChunked) {
    AviFile avi = twoSegmentFile();
    const size_t size = avi.build().size();
    avi.segment(1).riffSize = static_cast<uint32_t>(size - 7);
    openFile(avi.build());
    expectBothRiffs();
    EXPECT_THAT(log(), Contains(warning(format("parseMoreRIFF(): file seems to be chunked (%zu + 8)"
                                               " > %zu",
                                               size - 7, size))));
}

TEST_F(FurtherRiffWalk, SizeAboveTheLimitIsTriedWithAWarning) {
    openFile(twoSegmentFile(0x40000001).build());
    expectBothRiffs();
    EXPECT_THAT(log(), Contains(warning("parseMoreRIFF(): RIFF1 size 40000001 is out of spec "
                                        "40000000, try to support it.")));
}

TEST_F(FurtherRiffWalk, SizeAtTheLimitIsWithinTheFormat) {
    openFile(twoSegmentFile(0x40000000).build());
    expectBothRiffs();
    EXPECT_EQ(0u, mLog.count("is out of spec"));
}

TEST_F(FurtherRiffWalk, EachChunkIsTracedByTheVerboseLog) {
    AviFile avi = twoSegmentFile();
    setProperty(kVerboseLogProperty, "1");
    openFile(avi.build());
    countTracks();
    EXPECT_THAT(log(), Contains(verbose(format(
                           "parseMoreRIFF(): ID %s at pos 0x%llX, list.size: 0x20, "
                           "0x20",
                           idText("idx2").c_str(), number(avi.place("idx1.1").headerOffset)))));
}

TEST_F(FurtherRiffWalk, ChunksAreNotTracedByTheExtractLog) {
    setProperty(kExtractLogProperty, "1");
    openFile(twoSegmentFile().build());
    countTracks();
    EXPECT_EQ(0u, mLog.count("parseMoreRIFF(): ID 0x"));
}

TEST_F(FurtherRiffWalk, JunkAndUnknownListsAreSkipped) {
    AviFile avi = twoSegmentFile();
    avi.segment(1).beforeMovi = {Chunk("JUNK", Bytes(5)), Chunk::list("STRY")};
    openVerbosely(avi.build());
    expectBothRiffs();
    EXPECT_THAT(log(), Contains(warning("parseMoreRIFF(): unknown list " + idText("STRY"))));
    EXPECT_EQ(0u, mLog.count("unknown chunk"));
}

TEST_F(FurtherRiffWalk, HeaderAndInfoListsAreUnknownThere) {
    AviFile avi = twoSegmentFile();
    avi.segment(1).beforeMovi = {Chunk::list("hdrl"), infoList({{"INAM", "A title"}})};
    openFile(avi.build());
    expectBothRiffs();
    EXPECT_THAT(log(), Contains(warning("parseMoreRIFF(): unknown list " + idText("hdrl"))));
    EXPECT_THAT(log(), Contains(warning("parseMoreRIFF(): unknown list " + idText("INFO"))));
}

TEST_F(FurtherRiffWalk, UnknownChunkIsShownByTheVerboseLog) {
    AviFile avi = twoSegmentFile();
    avi.segment(1).beforeMovi = {Chunk("STRY", Bytes(3))};
    setProperty(kVerboseLogProperty, "1");
    openFile(avi.build());
    expectBothRiffs();
    EXPECT_THAT(log(), Contains(verbose("parseMoreRIFF(): unknown chunk " + idText("STRY"))));
}

std::vector<Chunk> strays(size_t count) {
    return std::vector<Chunk>(count, Chunk("STRY", Bytes(6)));
}

TEST_F(FurtherRiffWalk, FiftyUnknownChunksBehindMoviArePassed) {
    AviFile avi = twoSegmentFile();
    avi.segment(1).afterMovi = strays(50);
    openFile(avi.build());
    expectBothRiffs();
    EXPECT_EQ(0u, mLog.count(kStop));
}

TEST_F(FurtherRiffWalk, TheFiftyFirstUnknownChunkBehindMoviEndsTheWalk) {
    AviFile avi = twoSegmentFile();
    avi.segment(1).afterMovi = strays(51);
    setProperty(kExtractLogProperty, "1");
    openFile(avi.build());
    EXPECT_EQ(1u, countTracks());
    EXPECT_THAT(log(), Contains(warning(kStop)).Times(1));
    EXPECT_EQ(0u, mLog.count("parseMoreRIFF(): found idx"));
}

TEST_F(FurtherRiffWalk, EndsAtTheUnknownChunkThatIsTooMany) {
    AviFile avi = twoSegmentFile();
    avi.segment(1).afterMovi = strays(60);
    avi.segment(1).afterMovi[50].marked("last");
    setProperty(kExtractLogProperty, "1");
    openFile(avi.build());
    expectBothRiffs();
    const auto last = number(avi.place("last").headerOffset);
    EXPECT_THAT(log(), Contains(verbose(format("parseMoreRIFF() end @%llX(%llu)", last, last))));
}

TEST_F(FurtherRiffWalk, SixtyUnknownChunksInFrontOfMoviLiftTheLimit) {
    AviFile avi = twoSegmentFile();
    avi.segment(1).beforeMovi = strays(60);
    avi.segment(1).afterMovi = strays(60);
    openFile(avi.build());
    expectBothRiffs();
    EXPECT_EQ(0u, mLog.count(kStop));
}

TEST_F(FurtherRiffWalk, FiftyUnknownChunksBeforeMoviAndOneAfterEndTheWalk) {
    AviFile avi = twoSegmentFile();
    avi.segment(1).beforeMovi = strays(50);
    avi.segment(1).afterMovi = strays(1);
    setProperty(kExtractLogProperty, "1");
    openFile(avi.build());
    expectBothRiffs();
    EXPECT_EQ(1u, mLog.count(kStop));
    EXPECT_EQ(0u, mLog.count("parseMoreRIFF(): found idx"));
    EXPECT_EQ(1u, mLog.count("This riff doesn't have index."));
}

TEST_F(FurtherRiffWalk, FiftyOneUnknownChunksBeforeMoviLiftTheLimit) {
    AviFile avi = twoSegmentFile();
    avi.segment(1).beforeMovi = strays(51);
    avi.segment(1).afterMovi = strays(60);
    setProperty(kExtractLogProperty, "1");
    openFile(avi.build());
    expectBothRiffs();
    EXPECT_EQ(0u, mLog.count(kStop));
    EXPECT_EQ(1u, mLog.count("parseMoreRIFF(): found idx"));
}

TEST_F(FurtherRiffWalk, UnknownChunksOfTheFirstRiffDoNotCount) {
    AviFile avi = twoSegmentFile();
    avi.segment(0).afterMovi = strays(40);
    avi.segment(1).afterMovi = strays(40);
    openFile(avi.build());
    expectBothRiffs();
}

TEST_F(FurtherRiffWalk, EightBytesOfSizeZeroEndItQuietly) {
    AviFile avi = twoSegmentFile();
    avi.trailing = Bytes(8);
    openFile(avi.build());
    expectBothRiffs();
    EXPECT_EQ(0u, mLog.count("parseMoreRIFF(): error"));
}

TEST_F(FurtherRiffWalk, ZerosAtTheEndOfOneWithoutIndexDoNotKeepItFromBeingScanned) {
    AviFile avi = twoSegmentFile();
    avi.segment(1).index.copies = 0;
    avi.trailing = Bytes(8);
    openFile(avi.build());
    expectBothRiffs();
    EXPECT_EQ(0u, mLog.count("parseMoreRIFF(): error"));
    EXPECT_EQ(1u, mLog.count("This riff doesn't have index."));
}

TEST_F(FurtherRiffWalk, ZerosAtTheEndOfAnOpenMoviListEndItsScanQuietly) {
    AviFile avi = twoSegmentFile();
    avi.segment(1).index.copies = 0;
    avi.segment(1).edit = [](Chunk& riff) { riff.child("movi").declare(kBeyondTheFile - 100); };
    avi.trailing = Bytes(8);
    openFile(avi.build());
    expectBothRiffs();
    EXPECT_EQ(0u, mLog.count("Failed to read header"));
    EXPECT_EQ(0u, mLog.count("incomplete"));
}

TEST_F(FurtherRiffWalk, AnyOtherTailIsAnErrorThatIsIgnored) {
    AviFile avi = twoSegmentFile();
    avi.trailing = Bytes(5);
    openFile(avi.build());
    expectBothRiffs();
    EXPECT_THAT(log(), Contains(error("parseMoreRIFF(): error -3EC @line4317")));
}

TEST_F(FurtherRiffWalk, UnreadableChunkHeaderIsAnErrorThatIsIgnored) {
    AviFile avi = twoSegmentFile();
    const Bytes file = avi.build();
    const auto movi = static_cast<off64_t>(avi.place("movi1").headerOffset);
    openCounted(file).inject(Fault::error(-EIO).onOffsets(movi, movi + 1));
    expectFirstRiffAlone();
    EXPECT_THAT(log(), Contains(error("parseMoreRIFF(): error -3EC @line4317")));
}

TEST_F(FurtherRiffWalk, UnreadableRiffHeaderIsMalformedAndIgnored) {
    AviFile avi = twoSegmentFile();
    const Bytes file = avi.build();
    const auto riff = static_cast<off64_t>(avi.place("riff1").headerOffset);
    FaultySource& source = openCounted(file);
    countTracks();
    // The header is read once for the list of segments, and once for the walk.
    std::vector<uint64_t> looks;
    const auto calls = source.calls();
    for (uint64_t i = 0; i < calls.size(); ++i) {
        if (calls[i].offset == riff) looks.push_back(i);
    }
    ASSERT_EQ(2u, looks.size());
    mLog.clear();

    openCounted(file).inject(Fault::shortRead(11).onCall(looks[1]));
    expectFirstRiffAlone();
    EXPECT_THAT(log(), Contains(error("parseMoreRIFF(): error -3EF @line4384")));
}

// A file whose second RIFF is gone after it was listed.
class VanishingRiff : public MemorySource {
  public:
    VanishingRiff(Bytes file, uint64_t riff)
        : MemorySource(std::move(file)), mRiff(static_cast<off64_t>(riff)) {}

    ssize_t readAt(off64_t offset, void* data, size_t size) override {
        const ssize_t count = MemorySource::readAt(offset, data, size);
        if (offset == mRiff && mLooks++ > 0) std::memcpy(data, "JUNK", 4);
        return count;
    }

  private:
    off64_t mRiff;
    int mLooks = 0;
};

TEST_F(FurtherRiffWalk, OneThatIsNoRiffAnyMoreIsIgnoredWithoutAnError) {
    AviFile avi = twoSegmentFile();
    const Bytes file = avi.build();
    VanishingRiff source(file, avi.place("riff1").headerOffset);
    openSource(source);
    expectFirstRiffAlone();
    EXPECT_EQ(0u, mLog.count("parseMoreRIFF(): "));
    openFile(file);  // lets go of the source
}

TEST_F(FurtherRiffWalk, OneWithoutMoviIsIgnored) {
    AviFile avi = twoSegmentFile();
    avi.segment(1).edit = [](Chunk& riff) { riff.children.erase(riff.children.begin()); };
    openFile(avi.build());
    expectFirstRiffAlone();
}

}  // namespace
}  // namespace avitest
