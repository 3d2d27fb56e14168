// SPDX-License-Identifier: Apache-2.0
//
// Where the samples of a RIFF segment come from: OpenDML indexes of the stream lists, else idx1,
// else a scan of the movi list.
#pragma once

#include <stddef.h>
#include <stdint.h>
#include <utils/Errors.h>

#include "FileReader.h"
#include "TrackList.h"
#include "index/MoviScan.h"

namespace android {

class SegmentIndex {
  public:
    // Both must outlive this object.
    SegmentIndex(FileReader& reader, const TrackList& tracks) : mReader(reader), mTracks(tracks) {}

    // Notes where the contents of the segment's movi list lie. They are not walked: an index knows
    // what lies in them.
    void parseMOVI(int64_t start, int64_t end);

    // Reads the idx1 chunk of the first segment, unless one was read or no track needs it. What
    // OpenDML indexes listed is replaced: mixing two indexes would give chunks twice.
    status_t readFirstIdx1(int64_t start, int64_t end);

    // Once the first segment is walked: scans its movi list when nothing indexed it.
    void completeFirst();

    // Reads the index chunk of a further segment.
    status_t readFurtherIdx1(int64_t start, int64_t end);

    // Scans the movi list of a further segment without an index chunk.
    void scanFurther();

    // True when some video track has as many samples as its stream header announces. Audio tracks
    // take no part: their header lengths are too often wrong.
    bool videoFullyIndexed() const;

  private:
    bool allTracksIndexed();
    bool takeFurther(int64_t bytes);

    FileReader& mReader;
    const TrackList& mTracks;
    MoviRange mMovi;
    // The answer of allTracksIndexed() for the tracks as they were then: a file may ask very often.
    uint32_t mAskedAt = 0;
    bool mAllIndexed = true;
    int64_t mFurtherBytes = 0;  // that further segments have read, or would have
    bool mIdx1Found = false;    // an idx1 of the first segment was read, or found to be cut
    bool mHasIndex = false;     // the tables of the first segment are complete
};

}  // namespace android
