// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "FileReader.h"
#include "Track.h"

namespace android {

// Finds the first reliable frame header of an MPEG-audio track, names the layer, notes the junk in
// front, and settles whether the stream is counted in bytes, frames or blocks. A track without a
// header, or whose samples cannot be read, becomes bad.
void generateMPEGCodecData(FileReader& reader, Track* track);

}  // namespace android
