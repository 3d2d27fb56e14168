// SPDX-License-Identifier: Apache-2.0
//
// Reads bits, most significant first, from bytes that stay the caller's and must outlive the
// reader. It knows nothing of emulation-prevention bytes: those of a NAL unit count as data.
// Invariant: mBitPos <= 8 * mSize. A read over the end uses up what is left, as it does on the
// device, so nothing can be read after it. Threading: one thread at a time.
#pragma once

#include <media/stagefright/foundation/ABase.h>

#include <cstddef>
#include <cstdint>

namespace android {

class ABitReader {
  public:
    /// A reader at the first bit of the `size` bytes at `data`.
    ABitReader(const uint8_t* data, size_t size) : mData(data), mSize(size) {}

    /// Reads `n` bits, 0 to 32, into `*out`. False when more than 32 are asked for (nothing is
    /// read) or when fewer than `n` are left; `*out` is untouched then.
    bool getBitsGraceful(size_t n, uint32_t* out);

    /// Reads `n` bits, 0 to 32. Aborts the process where getBitsGraceful would answer false.
    uint32_t getBits(size_t n);

    /// As getBitsGraceful, but answers `fallback` where that would answer false.
    uint32_t getBitsWithFallback(size_t n, uint32_t fallback);

    /// Passes over `n` bits, any number; false when fewer are left.
    bool skipBits(size_t n);

    /// Bits from the reading position to the end.
    size_t numBitsLeft() const { return mSize * 8 - mBitPos; }

    /// The byte that holds the next bit; the end of the data when none is left.
    const uint8_t* data() const { return mData + mBitPos / 8; }

  private:
    const uint8_t* mData;
    size_t mSize;
    size_t mBitPos = 0;

    DISALLOW_EVIL_CONSTRUCTORS(ABitReader);
};

}  // namespace android
