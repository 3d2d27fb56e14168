// SPDX-License-Identifier: Apache-2.0
#include "codec/AacHeaders.h"

#include "support/Arithmetic.h"

namespace android {

namespace {

constexpr int32_t kRates[] = {96000, 88200, 64000, 48000, 44100, 32000,
                              24000, 22050, 16000, 12000, 11025, 8000};

}  // namespace

// sync 12 | id 1 | layer 2 | protection 1 | profile 2 | freq index 4 | private 1 | channels 3 | ...
bool isAdtsHeader(const uint8_t (&bytes)[kAdtsProbeBytes]) {
    return bytes[0] == 0xFF && (bytes[1] & 0xF6) == 0xF0 && (bytes[2] & 0x30) != 0x30;
}

AacConfig readAdtsHeader(const uint8_t (&bytes)[kAdtsProbeBytes]) {
    AacConfig config;
    config.profile = bytes[2] < 64 ? 1 : bytes[2] >> 6;
    config.samplingFreqIndex = bytes[2] >> 2 & 15;
    // Four bits: the private bit in front of the channel configuration takes part, as in the
    // devices' decoders.
    config.channels = (bytes[2] & 3u) << 2 | bytes[3] >> 6;
    return config;
}

// object type 5 | freq index 4 | channels 4 | ...
AacConfig readAudioSpecificConfig(const uint8_t* data) {
    AacConfig config;
    config.profile = static_cast<uint32_t>((data[0] >> 3) - 1);
    config.samplingFreqIndex = (data[0] & 7u) << 1 | data[1] >> 7;
    config.channels = data[1] >> 3 & 15;
    return config;
}

uint32_t aacFreqIndex(uint32_t rate) {
    for (uint32_t index = 0; index <= kMaxAacFreqIndex; ++index) {
        if (static_cast<uint32_t>(kRates[index]) == rate) return index;
    }
    return 0;
}

int32_t aacRate(uint32_t freqIndex) {
    return freqIndex <= kMaxAacFreqIndex ? kRates[freqIndex] : -1;
}

void writeAudioSpecificConfig(const AacConfig& config, uint8_t (&out)[2]) {
    const uint32_t objectAndIndex = config.profile << 3 | config.samplingFreqIndex >> 1;
    // The object type is the profile plus 1; object type 0 of a broken configuration stays 0.
    out[0] = static_cast<uint8_t>(wrapAdd32(objectAndIndex, 1 << 3));
    out[1] = static_cast<uint8_t>(config.channels << 3 | config.samplingFreqIndex << 7);
}

}  // namespace android
