// SPDX-License-Identifier: Apache-2.0
//
// The chunks of a stream list: their order, their number, and how the list may end.

#include <media/NdkMediaFormat.h>

#include "tests/behaviour/streams/StreamsFixture.h"

namespace avitest {

using android::service::Fault;
using ::testing::Contains;
using ::testing::Not;

class StreamList : public StreamsFixture {
  protected:
    // A video stream under test and a healthy audio stream behind it.
    AviFile mAvi = fileOf({mjpegStream(), pcmStream()});

    // Where the contents of stream 0's list begin and where the list ends.
    long long listStart() const {
        return static_cast<long long>(mAvi.place("strl0").dataOffset) + 4;
    }
    long long listEnd() const {
        const ChunkPlace place = mAvi.place("strl0");
        return static_cast<long long>(place.dataOffset + place.dataSize);
    }

    static LogLine corrupted(long long position, long long end, bool strh, bool strf) {
        return error(
            format("parseSTRL(): strl of stream 0 seems to be corrupted: end at %lld, "
                   "expected end at %lld, strh %s, strf %s",
                   position, end, strh ? "true" : "false", strf ? "true" : "false"));
    }

    void expectFirstStreamDropped() {
        EXPECT_EQ(1u, mLog.count(dropped().text));
        EXPECT_THAT(log(), Contains(dropped()));
        EXPECT_EQ("audio/raw", mime(0));
    }
};

TEST_F(StreamList, EachListIsAnnounced) {
    ASSERT_EQ(2u, open(mAvi));
    EXPECT_EQ(2u, mLog.count("parseSTRL(): new track."));
    EXPECT_THAT(log(), Contains(warning("parseSTRL(): new track.")));
    EXPECT_EQ(0u, mLog.count("parseSTRL(): Something wrong"));
}

TEST_F(StreamList, WithoutContentsFailsTheFile) {
    editStream(mAvi, 0, [](Chunk& strl) { strl.children.clear(); });
    EXPECT_EQ(0u, open(mAvi));
    EXPECT_THAT(log(), Contains(corrupted(listStart(), listEnd(), false, false)));
    EXPECT_THAT(log(), Contains(error("readMetaData(): error(-1007) happens when parse file!")));
}

TEST_F(StreamList, OfDeclaredLengthZeroFailsTheFile) {
    editStream(mAvi, 0, [](Chunk& strl) { strl.declare(0); });
    EXPECT_EQ(0u, open(mAvi));
    EXPECT_THAT(log(), Contains(corrupted(listStart(), listStart() - 4, false, false)));
}

TEST_F(StreamList, WithoutFormatFailsTheFile) {
    editStream(mAvi, 0, [](Chunk& strl) { strl.children.pop_back(); });
    EXPECT_EQ(0u, open(mAvi));
    EXPECT_THAT(log(), Contains(corrupted(listEnd(), listEnd(), true, false)));
    EXPECT_THAT(log(), Not(Contains(dropped())));
}

TEST_F(StreamList, WithChunkBeyondItsEndFailsTheFile) {
    editStream(mAvi, 0, [](Chunk& strl) { strl.add(Chunk("JUNK", Bytes(4)).declare(6)); });
    EXPECT_EQ(0u, open(mAvi));
    EXPECT_THAT(log(), Contains(corrupted(listEnd() + 2, listEnd(), true, true)));
    EXPECT_THAT(log(), Contains(error("readMetaData(): error(-1007) happens when parse file!")));
}

TEST_F(StreamList, DroppedStreamMayOverrunItsEnd) {
    editStream(mAvi, 0, [](Chunk& strl) { strl.child("strf").payload.resize(38); });
    ASSERT_EQ(1u, open(mAvi));
    expectFirstStreamDropped();
    EXPECT_EQ(0u, mLog.count("seems to be corrupted"));
}

TEST_F(StreamList, UnreadableChunkHeaderFailsTheFile) {
    editStream(mAvi, 0, [](Chunk& strl) { strl.child("strf").marked("strf"); });
    Bytes file = mAvi.build();
    const auto header = static_cast<off64_t>(mAvi.place("strf").headerOffset);
    EXPECT_EQ(0u, openFaulty(file, {Fault::shortRead(11).onOffsets(header, header + 1)}));
    EXPECT_THAT(log(), Contains(error("parseSTRL(): error -3EC @line2034")));
    EXPECT_THAT(log(), Contains(error("readMetaData(): error(-1004) happens when parse file!")));
}

TEST_F(StreamList, FileThatEndsInAChunkHeaderFails) {
    editStream(mAvi, 0, [](Chunk& strl) { strl.child("strf").marked("strf"); });
    Bytes file = mAvi.build();
    file.resize(mAvi.place("strf").dataOffset + 3);
    EXPECT_EQ(0u, open(file));
    EXPECT_THAT(log(), Contains(error("parseSTRL(): error -3EC @line2034")));
}

TEST_F(StreamList, ZeroTailEndsTheList) {
    editStream(mAvi, 0, [](Chunk& strl) { strl.child("strf").marked("strf"); });
    Bytes file = mAvi.build();
    const auto tail = mAvi.place("strf").headerOffset;
    file.resize(tail);
    file.resize(tail + 8);
    EXPECT_EQ(0u, open(file));
    EXPECT_THAT(log(), Contains(corrupted(static_cast<long long>(tail), listEnd(), true, false)));
    EXPECT_THAT(log(), Not(Contains(TextWith("parseSTRL(): error -3EC"))));
}

TEST_F(StreamList, LastEightBytesWithASizeAreNoZeroTail) {
    editStream(mAvi, 0, [](Chunk& strl) { strl.child("strf").marked("strf"); });
    Bytes file = mAvi.build();
    file.resize(mAvi.place("strf").dataOffset);  // 'strf', 40
    EXPECT_EQ(0u, open(file));
    EXPECT_THAT(log(), Contains(error("parseSTRL(): error -3EC @line2034")));
}

// The first chunk tells the kind of the stream; without it nothing else is looked at.
TEST_F(StreamList, ThatBeginsWithAnotherChunkIsDropped) {
    for (const ChunkId id : {ChunkId("JUNK"), ChunkId("abcd"), ChunkId("vprp"), ChunkId("strf"),
                             ChunkId("strd"), ChunkId("strn")}) {
        SCOPED_TRACE(id.text());
        editStream(mAvi, 0, [id](Chunk& strl) { strl.insert(0, Chunk(id, Bytes(40))); });
        mLog.clear();
        ASSERT_EQ(1u, open(mAvi));
        expectFirstStreamDropped();
    }
}

TEST_F(StreamList, ThatBeginsWithAListIsDropped) {
    editStream(mAvi, 0, [](Chunk& strl) { strl.insert(0, Chunk::list("odml")); });
    ASSERT_EQ(1u, open(mAvi));
    expectFirstStreamDropped();
}

TEST_F(StreamList, FormatBeforeHeaderIsReported) {
    editStream(mAvi, 0, [](Chunk& strl) { strl.arrange({"strf"}); });
    ASSERT_EQ(1u, open(mAvi));
    expectFirstStreamDropped();
    EXPECT_THAT(log(), Contains(error("parseSTRL(): Found strf before strh! Malformed file!")));
}

TEST_F(StreamList, PrivateDataBeforeHeaderIsReported) {
    mAvi.stream(0).privateData = Bytes(6);
    editStream(mAvi, 0, [](Chunk& strl) { strl.arrange({"strd"}); });
    ASSERT_EQ(1u, open(mAvi));
    expectFirstStreamDropped();
    EXPECT_THAT(log(), Contains(error("parseSTRL(): Found strd before strh! Malformed file!")));
}

TEST_F(StreamList, NameBeforeHeaderIsReported) {
    mAvi.stream(0).name = "en-";
    editStream(mAvi, 0, [](Chunk& strl) { strl.arrange({"strn"}); });
    ASSERT_EQ(1u, open(mAvi));
    expectFirstStreamDropped();
    EXPECT_THAT(log(), Contains(error("parseSTRL(): Found strn before strh! Malformed file!")));
}

TEST_F(StreamList, VideoPropertiesBeforeHeaderAreReported) {
    mAvi.stream(0).properties = VideoProperties();
    editStream(mAvi, 0, [](Chunk& strl) { strl.arrange({"vprp"}); });
    ASSERT_EQ(1u, open(mAvi));
    expectFirstStreamDropped();
    EXPECT_THAT(log(),
                Contains(warning("parseSTRL(): Found vprp before strh or strf! Malformed file!")));
}

TEST_F(StreamList, VideoPropertiesBeforeFormatDropTheStream) {
    mAvi.stream(0).properties = VideoProperties();
    editStream(mAvi, 0, [](Chunk& strl) { strl.arrange({"strh", "vprp"}); });
    ASSERT_EQ(1u, open(mAvi));
    expectFirstStreamDropped();
    EXPECT_THAT(log(),
                Contains(warning("parseSTRL(): Found vprp before strh or strf! Malformed file!")));
}

TEST_F(StreamList, NameAndPrivateDataMayPrecedeFormat) {
    mAvi.stream(0).privateData = Bytes(6);
    mAvi.stream(0).name = "de-";
    editStream(mAvi, 0, [](Chunk& strl) { strl.arrange({"strh", "strd", "strn"}); });
    ASSERT_EQ(2u, open(mAvi));
    EXPECT_EQ("deu", trackFormat(0).getString(AMEDIAFORMAT_KEY_LANGUAGE));
}

TEST_F(StreamList, JunkAfterHeaderIsSkippedSilently) {
    editStream(mAvi, 0, [](Chunk& strl) {
        strl.insert(1, Chunk("JUNK", patternBytes(13)));
        strl.add(Chunk("JUNK"));
    });
    ASSERT_EQ(2u, open(mAvi));
    EXPECT_EQ(0u, mLog.count("JUNK"));
}

TEST_F(StreamList, UnknownChunkIsReportedAndSkipped) {
    editStream(mAvi, 0, [](Chunk& strl) { strl.insert(1, Chunk("abcd", patternBytes(7))); });
    ASSERT_EQ(2u, open(mAvi));
    EXPECT_THAT(log(), Contains(warning("parseSTRL(): unknown chunk " + idText("abcd"))));
    EXPECT_EQ(mAvi.payloads(0), readPayloads(0));
}

TEST_F(StreamList, UnknownListIsReportedAndSkipped) {
    editStream(mAvi, 0, [](Chunk& strl) { strl.add(Chunk::list("odml", {Chunk("dmlh")})); });
    ASSERT_EQ(2u, open(mAvi));
    EXPECT_THAT(log(), Contains(warning("parseSTRL(): unknown list " + idText("odml"))));
    EXPECT_EQ(0u, mLog.count("parseSTRL(): type"));
}

TEST_F(StreamList, TypeOfAListIsLoggedOnRequest) {
    editStream(mAvi, 0, [](Chunk& strl) { strl.add(Chunk::list("odml")); });
    ASSERT_EQ(2u, openLogged(mAvi));
    EXPECT_THAT(log(), Contains(verbose("parseSTRL(): type " + idText("odml"))));
    EXPECT_THAT(log(), Contains(warning("parseSTRL(): unknown list " + idText("odml"))));
}

TEST_F(StreamList, SecondHeaderIsIgnored) {
    editStream(mAvi, 0, [](Chunk& strl) {
        Chunk second = strl.child("strh");
        std::copy_n("auds", 4, second.payload.begin());
        strl.insert(1, second);
    });
    ASSERT_EQ(2u, open(mAvi));
    EXPECT_THAT(log(), Contains(warning("parseSTRL(): Skip multiple strh")));
    EXPECT_EQ("video/x-motion-jpeg", mime(0));
}

TEST_F(StreamList, SecondHeaderMayEvenBeCut) {
    editStream(mAvi, 0, [](Chunk& strl) { strl.insert(1, Chunk("strh", Bytes(2))); });
    ASSERT_EQ(2u, open(mAvi));
    EXPECT_THAT(log(), Contains(warning("parseSTRL(): Skip multiple strh")));
}

TEST_F(StreamList, SecondFormatIsIgnored) {
    editStream(mAvi, 0, [](Chunk& strl) {
        strl.add(Chunk("strf", formatBytes(videoStream("H263", 16, 16, 1))));
        strl.add(Chunk("strf", Bytes(3)));
    });
    ASSERT_EQ(2u, open(mAvi));
    EXPECT_EQ(2u, mLog.count("parseSTRL(): Skip multiple strf..."));
    EXPECT_THAT(log(), Contains(warning("parseSTRL(): Skip multiple strf...")));
    EXPECT_EQ("video/x-motion-jpeg", mime(0));
    EXPECT_EQ(320, int32Of(0, AMEDIAFORMAT_KEY_WIDTH));
}

TEST_F(StreamList, SecondPrivateDataIsIgnored) {
    mAvi.stream(0).privateData = Bytes(6);
    editStream(mAvi, 0, [](Chunk& strl) { strl.add(Chunk("strd", Bytes(3))); });
    ASSERT_EQ(2u, open(mAvi));
    EXPECT_THAT(log(), Contains(warning("parseSTRL(): Skip multiple strd...")));
}

TEST_F(StreamList, SecondNameIsIgnored) {
    mAvi.stream(0).name = "es-";
    editStream(mAvi, 0, [](Chunk& strl) { strl.add(Chunk("strn", bytesOf("fr-"))); });
    ASSERT_EQ(2u, open(mAvi));
    EXPECT_THAT(log(), Contains(warning("parseSTRL(): Skip multiple strn...")));
    EXPECT_EQ("spa", trackFormat(0).getString(AMEDIAFORMAT_KEY_LANGUAGE));
}

TEST_F(StreamList, PrivateDataIsNotPublished) {
    ASSERT_EQ(2u, open(mAvi));
    const std::string without = trackFormat(0).toString();
    mAvi.stream(0).privateData = patternBytes(40);
    ASSERT_EQ(2u, open(mAvi));
    EXPECT_EQ(without, trackFormat(0).toString());
}

}  // namespace avitest
