// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "Track.h"
#include "support/Log.h"

namespace android {

// What the configuration builders of video codecs look at. REQUIRES: the track has samples.
inline void logFirstSample(const char* function, const Track& track) {
    AVI_LOGV("%s(): First sample offset %llx, size %d", function,
             ull(static_cast<uint64_t>(track.mTable.offset(0))),
             static_cast<int>(track.mTable.chunkSize(0)));
}

}  // namespace android
