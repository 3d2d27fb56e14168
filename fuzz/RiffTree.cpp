// SPDX-License-Identifier: Apache-2.0
#include "fuzz/RiffTree.h"

#include <algorithm>
#include <optional>
#include <string>

namespace avifuzz {

using avitest::Bytes;
using avitest::ByteWriter;
using avitest::Chunk;
using avitest::ChunkId;
using avitest::Layout;

namespace {

constexpr size_t kHeaderSize = 8;
constexpr size_t kTypeSize = 4;
constexpr size_t kMostChunks = 4096;
constexpr size_t kMostDepth = 8;

uint32_t wordAt(const uint8_t* data) {
    return uint32_t{data[0]} | uint32_t{data[1]} << 8 | uint32_t{data[2]} << 16 |
           uint32_t{data[3]} << 24;
}

std::string markOf(uint64_t position) {
    return std::to_string(position);
}

class TreeParser {
  public:
    explicit TreeParser(const uint8_t* data) : mData(data) {}

    std::vector<Chunk> parse(size_t begin, size_t end, size_t depth);

  private:
    Chunk chunkAt(size_t begin, size_t end, size_t depth, size_t* next);
    Chunk rest(size_t begin, size_t end) const;
    bool isList(const Chunk& chunk, size_t size, size_t depth) const;

    const uint8_t* mData;
    size_t mCount = 0;
};

std::vector<Chunk> TreeParser::parse(size_t begin, size_t end, size_t depth) {
    std::vector<Chunk> chunks;
    while (begin < end) {
        if (end - begin < kHeaderSize) {
            chunks.push_back(rest(begin, end));
            break;
        }
        chunks.push_back(chunkAt(begin, end, depth, &begin));
    }
    return chunks;
}

// Fewer bytes than a header has.
Chunk TreeParser::rest(size_t begin, size_t end) const {
    uint8_t header[kHeaderSize] = {};
    std::copy(mData + begin, mData + end, header);
    Chunk chunk{ChunkId(wordAt(header))};
    chunk.declare(wordAt(header + kTypeSize)).keep(end - begin).unpadded();
    return chunk.marked(markOf(begin));
}

bool TreeParser::isList(const Chunk& chunk, size_t size, size_t depth) const {
    const bool hasListId = chunk.id == ChunkId("LIST") || chunk.id == ChunkId("RIFF");
    return hasListId && size >= kTypeSize && depth < kMostDepth && mCount < kMostChunks;
}

Chunk TreeParser::chunkAt(size_t begin, size_t end, size_t depth, size_t* next) {
    ++mCount;
    const size_t data = begin + kHeaderSize;
    const uint32_t declared = wordAt(mData + begin + kTypeSize);
    const size_t size = std::min<size_t>(declared, end - data);
    Chunk chunk{ChunkId(wordAt(mData + begin))};
    chunk.marked(markOf(begin));
    if (size < declared) chunk.declare(declared);
    if (isList(chunk, size, depth)) {
        chunk.listType = ChunkId(wordAt(mData + data));
        chunk.children = parse(data + kTypeSize, data + size, depth + 1);
    } else {
        chunk.payload.assign(mData + data, mData + data + size);
    }
    *next = data + size;
    // Segments are not padded: what follows at once is the next one.
    chunk.padded = size % 2 != 0 && *next < end && (depth > 0 || mData[*next] == 0);
    if (chunk.padded) chunk.padByte = mData[(*next)++];
    return chunk;
}

// Where the chunks of a tree were and are.
class Places {
  public:
    explicit Places(const RiffTree& tree) {
        ByteWriter out;
        for (const Chunk& chunk : tree.chunks)
            chunk.write(out, &mLayout);
        noteMovi(tree.chunks);
    }

    // How far the header that was at `former` has moved, modulo 2^64; none for what was no header.
    std::optional<uint64_t> move(uint64_t former) const {
        const auto found = mLayout.find(markOf(former));
        if (found == mLayout.end()) return std::nullopt;
        return difference(found->second.headerOffset, former);
    }
    // What idx1 counts from: the type of the first movi list.
    uint64_t formerBase() const { return mFormerMovi.value_or(0) + kHeaderSize; }
    uint64_t baseMove() const { return mFormerMovi ? move(*mFormerMovi).value_or(0) : 0; }

    static uint64_t difference(uint64_t a, uint64_t b) {
        return static_cast<uint64_t>(static_cast<__int128>(a) - b);
    }

  private:
    void noteMovi(const std::vector<Chunk>& chunks) {
        for (const Chunk& chunk : chunks) {
            const bool isMovi = chunk.listType == ChunkId("movi") && !chunk.mark.empty();
            if (isMovi && !mFormerMovi) mFormerMovi = std::stoull(chunk.mark);
            noteMovi(chunk.children);
        }
    }

    Layout mLayout;
    std::optional<uint64_t> mFormerMovi;
};

uint64_t read(const Bytes& data, size_t at, size_t size) {
    uint64_t value = 0;
    for (size_t i = size; i > 0; --i)
        value = value << 8 | data[at + i - 1];
    return value;
}

// Adds to the number of `size` bytes at `at`, modulo its width.
void add(Bytes* data, size_t at, size_t size, uint64_t what) {
    const auto sum = static_cast<unsigned __int128>(read(*data, at, size)) + what;
    for (size_t i = 0; i < size; ++i)
        (*data)[at + i] = static_cast<uint8_t>(sum >> (8 * i) & 0xFF);
}

// u32 id | u32 flags | u32 offset | u32 length, the offset counted from movi's type or the file
void mendIdx1(const Places& places, Bytes* data) {
    constexpr size_t kEntrySize = 16;
    constexpr size_t kOffsetAt = 8;
    for (size_t i = 0; i + kEntrySize <= data->size(); i += kEntrySize) {
        const uint64_t offset = read(*data, i + kOffsetAt, 4);
        if (const auto moved = places.move(offset + places.formerBase())) {
            add(data, i + kOffsetAt, 4, Places::difference(*moved, places.baseMove()));
        } else if (const auto movedAbsolute = places.move(offset)) {
            add(data, i + kOffsetAt, 4, *movedAbsolute);
        }
    }
}

constexpr size_t kOpenDmlHeaderSize = 24;
constexpr size_t kTypeAt = 3;
constexpr size_t kBaseAt = 12;

// u64 offset of an index chunk | u32 size | u32 duration
void mendSuperIndex(const Places& places, Bytes* data) {
    constexpr size_t kEntrySize = 16;
    for (size_t i = kOpenDmlHeaderSize; i + kEntrySize <= data->size(); i += kEntrySize) {
        if (const auto moved = places.move(read(*data, i, 8))) add(data, i, 8, *moved);
    }
}

// u32 offset of a chunk's data from the base | u32 size
void mendStandardIndex(const Places& places, Bytes* data) {
    constexpr size_t kEntrySize = 8;
    const uint64_t base = read(*data, kBaseAt, 8);
    for (size_t i = kOpenDmlHeaderSize; i + kEntrySize <= data->size(); i += kEntrySize) {
        const uint64_t header = Places::difference(base, kHeaderSize);
        const auto position = static_cast<unsigned __int128>(header) + read(*data, i, 4);
        if (const auto moved = places.move(static_cast<uint64_t>(position))) {
            add(data, i, 4, *moved);
        }
    }
}

void mend(const Places& places, Chunk* chunk) {
    const uint32_t id = chunk->id.value();
    const bool isStandard = (id & 0xFFFF) == (ChunkId("ix00").value() & 0xFFFF);
    if (chunk->id == ChunkId("idx1")) {
        mendIdx1(places, &chunk->payload);
    } else if (chunk->payload.size() >= kOpenDmlHeaderSize &&
               (isStandard || chunk->id == ChunkId("indx"))) {
        const bool isSuper = chunk->payload[kTypeAt] == 0;
        (isSuper ? mendSuperIndex : mendStandardIndex)(places, &chunk->payload);
    }
    for (Chunk& child : chunk->children)
        mend(places, &child);
}

}  // namespace

Bytes RiffTree::toBytes(size_t most) const {
    ByteWriter out;
    for (const Chunk& chunk : chunks) {
        if (out.size() >= most) break;
        chunk.write(out);
    }
    return out.take();
}

RiffTree parseTree(const uint8_t* data, size_t size) {
    return {TreeParser(data).parse(0, size, 0)};
}

void mendIndexes(RiffTree* tree) {
    const Places places(*tree);
    for (Chunk& chunk : tree->chunks)
        mend(places, &chunk);
}

}  // namespace avifuzz
