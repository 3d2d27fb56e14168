// SPDX-License-Identifier: Apache-2.0
#include "codec/HevcParameterSets.h"

#include <algorithm>

#include "support/Arithmetic.h"
#include "support/ByteWriter.h"
#include "support/Log.h"

namespace android {

namespace {

constexpr size_t kMaxScannedPositions = 1000;
constexpr size_t kStartCodeSize = 4;

// NAL unit headers of layer 0: type << 1.
constexpr uint8_t kVpsHeader = 0x40;
constexpr uint8_t kSpsHeader = 0x42;
constexpr uint8_t kPpsHeader = 0x44;

// Array headers of the record: array_completeness, NAL unit type.
constexpr uint8_t kVpsArray = 0xA0;
constexpr uint8_t kSpsArray = 0xA1;
constexpr uint8_t kPpsArray = 0xA2;

// The decoders take all they need from the parameter sets, so the fields in front of the arrays are
// fixed: version 1, profile 1, level 153, 8 bits, lengths of four bytes, three arrays.
constexpr uint8_t kRecordHeader[] = {
    0x01, 0x01, 0x00, 0x00, 0x00, 0x00, 0x00, 0x00, 0x00, 0x00, 0x00, 0x00,
    0x99, 0xF0, 0x00, 0xFC, 0xFC, 0xF8, 0xF8, 0x00, 0x00, 0x03, 0x03,
};
constexpr size_t kArrayHeaders = 3;

bool isStartCode(const uint8_t* data) {
    return data[0] == 0 && data[1] == 0 && data[2] == 0 && data[3] == 1;
}

// Ends the entry of a set where the next one begins. REQUIRES: four bytes at set->at.
void closeEntry(HevcParameterSet* set, size_t end, uint8_t* data) {
    set->entrySize = end - set->at;
    const uint32_t length = wrapSub32(static_cast<uint32_t>(set->entrySize), kStartCodeSize);
    uint8_t* prefix = data + set->at;
    prefix[0] = 0;
    prefix[1] = 1;
    prefix[2] = static_cast<uint8_t>(length >> 8);
    prefix[3] = static_cast<uint8_t>(length);
}

void openEntry(HevcParameterSet* set, size_t at) {
    set->found = true;
    set->at = at;
}

void writeEntry(const HevcParameterSet& set, const uint8_t* data, size_t size, ByteWriter* out) {
    out->bytes(data + set.at, std::min(set.entrySize, size - set.at));
}

}  // namespace

bool rewriteHevcSequenceHeader(uint8_t* data, size_t size, HevcSequenceHeader* out) {
    HevcSequenceHeader h;
    for (size_t p = 0; p < kMaxScannedPositions && p + kStartCodeSize < size; ++p) {
        if (!isStartCode(data + p)) continue;
        switch (data[p + kStartCodeSize]) {
            case kVpsHeader:
                openEntry(&h.vps, p);
                AVI_LOGV("%s(): VPS found @%u", "generateHevcCodecData", static_cast<unsigned>(p));
                break;
            case kSpsHeader:
                closeEntry(&h.vps, p, data);
                openEntry(&h.sps, p);
                AVI_LOGV("%s(): SPS found @%u", "generateHevcCodecData", static_cast<unsigned>(p));
                break;
            case kPpsHeader:
                closeEntry(&h.sps, p, data);
                openEntry(&h.pps, p);
                AVI_LOGV("%s(): PPS found @%u", "generateHevcCodecData", static_cast<unsigned>(p));
                break;
            default:
                if (!h.vps.found || !h.sps.found || !h.pps.found) break;
                closeEntry(&h.pps, p, data);
                h.end = p;
                *out = h;
                return true;
        }
    }
    return false;
}

sp<ABuffer> makeHevcRecord(const uint8_t* data, size_t size, const HevcSequenceHeader& h) {
    ByteWriter out(sizeof(kRecordHeader) + kArrayHeaders + h.end);
    if (!out.ok()) return nullptr;
    out.bytes(kRecordHeader, sizeof(kRecordHeader));
    out.u8(kVpsArray);
    writeEntry(h.vps, data, size, &out);
    out.u8(kSpsArray);
    writeEntry(h.sps, data, size, &out);
    out.u8(kPpsArray);
    writeEntry(h.pps, data, size, &out);
    return out.buffer();
}

}  // namespace android
