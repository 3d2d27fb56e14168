// SPDX-License-Identifier: Apache-2.0
//
// The extractor's queries, RIFF segments, header list, INFO list.

#include <cerrno>
#include <utility>

#include "service/MemorySource.h"
#include "tests/behaviour/logs/Files.h"
#include "tests/behaviour/logs/Scenarios.h"

namespace avitest {

using android::service::DataSource;
using android::service::Extractor;
using android::service::Fault;
using android::service::MemorySource;

namespace {

constexpr uint32_t kBeyondTheFile = 0x30000000;  // a RIFF size, see walkEnd()
constexpr uint32_t kBeyondTheFormat = 0x40000001;

// Shows one content to the sniffer and another to the parser.
class SwappedSource : public DataSource {
  public:
    SwappedSource(Bytes sniffed, Bytes parsed)
        : mSniffed(std::move(sniffed)), mParsed(std::move(parsed)) {}
    ssize_t readAt(off64_t offset, void* data, size_t size) override {
        return (std::exchange(mIsSniffed, true) ? mParsed : mSniffed).readAt(offset, data, size);
    }
    android::status_t getSize(off64_t* size) override { return mParsed.getSize(size); }

  private:
    MemorySource mSniffed;
    MemorySource mParsed;
    bool mIsSniffed = false;
};

// Frames in two RIFFs.
AviFile twoSegments(size_t copiesOfSecondIndex) {
    AviFile avi;
    avi.addStream(mjpegStream());
    avi.addChunk(0, patternBytes(40, 1));
    Segment& second = avi.addSegment();
    second.riffSize = kBeyondTheFile;
    second.index.id = "idx2";
    second.index.copies = copiesOfSecondIndex;
    avi.addChunk(0, patternBytes(60, 2));
    return avi;
}

std::vector<Chunk> strayChunks(size_t count) {
    return std::vector<Chunk>(count, Chunk("STRY", Bytes(2)));
}

// Gives every header field that the log shows a value of its own.
void tellFields(AviFile* avi) {
    avi->header.maxBytesPerSec = 33000;
    avi->header.paddingGranularity = 512;
    avi->header.suggestedBufferSize = 4096;
    for (uint32_t i = 0; i < 4; ++i)
        avi->header.reserved[i] = 31 + i;

    StreamHeader& header = avi->stream(0).header;
    header.flags = 41;
    header.priority = 42;
    header.language = 43;
    header.initialFrames = 44;
    header.start = 45;
    header.quality = 7500;
    header.right = 320;

    auto& bitmap = std::get<BitmapInfo>(avi->stream(0).format);
    bitmap.sizeImage = 51;
    bitmap.xPelsPerMeter = 52;
    bitmap.yPelsPerMeter = 53;
    bitmap.colorsUsed = 54;
    bitmap.colorsImportant = 55;

    avi->stream(0).properties = VideoProperties{61, 62, 63, 64, 65, 0x00090010, 66, 67, {}, {}};
    avi->stream(0).properties->fields = {{71, 72, 73, 74, 75, 76, 77, 78}};
}

void askForTracksBeyondTheLast(Extractor& extractor) {
    extractor.trackMetaData(2);
    extractor.trackMetaData(3);
}

}  // namespace

Play refused() {
    return {Chunk::list("WAVE", {}, "RIFF").toBytes()};
}

Play plainFile() {
    AviFile avi = twoStreams();
    tellFields(&avi);
    avi.stream(0).name = "de-pictures";
    avi.segment().beforeMovi = {infoList({{"INAM", "Hello"}, {"ISFT", "A writer"}}),
                                Chunk("JUNK", patternBytes(10))};
    return {avi.build(), {}, {}, askForTracksBeyondTheLast};
}

Play fileWithoutMovi() {
    Play play = withRiff([](Chunk& riff) { riff.child("movi").listType = "mist"; });
    play.also = [](Extractor& extractor) { extractor.trackMetaData(0); };
    return play;
}

Play fileWithoutSamples() {
    AviFile avi;
    avi.addStream(mjpegStream());
    return {avi.build()};
}

Play unreadableAtFirst() {
    return {twoStreams().build(), {Fault::error(-EIO).onCall(1)}};
}

Play noRiffAnyMore() {
    Play play;
    play.source = [] {
        return std::make_unique<SwappedSource>(twoStreams().build(),
                                               Chunk::list("AVI ", {}, "RIFX").toBytes());
    };
    return play;
}

Play unreadableListing() {
    AviFile avi = twoStreams();
    avi.trailing = Chunk("JUNK", Bytes(8)).toBytes();
    const Bytes file = avi.build();
    const auto end = static_cast<off64_t>(file.size());
    return {file, {Fault::error(-EIO).onOffsets(end - 16, end)}};
}

Play strayBytesBehindRiff() {
    AviFile avi = twoStreams();
    avi.trailing = Bytes(5);
    return {avi.build()};
}

Play unreadableFirstRiff() {
    return {twoStreams().build(), {Fault::error(-EIO).onCall(3)}};
}

Play unreadableFirstRiffChunk() {
    AviFile avi = twoStreams();
    const Bytes file = avi.build();
    return {file, {unreadableHeader(avi.place("movi0"))}};
}

Play oversizedRiff() {
    AviFile avi = twoStreams();
    avi.segment().riffSize = kBeyondTheFormat;
    return {avi.build()};
}

Play strangeLists() {
    AviFile avi = twoStreams();
    avi.editHeaders = [](Chunk& hdrl) { hdrl.add(Chunk::list("odml")).add(Chunk("STRY", {1, 2})); };
    avi.stream(0).edit = [](Chunk& strl) {
        strl.add(Chunk::list("sub ")).add(Chunk("STRY", {1, 2}));
    };
    avi.segment().beforeMovi = {Chunk::list("odd ")};
    return {avi.build()};
}

Play strayChunksBehindMovi() {
    AviFile avi = twoStreams();
    avi.segment().afterIndex = strayChunks(60);
    return {avi.build()};
}

Play twoIdx1() {
    AviFile avi = twoStreams();
    avi.segment().index.copies = 2;
    return {avi.build()};
}

Play idx1BesidesOpenDml() {
    AviFile avi = twoStreams();
    avi.stream(0).openDml = avi.stream(1).openDml = OpenDml::kStandard;
    return {avi.build()};
}

Play secondRiffWithIndex() {
    return {twoSegments(1).build()};
}

Play secondRiffWithoutIndex() {
    return {twoSegments(0).build()};
}

Play secondRiffWithTwoIndexes() {
    return {twoSegments(2).build()};
}

Play secondRiffOfNoNeed() {
    AviFile avi = twoSegments(1);
    avi.stream(0).header.length = 1;
    return {avi.build()};
}

Play secondRiffOversized() {
    AviFile avi = twoSegments(1);
    Segment& second = avi.segment(1);
    second.riffSize = kBeyondTheFormat;
    second.beforeMovi = {Chunk::list("odd ")};
    second.afterIndex = strayChunks(60);
    return {avi.build()};
}

Play unreadableSecondRiff() {
    AviFile avi = twoSegments(1);
    const Bytes file = avi.build();
    return {file, {unreadableHeader(avi.place("riff1")).fromCall(4)}};
}

Play unreadableSecondRiffChunk() {
    AviFile avi = twoSegments(1);
    const Bytes file = avi.build();
    return {file, {unreadableHeader(avi.place("movi1"))}};
}

Play emptyHeaderList() {
    return withHeaderList([](Chunk& hdrl) { hdrl.children.clear(); });
}

Play headerListOfTooFewStreams() {
    AviFile avi = twoStreams();
    avi.header.streams = 3;
    return {avi.build()};
}

Play unreadableHeaderList() {
    AviFile avi = twoStreams();
    const Bytes file = avi.build();
    return {file, {unreadableHeader(avi.place("strl0"))}};
}

Play streamListBeforeMainHeader() {
    return withHeaderList([](Chunk& hdrl) { hdrl.arrange({"strl", "avih"}); });
}

Play shortMainHeader() {
    return withHeaderList([](Chunk& hdrl) { hdrl.child("avih").payload.resize(52); });
}

Play unreadableMainHeader() {
    AviFile avi = twoStreams();
    const Bytes file = avi.build();
    return {file, {unreadable(avi.place("avih"), 8)}};
}

}  // namespace avitest
