// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "FileReader.h"
#include "Track.h"

namespace android {

// Publishes rate, channels and the descriptor of an AAC track by its first sample and by the extra
// data of its stream format (ISO/IEC 14496-3). Aborts when that data names a reserved sampling
// rate. REQUIRES: the track has samples.
void generateAACCodecData(FileReader& reader, Track* track);

}  // namespace android
