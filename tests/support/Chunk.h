// SPDX-License-Identifier: Apache-2.0
//
// A tree of RIFF chunks and its way to bytes. Each chunk is written correctly unless a field says
// otherwise; the fields below `damage` are the lies a test wants told. Plain values, one thread.

#pragma once

#include <functional>
#include <map>
#include <optional>
#include <string>
#include <vector>

#include "tests/support/ByteWriter.h"

namespace avitest {

// Where a chunk came to lie in the file.
struct ChunkPlace {
    uint64_t headerOffset = 0;  // of its four-character code
    uint64_t dataOffset = 0;    // just past the 8-byte header (a list: of its type word)
    uint64_t dataSize = 0;      // payload bytes meant to be there, without padding
};

// The places of all chunks that carry a mark, by mark.
using Layout = std::map<std::string, ChunkPlace>;

struct Chunk {
    ChunkId id;
    Bytes payload;                    // of a plain chunk; unused in a list
    std::optional<ChunkId> listType;  // set: a list (LIST, RIFF) of this type
    std::vector<Chunk> children;      // of a list
    std::string mark;                 // name under which Layout reports the place, "" for none

    // Damage. The parent's size always counts the bytes that are really there.
    std::optional<uint32_t> declaredSize;  // size field, instead of the payload's length
    std::optional<size_t> keptBytes;       // only so many bytes of it exist, its header included
    bool padded = true;  // pad byte after an odd payload; its list is padded by itself
    uint8_t padByte = 0;

    Chunk() = default;
    explicit Chunk(ChunkId chunkId, Bytes data = {}) : id(chunkId), payload(std::move(data)) {}

    // A list; `listId` is LIST or RIFF, or what a test wants instead.
    static Chunk list(ChunkId type, std::vector<Chunk> content = {}, ChunkId listId = "LIST");

    // The same settings as a chain, for a chunk that is made within an expression.
    Chunk& declare(uint32_t size);
    Chunk& keep(size_t bytes);
    Chunk& unpadded();
    Chunk& marked(std::string name);

    // Adds a child at the end and returns this list.
    Chunk& add(Chunk child);
    // Inserts a child before the position `index` and returns this list.
    Chunk& insert(size_t index, Chunk child);

    // The n-th child whose id, or list type, is `name`. The test must know that it is there:
    // otherwise the program ends with a message.
    Chunk& child(ChunkId name, size_t n = 0);
    // Puts the children named first, in that order; all others follow in their former order.
    Chunk& arrange(const std::vector<ChunkId>& names);

    // The id by which a reader knows the chunk: the type of a list, else the chunk's id.
    ChunkId name() const { return listType ? *listType : id; }

    // Appends the chunk to `out`; `layout` (null for none) receives the marked places, counted from
    // the beginning of `out`.
    void write(ByteWriter& out, Layout* layout = nullptr) const;
    Bytes toBytes() const;
};

}  // namespace avitest
