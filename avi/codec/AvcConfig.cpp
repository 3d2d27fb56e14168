// SPDX-License-Identifier: Apache-2.0
#include "codec/AvcConfig.h"

#include <media/stagefright/MediaErrors.h>
#include <media/stagefright/foundation/ByteUtils.h>

#include "support/Log.h"

namespace android {

namespace {

constexpr size_t kMinRecordSize = 7;
constexpr uint8_t kNalTypeMask = 0x1F;
constexpr uint8_t kPictureParameterSet = 8;

status_t malformedRecord(int line) {
    AVI_LOG_FAILURE("parseAVCCodecSpecificData", ERROR_MALFORMED, line);
    return ERROR_MALFORMED;
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

ssize_t findStartCode(const uint8_t* data, size_t size) {
    for (size_t i = 2; i < size; ++i) {
        if (data[i - 2] != 0 || data[i - 1] != 0 || data[i] != 1) continue;
        const bool fourBytes = i >= 3 && data[i - 3] == 0;
        return static_cast<ssize_t>(i - (fourBytes ? 3 : 2));
    }
    return -1;
}

bool hasPictureParameterSet(const uint8_t* data, size_t size) {
    for (size_t i = 3; i < size; ++i) {
        const bool startCode = data[i - 3] == 0 && data[i - 2] == 0 && data[i - 1] == 1;
        if (startCode && (data[i] & kNalTypeMask) == kPictureParameterSet) return true;
    }
    return false;
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
