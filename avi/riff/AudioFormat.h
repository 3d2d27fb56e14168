// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "AviFile.h"
#include "riff/StreamFormat.h"

namespace android {

// Identifies the codec of an audio stream by its wave format and fills the track's format. A track
// that the device's decoders could not cope with becomes bad.
void applyWaveFormat(const StreamFormat& format, AviFile* file, Track* track);

}  // namespace android
