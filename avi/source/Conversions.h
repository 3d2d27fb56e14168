// SPDX-License-Identifier: Apache-2.0
//
// What reading changes in the bytes of a sample, as functions over a source and a destination with
// its capacity. None of them reads or writes outside; any thread.
#pragma once

#include <stddef.h>
#include <stdint.h>

namespace android {

constexpr size_t kStartCodeSize = 4;

// --- VC-1 (SMPTE 421M, annex E): frames are stored with or without their start code.

struct Vc1Frame {
    bool hasStartCode;
    bool isSync;
};

constexpr size_t kVc1ProbeBytes = 5;

// Looks at the first bytes of a frame; what the frame does not have counts as 0.
Vc1Frame probeVc1Frame(const uint8_t (&bytes)[kVc1ProbeBytes]);

// Writes the frame start code. REQUIRES: room for kStartCodeSize bytes.
void writeVc1StartCode(uint8_t* out);

// --- AVC with length prefixes (ISO/IEC 14496-15): one step a NAL unit.

// One unit of a length-prefixed sample.
struct PrefixedNal {
    size_t prefixAt = 0;   // offset of its length prefix in the sample
    size_t offset = 0;     // of its bytes
    size_t length = 0;     // as announced; 0 for an empty unit
    bool isWhole = false;  // the sample holds all of it
};

// Walks the units of a sample. Every step advances; a rest shorter than a prefix counts as one
// last empty unit that is not whole.
class PrefixedNalReader {
  public:
    // `prefixSize`: 1 to 4 bytes.
    PrefixedNalReader(const uint8_t* data, size_t size, size_t prefixSize)
        : mData(data), mSize(size), mPrefixSize(prefixSize) {}

    // The next unit, or false at the end.
    bool next(PrefixedNal* out);

  private:
    const uint8_t* mData;
    size_t mSize;
    size_t mPrefixSize;
    size_t mPosition = 0;
};

// Writes a start code and as much of the unit as fits behind it; returns the bytes written.
// REQUIRES: capacity >= kStartCodeSize.
size_t writeNalUnit(const uint8_t* unit, size_t length, uint8_t* out, size_t capacity);

// --- PCM to 16 bits, little-endian.

// In place: keeps the upper two bytes of every whole 32-bit sample. Returns the new length.
size_t narrowPcm32(uint8_t* data, size_t size);

// In place: keeps the upper two bytes of every whole 24-bit sample. Returns the new length.
size_t narrowPcm24(uint8_t* data, size_t size);

// Unsigned bytes to signed samples. REQUIRES: room for 2 * size bytes at `out`.
void widenPcm8(const uint8_t* data, size_t size, uint8_t* out);

}  // namespace android
