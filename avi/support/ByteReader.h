// SPDX-License-Identifier: Apache-2.0
//
// The one reader of on-disk integers: little-endian, bounds-checked, over bytes that somebody else
// owns. A read that does not fit returns false and consumes nothing.
// Invariant: mPosition <= mSize. Not thread-safe; cheap to copy.
#pragma once

#include <stddef.h>
#include <stdint.h>

#include "support/FourCC.h"

namespace android {

class ByteReader {
  public:
    ByteReader(const uint8_t* data, size_t size) : mData(data), mSize(size) {}

    size_t remaining() const { return mSize - mPosition; }

    bool skip(size_t count) {
        if (count > remaining()) return false;
        mPosition += count;
        return true;
    }

    bool u8(uint8_t* out) {
        uint64_t value;
        if (!littleEndian(1, &value)) return false;
        *out = static_cast<uint8_t>(value);
        return true;
    }

    bool u16(uint16_t* out) {
        uint64_t value;
        if (!littleEndian(2, &value)) return false;
        *out = static_cast<uint16_t>(value);
        return true;
    }

    bool u32(uint32_t* out) {
        uint64_t value;
        if (!littleEndian(4, &value)) return false;
        *out = static_cast<uint32_t>(value);
        return true;
    }

    bool i32(int32_t* out) {
        uint32_t value;
        if (!u32(&value)) return false;
        *out = static_cast<int32_t>(value);
        return true;
    }

    bool u64(uint64_t* out) { return littleEndian(8, out); }

    bool code(FourCC* out) {
        uint32_t value;
        if (!u32(&value)) return false;
        *out = FourCC{value};
        return true;
    }

  private:
    bool littleEndian(size_t count, uint64_t* out) {
        if (count > remaining()) return false;
        uint64_t value = 0;
        for (size_t i = 0; i < count; ++i) {
            value |= uint64_t{mData[mPosition + i]} << (8 * i);
        }
        mPosition += count;
        *out = value;
        return true;
    }

    const uint8_t* mData;
    size_t mSize;
    size_t mPosition = 0;
};

}  // namespace android
