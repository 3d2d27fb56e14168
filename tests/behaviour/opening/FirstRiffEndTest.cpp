// SPDX-License-Identifier: Apache-2.0
//
// Where the walk over the first RIFF ends: sizes beyond the format's limit or the file, zero tails,
// headers that cannot be read.

#include "tests/behaviour/opening/OpeningFixture.h"

namespace avitest {
namespace {

using android::service::Fault;
using android::service::FaultySource;
using ::testing::Contains;
using ::testing::Not;

constexpr char kStray[] = "unknown chunk 0x59525453:STRY";

class FirstRiffEnd : public LoggedFixture {
  protected:
    bool saysChunked() const { return mLog.count("file seems to be chunked") != 0; }
};

// A file with its RIFF size, counted from the true one, off by `excess`.
AviFile withSizeOffBy(int64_t excess) {
    AviFile avi = videoFile();
    const size_t truth = avi.build().size() - 8;
    avi.segment().riffSize = static_cast<uint32_t>(static_cast<int64_t>(truth) + excess);
    return avi;
}

TEST_F(FirstRiffEnd, ExactSizeIsNotChunked) {
    openFile(withSizeOffBy(0).build());
    EXPECT_EQ(1u, countTracks());
    EXPECT_FALSE(saysChunked());
}

TEST_F(FirstRiffEnd, OneByteBeyondTheFileIsChunked) {
    const Bytes file = withSizeOffBy(1).build();
    openFile(file);
    EXPECT_EQ(1u, countTracks());
    EXPECT_THAT(
        log(), Contains(warning(format("parseFirstRIFF(): file seems to be chunked (%zu + 8) > %zu",
                                       file.size() - 7, file.size()))));
}

TEST_F(FirstRiffEnd, WalkOfAnExactRiffEndsAtItsSizeValue) {
    setProperty(kExtractLogProperty, "1");
    const Bytes file = withSizeOffBy(0).build();
    openFile(file);
    countTracks();
    const size_t size = file.size() - 8;
    EXPECT_THAT(log(),
                Contains(verbose(format("parseFirstRIFF(): RIFF size %zX(%zu), pos: 12 ~ %zu", size,
                                        size, size))));
}

TEST_F(FirstRiffEnd, WalkOfAChunkedRiffEndsAtTheEndOfTheFile) {
    setProperty(kExtractLogProperty, "1");
    const Bytes file = withSizeOffBy(100).build();
    openFile(file);
    countTracks();
    const size_t size = file.size() + 92;
    EXPECT_THAT(log(),
                Contains(verbose(format("parseFirstRIFF(): RIFF size %zX(%zu), pos: 12 ~ %zu", size,
                                        size, file.size()))));
}

TEST_F(FirstRiffEnd, ChunkInTheLastEightBytesIsNotWalked) {
    AviFile avi = videoFile();
    avi.segment().afterIndex = {Chunk("STRY")};
    openVerbosely(avi.build());
    EXPECT_EQ(1u, countTracks());
    EXPECT_EQ(0u, mLog.count(kStray));
}

TEST_F(FirstRiffEnd, ChunkThatBeginsInFrontOfTheLastEightBytesIsWalked) {
    AviFile avi = videoFile();
    avi.segment().afterIndex = {Chunk("STRY", Bytes(4))};
    openVerbosely(avi.build());
    EXPECT_EQ(1u, countTracks());
    EXPECT_EQ(1u, mLog.count(kStray));
}

TEST_F(FirstRiffEnd, SmallSizeCutsTheWalkShort) {
    AviFile avi = videoFile();
    avi.build();
    // Up to the index, which is then not seen.
    avi.segment().riffSize = static_cast<uint32_t>(avi.place("idx1.0").headerOffset);
    openVerbosely(avi.build());
    countTracks();
    EXPECT_EQ(0u, mLog.count("found idx"));
}

TEST_F(FirstRiffEnd, HeaderAtThePositionBelowTheSizeIsWalked) {
    AviFile avi = videoFile();
    avi.build();
    avi.segment().riffSize = static_cast<uint32_t>(avi.place("idx1.0").headerOffset + 1);
    openVerbosely(avi.build());
    EXPECT_EQ(1u, countTracks());
    EXPECT_EQ(1u, mLog.count("found idx"));
}

TEST_F(FirstRiffEnd, RiffOfSizeZeroHasNoMovi) {
    AviFile avi = videoFile();
    avi.segment().riffSize = 0;
    openFile(avi.build());
    EXPECT_EQ(0u, countTracks());
    EXPECT_THAT(log(), Contains(error("parseFirstRIFF(): error -3EF @line4208")));
}

TEST_F(FirstRiffEnd, SizeAboveTheLimitIsTriedWithAWarning) {
    AviFile avi = videoFile();
    avi.segment().riffSize = 0x40000001;
    openFile(avi.build());
    EXPECT_EQ(1u, countTracks());
    EXPECT_THAT(log(), Contains(warning("parseFirstRIFF(): RIFF size 40000001 is out of spec "
                                        "40000000, try to support it.")));
    EXPECT_TRUE(saysChunked());
}

TEST_F(FirstRiffEnd, SizeAtTheLimitIsWithinTheFormat) {
    AviFile avi = videoFile();
    avi.segment().riffSize = 0x40000000;
    openFile(avi.build());
    EXPECT_EQ(1u, countTracks());
    EXPECT_EQ(0u, mLog.count("is out of spec"));
}

TEST_F(FirstRiffEnd, LargestSizeIsTriedToo) {
    AviFile avi = videoFile();
    avi.segment().riffSize = 0xFFFFFFFF;
    openFile(avi.build());
    EXPECT_EQ(1u, countTracks());
    EXPECT_THAT(log(), Contains(warning("parseFirstRIFF(): RIFF size FFFFFFFF is out of spec "
                                        "40000000, try to support it.")));
}

TEST_F(FirstRiffEnd, EndIsLogged) {
    setProperty(kExtractLogProperty, "1");
    const Bytes file = videoFile().build();
    openFile(file);
    countTracks();
    EXPECT_THAT(
        log(),
        Contains(verbose(format("parseFirstRIFF() end @%zX(%zu)", file.size(), file.size()))));
}

// A file whose RIFF claims more than there is, and which ends in `tail`.
Bytes chunkedWithTail(const Bytes& tail) {
    AviFile avi = withSizeOffBy(1000);
    avi.trailing = tail;
    return avi.build();
}

TEST_F(FirstRiffEnd, EightZeroBytesEndTheWalkQuietly) {
    openFile(chunkedWithTail(Bytes(8)));
    EXPECT_EQ(1u, countTracks());
    EXPECT_EQ(0u, mLog.count("failed to read header"));
}

TEST_F(FirstRiffEnd, EightBytesOfAnEmptyChunkEndTheWalkQuietly) {
    openFile(chunkedWithTail(Chunk("STRY").toBytes()));
    EXPECT_EQ(1u, countTracks());
    EXPECT_EQ(0u, mLog.count("failed to read header"));
}

TEST_F(FirstRiffEnd, EightBytesWithASizeAreAnIoError) {
    const Bytes file = chunkedWithTail(ByteWriter().fourcc("STRY").u32(1).take());
    openFile(file);
    EXPECT_EQ(0u, countTracks());
    EXPECT_THAT(log(),
                Contains(error(format("parseFirstRIFF(): failed to read header at %zX! @line4116",
                                      file.size() - 8))));
    EXPECT_THAT(log(), Contains(error("readMetaData(): error(-1004) happens when parse file!")));
}

TEST_F(FirstRiffEnd, AnyOtherNumberOfTailBytesIsAnIoError) {
    for (size_t count : {1u, 4u, 7u, 9u, 11u}) {
        SCOPED_TRACE(count);
        openFile(chunkedWithTail(Bytes(count)));
        EXPECT_EQ(0u, countTracks());
        EXPECT_EQ(1u, mLog.count("failed to read header"));
        mLog.clear();
    }
}

TEST_F(FirstRiffEnd, UnreadableHeaderIsAnIoError) {
    AviFile avi = videoFile();
    const Bytes file = avi.build();
    const auto movi = avi.place("movi0").headerOffset;
    const auto begin = static_cast<off64_t>(movi);
    openCounted(file).inject(Fault::error(-EIO).onOffsets(begin, begin + 1));
    EXPECT_EQ(0u, countTracks());
    EXPECT_THAT(log(),
                Contains(error(format("parseFirstRIFF(): failed to read header at %llX! @line4116",
                                      static_cast<unsigned long long>(movi)))));
}

TEST_F(FirstRiffEnd, RiffHeaderThatCannotBeReadAgainIsAnIoError) {
    // The sniffer, the parser's first look and the list of segments come before.
    openCounted(videoFile().build()).inject(Fault::error(-EIO).onCall(3));
    EXPECT_EQ(0u, countTracks());
    EXPECT_THAT(log(), Contains(error("parseFirstRIFF(): error -3EC @line4074")));
    EXPECT_THAT(log(), Contains(error("countTracks(): readMetaData() failed, err = -1004!")));
}

TEST_F(FirstRiffEnd, FileCutInTheMiddleOfMoviParses) {
    AviFile avi = videoFile(4);
    // With the index in front of the samples, so that the cut leaves it whole.
    avi.segment().index.offsets = IndexOffsets::kAbsolute;
    avi.segment().edit = [](Chunk& riff) { riff.arrange({"hdrl", "idx1", "movi"}); };
    const Bytes whole = avi.build();
    const auto chunks = avi.chunks(0);
    const size_t cut = chunks[2].place.headerOffset;
    openFile(ByteWriter().bytes(whole).cut(cut).take());
    EXPECT_EQ(1u, countTracks());
    EXPECT_THAT(
        log(), Contains(warning(format("parseFirstRIFF(): file seems to be chunked (%zu + 8) > %zu",
                                       whole.size() - 8, cut))));
    const std::vector<Bytes> expected = {chunks[0].data(), chunks[1].data()};
    EXPECT_EQ(expected, readPayloads(0));
}

}  // namespace
}  // namespace avitest
