// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <stdint.h>
#include <utils/StrongPointer.h>
#include <utils/Vector.h>

#include "Track.h"
#include "source/Chunk.h"
#include "source/SourceTrack.h"

namespace android {

// How audio follows video: the source of the video leaves the time it landed on in the records of
// the audio tracks, whose sources take it at their next seek. One a source, over the records that
// all sources of the file share; see RuvoAVISeekTime for threads.
class AudioSeekTimes {
  public:
    AudioSeekTimes(const SourceTrack& track, const Vector<sp<RuvoAVISeekTime>>& records)
        : mTrack(track), mRecords(records) {}

    // Where a seek to `requestedUs` should go: an audio track follows the video, unless it is sent
    // to the beginning. Never negative.
    int64_t followedTimeUs(int64_t requestedUs) const;

    // After the first sample of a seek, which landed on `chunk`: video leaves its time, audio
    // forgets the one it followed.
    void share(const Chunk& chunk, int64_t landingUs);

  private:
    int64_t getAudioSeekTimeByTrackId(int32_t trackId) const;
    void setAllAudioSeekTime(int64_t timeUs);
    void setAudioSeekTimeByTrackId(int32_t trackId, int64_t timeUs);
    int32_t trackId() const { return static_cast<int32_t>(mTrack.info.mStreamIndex); }

    const SourceTrack& mTrack;
    const Vector<sp<RuvoAVISeekTime>>& mRecords;
};

}  // namespace android
