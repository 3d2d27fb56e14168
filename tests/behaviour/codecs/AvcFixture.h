// SPDX-License-Identifier: Apache-2.0
//
// AVC streams with start codes and what is published for them. One thread.

#pragma once

#include "tests/behaviour/codecs/CodecsFixture.h"
#include "tests/unit/platform/SpsBuilder.h"

namespace avitest {

class AvcTest : public CodecTest {
  protected:
    const Bytes mPps = {0x68, 0xCE, 0x3C, 0x80};
    const Bytes mIdr = {0x65, 0x88, 0x84, 0x21, 0xA0, 0xFF, 0x13, 0x57, 0x9B, 0xDF, 0x24};
    const Bytes mSei = {0x06, 0x05, 0x02, 0xAB, 0xCD, 0x80};
    const Bytes mDelimiter = {0x09, 0xF0};
    const Bytes mSlice = {0x41, 0x9A, 0x02, 0x05};
    // A baseline set of 352 x 288, level 3.0, without an aspect ratio.
    Bytes mSps = android::SpsFields().nal();
    Stream mStream = videoStream("H264", 320, 240, 25);

    void openFirst(const Bytes& first) { openSamples(mStream, videoSamples(first)); }
    void openFirstLogged(const Bytes& first) { openSamplesLogged(mStream, videoSamples(first)); }
    // Opens a first sample of these sets and an IDR picture.
    void openSets(const Bytes& sps, const Bytes& pps) {
        openFirst(unit4(sps) + unit4(pps) + unit4(mIdr));
    }
    std::optional<Bytes> record() { return buffer(AMEDIAFORMAT_KEY_CSD_AVC); }
    // Nothing was published and the stream plays on.
    void expectUnchanged() {
        EXPECT_EQ(record(), std::nullopt);
        EXPECT_EQ(mimeType(), "video/avc");
        EXPECT_EQ(number(AMEDIAFORMAT_KEY_WIDTH), 320);
        EXPECT_EQ(number(AMEDIAFORMAT_KEY_HEIGHT), 240);
    }
};

}  // namespace avitest
