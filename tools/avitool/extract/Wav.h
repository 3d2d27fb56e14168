// SPDX-License-Identifier: Apache-2.0
// Headers of WAVE files for the audio codecs that live in them. Immutable values; any thread.
#pragma once

#include <cstdint>
#include <optional>
#include <vector>

namespace avitool {

enum class WavCodec { kPcm16, kALaw, kMuLaw, kMsAdpcm, kImaAdpcm };

/**
 * The header of a file of one codec. Its sizes are 32 bits wide: what does not fit is written as
 * 0xFFFFFFFF, which players take for "up to the end of the file".
 */
class WavHeader {
  public:
    /** `blockSize`: bytes of a block of ADPCM, ignored for the others. None when the numbers make
     * no sense or do not fit their fields. */
    static std::optional<WavHeader> make(WavCodec codec, int64_t channels, int64_t rate,
                                         uint32_t blockSize);

    /** The header of a file of so many bytes of sound; its own length is always the same. */
    std::vector<uint8_t> bytes(uint64_t dataSize) const;

  private:
    WavHeader() = default;
    void addFormat(std::vector<uint8_t>* out) const;
    uint64_t framesInBlock(uint64_t size) const;
    uint64_t framesIn(uint64_t dataSize) const;

    uint16_t mTag = 0;
    uint16_t mChannels = 0;
    uint32_t mRate = 0;
    uint16_t mBlockSize = 0;
    uint16_t mBits = 0;
    uint64_t mFramesPerBlock = 1;    // a frame: a value for each channel
    uint32_t mBlockHeaderBytes = 0;  // of ADPCM: before the packed values
    uint32_t mHeaderFrames = 0;      // of ADPCM: frames in that
    std::vector<uint8_t> mExtra;     // after the fields that all codecs have
};

}  // namespace avitool
