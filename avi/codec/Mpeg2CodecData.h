// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "FileReader.h"
#include "Track.h"

namespace android {

// Publishes the headers in front of the first picture (ISO/IEC 13818-2, 6.2.2) in an elementary
// stream descriptor. REQUIRES: the track has samples.
void generateMPEG2CodecData(FileReader& reader, Track* track);

}  // namespace android
