// SPDX-License-Identifier: Apache-2.0
//
// Walks the sibling chunks of one RIFF list: the one place where padded chunks are advanced. (The
// segments at the top level of a file have no pad bytes and are listed by riff/RiffSegments.cpp.)
// Invariant: every successful step moves next() at least 8 bytes on, so every walk ends.
#pragma once

#include <stdint.h>

#include "FileReader.h"
#include "support/Arithmetic.h"
#include "support/FourCC.h"

namespace android {

constexpr int64_t kChunkHeaderSize = 8;
constexpr int64_t kListHeaderSize = 12;

// u32 id | u32 size | u32 type, the last one of lists only.
struct ChunkHeader {
    FourCC id{};
    uint32_t size = 0;  // of the payload, as the file says
    FourCC type{};
};

// How much of a 12-byte header a read brought.
enum class HeaderRead {
    kWhole,
    kZeroTail,    // the last 8 bytes of the file, with size 0: writers pad files with zeros
    kCutType,     // 8 bytes of a chunk that is not empty
    kUnreadable,  // anything else
};

// Reads the 12 bytes at `position`, whatever the chunk is: the type of a plain chunk is just the
// first bytes of its payload. Where only 8 bytes come, `out` has no type; kUnreadable leaves it
// alone.
HeaderRead readChunkHeader(FileReader& reader, int64_t position, ChunkHeader* out);

class ChunkWalker {
  public:
    // Walks from `start`, the offset of the first chunk. `reader` must outlive the walker.
    ChunkWalker(FileReader& reader, int64_t start)
        : mReader(reader), mPosition(start), mNext(start) {}

    // Reads the header at next() and steps onto that chunk. kZeroTail and kUnreadable leave the
    // walker where it is; there is no kCutType.
    HeaderRead advance() {
        ChunkHeader header;
        const HeaderRead result = readChunkHeader(mReader, mNext, &header);
        if (result == HeaderRead::kWhole) stepOnto(header);
        return result == HeaderRead::kCutType ? HeaderRead::kUnreadable : result;
    }

    // The same where no lists are expected: the 8 bytes of a plain chunk's header suffice.
    bool advancePlain();

    // The same where a chunk may end right after its header's 8 bytes: no more are read.
    bool advanceTag();

    const ChunkHeader& header() const { return mHeader; }
    int64_t position() const { return mPosition; }                        // of the chunk's header
    int64_t payload() const { return mPosition + kChunkHeaderSize; }      // of a plain chunk
    int64_t listContents() const { return mPosition + kListHeaderSize; }  // after the list type
    int64_t payloadEnd() const { return payload() + mHeader.size; }       // without pad byte
    // End of this chunk with its pad byte. next() is the same modulo 2^32 from the payload on, as
    // writers of sizes near 4 GiB reckon, so that a walk goes on behind a header of size
    // 0xFFFFFFFF.
    int64_t paddedEnd() const { return payloadEnd() + (mHeader.size & 1); }
    int64_t next() const { return mNext; }

    bool isList(FourCC type) const { return mHeader.id == fourcc("LIST") && mHeader.type == type; }

  private:
    void stepOnto(const ChunkHeader& header) {
        mHeader = header;
        mPosition = mNext;
        mNext += kChunkHeaderSize + paddedSize(header.size);
    }

    FileReader& mReader;
    ChunkHeader mHeader;
    int64_t mPosition;
    int64_t mNext;
};

}  // namespace android
