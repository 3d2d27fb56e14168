// SPDX-License-Identifier: Apache-2.0
//
// Makes the file of a shape, in one pass and with little memory beyond the index.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "bench/Shapes.h"

namespace avibench {

// Where a payload lies in the file.
struct Sample {
    uint64_t offset;
    uint32_t size;
    uint32_t stream;
    bool isKey;
};

// Where the entries of an index lie in the file, headers not counted.
struct IndexPiece {
    uint64_t offset;
    uint64_t size;
    uint32_t stream;  // of an OpenDML index; idx1 is of all
};

struct Layout {
    std::vector<Sample> samples;
    std::vector<IndexPiece> index;
};

// Writes a file of `entries` chunks. An empty path: only says where everything would lie.
Layout writeAvi(const Shape& shape, uint32_t entries, const std::string& path);

}  // namespace avibench
