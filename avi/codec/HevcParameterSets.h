// SPDX-License-Identifier: Apache-2.0
//
// HEVC parameter sets of a byte stream (ISO/IEC 23008-2, annex B) and the decoder configuration
// record (ISO/IEC 14496-15) made from them. Functions over bytes, without state; any thread.
#pragma once

#include <media/stagefright/foundation/ABuffer.h>
#include <stddef.h>
#include <stdint.h>
#include <utils/StrongPointer.h>

namespace android {

// Where the parameter sets lie in a sample: offsets of their four-byte start codes. The sequence
// header ends at `end`. Invariant of a found header: vps < sps < pps < end.
struct HevcSequenceHeader {
    size_t vps = 0;
    size_t sps = 0;
    size_t pps = 0;
    size_t end = 0;
};

// Looks for a whole sequence header in the first 1000 positions; only four-byte start codes count.
bool findHevcSequenceHeader(const uint8_t* data, size_t size, HevcSequenceHeader* out);

// Rewrites the start codes of the parameter sets into the number of units (1) and the unit's
// length.
void prefixHevcParameterSets(uint8_t* data, const HevcSequenceHeader& header);

// The record around rewritten parameter sets: 26 + header.end bytes, those not written zero. Null
// without memory.
sp<ABuffer> makeHevcRecord(const uint8_t* data, const HevcSequenceHeader& header);

}  // namespace android
