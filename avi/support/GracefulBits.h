// SPDX-License-Identifier: Apache-2.0
//
// Bits of a header that a file may have cut: a reader that remembers whether it ran out, over the
// platform's bit reader, whose plain calls abort there. After running out every read gives 0.
// Not thread-safe.
#pragma once

#include <media/stagefright/foundation/ABitReader.h>
#include <stddef.h>
#include <stdint.h>

namespace android {

class GracefulBits {
  public:
    GracefulBits(const uint8_t* data, size_t size) : mBits(data, size) {}

    // False once a read went beyond the end or met a code that is none.
    bool ok() const { return mOk; }

    // `count` bits, 0 to 32.
    uint32_t u(size_t count) {
        uint32_t value = 0;
        mOk = mOk && mBits.getBitsGraceful(count, &value);
        return mOk ? value : 0;
    }

    bool flag() { return u(1) != 0; }

    void skip(size_t count) { mOk = mOk && mBits.skipBits(count); }

    // Unsigned Exp-Golomb code (ISO/IEC 14496-10, 9.1), below 2^32 - 1.
    uint32_t ue() {
        constexpr size_t kTooManyZeros = 32;
        size_t zeros = 0;
        while (mOk && zeros < kTooManyZeros && !flag()) {
            ++zeros;
        }
        if (zeros == kTooManyZeros) mOk = false;
        const uint64_t suffix = u(zeros);  // may be cut off, too
        return mOk ? static_cast<uint32_t>((uint64_t{1} << zeros) - 1 + suffix) : 0;
    }

    // Signed Exp-Golomb code.
    int64_t se() {
        const int64_t code = ue();
        return code % 2 != 0 ? (code + 1) / 2 : -(code / 2);
    }

  private:
    ABitReader mBits;
    bool mOk = true;
};

}  // namespace android
