// SPDX-License-Identifier: Apache-2.0
//
// A second, plain reader of AVI files, against which the plug-in is judged: it knows files of one
// RIFF with an idx1, as ffmpeg writes them, and nothing else. Plain values, one thread.

#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "tests/support/ByteWriter.h"

namespace avitest {

// What the headers of one stream say.
struct StreamFields {
    std::string type;         // "vids" or "auds"
    uint32_t scale = 0;       // rate / scale: units a second
    uint32_t rate = 0;        //
    uint32_t length = 0;      // in units
    uint32_t sampleSize = 0;  // bytes a unit, 0 when units differ in size
    Bytes format;             // strf

    bool isVideo() const { return type == "vids"; }
    // Fields of the wave format; of audio streams only.
    uint16_t formatTag() const;
    uint16_t blockAlign() const;
    uint16_t bitsPerSample() const;
};

// An entry of idx1, checked against the chunk it points to.
struct IndexedChunk {
    size_t stream = 0;
    bool key = false;
    uint64_t offset = 0;  // of the chunk's data in the file
    uint32_t size = 0;
};

struct AviLayout {
    std::vector<StreamFields> streams;
    std::vector<IndexedChunk> chunks;

    // Entries of one stream in the order of the index.
    std::vector<IndexedChunk> chunksOf(size_t stream) const;
    // Streams in the order in which players want the tracks: a video stream first, the rest as they
    // come.
    std::vector<size_t> trackOrder() const;
};

// Throws std::runtime_error on anything it does not know, an index entry that does not point at a
// chunk of its id and length among them.
AviLayout parseLayout(const Bytes& file);

}  // namespace avitest
