// SPDX-License-Identifier: Apache-2.0

#include "tests/support/ByteWriter.h"

#include <algorithm>
#include <array>

namespace avitest {

ChunkId ChunkId::of(std::string_view text) {
    std::array<char, 5> filled = {' ', ' ', ' ', ' ', '\0'};
    std::copy_n(text.begin(), std::min<size_t>(text.size(), 4), filled.begin());
    return ChunkId(pack(filled.data()));
}

std::string ChunkId::text() const {
    std::string result;
    for (int shift = 0; shift < 32; shift += 8) {
        result.push_back(static_cast<char>((mValue >> shift) & 0xFF));
    }
    return result;
}

ByteWriter& ByteWriter::u8(uint8_t value) {
    mData.push_back(value);
    return *this;
}

ByteWriter& ByteWriter::u16(uint16_t value) {
    return u8(static_cast<uint8_t>(value & 0xFF)).u8(static_cast<uint8_t>(value >> 8));
}

ByteWriter& ByteWriter::u32(uint32_t value) {
    return u16(static_cast<uint16_t>(value & 0xFFFF)).u16(static_cast<uint16_t>(value >> 16));
}

ByteWriter& ByteWriter::u64(uint64_t value) {
    return u32(static_cast<uint32_t>(value & 0xFFFFFFFF)).u32(static_cast<uint32_t>(value >> 32));
}

ByteWriter& ByteWriter::bytes(const Bytes& data) {
    mData.insert(mData.end(), data.begin(), data.end());
    return *this;
}

ByteWriter& ByteWriter::bytes(std::string_view text) {
    mData.insert(mData.end(), text.begin(), text.end());
    return *this;
}

ByteWriter& ByteWriter::fill(size_t count, uint8_t value) {
    mData.insert(mData.end(), count, value);
    return *this;
}

ByteWriter& ByteWriter::pad(size_t alignment, uint8_t value) {
    const size_t over = mData.size() % alignment;
    return over == 0 ? *this : fill(alignment - over, value);
}

ByteWriter& ByteWriter::cut(size_t length) {
    if (length < mData.size()) mData.resize(length);
    return *this;
}

ByteWriter& ByteWriter::patchU32(size_t offset, uint32_t value) {
    for (size_t i = 0; i < 4; ++i)
        mData.at(offset + i) = static_cast<uint8_t>(value >> (8 * i));
    return *this;
}

Bytes bytesOf(std::string_view text) {
    return Bytes(text.begin(), text.end());
}

Bytes operator+(const Bytes& a, const Bytes& b) {
    return ByteWriter().bytes(a).bytes(b).take();
}

Bytes patternBytes(size_t length, uint32_t seed) {
    Bytes result(length);
    // A 16-bit linear congruence, widened so that nothing wraps.
    uint64_t state = (uint64_t{seed} * 40503 + 12345) & 0xFFFF;
    for (uint8_t& byte : result) {
        state = (state * 25173 + 13849) & 0xFFFF;
        byte = static_cast<uint8_t>(state >> 8);
    }
    return result;
}

}  // namespace avitest
