// SPDX-License-Identifier: Apache-2.0
//
// A copy of bytes in memory of exactly their size, so that AddressSanitizer sees every read or
// write outside.
#pragma once

#include <cstddef>
#include <cstdint>
#include <initializer_list>
#include <memory>
#include <vector>

namespace android {

class ExactBytes {
  public:
    ExactBytes(std::initializer_list<uint8_t> bytes)
        : ExactBytes(std::vector<uint8_t>(bytes.begin(), bytes.end())) {}
    explicit ExactBytes(const std::vector<uint8_t>& bytes)
        : mData(new uint8_t[bytes.size()]), mSize(bytes.size()) {
        for (size_t i = 0; i < mSize; ++i)  // g++ 12 warns of std::copy into no bytes
            mData[i] = bytes[i];
    }

    uint8_t* data() { return mData.get(); }
    const uint8_t* data() const { return mData.get(); }
    size_t size() const { return mSize; }
    // The first `length` bytes. REQUIRES: length <= size().
    std::vector<uint8_t> first(size_t length) const { return {mData.get(), mData.get() + length}; }

  private:
    std::unique_ptr<uint8_t[]> mData;
    size_t mSize;
};

}  // namespace android
