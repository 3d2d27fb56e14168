// SPDX-License-Identifier: Apache-2.0
//
// A file as a tree of chunks, however damaged, and back to the same bytes. Plain values.
#pragma once

#include <cstddef>
#include <cstdint>
#include <vector>

#include "tests/support/Chunk.h"

namespace avifuzz {

struct RiffTree {
    std::vector<avitest::Chunk> chunks;

    /** The bytes of the file, at least its first `most` ones. */
    avitest::Bytes toBytes(size_t most = SIZE_MAX) const;
};

/**
 * Any bytes as a tree. Each chunk is marked with the position of its header, so that its new place
 * can be found in a Layout. What a size field says beyond the bytes that are there stays in
 * declaredSize; a rest too short for a header becomes a chunk of which only so many bytes are kept.
 */
RiffTree parseTree(const uint8_t* data, size_t size);

/**
 * Makes the indexes of a tree that was changed point to where its chunks have come to lie; the
 * entries of chunks that are gone, or never were there, stay as they are.
 */
void mendIndexes(RiffTree* tree);

}  // namespace avifuzz
