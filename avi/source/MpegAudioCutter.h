// SPDX-License-Identifier: Apache-2.0
//
// Cuts the chunks of an MPEG-audio stream into frames and keeps their running time. Chunks hold any
// part of the stream: several frames, a part of one, frames whose header is missing.
// Invariant: every cut takes at least one byte off its data. Not thread-safe.
#pragma once

#include <stddef.h>
#include <stdint.h>

#include "Track.h"

namespace android {

// The first header of the stream's kind in some data, and what it tells.
struct MpegAudioFound {
    int position = -1;    // in the data; -1: there is none
    uint32_t header = 0;  // 0: none
    bool isValid = false;
    size_t frameSize = 0;
    uint32_t layer = 0;  // the header's field
    int bitRate = 0;     // in kbit/s
};

// One cut: bytes [start, start + size) of the data it was made in.
struct MpegAudioCut {
    enum class Kind {
        kFrame,       // a whole frame
        kSpanning,    // a frame that goes on in the next chunk: start + size is beyond the data
        kHeaderless,  // data without a header: the frame gets one
        kRest,        // what cannot be cut goes out as it is
    };
    Kind kind = Kind::kRest;
    size_t start = 0;
    size_t size = 0;
    MpegAudioFound found;
};

class MpegAudioCutter {
  public:
    explicit MpegAudioCutter(const TrackInfo& info);

    // True for streams in which a frame header was found; others are not cut.
    bool isActive() const { return mIsActive; }

    // The next cut is made in other data than what the last one left.
    void beginData() { mSearched = 0; }

    // The next cut of `length` bytes: those that the last cut left, unless beginData() was called.
    // REQUIRES: length > 0.
    MpegAudioCut cut(const uint8_t* data, size_t length);

    // Gives data without a header one, so that the decoder stays in step: the stream's own, with
    // the side information zeroed. REQUIRES: length >= 4.
    void createHeader(uint8_t* data, size_t length) const;

    // Time of a cut in microseconds, never before `chunkTimeUs`; advances the running time.
    int64_t stamp(const MpegAudioCut& cut, int64_t chunkTimeUs);

    void setTime(int64_t timeUs) { mTimeUs = timeUs; }

  private:
    MpegAudioFound find(const uint8_t* data, size_t length) const;
    MpegAudioCut chooseCut(const MpegAudioFound& found, size_t length) const;
    static int64_t durationUs(const MpegAudioCut& cut);

    bool mIsActive;
    uint32_t mStreamHeader;
    size_t mBlockSize;    // of a frame without a header, 0: all there is
    int64_t mUnitUs;      // of a frame without a header
    int64_t mTimeUs = 0;  // running time

    // Bytes at the beginning of what the last cut left where no header begins: blocks are cut off a
    // chunk one by one, and the chunk is not to be searched to its end for each of them.
    size_t mSearched = 0;
};

}  // namespace android
