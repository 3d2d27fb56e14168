// SPDX-License-Identifier: Apache-2.0
//
// The two smallest pieces of test input: a four-character code and a little-endian byte string that
// grows at its end. Plain values; a value is used by one thread at a time.

#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace avitest {

using Bytes = std::vector<uint8_t>;

// Four bytes in file order, held as the little-endian number they form. A literal converts by
// itself: `header.type = "vids"`; so does a number: `entry.id = 0x12345678`.
class ChunkId {
  public:
    constexpr ChunkId() = default;
    constexpr ChunkId(uint32_t value) : mValue(value) {}
    constexpr ChunkId(const char (&text)[5]) : mValue(pack(text)) {}

    // The first four bytes of a text that is no literal; a shorter one is filled up with blanks.
    static ChunkId of(std::string_view text);

    constexpr uint32_t value() const { return mValue; }
    std::string text() const;  // the four bytes as they are

    friend constexpr bool operator==(ChunkId a, ChunkId b) { return a.mValue == b.mValue; }
    friend constexpr bool operator!=(ChunkId a, ChunkId b) { return a.mValue != b.mValue; }
    friend constexpr bool operator<(ChunkId a, ChunkId b) { return a.mValue < b.mValue; }

  private:
    static constexpr uint32_t byteAt(const char* text, int i) {
        return uint32_t{static_cast<uint8_t>(text[i])} << (8 * i);
    }
    static constexpr uint32_t pack(const char* text) {
        return byteAt(text, 0) | byteAt(text, 1) | byteAt(text, 2) | byteAt(text, 3);
    }

    uint32_t mValue = 0;
};

// Appends little-endian values to a byte string; every call returns the writer, so that a structure
// reads as one chain.
class ByteWriter {
  public:
    ByteWriter& u8(uint8_t value);
    ByteWriter& u16(uint16_t value);
    ByteWriter& u32(uint32_t value);
    ByteWriter& u64(uint64_t value);
    ByteWriter& i16(int16_t value) { return u16(static_cast<uint16_t>(value)); }
    ByteWriter& i32(int32_t value) { return u32(static_cast<uint32_t>(value)); }
    ByteWriter& fourcc(ChunkId id) { return u32(id.value()); }
    ByteWriter& bytes(const Bytes& data);
    ByteWriter& bytes(std::string_view text);
    // `count` times the byte `value`.
    ByteWriter& fill(size_t count, uint8_t value = 0);
    // Fills up with `value` until the length is a multiple of `alignment` (at least 1).
    ByteWriter& pad(size_t alignment = 2, uint8_t value = 0);
    // Drops everything behind the first `length` bytes; a longer length changes nothing.
    ByteWriter& cut(size_t length);
    // Overwrites the four bytes at `offset`, which must have been written.
    ByteWriter& patchU32(size_t offset, uint32_t value);

    size_t size() const { return mData.size(); }
    const Bytes& data() const { return mData; }
    Bytes take() { return std::move(mData); }

  private:
    Bytes mData;
};

// The bytes of a text, without a terminating NUL.
Bytes bytesOf(std::string_view text);

// The bytes of `a`, followed by those of `b`.
Bytes operator+(const Bytes& a, const Bytes& b);

// `length` bytes that differ from place to place and from seed to seed, so that a sample which was
// read from a wrong offset, or in the wrong length, does not compare equal.
Bytes patternBytes(size_t length, uint32_t seed = 0);

}  // namespace avitest
