// SPDX-License-Identifier: Apache-2.0
//
// Sample tables of segments without an index: the movi list is walked chunk by chunk.
#pragma once

#include <stdint.h>
#include <utils/Errors.h>

#include "ChunkWalker.h"
#include "FileReader.h"
#include "TrackList.h"

namespace android {

// A movi list. Positions are 32-bit words: segments that need this are those of old writers.
struct MoviRange {
    uint32_t start = 0;  // offset of the list's header, modulo 2^32
    uint32_t size = 0;   // of the payload after the list type
};

// One scan of one movi list.
class MoviScan {
  public:
    // Both must outlive the scan.
    MoviScan(FileReader& reader, const TrackList& tracks) : mReader(reader), mTracks(tracks) {}

    // Adds the list's data chunks to their tracks, up to the first chunk that is cut. Tracks whose
    // table came from an OpenDML index are passed over: theirs is complete.
    void parseMOVIMore(const MoviRange& movi);

  private:
    void scanChunk(const ChunkWalker& chunk);
    void scanRecordList(const ChunkWalker& list);
    bool reachesUnknownLimit();
    status_t parseDataChunk(uint32_t offset, FourCC id, uint32_t size);

    FileReader& mReader;
    const TrackList& mTracks;
    uint32_t mUnknownChunks = 0;
    uint32_t mEmptyHeaders = 0;  // in a row
    bool mDone = false;
};

}  // namespace android
