// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "FileReader.h"
#include "Track.h"

namespace android {

// Publishes the decoder configuration record of the parameter sets in front of the first picture
// (ISO/IEC 14496-15), unless the stream format brought one. A first sample without them makes the
// track bad. REQUIRES: the track has samples.
void generateHevcCodecData(FileReader& reader, Track* track);

}  // namespace android
