// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <media/MediaExtractorPluginHelper.h>
#include <stddef.h>
#include <stdint.h>

#include "source/SourceTrack.h"

namespace android {

// Where reading resumes after a seek.
struct SeekLanding {
    uint32_t index = 0;     // of the chunk
    uint32_t consumed = 0;  // bytes at its beginning that are passed over
    int64_t targetUs = -1;  // of the frame that was asked for, where the mode knows one
};

// Turns times into chunks: video lands on a key frame, audio in blocks on a block, other audio on
// the chunk that holds the time. Corrects key flags of the track's table by what frames say.
class Seeker {
  public:
    using SeekMode = MediaTrackHelper::ReadOptions::SeekMode;

    explicit Seeker(const SourceTrack& track) : mTrack(track) {}

    // False, with a line in the log, when the time lies beyond the last sample. REQUIRES: the table
    // is not empty, timeUs >= 0.
    bool getSampleIndexBySeekTime(int64_t timeUs, SeekMode mode, SeekLanding* out) const;

  private:
    bool seekVideo(int64_t timeUs, SeekMode mode, SeekLanding* out) const;
    bool findNextSync(size_t from, uint32_t* index) const;
    uint32_t findPreviousSync(size_t from) const;
    bool landsOn(size_t i, const char* label) const;
    bool fixSyncSample(size_t i) const;
    bool seekBlocks(int64_t timeUs, SeekLanding* out) const;
    bool seekAudio(int64_t timeUs, SeekLanding* out) const;
    size_t seekBytes(int64_t timeUs) const;
    int64_t byteTimeUs(int64_t bytes) const;

    const SourceTrack& mTrack;
};

}  // namespace android
