// SPDX-License-Identifier: Apache-2.0

#include "avi/ChunkWalker.h"

#include <memory>

#include <gtest/gtest.h>

#include "service/FaultySource.h"
#include "service/MemorySource.h"
#include "tests/support/Chunk.h"

namespace android {
namespace {

using avitest::Bytes;
using avitest::ByteWriter;
using avitest::Chunk;
using service::Fault;
using service::FaultySource;
using service::MemorySource;
using service::PlainDataSource;

// Bytes behind the interface that the walker reads through.
class Content {
  public:
    explicit Content(const Bytes& bytes)
        : mMemory(bytes),
          mFaulty(mMemory),
          mPlain(mFaulty),
          mReader(new DataSourceHelper(mPlain.get())) {}
    FileReader& reader() { return mReader; }
    FaultySource& source() { return mFaulty; }

  private:
    MemorySource mMemory;
    FaultySource mFaulty;
    PlainDataSource mPlain;
    FileReader mReader;
};

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

// Headers that lie close together are fetched ahead of time.
class ReadAhead : public ::testing::Test {
  protected:
    ReadAhead() { mContent.reader().keepSize(); }
    // How many calls of the source it takes to read one header `times` times, each `step` bytes
    // behind the one before.
    uint64_t callsFor(int64_t position, int64_t step, int times) {
        mContent.source().reset();
        ChunkHeader header;
        for (int i = 0; i < times; ++i)
            readChunkHeader(mContent.reader(), position + i * step, &header);
        return mContent.source().callCount();
    }

  private:
    Content mContent{Bytes(100000)};
};

TEST_F(ReadAhead, ManyHeadersTakeFewCalls) {
    EXPECT_LT(callsFor(0, 12, 1000), 30u);
}

TEST_F(ReadAhead, SameHeaderAgainAndAgainIsCloseToItself) {
    EXPECT_LT(callsFor(500, 0, 1000), 30u);
}

TEST_F(ReadAhead, HeadersThatLieFarApartAreReadOneByOne) {
    EXPECT_EQ(10u, callsFor(0, 9000, 10));
}

TEST_F(ReadAhead, JumpGivesUpWhatWasFetched) {
    callsFor(0, 12, 100);
    EXPECT_EQ(0u, callsFor(1200, 0, 1));
    EXPECT_EQ(1u, callsFor(50000, 0, 1));
    EXPECT_EQ(1u, callsFor(1200, 0, 1));
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
