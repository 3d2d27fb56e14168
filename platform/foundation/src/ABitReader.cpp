// SPDX-License-Identifier: Apache-2.0

#include <media/stagefright/foundation/ABitReader.h>
#include <media/stagefright/foundation/ADebug.h>

namespace android {

namespace {

constexpr size_t kMaxBits = 32;

}  // namespace

bool ABitReader::getBitsGraceful(size_t n, uint32_t* out) {
    if (n > kMaxBits) {
        return false;
    }
    const size_t start = mBitPos;
    if (!skipBits(n)) {
        return false;
    }
    if (n == 0) {
        *out = 0;
        return true;
    }
    // At most 5 bytes hold the bits: collect them, then drop the bits behind the last one.
    const size_t lastByte = (mBitPos - 1) / 8;
    uint64_t bits = 0;
    for (size_t i = start / 8; i <= lastByte; ++i) {
        bits = bits << 8 | mData[i];
    }
    bits >>= (lastByte + 1) * 8 - mBitPos;
    *out = static_cast<uint32_t>(bits & ((uint64_t{1} << n) - 1));
    return true;
}

uint32_t ABitReader::getBits(size_t n) {
    uint32_t bits = 0;
    CHECK(getBitsGraceful(n, &bits));
    return bits;
}

uint32_t ABitReader::getBitsWithFallback(size_t n, uint32_t fallback) {
    uint32_t bits = fallback;
    getBitsGraceful(n, &bits);
    return bits;
}

bool ABitReader::skipBits(size_t n) {
    if (n > numBitsLeft()) {
        mBitPos = mSize * 8;
        return false;
    }
    mBitPos += n;
    return true;
}

}  // namespace android
