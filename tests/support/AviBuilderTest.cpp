// SPDX-License-Identifier: Apache-2.0

#include "tests/support/AviBuilder.h"

#include <algorithm>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace avitest {
namespace {

using ::testing::ElementsAre;

uint32_t u32At(const Bytes& file, uint64_t offset) {
    uint32_t value = 0;
    for (size_t i = 0; i < 4; ++i)
        value |= uint32_t{file.at(offset + i)} << (8 * i);
    return value;
}

Bytes slice(const Bytes& file, uint64_t offset, uint64_t size) {
    const auto begin = file.begin() + static_cast<std::ptrdiff_t>(offset);
    return Bytes(begin, begin + static_cast<std::ptrdiff_t>(size));
}

// The 32-bit words of the first idx1.
std::vector<uint32_t> indexWords(const AviFile& avi, const Bytes& file) {
    const ChunkPlace place = avi.place("idx1.0");
    std::vector<uint32_t> result;
    for (uint64_t i = 0; i + 4 <= place.dataSize; i += 4) {
        result.push_back(u32At(file, place.dataOffset + i));
    }
    return result;
}

uint32_t narrow(uint64_t value) {
    return static_cast<uint32_t>(value);
}

// One video stream with a key frame of 3 bytes and another frame of 2.
AviFile twoFrames() {
    AviFile avi;
    const size_t video = avi.addStream(videoStream("MJPG", 320, 240, 25));
    avi.addChunk(video, {1, 2, 3}, kKey);
    avi.addChunk(video, {4, 5}, kNoFlags);
    return avi;
}

// clang-format off: a line of the two layouts below is a chunk or a part of one
TEST(AviFile, EmptyFileHasHeaderListMoviAndIndex) {
    const Bytes expected = ByteWriter()
                               .fourcc("RIFF")
                               .u32(4 + 12 + 64 + 12 + 8)
                               .fourcc("AVI ")
                               .fourcc("LIST")
                               .u32(4 + 64)
                               .fourcc("hdrl")
                               .fourcc("avih")
                               .u32(56)
                               .fill(12)
                               .u32(0x10)
                               .fill(40)
                               .fourcc("LIST")
                               .u32(4)
                               .fourcc("movi")
                               .fourcc("idx1")
                               .u32(0)
                               .take();
    EXPECT_EQ(expected, AviFile().build());
}

TEST(AviFile, StreamListMoviAndIndexLieByteForByte) {
    AviFile avi = twoFrames();
    const Bytes file = avi.build();
    const Bytes strl = ByteWriter()
                           .fourcc("LIST")
                           .u32(4 + 64 + 48)
                           .fourcc("strl")
                           .fourcc("strh")
                           .u32(56)
                           .fourcc("vids")
                           .fourcc("MJPG")
                           .fill(12)
                           .u32(1)
                           .u32(25)
                           .u32(0)
                           .u32(2)
                           .u32(3)
                           .u32(0xFFFFFFFF)
                           .u32(0)
                           .u16(0)
                           .u16(0)
                           .u16(320)
                           .u16(240)
                           .fourcc("strf")
                           .u32(40)
                           .u32(40)
                           .u32(320)
                           .u32(240)
                           .u16(1)
                           .u16(24)
                           .fourcc("MJPG")
                           .u32(320 * 240 * 3)
                           .fill(16)
                           .take();
    const Bytes rest = ByteWriter()
                           .fourcc("LIST")
                           .u32(4 + 12 + 10)
                           .fourcc("movi")
                           .fourcc("00dc")
                           .u32(3)
                           .u8(1)
                           .u8(2)
                           .u8(3)
                           .u8(0)
                           .fourcc("00dc")
                           .u32(2)
                           .u8(4)
                           .u8(5)
                           .fourcc("idx1")
                           .u32(32)
                           .fourcc("00dc")
                           .u32(0x10)
                           .u32(4)
                           .u32(3)
                           .fourcc("00dc")
                           .u32(0)
                           .u32(16)
                           .u32(2)
                           .take();
    const uint64_t start = avi.place("strl0").headerOffset;
    EXPECT_EQ(strl, slice(file, start, strl.size()));
    EXPECT_EQ(rest, slice(file, start + strl.size(), file.size() - start - strl.size()));
}
// clang-format on

TEST(AviFile, MainHeaderIsFilledInFromTheStreams) {
    AviFile avi = twoFrames();
    avi.addStream(pcmStream(2, 44100, 16));
    const Bytes file = avi.build();
    const uint64_t avih = avi.place("avih").dataOffset;
    EXPECT_EQ(40000u, u32At(file, avih));
    EXPECT_EQ(2u, u32At(file, avih + 16));
    EXPECT_EQ(2u, u32At(file, avih + 24));
    EXPECT_EQ(320u, u32At(file, avih + 32));
    EXPECT_EQ(240u, u32At(file, avih + 36));
}

TEST(AviFile, MainHeaderFieldsThatAreSetStay) {
    AviFile avi = twoFrames();
    avi.header.streams = 9;
    avi.header.width = 0;
    const Bytes file = avi.build();
    EXPECT_EQ(9u, u32At(file, avi.place("avih").dataOffset + 24));
    EXPECT_EQ(0u, u32At(file, avi.place("avih").dataOffset + 32));
}

TEST(AviFile, LengthOfPcmCountsSampleFrames) {
    AviFile avi;
    const size_t audio = avi.addStream(pcmStream(2, 8000, 16));
    avi.addChunk(audio, Bytes(40));
    avi.addChunk(audio, Bytes(8));
    const Bytes file = avi.build();
    const uint64_t strh = avi.place("strl0").dataOffset + 4 + 8;
    EXPECT_EQ(4u, u32At(file, strh + 20));      // scale
    EXPECT_EQ(32000u, u32At(file, strh + 24));  // rate
    EXPECT_EQ(12u, u32At(file, strh + 32));     // length
    EXPECT_EQ(40u, u32At(file, strh + 36));     // suggested buffer size
    EXPECT_EQ(4u, u32At(file, strh + 44));      // sample size
}

TEST(AviFile, LengthOfFrameAudioCountsChunks) {
    AviFile avi;
    const size_t audio = avi.addStream(frameAudioStream(0x55, 2, 44100, 1152));
    avi.addChunk(audio, Bytes(40));
    avi.addChunk(audio, Bytes(8));
    const Bytes file = avi.build();
    const uint64_t strh = avi.place("strl0").dataOffset + 4 + 8;
    EXPECT_EQ(1152u, u32At(file, strh + 20));
    EXPECT_EQ(44100u, u32At(file, strh + 24));
    EXPECT_EQ(2u, u32At(file, strh + 32));
    EXPECT_EQ(0u, u32At(file, strh + 44));
}

TEST(AviFile, OptionalStreamChunksFollowInOrder) {
    AviFile avi;
    Stream stream = videoStream("XVID", 16, 16, 25);
    stream.privateData = Bytes{1};
    stream.name = "ab";
    stream.properties = VideoProperties();
    stream.openDml = OpenDml::kStandard;
    std::vector<std::string> ids;
    stream.edit = [&ids](Chunk& strl) {
        ids.clear();
        for (const Chunk& chunk : strl.children)
            ids.push_back(chunk.id.text());
    };
    avi.addStream(stream);
    avi.build();
    EXPECT_THAT(ids, ElementsAre("strh", "strf", "strd", "strn", "vprp", "indx"));
}

TEST(AviFile, ChunkIdsCarryTheStreamsNumberAndType) {
    AviFile avi;
    avi.addStream(videoStream("MJPG", 16, 16, 25));
    for (int i = 1; i < 13; ++i)
        avi.addStream(pcmStream(1, 8000, 8));
    EXPECT_EQ(ChunkId("00dc"), avi.addChunk(0, {}).chunk.id);
    EXPECT_EQ(ChunkId("01wb"), avi.addChunk(1, {}).chunk.id);
    EXPECT_EQ(ChunkId("12wb"), avi.addChunk(12, {}).chunk.id);
}

TEST(AviFile, PlacesOfChunksAreWhereTheirDataLies) {
    AviFile avi = twoFrames();
    const Bytes file = avi.build();
    ASSERT_EQ(2u, avi.chunks(0).size());
    for (const MoviChunk& item : avi.allChunks()) {
        EXPECT_EQ(item.data(), slice(file, item.place.dataOffset, item.data().size()));
        EXPECT_EQ(item.place.headerOffset + 8, item.place.dataOffset);
    }
}

TEST(AviFile, RelativeOffsetsCountFromTheMoviTypeWord) {
    AviFile avi = twoFrames();
    const Bytes file = avi.build();
    const uint64_t movi = avi.place("movi0").headerOffset;
    EXPECT_EQ(movi + 8 + indexWords(avi, file)[2], avi.chunks(0)[0].place.headerOffset);
    EXPECT_EQ(movi + 8 + indexWords(avi, file)[6], avi.chunks(0)[1].place.headerOffset);
}

TEST(AviFile, AbsoluteOffsetsCountFromTheBeginning) {
    AviFile avi = twoFrames();
    avi.segment().index.offsets = IndexOffsets::kAbsolute;
    const Bytes file = avi.build();
    EXPECT_EQ(avi.chunks(0)[1].place.headerOffset, indexWords(avi, file)[6]);
}

TEST(AviFile, IndexEntryMayLie) {
    AviFile avi = twoFrames();
    MoviChunk& chunk = avi.addChunk(0, {6});
    chunk.indexId = "07wb";
    chunk.indexOffset = 0xFFFFFFFF;
    chunk.indexLength = 0x80000000;
    const Bytes file = avi.build();
    const std::vector<uint32_t> words = indexWords(avi, file);
    EXPECT_THAT(std::vector<uint32_t>(words.begin() + 8, words.end()),
                ElementsAre(ChunkId("07wb").value(), 0x10u, 0xFFFFFFFFu, 0x80000000u));
}

TEST(AviFile, UnindexedChunksHaveNoEntry) {
    AviFile avi = twoFrames();
    avi.addChunk(0, {6}).indexed = false;
    avi.addLooseChunk(Chunk("JUNK", {7}));
    EXPECT_EQ(8u, indexWords(avi, avi.build()).size());
}

TEST(AviFile, IndexEditHasTheLastWord) {
    AviFile avi = twoFrames();
    avi.segment().index.edit = [](std::vector<Idx1Entry>& entries) {
        entries.erase(entries.begin());
        entries[0].flags = 0x77;
    };
    const Bytes file = avi.build();
    EXPECT_THAT(indexWords(avi, file), ElementsAre(ChunkId("00dc").value(), 0x77u, 16u, 2u));
}

TEST(AviFile, IndexMayBeLeftOutOrWrittenTwiceWithATail) {
    AviFile avi = twoFrames();
    avi.segment().index.copies = 0;
    const size_t without = avi.build().size();
    avi.segment().index.copies = 2;
    avi.segment().index.tail = {1, 2};
    EXPECT_EQ(without + 2 * (8 + 32 + 2), avi.build().size());
}

TEST(AviFile, GroupedChunksLieInARecListThatTheIndexMayName) {
    AviFile avi = twoFrames();
    avi.beginGroup();
    avi.addChunk(0, {6, 7});
    avi.endGroup();
    avi.addChunk(0, {8, 9});
    avi.segment().index.listsIndexed = true;
    const Bytes file = avi.build();
    const ChunkPlace list = avi.place("rec0");
    EXPECT_EQ(14u, u32At(file, list.headerOffset + 4));
    EXPECT_EQ(list.headerOffset + 12, avi.chunks(0)[2].place.headerOffset);
    EXPECT_EQ(list.headerOffset + 22, avi.chunks(0)[3].place.headerOffset);
    const std::vector<uint32_t> words = indexWords(avi, file);
    ASSERT_EQ(20u, words.size());
    EXPECT_EQ(ChunkId("rec ").value(), words[8]);
    EXPECT_EQ(kListEntry, words[9]);
    EXPECT_EQ(list.headerOffset, avi.place("movi0").dataOffset + words[10]);
    EXPECT_EQ(14u, words[11]);
}

TEST(AviFile, EditOfTheSegmentMovesListsAndTheIndexFollows) {
    AviFile avi = twoFrames();
    avi.segment().index.offsets = IndexOffsets::kAbsolute;
    avi.segment().edit = [](Chunk& riff) { riff.arrange({"movi", "idx1", "hdrl"}); };
    const Bytes file = avi.build();
    EXPECT_EQ(12u, avi.place("movi0").headerOffset);
    EXPECT_EQ(24u, indexWords(avi, file)[2]);
    EXPECT_LT(avi.place("idx1.0").headerOffset, avi.place("hdrl").headerOffset);
}

TEST(AviFile, ExtraChunksLieWhereTheirListSays) {
    AviFile avi = twoFrames();
    Segment& segment = avi.segment();
    segment.beforeHeaders.push_back(Chunk("aaaa").marked("a"));
    segment.beforeMovi.push_back(Chunk("bbbb").marked("b"));
    segment.afterMovi.push_back(Chunk("cccc").marked("c"));
    segment.afterIndex.push_back(Chunk("dddd").marked("d"));
    avi.build();
    std::vector<uint64_t> places;
    for (const char* mark : {"a", "hdrl", "b", "movi0", "c", "idx1.0", "d"}) {
        places.push_back(avi.place(mark).headerOffset);
    }
    EXPECT_TRUE(std::is_sorted(places.begin(), places.end()));
}

TEST(AviFile, RiffSizeFormAndTrailingBytesAreSettable) {
    AviFile avi = twoFrames();
    const size_t plain = avi.build().size();
    avi.segment().riffSize = 0x40000001;
    avi.segment().form = "WAVE";
    avi.trailing = Bytes(8);
    const Bytes file = avi.build();
    EXPECT_EQ(0x40000001u, u32At(file, 4));
    EXPECT_EQ(ChunkId("WAVE").value(), u32At(file, 8));
    EXPECT_EQ(plain + 8, file.size());
}

TEST(AviFile, EditsReachHeadersAndStreamLists) {
    AviFile avi = twoFrames();
    avi.stream(0).edit = [](Chunk& strl) { strl.child("strh").payload.resize(48); };
    avi.editHeaders = [](Chunk& hdrl) { hdrl.add(Chunk("JUNK").marked("junk")); };
    const Bytes file = avi.build();
    EXPECT_EQ(48u, u32At(file, avi.place("strl0").dataOffset + 8));
    EXPECT_LT(avi.place("junk").headerOffset, avi.place("movi0").headerOffset);
}

TEST(AviFile, DamagedMoviChunkIsWrittenAsItSays) {
    AviFile avi = twoFrames();
    avi.addChunk(0, {6}).chunk.declare(0x1000).unpadded();
    avi.addChunk(0, {7});
    const Bytes file = avi.build();
    EXPECT_EQ(0x1000u, u32At(file, avi.chunks(0)[2].place.headerOffset + 4));
    EXPECT_EQ(avi.chunks(0)[2].place.dataOffset + 1, avi.chunks(0)[3].place.headerOffset);
}

TEST(AviFile, FurtherSegmentHoldsItsOwnMoviAndIndex) {
    AviFile avi = twoFrames();
    avi.addSegment().index.copies = 1;
    avi.addChunk(0, {6, 7, 8, 9});
    const Bytes file = avi.build();
    const uint64_t riff = avi.place("riff1").headerOffset;
    EXPECT_EQ(riff, 8 + uint64_t{u32At(file, 4)});
    EXPECT_EQ(ChunkId("AVIX").value(), u32At(file, riff + 8));
    EXPECT_EQ(riff + 12, avi.place("movi1").headerOffset);
    EXPECT_EQ(4u, u32At(file, avi.place("idx1.1").dataOffset + 8));
    EXPECT_EQ(32u, avi.place("idx1.0").dataSize);
    EXPECT_EQ((Bytes{6, 7, 8, 9}), slice(file, avi.chunks(0)[2].place.dataOffset, 4));
}

TEST(AviFile, StandardIndexInTheStreamListPointsAtTheData) {
    AviFile avi = twoFrames();
    avi.stream(0).openDml = OpenDml::kStandard;
    avi.stream(0).edit = [](Chunk& strl) { strl.child("indx").marked("indx"); };
    const Bytes file = avi.build();
    const uint64_t indx = avi.place("indx").dataOffset;
    EXPECT_EQ(2u, u32At(file, indx + 4));
    const uint32_t base = u32At(file, indx + 12);
    EXPECT_EQ(avi.chunks(0)[0].place.dataOffset, base + u32At(file, indx + 24));
    EXPECT_EQ(3u, u32At(file, indx + 28));
    EXPECT_EQ(avi.chunks(0)[1].place.dataOffset, base + u32At(file, indx + 32));
    EXPECT_EQ(2u | kNotKeyBit, u32At(file, indx + 36));
}

TEST(AviFile, SuperIndexPointsAtTheIndexOfEachSegment) {
    AviFile avi = twoFrames();
    avi.addSegment();
    avi.addChunk(0, {6});
    avi.stream(0).openDml = OpenDml::kSuper;
    avi.stream(0).edit = [](Chunk& strl) { strl.child("indx").marked("indx"); };
    const Bytes file = avi.build();
    const uint64_t indx = avi.place("indx").dataOffset;
    ASSERT_EQ(2u, u32At(file, indx + 4));
    for (uint32_t i = 0; i < 2; ++i) {
        const uint32_t index = u32At(file, indx + 24 + 16 * i);
        EXPECT_EQ(ChunkId("ix00").value(), u32At(file, index));
        EXPECT_EQ(u32At(file, indx + 32 + 16 * i), u32At(file, index + 4) + 8);
        const uint32_t base = u32At(file, index + 8 + 12);
        EXPECT_EQ(narrow(avi.chunks(0)[i * 2].place.dataOffset), base + u32At(file, index + 32));
    }
}

TEST(AviFile, BuildMayBeRepeatedAfterAChange) {
    AviFile avi = twoFrames();
    const Bytes first = avi.build();
    avi.addChunk(0, {6, 7});
    EXPECT_EQ(first.size() + 10 + 16, avi.build().size());
    EXPECT_EQ(avi.build(), avi.build());
}

TEST(AviFileDeathTest, UnknownMarkEndsTheProgram) {
    EXPECT_DEATH(AviFile().place("nowhere"), "no chunk is marked 'nowhere'");
}

TEST(AviFileDeathTest, EditThatDependsOnOffsetsEndsTheProgram) {
    AviFile avi = twoFrames();
    avi.segment().index.edit = [](std::vector<Idx1Entry>& entries) {
        if (entries[0].offset != 0) entries.pop_back();
    };
    EXPECT_DEATH(avi.build(), "an edit function depends on the offsets");
}

}  // namespace
}  // namespace avitest
