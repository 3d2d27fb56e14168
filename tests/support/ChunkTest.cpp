// SPDX-License-Identifier: Apache-2.0

#include "tests/support/Chunk.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace avitest {
namespace {

using ::testing::ElementsAre;

TEST(ChunkId, LiteralIsHeldInFileOrder) {
    EXPECT_EQ(0x46464952u, ChunkId("RIFF").value());
    EXPECT_EQ("RIFF", ChunkId("RIFF").text());
}

TEST(ChunkId, HighBytesOfALiteralStayApart) {
    EXPECT_EQ(0x80FF0141u, ChunkId("A\x01\xFF\x80").value());
}

TEST(ChunkId, ShortRuntimeTextIsFilledWithBlanks) {
    EXPECT_EQ(ChunkId("ab  "), ChunkId::of("ab"));
    EXPECT_EQ(ChunkId("abcd"), ChunkId::of("abcdef"));
}

TEST(ByteWriter, ValuesAreLittleEndian) {
    ByteWriter out;
    out.u8(0x01).u16(0x0302).u32(0x07060504).u64(0x0F0E0D0C0B0A0908).i16(-2).i32(-3);
    EXPECT_THAT(out.data(), ElementsAre(1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11, 12, 13, 14, 15,  //
                                        0xFE, 0xFF, 0xFD, 0xFF, 0xFF, 0xFF));
}

TEST(ByteWriter, TextFillAndPadAppend) {
    ByteWriter out;
    out.bytes("ab").fill(1, 7).pad(4, 9).pad(4, 9);
    EXPECT_THAT(out.data(), ElementsAre('a', 'b', 7, 9));
}

TEST(ByteWriter, CutDropsTheEndAndNeverGrows) {
    EXPECT_THAT(ByteWriter().u32(0x04030201).cut(3).cut(9).data(), ElementsAre(1, 2, 3));
}

TEST(ByteWriter, PatchOverwritesInPlace) {
    ByteWriter out;
    out.fill(6).patchU32(1, 0x04030201);
    EXPECT_THAT(out.data(), ElementsAre(0, 1, 2, 3, 4, 0));
}

TEST(PatternBytes, SeedsAndPlacesDiffer) {
    EXPECT_EQ(patternBytes(64, 3), patternBytes(64, 3));
    EXPECT_NE(patternBytes(64, 3), patternBytes(64, 4));
    const Bytes whole = patternBytes(64);
    const Bytes head(whole.begin(), whole.begin() + 32);
    const Bytes shifted(whole.begin() + 1, whole.begin() + 33);
    EXPECT_EQ(patternBytes(32), head);
    EXPECT_NE(head, shifted);
}

TEST(Chunk, OddPayloadIsPadded) {
    EXPECT_THAT(Chunk("JUNK", {1, 2, 3}).toBytes(),
                ElementsAre('J', 'U', 'N', 'K', 3, 0, 0, 0, 1, 2, 3, 0));
}

TEST(Chunk, EvenPayloadIsNotPadded) {
    EXPECT_THAT(Chunk("JUNK", {1, 2}).toBytes(), ElementsAre('J', 'U', 'N', 'K', 2, 0, 0, 0, 1, 2));
}

TEST(Chunk, UnpaddedLeavesThePadByteOut) {
    EXPECT_THAT(Chunk("JUNK", {1}).unpadded().toBytes(),
                ElementsAre('J', 'U', 'N', 'K', 1, 0, 0, 0, 1));
}

TEST(Chunk, PadByteIsSettable) {
    Chunk chunk("JUNK", {1});
    chunk.padByte = 0xEE;
    EXPECT_EQ(0xEE, chunk.toBytes().back());
}

TEST(Chunk, DeclaredSizeReplacesTheTrueOne) {
    EXPECT_THAT(Chunk("JUNK", {1, 2}).declare(0x12345678).toBytes(),
                ElementsAre('J', 'U', 'N', 'K', 0x78, 0x56, 0x34, 0x12, 1, 2));
}

TEST(Chunk, KeepCutsTheBytesButNotTheSizeField) {
    EXPECT_THAT(Chunk("JUNK", {1, 2, 3}).keep(9).toBytes(),
                ElementsAre('J', 'U', 'N', 'K', 3, 0, 0, 0, 1));
    EXPECT_THAT(Chunk("JUNK", {1, 2, 3}).keep(5).toBytes(), ElementsAre('J', 'U', 'N', 'K', 3));
}

TEST(Chunk, ListSizeCountsTypeAndChildrenWithTheirPadding) {
    const Chunk list = Chunk::list("INFO", {Chunk("INAM", {'x'})});
    EXPECT_THAT(list.toBytes(), ElementsAre('L', 'I', 'S', 'T', 14, 0, 0, 0, 'I', 'N', 'F', 'O',  //
                                            'I', 'N', 'A', 'M', 1, 0, 0, 0, 'x', 0));
}

TEST(Chunk, ListSizeCountsWhatACutChildLeft) {
    const Chunk list = Chunk::list("INFO", {Chunk("INAM", {'x', 'y'}).keep(9)});
    EXPECT_EQ(13, list.toBytes()[4]);
}

TEST(Chunk, MarkedPlacesCountFromTheBeginningOfTheFile) {
    const Chunk riff = Chunk::list(
        "AVI ",
        {Chunk("JUNK", Bytes(3)), Chunk::list("movi", {Chunk("00dc", Bytes(5)).marked("a")})},
        "RIFF");
    ByteWriter out;
    Layout layout;
    riff.write(out, &layout);
    ASSERT_EQ(1u, layout.count("a"));
    EXPECT_EQ(12u + 12u + 12u, layout["a"].headerOffset);
    EXPECT_EQ(12u + 12u + 12u + 8u, layout["a"].dataOffset);
    EXPECT_EQ(5u, layout["a"].dataSize);
}

TEST(Chunk, ChildFindsListsByTypeAndChunksById) {
    Chunk riff = Chunk::list("AVI ", {Chunk("JUNK", {1}), Chunk::list("movi"), Chunk("JUNK", {2})});
    EXPECT_EQ(ChunkId("LIST"), riff.child("movi").id);
    EXPECT_THAT(riff.child("JUNK", 1).payload, ElementsAre(2));
}

TEST(ChunkDeathTest, MissingChildEndsTheProgram) {
    Chunk riff = Chunk::list("AVI ", {Chunk("JUNK")});
    EXPECT_DEATH(riff.child("JUNK", 1), "'AVI ' has no child 'JUNK' number 1");
}

TEST(Chunk, ArrangePutsTheNamedFirstAndKeepsTheRestInOrder) {
    Chunk riff = Chunk::list("AVI ", {Chunk("aaaa"), Chunk::list("hdrl"), Chunk("bbbb"),
                                      Chunk::list("movi"), Chunk("idx1")});
    riff.arrange({"movi", "hdrl"});
    std::vector<std::string> names;
    for (const Chunk& chunk : riff.children)
        names.push_back(chunk.name().text());
    EXPECT_THAT(names, ElementsAre("movi", "hdrl", "aaaa", "bbbb", "idx1"));
}

TEST(Chunk, InsertPutsAChildBeforeAPosition) {
    Chunk list = Chunk::list("strl", {Chunk("strh"), Chunk("strf")});
    list.insert(0, Chunk("JUNK")).insert(3, Chunk("strn"));
    EXPECT_EQ(ChunkId("JUNK"), list.children.front().id);
    EXPECT_EQ(ChunkId("strn"), list.children.back().id);
}

}  // namespace
}  // namespace avitest
