// SPDX-License-Identifier: Apache-2.0
//
// The header list of the file: its main header and one stream list a stream.
#pragma once

#include <stdint.h>
#include <utils/Errors.h>

#include "AviFile.h"
#include "ChunkWalker.h"
#include "FileReader.h"
#include "riff/StreamList.h"

namespace android {

class HeaderList {
  public:
    // Parses into `file`; both must outlive this object.
    HeaderList(FileReader& reader, AviFile* file) : mReader(reader), mStreams(reader, file) {}

    // Parses the list whose contents lie between these offsets. ERROR_IO, or ERROR_MALFORMED for a
    // list that ends elsewhere than it says or lacks what every file has.
    status_t parseHDRL(int64_t start, int64_t end);

  private:
    struct Found {
        bool avih = false;
        uint32_t streamLists = 0;
        bool emptyHeader = false;  // the last unknown chunk was one
    };
    static bool isEmptyAgain(const ChunkHeader& header, Found* found);
    status_t parseChunk(const ChunkWalker& chunk, Found* found);
    status_t parseList(const ChunkWalker& chunk, Found* found);
    status_t parseAVIH(int64_t start, int64_t end);

    FileReader& mReader;
    StreamList mStreams;
    FrameSize mFrameSize;
    uint32_t mNumStreams = 0;  // that the main header announces
};

}  // namespace android
