// SPDX-License-Identifier: Apache-2.0
//
// The stream lists of the header list: each creates its stream's track, hands the list's chunks to
// their readers, and drops a stream that breaks the rules, so that the others still play.
#pragma once

#include <stdint.h>
#include <utils/Errors.h>

#include "AviFile.h"
#include "ChunkWalker.h"
#include "FileReader.h"
#include "index/OpenDmlIndex.h"
#include "riff/StreamHeader.h"

namespace android {

class StreamList {
  public:
    // Parses into `file`; both must outlive this object.
    StreamList(FileReader& reader, AviFile* file)
        : mReader(reader), mFile(file), mOpenDml(reader) {}

    // Parses the list of stream `streamIndex` whose contents lie between these offsets. ERROR_IO,
    // or ERROR_MALFORMED for a list without header or format, or that ends elsewhere than it says:
    // such a file cannot be trusted. A stream that is dropped is no error.
    status_t parseSTRL(int64_t start, int64_t end, uint32_t streamIndex,
                       const FrameSize& frameSize);

  private:
    // Which of the chunks that count once were seen.
    struct Seen {
        bool strh = false;
        bool strf = false;
        bool strd = false;
        bool strn = false;
    };
    bool parseChunk(const ChunkWalker& chunk, const FrameSize& frameSize, Track* track, Seen* seen);
    bool parseHeader(const ChunkWalker& chunk, const FrameSize& frameSize, Track* track,
                     Seen* seen);
    bool parseFormat(const ChunkWalker& chunk, Track* track, Seen* seen);
    bool parseName(const ChunkWalker& chunk, Track* track, Seen* seen);
    bool parseProperties(const ChunkWalker& chunk, Track* track, const Seen& seen);
    void parseIndex(const ChunkWalker& chunk, Track* track);

    FileReader& mReader;
    AviFile* mFile;
    OpenDmlIndex mOpenDml;
};

}  // namespace android
