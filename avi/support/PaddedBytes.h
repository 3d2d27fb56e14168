// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <stddef.h>
#include <stdint.h>

namespace android {

// Big-endian reads of bytes that somebody else owns and that may end anywhere: those beyond the end
// read as 0.
class PaddedBytes {
  public:
    PaddedBytes(const uint8_t* data, size_t size) : mData(data), mSize(size) {}

    const uint8_t* data() const { return mData; }
    size_t size() const { return mSize; }

    uint8_t byteAt(size_t i) const { return i < mSize ? mData[i] : uint8_t{0}; }

    uint32_t wordAt(size_t i) const {
        return uint32_t{byteAt(i)} << 24 | uint32_t{byteAt(i + 1)} << 16 |
               uint32_t{byteAt(i + 2)} << 8 | byteAt(i + 3);
    }

    // What follows the first `count` bytes.
    PaddedBytes from(size_t count) const {
        return count < mSize ? PaddedBytes(mData + count, mSize - count) : PaddedBytes(mData, 0);
    }

  private:
    const uint8_t* mData;
    size_t mSize;
};

}  // namespace android
