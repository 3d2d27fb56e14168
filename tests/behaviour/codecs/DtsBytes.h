// SPDX-License-Identifier: Apache-2.0
//
// DTS frames (ETSI TS 102 114), as far as their headers go. Plain values.

#pragma once

#include <array>

#include "tests/behaviour/codecs/CodecsFixture.h"
#include "tests/unit/platform/SpsBuilder.h"

namespace avitest {

constexpr uint32_t kLosslessAsset = 0x41A29547;
constexpr uint32_t kExpressAsset = 0x0A801921;
constexpr uint32_t kCoreInSubstream = 0x02B09261;

// The fields of a core header that tell the format, at their places, without the sync.
// `frameSize` counts all bytes of the frame.
inline Bytes dtsCoreFields(uint32_t amode, uint32_t sfreq, uint32_t lfe, uint32_t frameSize = 96) {
    android::SpsBits bits;
    bits.u(1, 1).u(5, 31).u(1, 0).u(7, 15).u(14, frameSize - 1);
    bits.u(6, amode).u(4, sfreq).u(5, 0).u(5, 0).u(3, 0).u(1, 0).u(1, 0);
    bits.u(2, lfe).u(1, 1);
    return bits.bytes();
}

inline Bytes wordBytes(uint32_t word) {
    return {static_cast<uint8_t>(word >> 24), static_cast<uint8_t>(word >> 16),
            static_cast<uint8_t>(word >> 8), static_cast<uint8_t>(word)};
}

// A core frame behind the sync `word`.
inline Bytes dtsCore(uint32_t amode, uint32_t sfreq, uint32_t lfe, uint32_t word = 0x7FFE8001) {
    Bytes frame = wordBytes(word) + dtsCoreFields(amode, sfreq, lfe);
    frame.resize(96, 0x33);
    return frame;
}

// The header of an extension substream, clause 7.4; at first one presentation of one asset without
// anything optional.
struct SubstreamHeader {
    bool large = false;
    uint32_t index = 0;
    uint32_t size = 40;  // of the header, in bytes
    bool staticFields = true;
    bool timeStamp = false;
    std::vector<uint32_t> masks = {0};  // active substreams, by presentation
    uint32_t assets = 1;
    // Width code of the masks, number of configurations less one.
    std::optional<std::pair<uint32_t, uint32_t>> mixing;
    bool type = false;
    bool language = false;
    std::optional<uint32_t> text;  // its length less one
    uint32_t rateIndex = 12;
    uint32_t channels = 2;

    // The bits up to the last field; its optional content is all ones.
    android::SpsBits bits() const {
        android::SpsBits out;
        out.u(32, 0x64582025).u(8, 0).u(2, index).u(1, large ? 1 : 0);
        out.u(large ? 12 : 8, size - 1).u(large ? 20 : 16, 0xFFF);
        out.u(1, staticFields ? 1 : 0);
        if (staticFields) writePresentations(out);
        for (uint32_t i = 0; i < (staticFields ? assets : 1); ++i)
            out.u(large ? 20 : 16, 0xAAAA);
        out.u(12, 0x5A5);
        if (staticFields) writeAsset(out);
        return out;
    }

    // Exactly `size` bytes: the rest, if there is one, is filled with 0x3C.
    Bytes header() const {
        Bytes bytes = bits().bytes();
        bytes.resize(size, 0x3C);
        return bytes;
    }

    // The header, the word that tells what follows, and something behind it; cut at `length`.
    Bytes frame(uint32_t word, size_t length = SIZE_MAX) const {
        return ByteWriter().bytes(header() + wordBytes(word) + Bytes(60, 0x3C)).cut(length).take();
    }

  private:
    static void ones(android::SpsBits& out, uint32_t count) {
        for (; count > 0; --count)
            out.u(1, 1);
    }
    void writePresentations(android::SpsBits& out) const {
        out.u(5, 31).u(1, timeStamp ? 1 : 0);
        if (timeStamp) ones(out, 36);
        out.u(3, static_cast<uint32_t>(masks.size()) - 1).u(3, assets - 1);
        for (const uint32_t mask : masks)
            out.u(index + 1, mask);
        for (const uint32_t mask : masks) {
            for (uint32_t i = 0; i <= index; ++i)
                ones(out, (mask >> i & 1) != 0 ? 8 : 0);
        }
        out.u(1, mixing ? 1 : 0);
        if (!mixing) return;
        out.u(2, 3).u(2, mixing->first).u(2, mixing->second);
        ones(out, (mixing->first + 1) * 4 * (mixing->second + 1));
    }
    void writeAsset(android::SpsBits& out) const {
        out.u(1, type ? 1 : 0);
        ones(out, type ? 4 : 0);
        out.u(1, language ? 1 : 0);
        ones(out, language ? 24 : 0);
        out.u(1, text ? 1 : 0);
        if (text) {
            out.u(10, *text);
            ones(out, 8 * (*text + 1));
        }
        out.u(5, 31).u(4, rateIndex).u(8, channels - 1);
    }
};

constexpr char kDts[] = "audio/vnd.dts";

// Tracks of DTS.
class DtsTest : public CodecTest {
  protected:
    Stream mStream = frameAudioStream(0x2001, 1, 12345, 512);

    void openFirst(const Bytes& first) { openSamples(mStream, {first}); }
    void expectFormat(const std::string& mime, int32_t channels, int32_t rate) {
        EXPECT_EQ(mimeType(), mime);
        EXPECT_EQ(number(AMEDIAFORMAT_KEY_CHANNEL_COUNT), channels);
        EXPECT_EQ(number(AMEDIAFORMAT_KEY_SAMPLE_RATE), rate);
    }
    // The format is that of the wave header still.
    void expectNoFrame() {
        expectFormat("audio/vnd.dts", 1, 12345);
        EXPECT_EQ(mLog.count("parseDtsMetaData OK."), 0u);
    }
};

}  // namespace avitest
