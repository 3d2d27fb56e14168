// SPDX-License-Identifier: Apache-2.0

#include "tests/behaviour/mpegaudio/MpegAudioFixture.h"

#include <algorithm>
#include <utility>

namespace avitest {

namespace {

constexpr uint32_t kSampleRate = 44100;
constexpr uint16_t kFrameSamples = 1152;

auto at(const Bytes& bytes, size_t index) {
    return bytes.begin() + static_cast<Bytes::difference_type>(index);
}

}  // namespace

Bytes headerBytes(uint32_t header) {
    return {static_cast<uint8_t>(header >> 24), static_cast<uint8_t>(header >> 16),
            static_cast<uint8_t>(header >> 8), static_cast<uint8_t>(header)};
}

Bytes noise(size_t size, uint32_t seed) {
    Bytes result = patternBytes(size, seed);
    for (uint8_t& byte : result)
        byte &= 0x7F;
    return result;
}

Bytes frameOf(uint32_t header, size_t size, uint32_t seed) {
    const Bytes first = headerBytes(header);
    return joined({first, noise(size - first.size(), seed)});
}

Bytes frame(uint32_t seed) {
    return frameOf(kHeader, kFrameSize, seed);
}

std::vector<Bytes> frames(size_t count) {
    std::vector<Bytes> result;
    for (uint32_t i = 0; i < count; ++i)
        result.push_back(frame(i));
    return result;
}

Bytes joined(const std::vector<Bytes>& parts) {
    Bytes result;
    for (const Bytes& part : parts)
        result.insert(result.end(), part.begin(), part.end());
    return result;
}

Bytes slice(const Bytes& bytes, size_t begin, size_t end) {
    return Bytes(at(bytes, begin), at(bytes, std::min(end, bytes.size())));
}

std::vector<Bytes> split(const Bytes& bytes, const std::vector<size_t>& sizes) {
    std::vector<Bytes> result;
    size_t begin = 0;
    for (const size_t size : sizes) {
        result.push_back(slice(bytes, begin, begin + size));
        begin += size;
    }
    if (begin < bytes.size()) result.push_back(slice(bytes, begin, bytes.size()));
    return result;
}

Stream mp3Bytes(uint32_t bytesPerSec, uint16_t tag) {
    return audioStream(tag, 2, kSampleRate, bytesPerSec, 1);
}

Stream mp3Frames(uint16_t tag) {
    return frameAudioStream(tag, 2, kSampleRate, kFrameSamples);
}

}  // namespace avitest
