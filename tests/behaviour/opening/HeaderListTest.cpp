// SPDX-License-Identifier: Apache-2.0
//
// The header list: its chunks, its end, the number of its stream lists.

#include "tests/behaviour/opening/OpeningFixture.h"

namespace avitest {
namespace {

using android::service::Fault;
using ::testing::Contains;

class HeaderList : public LoggedFixture {
  protected:
    void expectMalformed() {
        EXPECT_EQ(0u, countTracks());
        EXPECT_THAT(log(), Contains(error("countTracks(): readMetaData() failed, err = -1007!")));
    }

    static std::string corrupted(uint64_t at, uint64_t end, bool avih, int streams, int expected) {
        return format(
            "parseHDRL(): hdrl seems to be corrupted: end at %llu, expected end at "
            "%llu,avih %s, actual streams %d, expected streams %d",
            static_cast<unsigned long long>(at), static_cast<unsigned long long>(end),
            avih ? "true" : "false", streams, expected);
    }
};

uint64_t endOf(const ChunkPlace& place) {
    return place.dataOffset + place.dataSize;
}

TEST_F(HeaderList, EmptyOneIsMalformed) {
    AviFile avi = videoFile();
    avi.editHeaders = [](Chunk& hdrl) { hdrl.children.clear(); };
    openFile(avi.build());
    expectMalformed();
    EXPECT_THAT(log(), Contains(Text(corrupted(24, 24, false, 0, 0))));
}

TEST_F(HeaderList, OneThatEndsInFrontOfItsContentsIsMalformed) {
    AviFile avi = videoFile();
    avi.editHeaders = [](Chunk& hdrl) { hdrl.children.clear(), hdrl.declare(0); };
    openFile(avi.build());
    expectMalformed();
    EXPECT_THAT(log(), Contains(Text(corrupted(24, 20, false, 0, 0))));
}

TEST_F(HeaderList, OneWithoutMainHeaderIsMalformed) {
    AviFile avi = videoFile();
    avi.editHeaders = [](Chunk& hdrl) { hdrl.children = {Chunk("JUNK", Bytes(20))}; };
    openFile(avi.build());
    expectMalformed();
    EXPECT_THAT(log(), Contains(Text(corrupted(52, 52, false, 0, 0))));
}

TEST_F(HeaderList, StreamListInFrontOfTheMainHeaderIsMalformed) {
    AviFile avi = videoFile();
    avi.editHeaders = [](Chunk& hdrl) { hdrl.arrange({"strl", "avih"}); };
    openFile(avi.build());
    expectMalformed();
    EXPECT_EQ(1u, mLog.count("parseHDRL(): avih MUST before strl! Malformed file!"));
    EXPECT_EQ(0u, mLog.count("new track"));
}

TEST_F(HeaderList, FewerStreamListsThanAnnouncedAreMalformed) {
    AviFile avi = twoStreamFile();
    avi.header.streams = 3;
    openFile(avi.build());
    expectMalformed();
    const uint64_t end = endOf(avi.place("hdrl"));
    EXPECT_THAT(log(), Contains(Text(corrupted(end, end, true, 2, 3))));
}

TEST_F(HeaderList, MoreStreamListsThanAnnouncedAreAccepted) {
    AviFile avi = twoStreamFile();
    avi.header.streams = 1;
    openFile(avi.build());
    EXPECT_EQ(2u, countTracks());
}

TEST_F(HeaderList, NoStreamListNeedBeAnnounced) {
    AviFile avi = twoStreamFile();
    avi.header.streams = 0;
    openFile(avi.build());
    EXPECT_EQ(2u, countTracks());
}

TEST_F(HeaderList, DroppedStreamsCountAsStreamLists) {
    AviFile avi = twoStreamFile();
    avi.stream(1).header.type = "txts";
    openFile(avi.build());
    EXPECT_EQ(1u, countTracks());
}

TEST_F(HeaderList, ErrorOfAStreamListEndsTheParse) {
    AviFile avi = twoStreamFile();
    avi.stream(0).edit = [](Chunk& strl) { strl.children.resize(1); };  // no format
    openFile(avi.build());
    expectMalformed();
    EXPECT_EQ(1u, mLog.count("new track"));
}

TEST_F(HeaderList, ChunkBeyondItsEndIsMalformed) {
    AviFile avi = videoFile();
    avi.editHeaders = [](Chunk& hdrl) { hdrl.add(Chunk("JUNK", Bytes(10)).declare(12)); };
    openFile(avi.build());
    expectMalformed();
    const uint64_t end = endOf(avi.place("hdrl"));
    EXPECT_THAT(log(), Contains(Text(corrupted(end + 2, end, true, 1, 1))));
}

TEST_F(HeaderList, JunkIsSkipped) {
    AviFile avi = twoStreamFile();
    avi.editHeaders = [](Chunk& hdrl) {
        hdrl.insert(0, Chunk("JUNK", Bytes(3)));
        hdrl.insert(2, Chunk("JUNK"));
        hdrl.add(Chunk("JUNK", Bytes(8)));
    };
    openFile(avi.build());
    EXPECT_EQ(2u, countTracks());
    EXPECT_EQ(0u, mLog.count("unknown chunk"));
}

TEST_F(HeaderList, UnknownListIsSkippedWithAWarning) {
    AviFile avi = twoStreamFile();
    avi.editHeaders = [](Chunk& hdrl) {
        hdrl.insert(1, Chunk::list("odml", {Chunk("dmlh", Bytes(4))}));
    };
    openFile(avi.build());
    EXPECT_EQ(2u, countTracks());
    EXPECT_THAT(log(),
                Contains(warning("parseHDRL(): unknown list " + idText("odml") + " in parseHDRL")));
}

TEST_F(HeaderList, UnknownChunkIsSkippedWithAWarning) {
    AviFile avi = twoStreamFile();
    avi.editHeaders = [](Chunk& hdrl) { hdrl.insert(0, Chunk("STRY", Bytes(9))); };
    openFile(avi.build());
    EXPECT_EQ(2u, countTracks());
    EXPECT_THAT(
        log(), Contains(warning("parseHDRL(): unknown chunk " + idText("STRY") + " in parseHDRL")));
}

TEST_F(HeaderList, ManyUnknownChunksDoNotEndItsWalk) {
    AviFile avi = twoStreamFile();
    avi.editHeaders = [](Chunk& hdrl) {
        for (int i = 0; i < 60; ++i)
            hdrl.insert(1, Chunk("STRY", Bytes(4)));
    };
    openFile(avi.build());
    EXPECT_EQ(2u, countTracks());
}

TEST_F(HeaderList, RunOfZerosIsLoggedOnce) {
    const std::vector<Chunk> zeros(3, Chunk(uint32_t{0}));
    AviFile avi = twoStreamFile();
    avi.editHeaders = [&](Chunk& hdrl) {
        for (const Chunk& zero : zeros)
            hdrl.insert(1, zero);
        hdrl.insert(1, Chunk("STRY"));
        for (const Chunk& zero : zeros)
            hdrl.insert(1, zero);
    };
    openFile(avi.build());
    EXPECT_EQ(2u, countTracks());
    EXPECT_EQ(2u, mLog.count("parseHDRL(): unknown chunk 0x00000000"));
}

TEST_F(HeaderList, EveryUnknownChunkWithAnIdIsLogged) {
    AviFile avi = twoStreamFile();
    avi.editHeaders = [](Chunk& hdrl) {
        hdrl.insert(1, Chunk("STRY"));
        hdrl.insert(1, Chunk("STRY"));
    };
    openFile(avi.build());
    EXPECT_EQ(2u, countTracks());
    EXPECT_EQ(2u, mLog.count("parseHDRL(): unknown chunk " + idText("STRY")));
}

TEST_F(HeaderList, ListTypesAreShownByTheExtractLog) {
    setProperty(kExtractLogProperty, "1");
    openFile(twoStreamFile().build());
    countTracks();
    EXPECT_THAT(log(), Contains(verbose("parseHDRL(): type " + idText("strl"))).Times(2));
}

TEST_F(HeaderList, PositionsAreShownByTheExtractLog) {
    AviFile avi = twoStreamFile();
    setProperty(kExtractLogProperty, "1");
    openFile(avi.build());
    countTracks();
    for (const char* mark : {"avih", "strl0", "strl1"}) {
        SCOPED_TRACE(mark);
        EXPECT_THAT(
            log(), Contains(verbose(format("parseHDRL(): pos %llX", static_cast<unsigned long long>(
                                                                        endOf(avi.place(mark)))))));
    }
}

TEST_F(HeaderList, UnreadableChunkHeaderIsAnIoError) {
    AviFile avi = twoStreamFile();
    const Bytes file = avi.build();
    const auto strl = static_cast<off64_t>(avi.place("strl1").headerOffset);
    openCounted(file).inject(Fault::shortRead(11).onOffsets(strl, strl + 1));
    EXPECT_EQ(0u, countTracks());
    EXPECT_THAT(log(), Contains(error("parseHDRL(): error -3EC @line2887")));
    EXPECT_THAT(log(), Contains(error("countTracks(): readMetaData() failed, err = -1004!")));
}

// A file that ends in its header list, whose last eight bytes are a chunk header of that size.
class HeaderListAtTheEnd : public HeaderList {
  protected:
    void openWithLastHeader(uint32_t size) {
        AviFile avi = videoFile();
        avi.editHeaders = [size](Chunk& hdrl) { hdrl.add(Chunk("STRY").declare(size)); };
        avi.segment().edit = [](Chunk& riff) { riff.arrange({"movi", "idx1", "hdrl"}); };
        openFile(avi.build());
        countTracks();
    }
};

TEST_F(HeaderListAtTheEnd, EightBytesOfSizeZeroEndTheWalkQuietly) {
    openWithLastHeader(0);
    EXPECT_EQ(0u, mLog.count("@line2887"));
    EXPECT_EQ(0u, mLog.count("hdrl seems to be corrupted"));
    EXPECT_EQ(0u, mLog.count("unknown chunk"));
    EXPECT_NE(0u, mLog.count("finishParse("));  // the walk of the RIFF went on to its end
}

// What zeros cut off is missing as if the list had ended there.
TEST_F(HeaderListAtTheEnd, ZerosInPlaceOfADeclaredStreamAreMalformed) {
    AviFile avi = twoStreamFile();
    avi.segment().edit = [](Chunk& riff) { riff.arrange({"movi", "idx1", "hdrl"}); };
    Bytes file = avi.build();
    const uint64_t cut = avi.place("strl1").headerOffset;
    file.resize(cut);
    file.resize(cut + 8);
    openFile(file);
    expectMalformed();
    EXPECT_THAT(log(), Contains(Text(corrupted(cut, endOf(avi.place("hdrl")), true, 1, 2))));
    EXPECT_EQ(0u, mLog.count("@line2887"));
}

TEST_F(HeaderListAtTheEnd, ZerosInPlaceOfTheMainHeaderAreMalformed) {
    AviFile avi = videoFile();
    avi.segment().edit = [](Chunk& riff) { riff.arrange({"movi", "idx1", "hdrl"}); };
    Bytes file = avi.build();
    const uint64_t cut = avi.place("avih").headerOffset;
    file.resize(cut);
    file.resize(cut + 8);
    openFile(file);
    expectMalformed();
    EXPECT_THAT(log(), Contains(Text(corrupted(cut, endOf(avi.place("hdrl")), false, 0, 0))));
}

TEST_F(HeaderListAtTheEnd, ZerosAfterTheDeclaredStreamsDoNoHarm) {
    AviFile avi = twoStreamFile();
    avi.header.streams = 1;
    avi.segment().edit = [](Chunk& riff) { riff.arrange({"movi", "idx1", "hdrl"}); };
    Bytes file = avi.build();
    const uint64_t cut = avi.place("strl1").headerOffset;
    file.resize(cut);
    file.resize(cut + 8);
    openFile(file);
    EXPECT_EQ(1u, countTracks());
    EXPECT_EQ(avi.payloads(0), readPayloads(0));  // by a scan: the index came first
}

TEST_F(HeaderListAtTheEnd, EightBytesWithASizeAreAnIoError) {
    openWithLastHeader(2);
    EXPECT_THAT(log(), Contains(error("parseHDRL(): error -3EC @line2887")));
}

// A file with a second header list, of one video stream, after the first.
class SecondHeaderList : public HeaderList {
  protected:
    // `edit` changes the second one.
    static AviFile twoLists(AviFile avi, const std::function<void(Chunk& hdrl)>& edit = nullptr) {
        avi.segment().edit = [edit](Chunk& riff) {
            Chunk second = videoLists();
            if (edit) edit(second);
            riff.insert(1, second);
        };
        return avi;
    }

  private:
    // The header list of videoFile().
    static Chunk videoLists() {
        Chunk result;
        AviFile other = videoFile();
        other.segment().edit = [&result](Chunk& riff) { result = riff.child("hdrl"); };
        other.build();
        result.mark.clear();
        for (Chunk& chunk : result.children)
            chunk.mark.clear();
        return result;
    }
};

TEST_F(SecondHeaderList, AddsItsStreams) {
    openFile(twoLists(twoStreamFile()).build());
    EXPECT_EQ(3u, countTracks());
}

// The chunks are those of the first list's streams.
TEST_F(SecondHeaderList, CountsItsStreamsFromZero) {
    setProperty(kExtractLogProperty, "1");
    AviFile avi = twoLists(videoFile());
    openFile(avi.build());
    ASSERT_EQ(2u, countTracks());
    EXPECT_THAT(log(), Contains(verbose("Dump Track[0]:")).Times(2));
    EXPECT_EQ(avi.payloads(0), readPayloads(0));
    EXPECT_EQ("video/x-unknown", trackFormat(1).getString(AMEDIAFORMAT_KEY_MIME));
}

TEST_F(SecondHeaderList, NeedsAMainHeaderOfItsOwn) {
    AviFile avi =
        twoLists(videoFile(), [](Chunk& hdrl) { hdrl.children.erase(hdrl.children.begin()); });
    openFile(avi.build());
    expectMalformed();
    EXPECT_EQ(1u, mLog.count("parseHDRL(): avih MUST before strl! Malformed file!"));
}

TEST_F(SecondHeaderList, MustHoldAsManyStreamsAsItsOwnMainHeaderSays) {
    AviFile avi =
        twoLists(twoStreamFile(), [](Chunk& hdrl) { hdrl.child("avih").payload[24] = 2; });
    openFile(avi.build());
    expectMalformed();
    EXPECT_EQ(1u, mLog.count(",avih true, actual streams 1, expected streams 2"));
}

}  // namespace
}  // namespace avitest
