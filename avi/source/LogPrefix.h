// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <stddef.h>

#include "source/Chunk.h"
#include "source/SourceTrack.h"

namespace android {

// What log lines about a track or one of its chunks begin with. To be made where a line is printed,
// for that line.
class LogPrefix {
  public:
    // "[video/avc][0]"
    explicit LogPrefix(const SourceTrack& track);

    // "[video/avc][0][7/250][P]", as far as the chunk's label and type go.
    LogPrefix(const SourceTrack& track, const Chunk& chunk);

    const char* text() const { return mText; }

  private:
    void append(const char* text);
    void append(size_t number);

    // MIME types are names of our own tables, at most some 30 characters long.
    char mText[128] = {};
    size_t mLength = 0;
};

}  // namespace android
