// SPDX-License-Identifier: Apache-2.0
//
// AVC configuration as streams carry it: the decoder configuration record of ISO/IEC 14496-15 and
// parameter sets between start codes (ISO/IEC 14496-10, annex B). Functions over bytes, without
// state; any thread.
#pragma once

#include <stddef.h>
#include <stdint.h>
#include <utils/Errors.h>

namespace android {

// Offset of the first start code (00 00 01, or 00 00 00 01 as one of four bytes); -1 when there is
// none.
ssize_t findStartCode(const uint8_t* data, size_t size);

// True when a picture parameter set follows a start code: the data is a byte stream.
bool hasPictureParameterSet(const uint8_t* data, size_t size);

// OK when the data is a well-formed AVC decoder configuration record, else ERROR_MALFORMED with a
// log line.
status_t parseAVCCodecSpecificData(const uint8_t* data, size_t size);

}  // namespace android
