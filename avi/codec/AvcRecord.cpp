// SPDX-License-Identifier: Apache-2.0
#include "codec/AvcRecord.h"

#include <media/stagefright/MediaErrors.h>
#include <media/stagefright/foundation/ByteUtils.h>

#include "support/ByteWriter.h"
#include "support/Log.h"

namespace android {

namespace {

constexpr size_t kMinRecordSize = 7;

status_t malformedRecord(int line) {
    return fail("parseAVCCodecSpecificData", status_t{ERROR_MALFORMED}, line);
}

// Steps over `count` parameter sets, each with a 16-bit big-endian length in front.
bool skipParameterSets(size_t count, const uint8_t** data, size_t* size) {
    for (size_t i = 0; i < count; ++i) {
        if (*size < 2) return false;
        const size_t length = U16_AT(*data);
        if (length > *size - 2) return false;
        *data += 2 + length;
        *size -= 2 + length;
    }
    return true;
}

}  // namespace

// u8 version 1 | u8 profile | u8 constraints | u8 level | u8 length size | u8 SPS count |
// u16 length | SPS | u8 PPS count | u16 length | PPS
sp<ABuffer> makeAvcRecord(const sp<ABuffer>& sps, const sp<ABuffer>& pps) {
    constexpr size_t kFieldsSize = 11;
    constexpr uint8_t kLengthSizeTwo = 0xFD;  // the decoders get start codes and do not look
    constexpr uint8_t kOneSps = 0xE1;
    ByteWriter out(kFieldsSize + sps->size() + pps->size());
    if (!out.ok()) return nullptr;
    out.u8(1);
    out.bytes(sps->data() + 1, 3);
    out.u8(kLengthSizeTwo);
    out.u8(kOneSps);
    out.u16(static_cast<uint32_t>(sps->size()));  // the low 16 bits of a longer set
    out.bytes(sps->data(), sps->size());
    out.u8(1);
    out.u16(static_cast<uint32_t>(pps->size()));
    out.bytes(pps->data(), pps->size());
    return out.buffer();
}

// u8 version | u8 profile | u8 compatibility | u8 level | u8 length size | u8 SPS count | sets |
// u8 PPS count | sets
status_t parseAVCCodecSpecificData(const uint8_t* data, size_t size) {
    if (size < kMinRecordSize || data[0] != 1) return malformedRecord(__LINE__);
    AVI_LOGV("%s(): configurationVersion %u profile %d level %d lengthSize %d",
             "parseAVCCodecSpecificData", data[0], data[1], data[3], (data[4] & 3) + 1);

    const size_t numSequenceSets = data[5] & 31;
    AVI_LOGV("%s(): numSeqParameterSets %zu", "parseAVCCodecSpecificData", numSequenceSets);
    data += 6;
    size -= 6;
    if (!skipParameterSets(numSequenceSets, &data, &size)) return malformedRecord(__LINE__);
    if (size == 0) return malformedRecord(__LINE__);

    const size_t numPictureSets = data[0];
    AVI_LOGV("%s(): numPicParameterSets %zu", "parseAVCCodecSpecificData", numPictureSets);
    ++data;
    --size;
    if (!skipParameterSets(numPictureSets, &data, &size)) return malformedRecord(__LINE__);
    return OK;
}

}  // namespace android
