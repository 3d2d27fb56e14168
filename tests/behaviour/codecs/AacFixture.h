// SPDX-License-Identifier: Apache-2.0
//
// AAC streams and the descriptor that is published for them. One thread.

#pragma once

#include "tests/behaviour/codecs/CodecsFixture.h"

namespace avitest {

inline Stream aacStream(uint16_t channels, uint32_t rate) {
    return frameAudioStream(0xFF, channels, rate, 1024);
}

// A sample that begins with an ADTS header.
inline Bytes adts(unsigned profile, unsigned index, unsigned channels) {
    const Bytes header = {0xFF, 0xF1,
                          static_cast<uint8_t>(profile << 6 | index << 2 | channels >> 2),
                          static_cast<uint8_t>(channels << 6)};
    return header + patternBytes(60, 2);
}

class AacTest : public CodecTest {
  protected:
    Stream mStream = aacStream(2, 44100);

    void setExtra(const Bytes& extra) { std::get<WaveFormat>(mStream.format).extra = extra; }
    void openFirst(const Bytes& first) { openSamples(mStream, {first}); }
    std::optional<Bytes> esds() { return buffer(AMEDIAFORMAT_KEY_ESDS); }
    // The two bytes at the descriptor's end; none when there is no descriptor of the right length.
    Bytes specificConfig() {
        const Bytes bytes = esds().value_or(Bytes());
        if (bytes.size() != 24) return {};
        return Bytes(bytes.begin() + 22, bytes.end());
    }
};

}  // namespace avitest
