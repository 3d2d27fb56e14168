// SPDX-License-Identifier: Apache-2.0

#include "tests/endtoend/media/AviLayout.h"

#include <algorithm>
#include <stdexcept>

namespace avitest {

namespace {

[[noreturn]] void fail(const std::string& what) {
    throw std::runtime_error("AVI file: " + what);
}

uint32_t number(const Bytes& data, size_t offset, size_t width) {
    if (offset > data.size() || width > data.size() - offset) fail("a field beyond the end");
    uint32_t value = 0;
    for (size_t i = 0; i < width; ++i)
        value |= uint32_t{data[offset + i]} << (8 * i);
    return value;
}

std::string code(const Bytes& data, size_t offset) {
    if (offset > data.size() || data.size() - offset < 4) fail("a code beyond the end");
    return std::string(data.begin() + static_cast<ptrdiff_t>(offset),
                       data.begin() + static_cast<ptrdiff_t>(offset) + 4);
}

struct ChunkAt {
    std::string id;
    std::string listType;  // of a list only
    size_t begin = 0;      // of the payload; of a list: past its type
    size_t end = 0;
};

// The chunks that lie one behind the other in [begin, end).
std::vector<ChunkAt> siblings(const Bytes& file, size_t begin, size_t end) {
    std::vector<ChunkAt> result;
    for (size_t at = begin; at + 8 <= end;) {
        ChunkAt chunk;
        chunk.id = code(file, at);
        const uint32_t size = number(file, at + 4, 4);
        chunk.begin = at + 8;
        chunk.end = chunk.begin + size;
        if (chunk.end > file.size()) fail("chunk " + chunk.id + " beyond the end");
        if (chunk.id == "LIST" || chunk.id == "RIFF") {
            chunk.listType = code(file, chunk.begin);
            chunk.begin += 4;
        }
        result.push_back(chunk);
        at = chunk.end + size % 2;
    }
    return result;
}

const ChunkAt& find(const std::vector<ChunkAt>& chunks, const std::string& name) {
    const auto found = std::find_if(chunks.begin(), chunks.end(), [&](const ChunkAt& chunk) {
        return chunk.id == name || chunk.listType == name;
    });
    if (found == chunks.end()) fail("no " + name);
    return *found;
}

StreamFields parseStream(const Bytes& file, const ChunkAt& strl) {
    const auto chunks = siblings(file, strl.begin, strl.end);
    const size_t strh = find(chunks, "strh").begin;
    const ChunkAt& strf = find(chunks, "strf");
    StreamFields stream;
    stream.type = code(file, strh);
    stream.scale = number(file, strh + 20, 4);
    stream.rate = number(file, strh + 24, 4);
    stream.length = number(file, strh + 32, 4);
    stream.sampleSize = number(file, strh + 44, 4);
    stream.format.assign(file.begin() + static_cast<ptrdiff_t>(strf.begin),
                         file.begin() + static_cast<ptrdiff_t>(strf.end));
    return stream;
}

// ffmpeg counts from the type word of the movi list, which lies 4 bytes before its first chunk.
IndexedChunk parseEntry(const Bytes& file, size_t entry, const ChunkAt& movi) {
    const size_t header = movi.begin - 4 + number(file, entry + 8, 4);
    IndexedChunk chunk;
    chunk.size = number(file, entry + 12, 4);
    if (code(file, header) != code(file, entry) || number(file, header + 4, 4) != chunk.size) {
        fail("an index entry that does not point at its chunk");
    }
    const std::string digits = code(file, entry).substr(0, 2);
    chunk.stream = static_cast<size_t>(std::stoul(digits));
    chunk.key = (number(file, entry + 4, 4) & 0x10) != 0;
    chunk.offset = header + 8;
    return chunk;
}

}  // namespace

uint16_t StreamFields::formatTag() const {
    return static_cast<uint16_t>(number(format, 0, 2));
}

uint16_t StreamFields::blockAlign() const {
    return static_cast<uint16_t>(number(format, 12, 2));
}

uint16_t StreamFields::bitsPerSample() const {
    return static_cast<uint16_t>(number(format, 14, 2));
}

std::vector<IndexedChunk> AviLayout::chunksOf(size_t stream) const {
    std::vector<IndexedChunk> result;
    std::copy_if(chunks.begin(), chunks.end(), std::back_inserter(result),
                 [stream](const IndexedChunk& chunk) { return chunk.stream == stream; });
    return result;
}

std::vector<size_t> AviLayout::trackOrder() const {
    std::vector<size_t> order(streams.size());
    for (size_t i = 0; i < order.size(); ++i)
        order[i] = i;
    std::stable_partition(order.begin(), order.end(),
                          [this](size_t stream) { return streams[stream].isVideo(); });
    return order;
}

AviLayout parseLayout(const Bytes& file) {
    const auto riffs = siblings(file, 0, file.size());
    if (riffs.size() != 1 || riffs[0].listType != "AVI ") fail("not a single RIFF");
    const auto top = siblings(file, riffs[0].begin, riffs[0].end);
    const ChunkAt& hdrl = find(top, "hdrl");
    const ChunkAt& movi = find(top, "movi");
    const ChunkAt& idx1 = find(top, "idx1");

    AviLayout layout;
    for (const ChunkAt& chunk : siblings(file, hdrl.begin, hdrl.end)) {
        if (chunk.listType == "strl") layout.streams.push_back(parseStream(file, chunk));
    }
    for (size_t entry = idx1.begin; entry < idx1.end; entry += 16)
        layout.chunks.push_back(parseEntry(file, entry, movi));
    return layout;
}

}  // namespace avitest
