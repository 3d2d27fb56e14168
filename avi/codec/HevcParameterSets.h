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

// One parameter set in a sample: an entry of the record, once its start code is rewritten.
struct HevcParameterSet {
    bool found = false;
    size_t at = 0;         // offset of its start code of four bytes
    size_t entrySize = 0;  // bytes of the start code and the unit
};

// The parameter sets in front of the first picture; the header ends at `end`.
struct HevcSequenceHeader {
    HevcParameterSet vps;
    HevcParameterSet sps;
    HevcParameterSet pps;
    size_t end = 0;
};

// Looks for a whole sequence header in the first 1000 positions; only four-byte start codes count.
// Rewrites the start codes of the sets into the number of units (1) and the unit's length modulo
// 2^16, set by set: the sequence set closes the entry of the video set, the picture set that of the
// sequence set. Sets in another order make entries of other lengths; all stay inside the sample.
bool rewriteHevcSequenceHeader(uint8_t* data, size_t size, HevcSequenceHeader* out);

// The record around rewritten parameter sets: 26 + header.end bytes, those not written zero. What
// an entry lacks beyond the sample or the record is left out. Null without memory.
sp<ABuffer> makeHevcRecord(const uint8_t* data, size_t size, const HevcSequenceHeader& header);

}  // namespace android
