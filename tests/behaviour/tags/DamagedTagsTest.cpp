// SPDX-License-Identifier: Apache-2.0
//
// Tags that lie about their size, that the file cuts off and that cannot be read: only they are
// lost, the file always opens.

#include <cerrno>

#include "tests/behaviour/tags/TagsFixture.h"

namespace avitest {
namespace {

using android::service::Fault;
using android::service::FaultySource;
using ::testing::Contains;

class DamagedTags : public TagsFixture {
  protected:
    // A file of three tags, the middle one marked, and its source.
    FaultySource& openMarked() {
        mAvi = fileOfTags({Chunk("INAM", bytesOf("a title")),
                           Chunk("IPRD", bytesOf("an album")).marked("tag"),
                           Chunk("IART", bytesOf("somebody"))});
        setProperty(kExtractLogProperty, "1");
        return openCounted(mAvi.build());
    }
    off64_t offset(uint64_t of) const { return static_cast<off64_t>(of); }

    AviFile mAvi;
};

// Padding makes 0 of it: an empty text, whatever follows.
TEST_F(DamagedTags, LargestSizeIsAnEmptyTag) {
    openLogged(fileOfTags({Chunk("INAM", bytesOf("first")), Chunk("INAM").declare(0xFFFFFFFF),
                           Chunk("IART", bytesOf("somebody"))}));
    EXPECT_EQ("", title());
    EXPECT_THAT(log(), Contains(verbose("parseINFO(): meta value , size 0")));
    EXPECT_EQ("somebody", tag("albumartist"));
}

TEST_F(DamagedTags, HugeSizeEndsTheWalk) {
    for (const uint32_t size : {0xFFFFFFFEu, 0xFFFFFFFDu, 0x80000000u, 0x7FFFFFFFu, 1000000u}) {
        SCOPED_TRACE(size);
        mLog.clear();
        openLogged(fileOfTags({Chunk("IPRD", bytesOf("an album")),
                               Chunk("INAM", bytesOf("a title")).declare(size),
                               Chunk("IART", bytesOf("somebody"))}));
        EXPECT_EQ("an album", tag("album"));
        EXPECT_EQ(std::nullopt, title());
        EXPECT_EQ(std::nullopt, tag("albumartist"));
        EXPECT_EQ(2u, keyLines());
    }
}

TEST_F(DamagedTags, HugeSizeOfAnUnknownKindEndsTheWalk) {
    open(fileOfTags(
        {Chunk("ISFT", Bytes(4)).declare(0xFFFFFFF0), Chunk("IART", bytesOf("somebody"))}));
    EXPECT_EQ(std::nullopt, tag("albumartist"));
}

TEST_F(DamagedTags, SizeBeyondItsTextTakesWhatFollows) {
    open(fileOfTags(
        {Chunk("INAM", bytesOf("a title!")).declare(16), Chunk("IART", bytesOf("somebody"))}));
    const std::string header("IART\x08", 5);
    EXPECT_EQ("a title!" + header, title());
    EXPECT_EQ(std::nullopt, tag("albumartist"));
}

TEST_F(DamagedTags, LastOneOfAFileThatEndsWithItIsDropped) {
    for (const size_t size : {0, 7, 8, 4096}) {
        SCOPED_TRACE(size);
        mLog.clear();
        openLogged(fileOfLists({Chunk::list(
            "INFO", {Chunk("IART", bytesOf("somebody")), Chunk("INAM", Bytes(size, 'x'))})}));
        EXPECT_EQ(std::nullopt, title());
        EXPECT_EQ("somebody", tag("albumartist"));
        EXPECT_EQ(2u, keyLines());
        EXPECT_EQ(1u, valueLines());
    }
}

TEST_F(DamagedTags, OneByteBehindTheLastOneSavesIt) {
    AviFile avi = fileOfLists({Chunk::list("INFO", {Chunk("INAM", bytesOf("a title"))})});
    avi.trailing = Bytes(1, 'z');
    open(std::move(avi));
    EXPECT_EQ("a title", title());
}

// The last one is never whole: a byte more than its text is read.
TEST_F(DamagedTags, EveryCutOfAListKeepsTheTagsInFrontOfIt) {
    AviFile avi =
        fileOfLists({Chunk::list("INFO", {Chunk("INAM", bytesOf("a title!")).marked("first"),
                                          Chunk("IART", bytesOf("somebody"))})});
    const Bytes file = avi.build();
    const ChunkPlace first = avi.place("first");
    for (uint64_t size = first.headerOffset; size <= file.size(); ++size) {
        SCOPED_TRACE(size);
        openFile(Bytes(file.begin(), file.begin() + static_cast<ptrdiff_t>(size)));
        ASSERT_EQ(1u, countTracks());
        EXPECT_EQ(size > first.dataOffset + first.dataSize, title().has_value());
        EXPECT_EQ(std::nullopt, tag("albumartist"));
    }
}

TEST_F(DamagedTags, ShortReadDropsTheTagOnly) {
    for (const size_t bytes : {0, 1, 8}) {
        SCOPED_TRACE(bytes);
        mLog.clear();
        FaultySource& source = openMarked();
        const off64_t data = offset(mAvi.place("tag").dataOffset);
        source.inject(Fault::shortRead(bytes).onOffsets(data, data + 8));
        EXPECT_EQ("a title", title());
        EXPECT_EQ(std::nullopt, tag("album"));
        EXPECT_EQ("somebody", tag("albumartist"));
        EXPECT_EQ(3u, keyLines());
        EXPECT_EQ(2u, valueLines());
    }
}

TEST_F(DamagedTags, ReadErrorDropsTheTagOnly) {
    FaultySource& source = openMarked();
    const off64_t data = offset(mAvi.place("tag").dataOffset);
    source.inject(Fault::error(-EIO).onOffsets(data, data + 8));
    EXPECT_EQ(std::nullopt, tag("album"));
    EXPECT_EQ("somebody", tag("albumartist"));
}

TEST_F(DamagedTags, UnreadableHeaderEndsTheWalk) {
    for (const Fault& fault : {Fault::error(-EIO), Fault::shortRead(0), Fault::shortRead(7)}) {
        mLog.clear();
        FaultySource& source = openMarked();
        const off64_t header = offset(mAvi.place("tag").headerOffset);
        // From the second byte on: the text in front of it is read with one byte more.
        source.inject(Fault(fault).onOffsets(header + 1, header + 8));
        EXPECT_EQ("a title", title());
        EXPECT_EQ(std::nullopt, tag("album"));
        EXPECT_EQ(std::nullopt, tag("albumartist"));
        EXPECT_EQ(1u, keyLines());
        EXPECT_EQ(1u, countTracks());
    }
}

TEST_F(DamagedTags, EachTagTakesTwoReads) {
    FaultySource& source = openMarked();
    countTracks();
    std::vector<std::pair<off64_t, size_t>> reads;
    const off64_t begin = offset(mAvi.place("tag").headerOffset);
    for (const FaultySource::Call& call : source.calls()) {
        if (call.offset >= begin && call.offset < begin + 16)
            reads.emplace_back(call.offset - begin, call.size);
    }
    EXPECT_EQ((std::vector<std::pair<off64_t, size_t>>{{0, 8}, {8, 9}}), reads);
}

}  // namespace
}  // namespace avitest
