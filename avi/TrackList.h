// SPDX-License-Identifier: Apache-2.0
//
// The tracks of a file, by position and by stream number.
// Invariant: video first once there is one, the others in the order in which they were added; every
// track's address is stable.
// Threading: changed on the thread that parses the file, before any source exists.
#pragma once

#include <stddef.h>
#include <stdint.h>

#include <memory>
#include <vector>

#include "Track.h"

namespace android {

class TrackList {
  public:
    using Tracks = std::vector<std::unique_ptr<Track>>;

    size_t size() const { return mTracks.size(); }
    Tracks::const_iterator begin() const { return mTracks.begin(); }
    Tracks::const_iterator end() const { return mTracks.end(); }

    // Null when there is no such position.
    Track* byPosition(size_t index) const;

    // The track that chunk ids with this number belong to; null when its stream was dropped or
    // never was.
    Track* byStream(uint32_t streamNumber) const {
        return streamNumber < mByStream.size() ? mByStream[streamNumber] : nullptr;
    }

    // Appends the track of a stream. A second header list counts its streams from 0 again: the
    // first taker keeps the number.
    Track* add(uint32_t streamNumber);

    // Deletes a track; chunks of its stream have none from now on.
    void drop(Track* track);

    // Puts a video track in front of all others, unless video is there already.
    void putVideoFirst(const Track* track);

    // Counts the tracks that came and went: what was found out about all of them holds until then.
    uint32_t changes() const { return mChanges; }

  private:
    uint32_t mChanges = 0;
    Tracks mTracks;
    std::vector<Track*> mByStream;  // null where a stream was dropped
};

}  // namespace android
