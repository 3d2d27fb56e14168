// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <media/NdkMediaFormat.h>
#include <stdint.h>

#include "FileReader.h"

namespace android {

// Reads the text tags of an INFO list into the file's format. Damage ends the list.
void parseINFO(FileReader& reader, int64_t start, int64_t end, AMediaFormat* fileMeta);

}  // namespace android
