// SPDX-License-Identifier: Apache-2.0
//
// Stream lists and stream formats.

#include "tests/behaviour/logs/Files.h"
#include "tests/behaviour/logs/Scenarios.h"
#include "tests/behaviour/reading/ReadingFixture.h"

namespace avitest {

namespace {

Play withStream(const Stream& stream) {
    AviFile avi;
    avi.addStream(mjpegStream());
    avi.addStream(stream);
    avi.addChunk(0, patternBytes(40));
    avi.addChunk(1, patternBytes(40, 1));
    return {avi.build()};
}

Play withUnreadableChunk(ChunkId id, uint64_t begin) {
    AviFile avi;
    avi.addStream(mjpegStream());
    avi.addStream(audioWithExtra(0xFF, {0x12, 0x10, 0, 0}));
    avi.stream(1).edit = [id](Chunk& strl) { strl.child(id).marked("target"); };
    avi.addChunk(0, patternBytes(40));
    const Bytes file = avi.build();
    return {file, {unreadable(avi.place("target"), begin)}};
}

}  // namespace

Play moreStreamsThanIdsCanName() {
    constexpr size_t kNames = 2278;
    AviFile avi;
    for (size_t i = 0; i <= kNames; ++i)
        avi.addStream(videoStream("MJPG", 2, 2, 25));
    avi.addChunk(0, patternBytes(8), kKey);
    return {avi.build()};
}

Play emptyStreamList() {
    return withStreamList([](Chunk& strl) { strl.children.clear(); });
}

Play streamListWithoutFormat() {
    return withStreamList([](Chunk& strl) { strl.child("strf").id = "JUNK"; });
}

Play unreadableStreamList() {
    AviFile avi = twoStreams();
    avi.stream(1).edit = [](Chunk& strl) { strl.child("strf").marked("target"); };
    const Bytes file = avi.build();
    return {file, {unreadableHeader(avi.place("target"))}};
}

Play formatBeforeHeader() {
    return withStreamList([](Chunk& strl) { strl.arrange({"strf", "strh"}); });
}

Play privateDataBeforeHeader() {
    return withStreamList([](Chunk& strl) { strl.insert(0, Chunk("strd", {1, 2})); });
}

Play nameBeforeHeader() {
    return withStreamList([](Chunk& strl) { strl.insert(0, Chunk("strn", {'e', 'n'})); });
}

Play propertiesBeforeFormat() {
    return withStreamList([](Chunk& strl) { strl.insert(1, Chunk("vprp", Bytes(36))); });
}

Play everythingTwice() {
    return withStreamList([](Chunk& strl) {
        strl.add(Chunk("strd", {1, 2})).add(Chunk("strn", {'e', 'n', '-', 0}));
        const std::vector<Chunk> copies = strl.children;
        for (const Chunk& copy : copies)
            strl.add(copy);
    });
}

Play shortStreamHeader() {
    return withStreamList([](Chunk& strl) { strl.child("strh").payload.resize(44); });
}

Play unreadableStreamHeader() {
    return withUnreadableChunk("strh", 8);
}

Play videoWithoutRate() {
    Stream stream = mjpegStream();
    stream.header.rate = 0;
    return {clipOf(stream, patternBytes(40), patternBytes(30)).build()};
}

Play shortFormat() {
    return withStreamList([](Chunk& strl) { strl.child("strf").payload.resize(14); });
}

Play unreadableFormat() {
    return withUnreadableChunk("strf", 8);
}

Play unreadableExtraData() {
    return withUnreadableChunk("strf", 20);
}

Play formatWithTwoBytesMore() {
    return withStreamList([](Chunk& strl) { strl.child("strf").payload.resize(18); });
}

Play audioBeforeVideo() {
    AviFile avi;
    avi.addStream(pcmStream());
    avi.addStream(mjpegStream());
    avi.addChunk(0, patternBytes(40));
    avi.addChunk(1, patternBytes(40));
    return {avi.build()};
}

Play unknownCodecs() {
    AviFile avi;
    avi.addStream(videoStream("XVID", 320, 240, 25));
    avi.addStream(audioOfTag(0x1234));
    avi.addChunk(0, patternBytes(40));
    avi.addChunk(1, patternBytes(40));
    return {avi.build()};
}

Play avcRecord() {
    return {clipOf(lengthPrefixedStream(4), {0, 0, 0, 4, 0x65, 0x88, 0x84, 0x21},
                   {0, 0, 0, 3, 0x41, 0x9A, 2})
                .build()};
}

Play avcRecordOfAnotherVersion() {
    Stream stream = lengthPrefixedStream(4);
    std::get<BitmapInfo>(stream.format).extra[0] = 2;
    return {fileWith(stream, {patternBytes(40)}).build()};
}

Play hevcRecord() {
    return {fileWith(videoWithExtra("HEVC", {0, 0, 0, 1, 0x40, 1, 0x0C, 1}), {patternBytes(40)})
                .build()};
}

Play wmv() {
    return {fileWith(videoWithExtra("WMV3", {0x4E, 0x29, 0xF4, 0x01}), {patternBytes(40)}).build()};
}

Play wma() {
    return withStream(audioWithExtra(0x161, {1, 2, 3, 4, 5, 6}));
}

Play vorbis() {
    return withStream(audioWithExtra(0x566F, vorbisHeaders()));
}

}  // namespace avitest
