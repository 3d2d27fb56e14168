// SPDX-License-Identifier: Apache-2.0
//
// The search for the first reliable frame header of an MPEG-audio track.
#pragma once

#include <stddef.h>
#include <stdint.h>
#include <utils/Errors.h>

#include "FileReader.h"
#include "Track.h"
#include "codec/MpegAudioHeader.h"

namespace android {

// Where the stream begins in earnest.
struct MpegAudioStart {
    size_t sampleIndex = 0;
    size_t offset = 0;    // in the sample
    uint32_t header = 0;  // 0: none
};

class MpegAudioSearch {
  public:
    // Both must outlive the search.
    MpegAudioSearch(FileReader& reader, const Track& track) : mReader(reader), mTrack(track) {}

    // Looks through the samples in order; ERROR_IO when one cannot be read before a header is
    // found.
    status_t findMP3Header(MpegAudioStart* out);

  private:
    struct Probe;
    status_t findMP3HeaderIn(const Probe& probe, MpegAudioStart* out);
    status_t readSuccessor(const Probe& probe, size_t position, uint32_t* out);
    bool readFollowing(size_t index, size_t count, uint8_t* out);

    FileReader& mReader;
    const Track& mTrack;

    // The first bytes of the sample after the one that is searched, read at the first need.
    uint8_t mFollowing[kMpegAudioHeaderSize] = {};
    size_t mFollowingSize = 0;
    bool mFollowingRead = false;
};

}  // namespace android
