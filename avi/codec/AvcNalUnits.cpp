// SPDX-License-Identifier: Apache-2.0
#include "codec/AvcNalUnits.h"

#include <media/stagefright/foundation/avc_utils.h>

#include "support/StartCode.h"

namespace android {

namespace {

// Offset of the header of the first NAL unit of a type after a start code; 0 when there is none.
size_t nalHeaderOfType(const uint8_t* data, size_t size, uint8_t type) {
    for (size_t header = 0; header < size;) {
        const size_t code = findStartCodePrefix(data, size, header);
        header = code + kStartCodePrefixSize;
        if (header < size && (data[header] & kNalTypeMask) == type) return header;
    }
    return 0;
}

}  // namespace

ssize_t findStartCode(const uint8_t* data, size_t size) {
    const size_t code = findStartCodePrefix(data, size, 0);
    if (code == size) return -1;
    const bool fourBytes = code > 0 && data[code - 1] == 0;
    return static_cast<ssize_t>(code - (fourBytes ? 1 : 0));
}

bool hasPictureParameterSet(const uint8_t* data, size_t size) {
    return nalHeaderOfType(data, size, kNalPictureParameterSet) != 0;
}

size_t findSequenceParameterSet(const uint8_t* data, size_t size) {
    const size_t header = nalHeaderOfType(data, size, kNalSequenceParameterSet);
    return header == 0 ? 0 : header - kStartCodePrefixSize;
}

sp<ABuffer> findNALUnit(const uint8_t* data, size_t size, uint8_t type) {
    const uint8_t* unit = nullptr;
    size_t unitSize = 0;
    while (getNextNALUnit(&data, &size, &unit, &unitSize, true) == OK) {
        if (unitSize == 0 || (unit[0] & kNalTypeMask) != type) continue;
        return ABuffer::CreateAsCopy(unit, unitSize);
    }
    return nullptr;
}

IdrSearch findFirstIdr(const uint8_t* data, size_t size) {
    IdrSearch search;
    for (;;) {
        const size_t code = findStartCodePrefix(data, size, search.searchStart);
        if (code == size) return search;
        const bool fourBytes = code > search.searchStart && data[code - 1] == 0;
        search.position = code - (fourBytes ? 1 : 0);
        search.prefixLength = fourBytes ? 4 : 3;
        search.searchStart = code + kStartCodePrefixSize;
        if (search.searchStart == size) return search;
        search.found = (data[search.searchStart] & kNalTypeMask) == kNalIdr;
        if (search.found) return search;
    }
}

}  // namespace android
