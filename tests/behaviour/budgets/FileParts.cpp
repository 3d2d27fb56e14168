// SPDX-License-Identifier: Apache-2.0

#include "tests/behaviour/budgets/FileParts.h"

#include <algorithm>
#include <cstring>

namespace avitest {

Bytes repeated(const Bytes& unit, size_t bytes) {
    Bytes result(bytes / unit.size() * unit.size());
    const size_t first = std::min(unit.size(), result.size());
    std::copy_n(unit.begin(), first, result.begin());
    for (size_t done = first; done < result.size();) {  // twice as much each time
        const size_t more = std::min(done, result.size() - done);
        std::memcpy(result.data() + done, result.data(), more);
        done += more;
    }
    return result;
}

Bytes chunkBytes(ChunkId id, const Bytes& payload) {
    return Chunk(id, payload).toBytes();
}

Bytes listBytes(ChunkId type, const Bytes& contents, ChunkId id) {
    return ByteWriter()
        .fourcc(id)
        .u32(static_cast<uint32_t>(4 + contents.size()))
        .fourcc(type)
        .bytes(contents)
        .pad()
        .take();
}

Bytes streamBytes(const Stream& stream, const Bytes& more) {
    Bytes list;
    AviFile avi;
    avi.addStream(stream);
    avi.editHeaders = [&list](Chunk& hdrl) {
        Chunk& strl = hdrl.child("strl");
        strl.child("strh").payload.resize(48);  // as old writers leave it
        list.clear();
        for (const Chunk& chunk : strl.children) {
            const Bytes bytes = chunk.toBytes();
            list.insert(list.end(), bytes.begin(), bytes.end());
        }
    };
    avi.build();
    return listBytes("strl", list + more);
}

namespace {

Bytes headersOf(const Bytes& streams) {
    return listBytes("hdrl", chunkBytes("avih", MainHeader().toBytes()) + streams);
}

constexpr size_t kListHeader = 12;

}  // namespace

size_t FileParts::moviAt() const {
    return 2 * kListHeader + headersOf(streams).size() + beforeMovi.size();
}

Bytes FileParts::build() const {
    Bytes contents = headersOf(streams) + beforeMovi + listBytes("movi", movi);
    if (!idx1.empty()) contents = contents + chunkBytes("idx1", idx1);
    return listBytes("AVI ", contents + afterMovi, "RIFF") + trailing;
}

Bytes entriesOf(const std::vector<Idx1Entry>& unit, size_t bytes) {
    return repeated(toBytes(unit), bytes);
}

ChunkId chunkIdOf(uint32_t stream, const char (&letters)[3]) {
    constexpr uint32_t kMostDigit = 0xFF - '0';
    const uint32_t tens = std::min(stream / 10, kMostDigit);
    const uint32_t ones = stream - 10 * tens;
    const Bytes id = {static_cast<uint8_t>('0' + tens), static_cast<uint8_t>('0' + ones),
                      static_cast<uint8_t>(letters[0]), static_cast<uint8_t>(letters[1])};
    return ChunkId(uint32_t{id[0]} | uint32_t{id[1]} << 8 | uint32_t{id[2]} << 16 |
                   uint32_t{id[3]} << 24);
}

Stream smallVideo(ChunkId fourcc) {
    return videoStream(fourcc, 16, 16, 25);
}

Stream smallAudio(uint16_t tag) {
    Stream stream = frameAudioStream(tag, 2, 44100, 1152);
    std::get<WaveFormat>(stream.format).bitsPerSample = 16;
    return stream;
}

}  // namespace avitest
