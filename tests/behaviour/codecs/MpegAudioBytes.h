// SPDX-License-Identifier: Apache-2.0
//
// MPEG-audio frames and streams for the search of the first header. One thread.

#pragma once

#include "tests/behaviour/codecs/CodecsFixture.h"

namespace avitest {

// MPEG-1 Layer III, 128 kbit/s, 44100 Hz: 417 bytes.
constexpr uint32_t kLayerIIIHeader = 0xFFFB9000;
constexpr size_t kLayerIIISize = 417;

inline Bytes headerBytes(uint32_t header) {
    return {static_cast<uint8_t>(header >> 24), static_cast<uint8_t>(header >> 16),
            static_cast<uint8_t>(header >> 8), static_cast<uint8_t>(header)};
}

// A frame of this size without sync bits behind its header.
inline Bytes mpegFrame(uint32_t header = kLayerIIIHeader, size_t size = kLayerIIISize) {
    Bytes frame = headerBytes(header);
    frame.resize(size, 0x2A);
    return frame;
}

inline Bytes junk(size_t size) {
    return Bytes(size, 0x15);
}

class MpegAudioConfigTest : public CodecTest {
  protected:
    // Frames, one a chunk. The tag is not the one whose sample size is mended while parsing.
    Stream mStream = frameAudioStream(0x50, 2, 44100, 1152);

    void openChunks(const std::vector<Bytes>& chunks) { openSamples(mStream, chunks); }
    // The start of the line that tells where the header was found.
    static std::string foundAt(size_t sample, size_t offset, uint32_t header = kLayerIIIHeader) {
        return format("generateMPEGCodecData(): MP3 Header %x at frame %zu, offset %zx, ", header,
                      sample, offset);
    }
    void expectFound(size_t sample, size_t offset, uint32_t header = kLayerIIIHeader) {
        EXPECT_EQ(mLog.count(foundAt(sample, offset, header)), 1u);
        EXPECT_FALSE(isBad());
    }
    void expectNone() {
        EXPECT_EQ(mLog.count("MP3 Header"), 0u);
        EXPECT_TRUE(isBad());
    }
};

}  // namespace avitest
