// SPDX-License-Identifier: Apache-2.0
//
// The top level of a file's RIFF segments: the first one with the headers, and the further ones
// that OpenDML writers append when a file outgrows it.
#pragma once

#include <stddef.h>
#include <stdint.h>
#include <utils/Errors.h>

#include <vector>

#include "AviFile.h"
#include "ChunkWalker.h"
#include "FileReader.h"
#include "index/SegmentIndex.h"
#include "riff/HeaderList.h"

namespace android {

class RiffSegments {
  public:
    // Parses into `file`; both must outlive this object.
    RiffSegments(FileReader& reader, AviFile* file);

    // Finds the RIFF chunks at the top level of the file. ERROR_IO when a header cannot be read.
    status_t list();

    // Parses the first segment, further ones where it lists too few frames, and closes the tracks.
    // An error when the headers are damaged or no track can be played.
    status_t parseFirstRIFF();

  private:
    struct Segment {
        int64_t offset;  // of the RIFF header
        uint32_t size;   // its size field
    };

    // One walk over the chunks of a segment. The first segment has the headers and tags; further
    // ones may name their index idx2 to idx4 as well.
    struct Walk {
        const char* function;  // as the log names it
        size_t number;         // of the segment; 0: the first
        bool hdrl = false;     // what was found so far
        bool movi = false;
        bool index = false;
        bool stopped = false;  // too many unknown chunks
        uint32_t unknownChunks = 0;

        bool isFirst() const { return number == 0; }
    };

    status_t parseMoreRIFF(size_t number);
    status_t readSegmentHeader(const Walk& walk, ChunkHeader* out) const;
    static status_t unreadableChunk(const Walk& walk, int64_t position);
    status_t walkSegment(Walk* walk);
    status_t parseChunk(const ChunkWalker& chunk, Walk* walk);
    status_t parseIndex(const ChunkWalker& chunk, Walk* walk);
    status_t parseList(const ChunkWalker& chunk, Walk* walk);
    int64_t walkEnd(const Walk& walk, const ChunkHeader& riff) const;

    FileReader& mReader;
    AviFile* mFile;
    std::vector<Segment> mRiffList;
    HeaderList mHeaders;
    SegmentIndex mIndex;
};

}  // namespace android
