// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "FileReader.h"
#include "Track.h"

namespace android {

// True when the two bytes at `data` begin an AC-3 frame (ETSI TS 102 366).
bool isAc3SyncWord(const uint8_t* data);

// Counts the junk in front of the first AC-3 sync word.
void generateAC3CodecData(FileReader& reader, Track* track);

}  // namespace android
