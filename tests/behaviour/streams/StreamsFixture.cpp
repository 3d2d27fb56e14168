// SPDX-License-Identifier: Apache-2.0

#include "tests/behaviour/streams/StreamsFixture.h"

#include <algorithm>

namespace avitest {

using android::service::Fault;

namespace {

constexpr size_t kChunksPerStream = 3;
constexpr size_t kChunkBytes = 48;  // whole blocks of every audio format used here

bool isAudio(const Stream& stream) {
    return std::holds_alternative<WaveFormat>(stream.format);
}

// Lets a list declare more bytes than are there.
void stretch(Chunk& list, uint32_t excess) {
    list.declare(static_cast<uint32_t>(list.toBytes().size()) - 8 + excess);
}

Bytes chunkData(const Stream& stream, size_t number, size_t chunk) {
    Bytes data = patternBytes(kChunkBytes, static_cast<uint32_t>(16 * number + chunk));
    if (isAudio(stream)) {
        const Bytes header = {0xFF, 0xFB, 0x90, 0x00};  // Layer III, 128 kbit/s, 44100 Hz
        std::copy(header.begin(), header.end(), data.begin());
    }
    return data;
}

}  // namespace

LogLine dropped() {
    return error("parseSTRL(): Something wrong, skip the track!");
}

Stream pcmStream() {
    return pcmStream(2, 8000, 16);
}

Stream videoWithExtra(ChunkId compression, Bytes extra) {
    Stream result = videoStream(compression, 320, 240, 25);
    std::get<BitmapInfo>(result.format).extra = std::move(extra);
    return result;
}

Stream audioWithExtra(uint16_t formatTag, Bytes extra) {
    Stream result = audioOfTag(formatTag);
    std::get<WaveFormat>(result.format).extra = std::move(extra);
    return result;
}

Stream audioOfTag(uint16_t formatTag) {
    Stream result = frameAudioStream(formatTag, 2, 44100, 1152);
    auto& wave = std::get<WaveFormat>(result.format);
    switch (formatTag) {
        case 0x0001:
            wave.bitsPerSample = 16;
            break;
        case 0x0002:
        case 0x0011:
            wave.bitsPerSample = 4;
            break;
        case 0x0006:
        case 0x0007:
        case 0x0101:
        case 0x0102:
            wave.bitsPerSample = 8;
            break;
        default:
            break;
    }
    return result;
}

Bytes formatBytes(const Stream& stream) {
    if (const auto* wave = std::get_if<WaveFormat>(&stream.format)) return wave->toBytes();
    return std::get<BitmapInfo>(stream.format).toBytes();
}

Bytes vorbisHeaders() {
    ByteWriter out;
    out.u8(2).u8(30).u8(20);
    out.u8(1).bytes(patternBytes(29, 1));
    out.u8(3).bytes(patternBytes(19, 2));
    out.u8(5).bytes(patternBytes(39, 3));
    return out.take();
}

AviFile fileOf(std::vector<Stream> streams) {
    AviFile avi;
    for (const Stream& stream : streams)
        avi.addStream(stream);
    for (size_t chunk = 0; chunk < kChunksPerStream; ++chunk) {
        for (size_t number = 0; number < streams.size(); ++number)
            avi.addChunk(number, chunkData(streams[number], number, chunk));
    }
    return avi;
}

void editStream(AviFile& avi, size_t stream, std::function<void(Chunk& strl)> edit) {
    avi.stream(stream).edit = std::move(edit);
}

size_t StreamsFixture::open(Bytes file) {
    openFile(std::move(file));
    return HasFatalFailure() ? 0 : countTracks();
}

size_t StreamsFixture::openLogged(AviFile& avi) {
    setProperty(kExtractLogProperty, "1");
    return open(avi);
}

size_t StreamsFixture::openFaulty(Bytes file, const std::vector<Fault>& faults) {
    auto& source = openCounted(std::move(file));
    for (const Fault& fault : faults)
        source.inject(fault);
    return HasFatalFailure() ? 0 : countTracks();
}

size_t StreamsFixture::openUnreadable(AviFile& avi, const std::string& mark, off64_t begin) {
    Bytes file = avi.build();
    const ChunkPlace place = avi.place(mark);
    const auto data = static_cast<off64_t>(place.dataOffset);
    const auto end = data + static_cast<off64_t>(place.dataSize);
    return openFaulty(std::move(file), {Fault::shortRead(1).onOffsets(data + begin, end)});
}

size_t StreamsFixture::openWithLongChunk(AviFile& avi, ChunkId id, uint32_t size) {
    uint32_t hole = 0;
    avi.segment().edit = [&hole, id, size](Chunk& riff) {
        Chunk& hdrl = riff.child("hdrl");
        Chunk& strl = hdrl.child("strl");
        Chunk& chunk = strl.child(id).marked("long").declare(size);
        hole = size + size % 2 - static_cast<uint32_t>(chunk.payload.size());
        for (Chunk* list : {&strl, &hdrl, &riff})
            stretch(*list, hole);
    };
    const Bytes file = avi.build();
    const ChunkPlace place = avi.place("long");
    const uint64_t at = place.dataOffset + place.dataSize;
    const auto cut = file.begin() + static_cast<ptrdiff_t>(at);
    SparseSource& source = mSparse.emplace_back(file.size() + hole);
    source.put(0, Bytes(file.begin(), cut));
    source.put(at + hole, Bytes(cut, file.end()));
    openSource(source);
    return HasFatalFailure() ? 0 : countTracks();
}

bool StreamsFixture::becomesTrack(Stream stream) {
    AviFile avi = fileOf({std::move(stream), mjpegStream()});
    mLog.clear();
    const size_t tracks = open(avi);
    EXPECT_THAT(tracks, ::testing::AnyOf(1u, 2u));
    EXPECT_EQ(2 - tracks, mLog.count(dropped().text));
    return tracks == 2;
}

std::string StreamsFixture::mime(size_t track) {
    return trackFormat(track).getString(AMEDIAFORMAT_KEY_MIME).value_or("none");
}

std::optional<int32_t> StreamsFixture::int32Of(size_t track, const char* key) {
    return trackFormat(track).getInt32(key);
}

}  // namespace avitest
