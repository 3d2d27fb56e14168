// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <stdint.h>

#include <optional>

#include "source/FrameType.h"
#include "source/SourceTrack.h"

namespace android {

// The chunk that a call of read() works on.
struct Chunk {
    // How log lines name it.
    enum class Label {
        kNone,         // not at all: the call goes on with what is left of an earlier chunk
        kFull,         // by track, index and, once it is known, frame type
        kWithoutMime,  // the same without the track's type: it was appended to a rest
    };
    Label label = Label::kNone;
    uint32_t index = 0;
    int64_t offset = 0;  // of its data in the file
    uint32_t size = 0;
    uint32_t bytesBefore = 0;  // of the stream, where the table counts bytes
    bool isSync = false;
    std::optional<FrameType> type;  // of a frame that was loaded; audio has none
};

// Walks the rows of the table. Invariant: next() <= table size, unless moveTo() said otherwise.
class ChunkCursor {
  public:
    explicit ChunkCursor(const SourceTrack& track) : mTrack(track) {}

    // Takes the next chunk; false at the end of the table. Empty chunks are skipped, but for
    // streams that count bytes.
    bool take(Chunk* out);

    // Row of the next chunk.
    uint32_t next() const { return mNext; }
    void moveTo(uint32_t index) { mNext = index; }

    // Row before it. REQUIRES: a chunk was taken.
    uint32_t last() const { return mNext - 1; }

  private:
    const SourceTrack& mTrack;
    uint32_t mNext = 0;
};

}  // namespace android
