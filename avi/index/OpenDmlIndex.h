// SPDX-License-Identifier: Apache-2.0
//
// The indexes of OpenDML files (AVI 2.0): a super index in the stream list points at standard
// indexes spread through the file, each of which lists chunks of one stream with a 64-bit base.
// Invariant: of a stream never more entries are taken than the file can hold chunks, nor of all
// together more than a few times as many; what is read is in proportion to that.
#pragma once

#include <stdint.h>
#include <utils/Errors.h>

#include "FileReader.h"
#include "Track.h"

namespace android {

// The header of an OpenDML index chunk.
// u16 longsPerEntry | u8 indexSubType | u8 indexType | u32 entriesInUse | fourcc chunkId |
// u64 base offset | u32 reserved
struct RuvoAVIIndexChunk {
    uint16_t longsPerEntry = 0;
    uint8_t indexSubType = 0;
    uint8_t indexType = 0;
    uint32_t entriesInUse = 0;
    FourCC chunkId{};
    uint32_t baseOffsetL = 0;
    uint32_t baseOffsetH = 0;
    uint32_t reserved3 = 0;
};

class OpenDmlIndex {
  public:
    // `reader` must outlive this object.
    explicit OpenDmlIndex(FileReader& reader);

    // Adds what the `indx` chunk with this payload lists to the track's table. ERROR_IO,
    // ERROR_MALFORMED or ERROR_UNSUPPORTED for an index that cannot be used, with the samples that
    // were read before still in the table. Aborts at a standard index in front of the stream
    // format.
    status_t parseINDX(int64_t start, int64_t end, Track* track);

  private:
    status_t parseSuperIndex(int64_t start, const RuvoAVIIndexChunk& header, Track* track);
    status_t parseStandardIndexAt(uint64_t position, uint32_t size, Track* track);
    status_t parseChunkIndex(int64_t start, int64_t end, const RuvoAVIIndexChunk* known,
                             Track* track);
    bool readIndexHeader(int64_t start, RuvoAVIIndexChunk* out) const;
    status_t addStandardEntries(int64_t entries, const RuvoAVIIndexChunk& header, Track* track,
                                uint32_t* added);
    bool hasEntriesLeft();
    int64_t takeEntries(int64_t wanted);

    FileReader& mReader;
    int64_t mIndexesLeft;           // standard indexes that super indexes may still name
    int64_t mFileEntriesLeft;       // entries that all indexes together may still list
    int64_t mTrackEntriesLeft = 0;  // and those of the stream that is being read
    bool mLimitWarned = false;
};

}  // namespace android
