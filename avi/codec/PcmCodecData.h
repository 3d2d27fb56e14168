// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "FileReader.h"
#include "Track.h"

namespace android {

// Looks for AC-3 and DTS bit streams in a track declared as PCM, as recordings of a digital output
// carry them, and names the type that is found.
void generatePCMCodecData(FileReader& reader, Track* track);

}  // namespace android
