// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "Track.h"

namespace android {

// Logs the whole record of a track, a field a line, at verbose priority while the extract-log
// switch is on. REQUIRES: no source of the track exists yet.
void dumpTrack(const Track& track);

}  // namespace android
