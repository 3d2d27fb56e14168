// SPDX-License-Identifier: Apache-2.0
#include "fuzz/DtsSeeds.h"

#include "tests/unit/platform/SpsBuilder.h"

namespace avitest {

namespace {

using android::SpsBits;

constexpr uint32_t kSubstreamSync = 0x64582025;

void ones(SpsBits* bits, unsigned count) {
    for (; count > 0; --count)
        bits->u(1, 1);
}

// Header, word, and what the asset holds.
Bytes finish(const SpsBits& bits, size_t headerSize, uint32_t word) {
    Bytes header = bits.bytes();
    header.resize(headerSize, 0x3C);
    ByteWriter out;
    out.bytes(header);
    for (int shift = 24; shift >= 0; shift -= 8)
        out.u8(static_cast<uint8_t>(word >> shift & 0xFF));
    return out.fill(40, 0x3C).take();
}

}  // namespace

Bytes dtsSubstream(uint32_t word) {
    constexpr uint32_t kHeaderSize = 40;
    SpsBits bits;
    bits.u(32, kSubstreamSync).u(8, 0).u(2, 0).u(1, 0);  // index 0, short fields
    bits.u(8, kHeaderSize - 1).u(16, 0xFFF);
    bits.u(1, 1).u(5, 31).u(1, 0);         // static fields, no time stamp
    bits.u(3, 0).u(3, 0).u(1, 0).u(1, 0);  // one presentation, one asset, no mixing
    bits.u(16, 0xAAAA).u(12, 0x5A5);       // the asset's size and descriptor
    bits.u(1, 0).u(1, 0).u(1, 0);          // no type, language, text
    bits.u(5, 31).u(4, 12).u(8, 1);        // 48 kHz, two channels
    return finish(bits, kHeaderSize, word);
}

Bytes dtsFullSubstream(uint32_t word) {
    constexpr uint32_t kHeaderSize = 120;
    SpsBits bits;
    bits.u(32, kSubstreamSync).u(8, 0).u(2, 3).u(1, 1);  // index 3, long fields
    bits.u(12, kHeaderSize - 1).u(20, 0xFFF);
    bits.u(1, 1).u(5, 31).u(1, 1);  // static fields, time stamp
    ones(&bits, 36);
    bits.u(3, 2).u(3, 2);                  // three presentations, three assets
    bits.u(4, 0xF).u(4, 0x5).u(4, 0);      // their active substreams
    ones(&bits, 8 * (4 + 2));              // and assets
    bits.u(1, 1).u(2, 3).u(2, 1).u(2, 2);  // mixing: masks of eight bits, three of them
    ones(&bits, 8 * 3);
    for (int asset = 0; asset < 3; ++asset)
        bits.u(20, 0xAAAA);
    bits.u(12, 0x5A5);
    bits.u(1, 1).u(4, 15).u(1, 1).u(24, 0xFFFFFF).u(1, 1).u(10, 5);  // type, language, text
    ones(&bits, 8 * 6);
    bits.u(5, 31).u(4, 12).u(8, 5);
    return finish(bits, kHeaderSize, word);
}

Bytes dtsCoreFrame() {
    SpsBits bits;
    bits.u(32, 0x7FFE8001).u(1, 1).u(5, 31).u(1, 0).u(7, 15).u(14, 95);  // 96 bytes
    bits.u(6, 2).u(4, 13).u(5, 0).u(5, 0).u(3, 0).u(1, 0).u(1, 0);       // stereo, 48 kHz
    bits.u(2, 1).u(1, 1);
    Bytes frame = bits.bytes();
    frame.resize(96, 0x33);
    return frame;
}

}  // namespace avitest
