// SPDX-License-Identifier: Apache-2.0
//
// idx1: which stream an entry belongs to.

#include <algorithm>

#include "tests/behaviour/reading/ReadingFixture.h"

namespace avitest {
namespace {

class LegacyIndexStreams : public ReadingTest {};

TEST_F(LegacyIndexStreams, HundredStreamsReadTheirOwnChunks) {
    AviFile avi;
    for (size_t i = 0; i < 100; ++i)
        avi.addStream(alawStream());
    for (size_t i = 0; i < 100; ++i)
        avi.addChunk(99 - i, patternBytes(20 + i, static_cast<uint32_t>(i)));
    openFile(avi.build());

    ASSERT_EQ(countTracks(), 100u);
    for (size_t i = 0; i < 100; ++i) {
        SCOPED_TRACE(i);
        const std::vector<Sample> samples = readAll(99 - i);
        ASSERT_EQ(samples.size(), 1u);
        EXPECT_EQ(samples[0].bytes, patternBytes(20 + i, static_cast<uint32_t>(i)));
    }
}

TEST_F(LegacyIndexStreams, NumberWithoutStreamIsCountedAndDropped) {
    for (const char* id : {"01dc", "05dc", "99wb"}) {
        SCOPED_TRACE(id);
        LogCapture log;
        AviFile avi = fileOf(mjpegStream(), {patternBytes(30), patternBytes(40)});
        avi.segment().index.edit = [id](std::vector<Idx1Entry>& entries) {
            entries[0].id = ChunkId::of(id);
        };
        openFile(avi.build());

        EXPECT_EQ(readPayloads(0), std::vector<Bytes>{patternBytes(40)});
        EXPECT_THAT(log, Logged(ANDROID_LOG_DEBUG, "parseIDX1(): end (2 samples added)..."));
    }
}

TEST_F(LegacyIndexStreams, IdWithoutDigitsIsCountedAndDropped) {
    const ChunkId ids[] = {"ix00",
                           "LIST",
                           "    ",
                           uint32_t{0},
                           uint32_t{0xFFFFFFFF},
                           "\x2F\x2F"
                           "dc"};
    for (const ChunkId id : ids) {
        SCOPED_TRACE(id.value());
        LogCapture log;
        AviFile avi = fileOf(mjpegStream(), {patternBytes(30), patternBytes(40)});
        avi.segment().index.edit = [id](std::vector<Idx1Entry>& entries) { entries[0].id = id; };
        openFile(avi.build());

        EXPECT_EQ(readPayloads(0), std::vector<Bytes>{patternBytes(40)});
        EXPECT_THAT(log, Logged(ANDROID_LOG_DEBUG, "parseIDX1(): end (2 samples added)..."));
    }
}

TEST_F(LegacyIndexStreams, CharactersAreWeighedLikeDigits) {
    // ':' follows '9', so "0:" is stream 10; '/' precedes '0', so "1/" is stream 9.
    struct Row {
        ChunkId id;
        size_t stream;
    };
    const Row rows[] = {{"0:wb", 10}, {"1/wb", 9}, {"/:wb", 0}};
    for (const Row& row : rows) {
        SCOPED_TRACE(row.id.text());
        AviFile avi;
        for (size_t i = 0; i < 11; ++i)
            avi.addStream(alawStream());
        avi.addChunk(0, patternBytes(30)).indexId = row.id;
        openFile(avi.build());

        EXPECT_EQ(readPayloads(row.stream), std::vector<Bytes>{patternBytes(30)});
    }
}

TEST_F(LegacyIndexStreams, LettersOfTheIdDoNotMatter) {
    AviFile avi = fileOf(mjpegStream(), {patternBytes(30), patternBytes(40)});
    avi.segment().index.edit = [](std::vector<Idx1Entry>& entries) {
        entries[0].id = "00wb";
        entries[1].id = "00xx";
    };
    openFile(avi.build());

    EXPECT_EQ(readAll(0).size(), 2u);
}

TEST_F(LegacyIndexStreams, StreamBehindADroppedOneKeepsItsNumber) {
    AviFile avi;
    Stream text = mjpegStream();
    text.header.type = "txts";
    const size_t dropped = avi.addStream(text);
    const size_t video = avi.addStream(mjpegStream());
    const size_t audio = avi.addStream(alawStream());
    avi.addChunk(dropped, patternBytes(20, 1));
    avi.addChunk(video, patternBytes(30, 2));
    avi.addChunk(audio, patternBytes(40, 3));
    openFile(avi.build());

    ASSERT_EQ(countTracks(), 2u);
    EXPECT_EQ(readPayloads(0), std::vector<Bytes>{patternBytes(30, 2)});
    EXPECT_EQ(readPayloads(1), std::vector<Bytes>{patternBytes(40, 3)});
}

TEST_F(LegacyIndexStreams, VideoPutFirstKeepsItsNumber) {
    AviFile avi;
    const size_t audio = avi.addStream(alawStream());
    const size_t other = avi.addStream(alawStream());
    const size_t video = avi.addStream(mjpegStream());
    const size_t last = avi.addStream(alawStream());
    for (const size_t stream : {audio, other, video, last}) {
        avi.addChunk(stream, patternBytes(20 + stream, static_cast<uint32_t>(stream)));
    }
    openFile(avi.build());

    ASSERT_EQ(countTracks(), 4u);
    const size_t order[] = {video, audio, other, last};
    for (size_t track = 0; track < 4; ++track) {
        SCOPED_TRACE(track);
        const size_t stream = order[track];
        EXPECT_EQ(readPayloads(track),
                  std::vector<Bytes>{patternBytes(20 + stream, static_cast<uint32_t>(stream))});
    }
}

TEST_F(LegacyIndexStreams, DroppedStreamAndVideoPutFirstKeepTheirNumbers) {
    AviFile avi;
    Stream text = mjpegStream();
    text.header.type = "txts";
    avi.addStream(text);
    const size_t audio = avi.addStream(alawStream());
    const size_t video = avi.addStream(mjpegStream());
    avi.addChunk(audio, patternBytes(40, 3));
    avi.addChunk(video, patternBytes(30, 2));
    openFile(avi.build());

    ASSERT_EQ(countTracks(), 2u);
    EXPECT_EQ(readPayloads(0), std::vector<Bytes>{patternBytes(30, 2)});
    EXPECT_EQ(readPayloads(1), std::vector<Bytes>{patternBytes(40, 3)});
}

}  // namespace
}  // namespace avitest
