// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <stddef.h>
#include <stdint.h>

#include <memory>

#include "source/FramesAhead.h"
#include "source/SourceTrack.h"

namespace android {

// Rows of B-frames in the table of a video track. Where they are is a property of the table: what
// an entry was seen to be is kept, one byte each, since a row as long as the table would else be
// read again for each of its frames and at each seek.
class BFrameRows {
  public:
    BFrameRows(const SourceTrack& track, FramesAhead* frames) : mTrack(track), mFrames(*frames) {}

    // B-frames that directly follow one another from entry `first` on. Entries that cannot be read
    // are passed over: they lie after the end of a cut file.
    int64_t countFrom(size_t first);

  private:
    enum class Seen : uint8_t {
        kNever = 0,
        kUnreadable,  // once: the source may have failed for a moment, it is asked again
        kMissing,     // for good
        kBFrame,
        kOther,
    };
    int64_t findRow(size_t first);
    Seen look(size_t i);

    const SourceTrack& mTrack;
    FramesAhead& mFrames;
    std::unique_ptr<Seen[]> mSeen;  // null until the first look, or without memory

    // The last row: entries [mBegin, mEnd), mCount of them B-frames. None at first.
    size_t mBegin = 1;
    size_t mEnd = 0;
    int64_t mCount = 0;
};

}  // namespace android
