// SPDX-License-Identifier: Apache-2.0
//
// Filling of the tracks' sample tables, one sample at a time: every index reader ends here.
#pragma once

#include "FileReader.h"
#include "TrackList.h"

namespace android {

// Adds a sample to the track's table, with its sums and largest sizes. Empty samples that take no
// time are left out, and what exceeds the samples that the file can hold, with one warning. The
// tenth sample of a video track has its codec configured.
void addSample(FileReader& reader, const RuvoAVISample& sample, Track* track);

// The same for the track of a stream number. A sample beyond the end of the file is logged and
// dropped; one without a track is dropped.
void addSampleById(FileReader& reader, const TrackList& tracks, uint32_t streamNumber,
                   const RuvoAVISample& sample);

// Empties the track's table, for another index to fill it.
void clearSamples(Track* track);

}  // namespace android
