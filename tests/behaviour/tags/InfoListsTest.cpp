// SPDX-License-Identifier: Apache-2.0
//
// Where lists of tags are looked for, and how far one reaches.

#include "tests/behaviour/tags/TagsFixture.h"

namespace avitest {
namespace {

class InfoLists : public TagsFixture {};

TEST_F(InfoLists, AreFoundAnywhereInTheFirstRiff) {
    const Chunk list = infoList({{"INAM", "a title"}});
    for (int place = 0; place < 4; ++place) {
        SCOPED_TRACE(place);
        AviFile avi = fileOfLists({});
        Segment& riff = avi.segment();
        std::vector<Chunk>* places[] = {&riff.beforeHeaders, &riff.beforeMovi, &riff.afterMovi,
                                        &riff.afterIndex};
        places[place]->push_back(list);
        places[place]->push_back(Chunk("JUNK", Bytes(8)));
        open(std::move(avi));
        EXPECT_EQ("a title", title());
    }
}

TEST_F(InfoLists, SeveralAddUp) {
    open(fileOfLists({infoList({{"INAM", "first"}, {"IART", "somebody"}}),
                      infoList({{"INAM", "second"}, {"IGNR", "a genre"}}),
                      Chunk("JUNK", Bytes(8))}));
    EXPECT_EQ("second", title());
    EXPECT_EQ("somebody", tag("albumartist"));
    EXPECT_EQ("a genre", tag("genre"));
}

TEST_F(InfoLists, ThoseOfFurtherRiffsAreIgnored) {
    AviFile avi = taggedFile({{"INAM", "first"}});
    avi.addSegment();
    avi.addChunk(0, patternBytes(30, 2));
    avi.segment(1).beforeMovi = {infoList({{"INAM", "second"}, {"IART", "somebody"}})};
    openLogged(std::move(avi));
    EXPECT_EQ("first", title());
    EXPECT_EQ(std::nullopt, tag("albumartist"));
    EXPECT_EQ(1u, keyLines());
}

TEST_F(InfoLists, ThoseWithinTheHeaderListAreIgnored) {
    AviFile avi = fileOfLists({});
    avi.editHeaders = [](Chunk& hdrl) { hdrl.add(infoList({{"INAM", "a title"}})); };
    open(std::move(avi));
    EXPECT_EQ(std::nullopt, title());
}

TEST_F(InfoLists, ChunkOfThatNameIsNone) {
    open(fileOfLists({Chunk("INFO", infoList({{"INAM", "a title"}}).toBytes())}));
    EXPECT_EQ(std::nullopt, title());
}

TEST_F(InfoLists, EmptyOneHasNoTags) {
    openLogged(fileOfLists({Chunk::list("INFO"), Chunk("INAM", bytesOf("none"))}));
    EXPECT_EQ(std::nullopt, title());
    EXPECT_EQ(0u, mLog.count("parseINFO"));
}

// A list that is not even as long as its type.
TEST_F(InfoLists, ShortOneHasNoTags) {
    for (const uint32_t size : {0, 1, 3}) {
        SCOPED_TRACE(size);
        openLogged(fileOfLists({infoList({{"INAM", "a title"}}).declare(size)}));
        EXPECT_EQ(std::nullopt, title());
        EXPECT_EQ(0u, mLog.count("parseINFO"));
    }
}

// A tag counts when it begins before its list ends.
TEST_F(InfoLists, TagThatOverrunsItsListIsWhole) {
    const Chunk list = infoList({{"INAM", "a title"}, {"IART", "somebody"}});
    for (const uint32_t size : {5, 6, 12, 15, 20}) {
        SCOPED_TRACE(size);
        open(fileOfLists({Chunk(list).declare(size), Chunk("JUNK", Bytes(20))}));
        EXPECT_EQ("a title", title());
        EXPECT_EQ(std::nullopt, tag("albumartist"));
    }
    // One byte more: 4 of the type, 8 + 8 of the first tag, and a byte of the second.
    open(fileOfLists({Chunk(list).declare(21), Chunk("JUNK", Bytes(20))}));
    EXPECT_EQ("somebody", tag("albumartist"));
}

TEST_F(InfoLists, ListThatOverrunsItsNeighbourTakesItForATag) {
    Chunk list = infoList({{"INAM", "a title"}});
    const auto size = static_cast<uint32_t>(list.toBytes().size() - 8);
    open(fileOfLists({list.declare(size + 4), Chunk("JUNK", Bytes(20)), Chunk("JUNK", Bytes(8))}));
    EXPECT_EQ("a title", title());
    EXPECT_THAT(log(),
                ::testing::Contains(warning("parseINFO(): unknown meta key " + idText("JUNK"))));
}

TEST_F(InfoLists, ListThatOverrunsTheFileEndsWithIt) {
    for (const uint32_t size : {1000u, 0x7FFFFFFFu, 0xFFFFFFF0u, 0xFFFFFFFEu}) {
        SCOPED_TRACE(size);
        mLog.clear();
        AviFile avi = fileOfLists({infoList({{"INAM", "a title"}}).declare(size)});
        avi.trailing = Bytes(3);
        openLogged(std::move(avi));
        EXPECT_EQ("a title", title());
        EXPECT_EQ(1u, mLog.count("parseINFO(): meta key"));
        EXPECT_EQ(0u, mLog.count("unknown meta key"));
    }
}

// Padding makes 0 of its size.
TEST_F(InfoLists, ListOfTheLargestSizeHasNoTags) {
    openLogged(fileOfLists({infoList({{"INAM", "a title"}}).declare(0xFFFFFFFF)}));
    EXPECT_EQ(std::nullopt, title());
    EXPECT_EQ(0u, mLog.count("parseINFO"));
}

// A walk that did not move on would never end.
TEST_F(InfoLists, ZerosUpToTheEndOfTheFileAreEmptyTags) {
    AviFile avi = fileOfLists({Chunk::list("INFO").declare(0xFFFFFFFE)});
    avi.trailing = Bytes(8 * 100);
    open(std::move(avi));
    EXPECT_EQ(100u, mLog.count("parseINFO(): unknown meta key 0x00000000:"));
}

}  // namespace
}  // namespace avitest
