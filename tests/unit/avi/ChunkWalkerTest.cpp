// SPDX-License-Identifier: Apache-2.0

#include "avi/ChunkWalker.h"

#include <gtest/gtest.h>

#include "tests/support/Chunk.h"
#include "tests/unit/avi/Content.h"

namespace android {
namespace {

using avitest::Bytes;
using avitest::ByteWriter;
using avitest::Chunk;
using service::Fault;

HeaderRead readHeader(const Bytes& bytes, ChunkHeader* out) {
    Content content(bytes);
    return readChunkHeader(content.reader(), 0, out);
}

TEST(ChunkHeader, HasIdSizeAndType) {
    ChunkHeader header;
    EXPECT_EQ(HeaderRead::kWhole, readHeader(Chunk::list("hdrl").toBytes(), &header));
    EXPECT_EQ(fourcc("LIST"), header.id);
    EXPECT_EQ(4u, header.size);
    EXPECT_EQ(fourcc("hdrl"), header.type);
}

TEST(ChunkHeader, TypeOfAPlainChunkIsTheBeginningOfItsPayload) {
    ChunkHeader header;
    const Bytes bytes = Chunk("strn", {'a', 'b', 'c', 'd', 'e'}).toBytes();
    EXPECT_EQ(HeaderRead::kWhole, readHeader(bytes, &header));
    EXPECT_EQ(5u, header.size);
    EXPECT_EQ(fourcc("abcd"), header.type);
}

TEST(ChunkHeader, EightBytesOfSizeZeroAreAZeroTail) {
    ChunkHeader header;
    EXPECT_EQ(HeaderRead::kZeroTail, readHeader(Bytes(8), &header));
    EXPECT_EQ(HeaderRead::kZeroTail, readHeader(Chunk("JUNK").toBytes(), &header));
}

TEST(ChunkHeader, EightBytesWithASizeLackTheirType) {
    ChunkHeader header;
    EXPECT_EQ(HeaderRead::kCutType, readHeader(Chunk("JUNK").declare(1).toBytes(), &header));
    EXPECT_EQ(fourcc("JUNK"), header.id);
    EXPECT_EQ(1u, header.size);
}

TEST(ChunkHeader, AnyOtherShortReadIsUnreadable) {
    for (size_t length : {0u, 1u, 7u, 9u, 11u}) {
        SCOPED_TRACE(length);
        ChunkHeader header;
        EXPECT_EQ(HeaderRead::kUnreadable, readHeader(Bytes(length), &header));
    }
}

TEST(ChunkHeader, ReadErrorIsUnreadable) {
    Content content(Bytes(100));
    content.source().inject(Fault::error(-EIO));
    ChunkHeader header;
    EXPECT_EQ(HeaderRead::kUnreadable, readChunkHeader(content.reader(), 0, &header));
}

TEST(ChunkHeader, FailureLeavesTheResultAlone) {
    for (size_t length : {0u, 7u, 11u}) {
        SCOPED_TRACE(length);
        ChunkHeader header;
        header.id = fourcc("same");
        header.size = 3;
        readHeader(Bytes(length), &header);
        EXPECT_EQ(fourcc("same"), header.id);
        EXPECT_EQ(3u, header.size);
    }
}

TEST(ChunkHeader, IsReadAtItsPosition) {
    Content content(ByteWriter().fill(5).bytes(Chunk::list("movi").toBytes()).take());
    ChunkHeader header;
    EXPECT_EQ(HeaderRead::kWhole, readChunkHeader(content.reader(), 5, &header));
    EXPECT_EQ(fourcc("movi"), header.type);
    ASSERT_EQ(1u, content.source().callCount());
    EXPECT_EQ(12u, content.source().calls()[0].size);
}

// An odd chunk, a list, and room for a look behind it.
Bytes siblings() {
    return ByteWriter()
        .bytes(Chunk("strn", Bytes(5)).toBytes())
        .bytes(Chunk::list("strl", {Chunk("strh", Bytes(4))}).toBytes())
        .bytes(Chunk("JUNK", Bytes(4)).toBytes())
        .take();
}

TEST(ChunkWalker, StandsInFrontOfTheFirstChunk) {
    Content content(siblings());
    const ChunkWalker chunk(content.reader(), 0);
    EXPECT_EQ(0, chunk.next());
    EXPECT_EQ(0u, content.source().callCount());
}

TEST(ChunkWalker, StepsOverThePadByte) {
    Content content(siblings());
    ChunkWalker chunk(content.reader(), 0);
    EXPECT_EQ(HeaderRead::kWhole, chunk.advance());
    EXPECT_EQ(fourcc("strn"), chunk.header().id);
    EXPECT_EQ(0, chunk.position());
    EXPECT_EQ(8, chunk.payload());
    EXPECT_EQ(14, chunk.next());
    EXPECT_FALSE(chunk.isList(fourcc("strl")));
}

TEST(ChunkWalker, StepsOverAListWithItsContents) {
    Content content(siblings());
    ChunkWalker chunk(content.reader(), 14);
    EXPECT_EQ(HeaderRead::kWhole, chunk.advance());
    EXPECT_TRUE(chunk.isList(fourcc("strl")));
    EXPECT_FALSE(chunk.isList(fourcc("movi")));
    EXPECT_EQ(26, chunk.listContents());
    EXPECT_EQ(38, chunk.next());
}

TEST(ChunkWalker, TypeOfAPlainChunkMakesItNoList) {
    Content content(Chunk("JUNK", {'s', 't', 'r', 'l'}).toBytes());
    ChunkWalker chunk(content.reader(), 0);
    EXPECT_EQ(HeaderRead::kWhole, chunk.advance());
    EXPECT_FALSE(chunk.isList(fourcc("strl")));
}

TEST(ChunkWalker, StaysWhereItIsWhenAHeaderCannotBeRead) {
    Content content(ByteWriter().bytes(siblings()).fill(8).take());
    ChunkWalker chunk(content.reader(), 38);
    EXPECT_EQ(HeaderRead::kWhole, chunk.advance());
    EXPECT_EQ(HeaderRead::kZeroTail, chunk.advance());
    EXPECT_EQ(fourcc("JUNK"), chunk.header().id);
    EXPECT_EQ(38, chunk.position());
    EXPECT_EQ(50, chunk.next());
}

TEST(ChunkWalker, SizeAndPadAreAddedIn32Bits) {
    Content content(ByteWriter().fourcc("JUNK").u32(0xFFFFFFFF).u32(0).take());
    ChunkWalker chunk(content.reader(), 0);
    EXPECT_EQ(HeaderRead::kWhole, chunk.advance());
    EXPECT_EQ(8, chunk.next());
}

TEST(ChunkWalker, PositionsAre64BitsWide) {
    Content content(ByteWriter().fourcc("JUNK").u32(0xFFFFFFFE).u32(0).take());
    ChunkWalker chunk(content.reader(), 0);
    EXPECT_EQ(HeaderRead::kWhole, chunk.advance());
    EXPECT_EQ(int64_t{0x100000006}, chunk.next());
}

}  // namespace
}  // namespace android
