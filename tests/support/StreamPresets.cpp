// SPDX-License-Identifier: Apache-2.0

#include "tests/support/AviBuilder.h"

namespace avitest {

Stream videoStream(ChunkId fourcc, uint32_t width, uint32_t height, uint32_t rate, uint32_t scale) {
    Stream result;
    result.header.handler = fourcc;
    result.header.scale = scale;
    result.header.rate = rate;
    result.header.right = static_cast<int16_t>(width & 0x7FFF);
    result.header.bottom = static_cast<int16_t>(height & 0x7FFF);
    BitmapInfo info;
    info.width = static_cast<int32_t>(width);
    info.height = static_cast<int32_t>(height);
    info.compression = fourcc;
    info.sizeImage = width * height * 3;
    result.format = info;
    return result;
}

Stream mjpegStream() {
    return videoStream("MJPG", 320, 240, 25);
}

Stream audioStream(uint16_t formatTag, uint16_t channels, uint32_t sampleRate,
                   uint32_t avgBytesPerSec, uint16_t blockAlign, uint16_t bits) {
    Stream result;
    result.header.type = "auds";
    result.header.scale = blockAlign;
    result.header.rate = avgBytesPerSec;
    result.header.sampleSize = blockAlign;
    WaveFormat format;
    format.formatTag = formatTag;
    format.channels = channels;
    format.samplesPerSec = sampleRate;
    format.avgBytesPerSec = avgBytesPerSec;
    format.blockAlign = blockAlign;
    format.bitsPerSample = bits;
    result.format = format;
    result.chunkType = "wb";
    return result;
}

Stream pcmStream(uint16_t channels, uint32_t sampleRate, uint16_t bits) {
    constexpr uint16_t kPcmTag = 1;
    const auto block = static_cast<uint16_t>(uint32_t{channels} * bits / 8);
    return audioStream(kPcmTag, channels, sampleRate, sampleRate * block, block, bits);
}

Stream frameAudioStream(uint16_t formatTag, uint16_t channels, uint32_t sampleRate,
                        uint16_t samplesPerFrame, uint32_t avgBytesPerSec) {
    Stream result = audioStream(formatTag, channels, sampleRate, avgBytesPerSec, samplesPerFrame);
    result.header.rate = sampleRate;
    result.header.sampleSize = 0;
    return result;
}

}  // namespace avitest
