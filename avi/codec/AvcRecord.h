// SPDX-License-Identifier: Apache-2.0
//
// The AVC decoder configuration record (ISO/IEC 14496-15). Functions over bytes, without state; any
// thread.
#pragma once

#include <media/stagefright/foundation/ABuffer.h>
#include <stddef.h>
#include <stdint.h>
#include <utils/Errors.h>
#include <utils/StrongPointer.h>

namespace android {

// OK when the data is a well-formed AVC decoder configuration record, else ERROR_MALFORMED with a
// log line.
status_t parseAVCCodecSpecificData(const uint8_t* data, size_t size);

// The decoder configuration record of one sequence and one picture parameter set; null without
// memory. A set longer than 65535 bytes stands in it whole, with the low 16 bits of its length.
// REQUIRES: sps->size() >= 4.
sp<ABuffer> makeAvcRecord(const sp<ABuffer>& sps, const sp<ABuffer>& pps);

}  // namespace android
