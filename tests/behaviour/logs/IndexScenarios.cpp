// SPDX-License-Identifier: Apache-2.0
//
// The index forms, the scan without an index, and the finishing of tables.

#include "tests/behaviour/indexes/IndexesFixture.h"
#include "tests/behaviour/logs/Files.h"
#include "tests/behaviour/logs/Scenarios.h"

namespace avitest {

using android::service::Fault;

namespace {

Play withIndexes(void (*edit)(IndexedFile& file)) {
    IndexedFile file({2, 1});
    file.layOut();
    edit(file);
    return {file.bytes()};
}

Play withUnreadable(const std::string& mark, uint64_t begin) {
    IndexedFile file({2, 1});
    file.layOut();
    return {file.bytes(), {unreadable(file.avi.place(mark), begin)}};
}

AviFile scanned(const std::vector<Chunk>& strange) {
    AviFile avi = twoStreams();
    avi.segment().index.copies = 0;
    for (const Chunk& chunk : strange)
        avi.addLooseChunk(chunk);
    return avi;
}

Play indexedBeforeFormat(size_t frames) {
    AviFile avi = unindexedFile(frames);
    avi.stream(0).openDml = OpenDml::kStandard;
    avi.stream(0).edit = [](Chunk& strl) { strl.arrange({"strh", "indx", "strf"}); };
    return {avi.build()};
}

// Pictures and twice as much sound.
AviFile longSound() {
    AviFile avi = twoStreams();
    for (uint32_t i = 0; i < 2 * kClipSamples; ++i)
        avi.addChunk(1, patternBytes(1280, 200 + i));
    return avi;
}

}  // namespace

Play cutIdx1() {
    AviFile avi = twoStreams();
    Bytes file = avi.build();
    file.resize(file.size() - 8);
    return {file};
}

Play unreadableIdx1() {
    AviFile avi = twoStreams();
    const Bytes file = avi.build();
    return {file, {unreadable(avi.place("idx1.0"), 8)}};
}

Play idx1BeyondTheFile() {
    AviFile avi = twoStreams();
    avi.segment().index.edit = [](std::vector<Idx1Entry>& entries) {
        entries[3].offset = 0x7FFFFF00;
    };
    return {avi.build()};
}

Play idx1WithEntriesRepeated() {
    AviFile avi;
    avi.addStream(mjpegStream());
    avi.addChunk(0, Bytes(2));
    avi.segment().index.edit = [](std::vector<Idx1Entry>& entries) {
        entries.resize(200, entries[0]);
    };
    return {avi.build()};
}

Play indexBeforeFormat() {
    return indexedBeforeFormat(3);
}

Play indexOfTenFramesBeforeFormat() {
    return indexedBeforeFormat(10);
}

Play superIndex() {
    return withIndexes([](IndexedFile& file) {
        file.parts[0].header.reserved3 = 5;
        file.parts[1].header.baseOffset |= uint64_t{1} << 32;
    });
}

Play shortOpenDmlIndex() {
    return withStreamList([](Chunk& strl) { strl.add(Chunk("indx", Bytes(20))); });
}

Play unreadableOpenDmlIndex() {
    return withUnreadable("indx", 8);
}

Play unknownOpenDmlIndex() {
    return withIndexes([](IndexedFile& file) { file.super.header.type = 2; });
}

Play superIndexThatIsTooShort() {
    return withIndexes([](IndexedFile& file) { file.super.header.entriesInUse = 8; });
}

Play unreadableSuperEntry() {
    return withUnreadable("indx", 24);
}

Play unreadableStandardIndex() {
    return withUnreadable("part0", 8);
}

Play unreadableStandardEntries() {
    return withUnreadable("part1", 24);
}

Play standardIndexBehindTheFile() {
    return withIndexes([](IndexedFile& file) { file.super.entries[1].offset = 0x123456; });
}

Play shortStandardIndex() {
    return withIndexes([](IndexedFile& file) { file.super.entries[1].size = 20; });
}

Play fieldIndex() {
    return withIndexes([](IndexedFile& file) { file.parts[0].header.subType = 1; });
}

Play indexesThatRepeatEachOther() {
    IndexedFile file({200}, 40);
    file.layOut();
    for (SuperIndex::Entry& entry : file.super.entries)
        entry = file.super.entries[0];
    return {file.bytes()};
}

// The first RIFF fills the table, the second would add to it.
Play indexOfTheSecondRiffOverAFullTable() {
    IndexedFile file({200}, 40);
    file.avi.stream(0).header.length = 1000000;
    Segment& second = file.avi.addSegment();
    second.riffSize = 0x30000000;  // walked to the end of the file
    second.index.copies = 1;
    file.avi.addChunk(0, patternBytes(60));
    file.layOut();
    for (SuperIndex::Entry& entry : file.super.entries)
        entry = file.super.entries[0];
    return {file.bytes()};
}

Play scannedFile() {
    AviFile avi = scanned({Chunk("00pc", Bytes(4)), Chunk::list("odd ")});
    for (int i = 0; i < 10; ++i)
        avi.addLooseChunk(Chunk("JUNK", Bytes(4)));
    avi.beginGroup();
    avi.addChunk(0, patternBytes(50));
    avi.endGroup();
    return {avi.build()};
}

Play cutMovi() {
    AviFile avi = scanned({});
    Bytes file = avi.build();
    file.resize(file.size() - 100);
    return {file};
}

Play unreadableMovi() {
    AviFile avi = scanned({});
    const Bytes file = avi.build();
    return {file, {unreadableHeader(avi.chunks(1)[2].place)}};
}

Play scanOfUnknownChunks() {
    return {scanned(std::vector<Chunk>(101, Chunk("JUNK", Bytes(4)))).build()};
}

Play scanOfEmptyHeaders() {
    return {scanned(std::vector<Chunk>(1001, Chunk(uint32_t{0}))).build()};
}

Play trackWithoutSamples() {
    AviFile avi;
    avi.addStream(mjpegStream());
    avi.addStream(pcmStream());
    avi.addChunk(0, patternBytes(40));
    return {avi.build()};
}

Play audioWithoutRate() {
    AviFile avi = twoStreams();
    avi.stream(1).header.rate = 0;
    return {avi.build()};
}

Play audioLongerThanVideo() {
    return {longSound().build()};
}

}  // namespace avitest
