// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <stdint.h>

#include "Track.h"

namespace android {

// Publishes the duration and the average bit rate of a track whose table is complete.
// `videoDurationUs` is that of the last finished video track, 0 before one: set by video, and what
// audio is clamped to. A track without a rate is logged and left alone.
// REQUIRES: the track has samples.
void updateSamples(Track* track, int64_t* videoDurationUs);

}  // namespace android
