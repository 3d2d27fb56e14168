// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "FileReader.h"
#include "Track.h"

namespace android {

// Codec configuration of an audio track, once its sample table is complete: hands on to the codec's
// own builder. May make the track bad.
void generateAudioCodecData(FileReader& reader, Track* track);

}  // namespace android
