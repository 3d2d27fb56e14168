// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "FileReader.h"
#include "Track.h"

namespace android {

// Publishes type, rate and channels of the first DTS frame (ETSI TS 102 114).
void generateDtsCodecData(FileReader& reader, Track* track);

}  // namespace android
