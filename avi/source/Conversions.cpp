// SPDX-License-Identifier: Apache-2.0
#include "source/Conversions.h"

#include <string.h>

#include <algorithm>

namespace android {

Vc1Frame probeVc1Frame(const uint8_t (&bytes)[kVc1ProbeBytes]) {
    constexpr uint8_t kFirstCode = 0x0C;  // field, frame, entry point, sequence header
    constexpr uint8_t kLastCode = 0x0F;
    const bool hasStartCode = bytes[0] == 0 && bytes[1] == 0 && bytes[2] == 1 &&
                              bytes[3] >= kFirstCode && bytes[3] <= kLastCode;
    const uint8_t header = hasStartCode ? bytes[4] : bytes[0];
    return {hasStartCode, (header & 0xE0) == 0xC0};
}

void writeVc1StartCode(uint8_t* out) {
    static constexpr uint8_t kFrameStartCode[kStartCodeSize] = {0x00, 0x00, 0x01, 0x0D};
    memcpy(out, kFrameStartCode, sizeof(kFrameStartCode));
}

bool PrefixedNalReader::next(PrefixedNal* out) {
    if (mPosition == mSize) return false;
    *out = {};
    out->prefixAt = out->offset = mPosition;
    if (mSize - mPosition < mPrefixSize) {
        mPosition = mSize;
        return true;
    }
    for (size_t i = 0; i < mPrefixSize; ++i) {
        out->length = out->length << 8 | mData[mPosition + i];
    }
    out->offset += mPrefixSize;
    out->isWhole = out->length <= mSize - out->offset;
    mPosition = out->offset + std::min(out->length, mSize - out->offset);
    return true;
}

size_t writeNalUnit(const uint8_t* unit, size_t length, uint8_t* out, size_t capacity) {
    static constexpr uint8_t kStartCode[kStartCodeSize] = {0x00, 0x00, 0x00, 0x01};
    memcpy(out, kStartCode, sizeof(kStartCode));
    const size_t copied = std::min(length, capacity - kStartCodeSize);
    memcpy(out + kStartCodeSize, unit, copied);
    return kStartCodeSize + copied;
}

size_t narrowPcm32(uint8_t* data, size_t size) {
    for (size_t i = 0; i < size / 4; ++i) {
        data[2 * i] = data[4 * i + 2];
        data[2 * i + 1] = data[4 * i + 3];
    }
    return size / 2;
}

size_t narrowPcm24(uint8_t* data, size_t size) {
    for (size_t i = 0; i < size / 3; ++i) {
        data[2 * i] = data[3 * i + 1];
        data[2 * i + 1] = data[3 * i + 2];
    }
    return size * 16 / 24;
}

void widenPcm8(const uint8_t* data, size_t size, uint8_t* out) {
    for (size_t i = 0; i < size; ++i) {
        out[2 * i] = 0;
        out[2 * i + 1] = data[i] ^ 0x80;
    }
}

}  // namespace android
