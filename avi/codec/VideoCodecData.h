// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "FileReader.h"
#include "Track.h"

namespace android {

// Codec configuration of a video track from its first samples: settles how AVC samples are framed,
// gives the track an aspect ratio, and hands on to the codec's own builder. May make the track bad.
// Called once a track, when ten samples of it are known.
void generateVideoCodecData(FileReader& reader, Track* track);

}  // namespace android
