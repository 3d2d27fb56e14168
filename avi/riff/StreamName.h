// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <stdint.h>

#include "FileReader.h"
#include "Track.h"

namespace android {

// Reads a stream name and publishes the language that it hints at (ISO 639-2), "und" for none.
void parseSTRN(FileReader& reader, int64_t start, int64_t end, Track* track);

}  // namespace android
