// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <stddef.h>
#include <stdint.h>

#include <memory>
#include <optional>

#include "source/Chunk.h"
#include "source/FrameType.h"
#include "source/SourceTrack.h"

namespace android {

// Frames that are looked ahead to for their type. While a track is read in order they are fetched
// whole and kept for the reads that follow, so that each takes one call of the source: on a device
// that is a round trip to another process.
class FramesAhead {
  public:
    explicit FramesAhead(const SourceTrack& track) : mTrack(track) {}

    // The type of frame i by its first bytes as they lie in the file; none when they cannot be
    // read. REQUIRES: i < table size.
    std::optional<FrameType> probe(size_t i);

    // Reads a whole chunk to `out`; false when the file does not hold it. Drops what was kept of
    // the frames up to it.
    bool read(const Chunk& chunk, uint8_t* out);

    // Reading goes on at another place: nothing that is kept will be asked for.
    void restart();

  private:
    static constexpr size_t kMaxBytes = 0x40000;
    static constexpr size_t kMaxFrames = 16;

    // Reads in order before frames are fetched whole: after a seek there may be no other.
    static constexpr uint32_t kMinReads = 2;

    struct Frame {
        size_t index = 0;
        size_t at = 0;  // in mBytes
    };
    const uint8_t* fetch(size_t i);
    bool hasRoom(size_t size);
    bool takeKept(const Chunk& chunk, uint8_t* out);

    const SourceTrack& mTrack;
    std::unique_ptr<uint8_t[]> mBytes;  // kMaxBytes, once something was fetched
    size_t mUsed = 0;
    Frame mFrames[kMaxFrames];  // by index
    size_t mCount = 0;
    uint32_t mReads = 0;  // in order
};

}  // namespace android
