// SPDX-License-Identifier: Apache-2.0
#include "codec/HevcParameterSets.h"

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

void writePrefix(uint8_t* out, size_t length) {
    out[0] = 0;
    out[1] = 1;
    out[2] = static_cast<uint8_t>(length >> 8);
    out[3] = static_cast<uint8_t>(length);
}

}  // namespace

bool findHevcSequenceHeader(const uint8_t* data, size_t size, HevcSequenceHeader* out) {
    HevcSequenceHeader h;
    bool vps = false;
    bool sps = false;
    bool pps = false;
    for (size_t p = 0; p < kMaxScannedPositions && p + kStartCodeSize < size; ++p) {
        if (!isStartCode(data + p)) continue;
        switch (data[p + kStartCodeSize]) {
            case kVpsHeader:
                AVI_LOGV("%s(): VPS found @%u", "generateHevcCodecData", static_cast<unsigned>(p));
                vps = true;
                h.vps = p;
                break;
            case kSpsHeader:
                AVI_LOGV("%s(): SPS found @%u", "generateHevcCodecData", static_cast<unsigned>(p));
                sps = true;
                h.sps = p;
                break;
            case kPpsHeader:
                AVI_LOGV("%s(): PPS found @%u", "generateHevcCodecData", static_cast<unsigned>(p));
                pps = true;
                h.pps = p;
                break;
            default:
                if (!vps || !sps || !pps) break;
                h.end = p;
                if (h.vps > h.sps || h.sps > h.pps) return false;
                *out = h;
                return true;
        }
    }
    return false;
}

void prefixHevcParameterSets(uint8_t* data, const HevcSequenceHeader& h) {
    writePrefix(data + h.vps, h.sps - h.vps - kStartCodeSize);
    writePrefix(data + h.sps, h.pps - h.sps - kStartCodeSize);
    writePrefix(data + h.pps, h.end - h.pps - kStartCodeSize);
}

sp<ABuffer> makeHevcRecord(const uint8_t* data, const HevcSequenceHeader& h) {
    ByteWriter out(sizeof(kRecordHeader) + kArrayHeaders + h.end);
    if (!out.ok()) return nullptr;
    out.bytes(kRecordHeader, sizeof(kRecordHeader));
    out.u8(kVpsArray);
    out.bytes(data + h.vps, h.sps - h.vps);
    out.u8(kSpsArray);
    out.bytes(data + h.sps, h.pps - h.sps);
    out.u8(kPpsArray);
    out.bytes(data + h.pps, h.end - h.pps);
    return out.buffer();
}

}  // namespace android
