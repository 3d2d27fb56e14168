// SPDX-License-Identifier: Apache-2.0
//
// What the codec tags of AVI streams stand for. Pure look-ups over constant tables.
#pragma once

#include <stdint.h>

#include "support/FourCC.h"

namespace android {

// MIME type of a video compression code, whatever its case; warns about an unknown one and
// answers MEDIA_MIMETYPE_AVI_VIDEO_UNKNOWN.
const char* videoFourCCToMime(FourCC compression);

// MIME type of a wave format tag; warns about an unknown one and answers "audio/x-unknown".
const char* waveFormatTagToMime(uint16_t formatTag);

// False for codecs whose streams carry all that a decoder needs; warns about motion JPEG.
bool needsCodecData(FourCC compression);

}  // namespace android
