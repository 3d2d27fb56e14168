// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "FileReader.h"
#include "Track.h"

namespace android {

// Publishes the decoder configuration record of the parameter sets in front of the first IDR
// picture (ISO/IEC 14496-15), the picture size and the aspect ratio. A first sample that cannot be
// read makes the track bad; one without such a picture changes nothing. REQUIRES: the track has
// samples.
void generateAvcCodecData(FileReader& reader, Track* track);

}  // namespace android
