// SPDX-License-Identifier: Apache-2.0
//
// Files put together from bytes, for those whose chunks are too many to be built one by one. Plain
// functions.

#pragma once

#include "tests/support/AviBuilder.h"

namespace avitest {

// As many times `unit` as fit into so many bytes.
Bytes repeated(const Bytes& unit, size_t bytes);

// A chunk, or a list of the given contents.
Bytes chunkBytes(ChunkId id, const Bytes& payload);
Bytes listBytes(ChunkId type, const Bytes& contents, ChunkId id = "LIST");
// The list of a stream, with these chunks behind its format.
Bytes streamBytes(const Stream& stream, const Bytes& more = {});

// The parts of a file, each as bytes that may hold any chunks.
struct FileParts {
    Bytes streams;     // stream lists, behind avih
    Bytes beforeMovi;  // behind the header list
    Bytes movi;        // contents of the movi list
    Bytes idx1;        // entries, whose offsets count from the type word of movi; none: no index
    Bytes afterMovi;   // behind idx1
    Bytes trailing;    // behind the RIFF

    // Where the contents of the movi list begin in the file.
    size_t moviAt() const;
    Bytes build() const;
};

// So many bytes of an index with these entries in turn, each of kIdx1Entry bytes.
constexpr size_t kIdx1Entry = 16;
Bytes entriesOf(const std::vector<Idx1Entry>& unit, size_t bytes);

// Offset in idx1 of what lies so many bytes into the contents of the movi list.
constexpr uint32_t idx1Offset(size_t within) {
    return static_cast<uint32_t>(4 + within);
}

// The chunk id of a stream, of any number that an id can name.
constexpr uint32_t kMostStreams = 2278;
ChunkId chunkIdOf(uint32_t stream, const char (&letters)[3]);

// The smallest streams of their kind.
Stream smallVideo(ChunkId fourcc = "MJPG");
Stream smallAudio(uint16_t tag);

constexpr uint16_t kTagPcm = 0x0001;
constexpr uint16_t kTagMp3 = 0x0055;
constexpr uint16_t kTagAac = 0x00FF;
constexpr uint16_t kTagWma = 0x0161;
constexpr uint16_t kTagAc3 = 0x2000;
constexpr uint16_t kTagDts = 0x2001;

}  // namespace avitest
