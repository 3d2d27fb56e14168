// SPDX-License-Identifier: Apache-2.0
//
// HEVC streams with start codes and what is published for them. One thread.

#pragma once

#include "tests/behaviour/codecs/CodecsFixture.h"

namespace avitest {

// What stands in front of the arrays.
inline const Bytes kHevcRecordHeader = {0x01, 0x01, 0, 0,    0,    0,    0,    0, 0, 0,    0,   0,
                                        0x99, 0xF0, 0, 0xFC, 0xFC, 0xF8, 0xF8, 0, 0, 0x03, 0x03};

// Content without start codes in it.
inline Bytes nal(uint8_t header, size_t size) {
    Bytes unit = patternBytes(size, header);
    for (uint8_t& byte : unit)
        byte = static_cast<uint8_t>(byte | 0x80);
    unit[0] = header;
    unit[1] = 0x01;
    return unit;
}

class HevcTest : public CodecTest {
  protected:
    const Bytes mVps = nal(0x40, 24);
    const Bytes mSps = nal(0x42, 40);
    const Bytes mPps = nal(0x44, 7);
    const Bytes mPicture = nal(0x26, 60);
    const Bytes mSets = unit4(mVps) + unit4(mSps) + unit4(mPps);
    Stream mStream = videoStream("HEVC", 320, 240, 25);

    void openFirst(const Bytes& first) { openSamples(mStream, videoSamples(first)); }
    std::optional<Bytes> record() { return buffer(AMEDIAFORMAT_KEY_CSD_HEVC); }
};

}  // namespace avitest
