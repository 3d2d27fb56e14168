// SPDX-License-Identifier: Apache-2.0
// One track of an opened file, through which its samples are read.
// Owns the plug-in's track, and keeps the extractor it belongs to alive.
// Like the framework it does not stop a started track before deleting it. The buffer group given to
// start() must live until stop(), and every buffer read must be back in it when it goes.
// Threads: start, stop and read are called by one thread at a time; getFormat() and
// supportsNonBlockingRead() may be called from others meanwhile.
#pragma once

#include <cstdint>
#include <memory>

#include <media/MediaExtractorPluginApi.h>

#include "service/BufferGroup.h"
#include "service/BufferHandle.h"
#include "service/MediaFormat.h"

namespace android::service {

/** A format query's answer; the format holds what was filled in, also when the status is an error.
 */
struct FormatResult {
    media_status_t status = AMEDIA_OK;
    MediaFormat format;
};

/** A read's answer; a buffer handed over along with an error is kept, so that it is not lost. */
struct ReadResult {
    media_status_t status = AMEDIA_OK;
    BufferHandle buffer;
};

class Track {
  public:
    /** Takes over the plug-in's `track`; `owner` is kept alive until the track is gone. */
    Track(CMediaTrack* track, std::shared_ptr<void> owner);
    Track(const Track&) = delete;
    Track& operator=(const Track&) = delete;
    ~Track();

    /** Makes the track ready to read into buffers of `group`. */
    media_status_t start(BufferGroup& group);
    /** Ends reading; the plug-in then holds no buffer of the group. */
    media_status_t stop();
    /** The track's format in a new MediaFormat. */
    FormatResult getFormat() const;
    /**
     * Reads the next sample. `options` is a combination of CMediaTrackReadOptions: with SEEK it
     * goes to `seekPosUs` (microseconds) first, in the mode of the low three bits. The status is
     * AMEDIA_ERROR_END_OF_STREAM after the last sample.
     */
    ReadResult read(uint32_t options = 0, int64_t seekPosUs = 0);
    bool supportsNonBlockingRead() const;

    /** The plug-in's own record, for calls that this class does not make; still owned here. */
    CMediaTrack* plain() const { return mTrack; }

  private:
    std::shared_ptr<void> mOwner;  // outlives mTrack
    CMediaTrack* mTrack = nullptr;
};

}  // namespace android::service
