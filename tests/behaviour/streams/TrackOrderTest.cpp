// SPDX-License-Identifier: Apache-2.0
//
// Which streams become tracks, in which order, and whose chunks they get.

#include <media/NdkMediaFormat.h>

#include "tests/behaviour/streams/StreamsFixture.h"

namespace avitest {

using ::testing::Contains;
using ::testing::Not;

namespace {

Stream ofType(Stream stream, ChunkId type) {
    stream.header.type = type;
    return stream;
}

}  // namespace

class TrackOrder : public StreamsFixture {
  protected:
    // Opens the file and expects its tracks to hold the chunks of these streams, in this order.
    void expectTracks(AviFile& avi, const std::vector<size_t>& streams) {
        ASSERT_EQ(streams.size(), open(avi));
        for (size_t track = 0; track < streams.size(); ++track) {
            SCOPED_TRACE(format("track %zu, stream %zu", track, streams[track]));
            EXPECT_EQ(avi.payloads(streams[track]), readPayloads(track));
        }
    }
};

TEST_F(TrackOrder, FollowsTheStreamsWhenVideoComesFirst) {
    AviFile avi = fileOf({mjpegStream(), pcmStream(), pcmStream()});
    expectTracks(avi, {0, 1, 2});
    EXPECT_EQ(0u, mLog.count(kPutFirst));
}

TEST_F(TrackOrder, VideoAfterAudioIsPutFirst) {
    AviFile avi = fileOf({pcmStream(), mjpegStream()});
    expectTracks(avi, {1, 0});
    EXPECT_THAT(log(), Contains(debug(kPutFirst)));
    EXPECT_EQ(1u, mLog.count(kPutFirst));
}

TEST_F(TrackOrder, VideoBetweenAudioStreamsIsPutFirst) {
    AviFile avi = fileOf({pcmStream(), mjpegStream(), pcmStream()});
    expectTracks(avi, {1, 0, 2});
}

TEST_F(TrackOrder, VideoAfterTwoAudioStreamsIsPutFirst) {
    AviFile avi = fileOf({pcmStream(), pcmStream(), mjpegStream(), pcmStream()});
    expectTracks(avi, {2, 0, 1, 3});
}

TEST_F(TrackOrder, OnlyOneVideoIsPutFirst) {
    AviFile avi = fileOf({pcmStream(), mjpegStream(), mjpegStream()});
    expectTracks(avi, {1, 0, 2});
    EXPECT_EQ(1u, mLog.count(kPutFirst));
}

TEST_F(TrackOrder, SecondVideoStaysBehindTheFirst) {
    AviFile avi = fileOf({mjpegStream(), pcmStream(), mjpegStream()});
    expectTracks(avi, {0, 1, 2});
    EXPECT_EQ(0u, mLog.count(kPutFirst));
}

TEST_F(TrackOrder, UnknownVideoIsPutFirstToo) {
    AviFile avi = fileOf({pcmStream(), videoStream("XVID", 320, 240, 25)});
    expectTracks(avi, {1, 0});
}

TEST_F(TrackOrder, StreamsWithoutVideoStayInOrder) {
    AviFile avi = fileOf({pcmStream(), pcmStream(), pcmStream()});
    expectTracks(avi, {0, 1, 2});
}

TEST_F(TrackOrder, VideoThatIsDroppedAfterItWasPutFirstLeavesTheOthersInOrder) {
    AviFile avi =
        fileOf({pcmStream(), pcmStream(), videoWithExtra("H264", Bytes(10)), pcmStream()});
    // The header can be read, the bytes behind it cannot.
    editStream(avi, 2, [](Chunk& strl) { strl.child("strf").marked("strf"); });
    ASSERT_EQ(3u, openUnreadable(avi, "strf", 40));
    EXPECT_EQ(1u, mLog.count(kPutFirst));
    EXPECT_THAT(log(), Contains(dropped()));
    EXPECT_EQ(avi.payloads(0), readPayloads(0));
    EXPECT_EQ(avi.payloads(1), readPayloads(1));
    EXPECT_EQ(avi.payloads(3), readPayloads(2));
}

TEST_F(TrackOrder, VideoBehindADroppedVideoIsPutFirst) {
    AviFile avi = fileOf({pcmStream(), mjpegStream(), mjpegStream()});
    editStream(avi, 1, [](Chunk& strl) { strl.child("strf").payload.resize(8); });
    expectTracks(avi, {2, 0});
}

TEST_F(TrackOrder, StreamsBehindADroppedOneKeepTheirNumbers) {
    AviFile avi = fileOf({ofType(pcmStream(), "txts"), mjpegStream(), pcmStream()});
    expectTracks(avi, {1, 2});
    EXPECT_EQ(1u, mLog.count(dropped().text));
}

TEST_F(TrackOrder, DroppedStreamInTheMiddleLeavesANumberOut) {
    AviFile avi = fileOf({mjpegStream(), ofType(pcmStream(), "txts"), pcmStream(), pcmStream()});
    expectTracks(avi, {0, 2, 3});
}

TEST_F(TrackOrder, DroppedLastStreamChangesNothing) {
    AviFile avi = fileOf({mjpegStream(), pcmStream(), ofType(pcmStream(), "txts")});
    expectTracks(avi, {0, 1});
}

TEST_F(TrackOrder, SeveralStreamsMayBeDropped) {
    AviFile avi = fileOf({ofType(pcmStream(), "txts"), ofType(pcmStream(), "iavs"), pcmStream(),
                          ofType(mjpegStream(), "VIDS"), mjpegStream()});
    expectTracks(avi, {4, 2});
    EXPECT_EQ(3u, mLog.count(dropped().text));
}

TEST_F(TrackOrder, FileWhoseStreamsAreAllDroppedHasNoTracks) {
    AviFile avi = fileOf({ofType(mjpegStream(), "txts")});
    EXPECT_EQ(0u, open(avi));
    EXPECT_THAT(log(), Contains(error("readMetaData(): error(-1010) happens when parse file!")));
}

TEST_F(TrackOrder, MidiStreamCountsAsAudio) {
    AviFile avi = fileOf({mjpegStream(), ofType(pcmStream(), "midi")});
    expectTracks(avi, {0, 1});
    EXPECT_EQ("audio/raw", mime(1));
}

TEST_F(TrackOrder, TypesAreComparedWithCase) {
    for (const ChunkId type : {ChunkId("VIDS"), ChunkId("AUDS"), ChunkId("Auds"), ChunkId("MIDI"),
                               ChunkId("txts"), ChunkId("iavs"), ChunkId(0)}) {
        SCOPED_TRACE(type.text());
        EXPECT_FALSE(becomesTrack(ofType(pcmStream(), type)));
    }
}

TEST_F(TrackOrder, DisabledAudioStreamIsDropped) {
    setProperty(kDisableAudioProperty, "1");
    AviFile avi = fileOf({mjpegStream(), pcmStream()});
    expectTracks(avi, {0});
    EXPECT_THAT(log(), Contains(dropped()));
}

TEST_F(TrackOrder, DisabledMidiStreamIsDropped) {
    setProperty(kDisableAudioProperty, "1");
    AviFile avi = fileOf({ofType(pcmStream(), "midi"), mjpegStream()});
    expectTracks(avi, {1});
}

// Right after its header: what follows is not even looked at.
TEST_F(TrackOrder, FormatOfADisabledAudioStreamIsNotRead) {
    setProperty(kDisableAudioProperty, "1");
    AviFile avi = fileOf({audioOfTag(0x1234), mjpegStream()});
    expectTracks(avi, {1});
    EXPECT_EQ(0u, mLog.count("unknown wave"));
}

TEST_F(TrackOrder, AudioIsKeptWhileTheSwitchIsZero) {
    setProperty(kDisableAudioProperty, "0");
    AviFile avi = fileOf({mjpegStream(), pcmStream()});
    expectTracks(avi, {0, 1});
    EXPECT_THAT(log(), Not(Contains(dropped())));
}

TEST_F(TrackOrder, FileOfDisabledAudioAloneHasNoTracks) {
    setProperty(kDisableAudioProperty, "1");
    AviFile avi = fileOf({pcmStream()});
    EXPECT_EQ(0u, open(avi));
}

}  // namespace avitest
