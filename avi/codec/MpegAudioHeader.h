// SPDX-License-Identifier: Apache-2.0
//
// The frame header of MPEG audio (ISO/IEC 11172-3, 13818-3, and the unofficial MPEG-2.5).
// Functions over numbers, without state; any thread.
#pragma once

#include <stddef.h>
#include <stdint.h>

namespace android {

// The layer field as it stands in the header.
enum MpegAudioLayer : uint32_t {
    kLayerIII = 1,
    kLayerII = 2,
    kLayerI = 3,
};

// Bits that all frames of a stream have in common: sync, version, layer, sampling-rate index.
constexpr uint32_t kMpegAudioStreamMask = 0xFFFE0C00;

constexpr size_t kMpegAudioHeaderSize = 4;

// Decodes a header, read as a big-endian word. Returns false, with the outputs untouched, when it
// is none. Every output may be null: frame size in bytes, header included; the layer field; bit
// rate in kbit/s; samples a frame. MPEG-2 Layer III counts as 0 samples, so that its frame size is
// just its padding bit: such streams are not cut into frames.
bool parseMP3Header(uint32_t header, size_t* frameSize, uint32_t* layer = nullptr,
                    int* bitRate = nullptr, int* samplesPerFrame = nullptr);

}  // namespace android
