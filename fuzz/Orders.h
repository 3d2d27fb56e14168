// SPDX-License-Identifier: Apache-2.0
//
// What an input tells a fuzzer to do with the file in it. An input is a file, then orders, then one
// byte that counts the orders; so a file alone is an input too, and what a mutation inserts into
// the file leaves the orders alone. Plain values; they borrow the input's bytes.
#pragma once

#include <algorithm>
#include <cstddef>
#include <cstdint>

namespace avifuzz {

// Bytes that are read as numbers; 0 after the last one.
class Orders {
  public:
    Orders() = default;
    Orders(const uint8_t* data, size_t size) : mNext(data), mEnd(data + size) {}

    bool isEmpty() const { return mNext == mEnd; }
    size_t remaining() const { return static_cast<size_t>(mEnd - mNext); }

    uint8_t byte() { return isEmpty() ? uint8_t{0} : *mNext++; }
    uint16_t word() {
        const unsigned high = byte();
        return static_cast<uint16_t>(high << 8 | byte());
    }
    bool flag() { return byte() % 2 != 0; }

    /** A number below `count`, which is not 0. */
    size_t below(size_t count) { return byte() % count; }

    /**
     * Any number: a shift and a mantissa of 16 bits, so that small and large ones are as near as
     * each other. The highest shifts give negative ones.
     */
    int64_t number() {
        const unsigned shift = byte() % 50u;
        return static_cast<int64_t>(uint64_t{word()} << shift);
    }

  private:
    const uint8_t* mNext = nullptr;
    const uint8_t* mEnd = nullptr;
};

struct Input {
    Input(const uint8_t* data, size_t size) : file(data), fileSize(size) {
        if (size == 0) return;
        const size_t count = std::min<size_t>(data[size - 1], size - 1);
        fileSize = size - 1 - count;
        orders = Orders(data + fileSize, count);
    }

    const uint8_t* file;
    size_t fileSize;
    Orders orders;
};

}  // namespace avifuzz
