// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <stdint.h>
#include <utils/Errors.h>

#include "FileReader.h"
#include "TrackList.h"

namespace android {

// Adds what an idx1 chunk with this payload lists to the tables of all tracks. `moviStart` is the
// offset of the movi list's header. ERROR_IO when a part of the chunk cannot be read: the samples
// from before it stay.
status_t parseIDX1(FileReader& reader, const TrackList& tracks, int64_t start, int64_t end,
                   uint32_t moviStart);

}  // namespace android
