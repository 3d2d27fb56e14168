// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <stdint.h>

#include "FileReader.h"
#include "Track.h"

namespace android {

// Reads the video properties header of OpenDML files and publishes its aspect ratio. A chunk that
// is damaged publishes nothing.
void parseVPRP(FileReader& reader, int64_t start, int64_t end, Track* track);

}  // namespace android
