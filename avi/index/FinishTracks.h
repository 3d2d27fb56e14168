// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <utils/Errors.h>

#include "FileReader.h"
#include "TrackList.h"

namespace android {

// Closes the tracks once all indexes are read: publishes the largest sample, has audio configured,
// marks tracks that cannot be played as bad, and works out durations and bit rates.
// ERROR_UNSUPPORTED when no track is left that can be played.
status_t finishParse(FileReader& reader, const TrackList& tracks);

}  // namespace android
