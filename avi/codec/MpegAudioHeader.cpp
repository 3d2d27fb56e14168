// SPDX-License-Identifier: Apache-2.0
#include "codec/MpegAudioHeader.h"

#include "support/Log.h"

namespace android {

namespace {

enum Version : uint32_t {
    kMpeg25 = 0,
    kReservedVersion = 1,
    kMpeg2 = 2,
    kMpeg1 = 3,
};

// In kbit/s, by bit-rate index minus 1.
using BitRates = int[14];

constexpr BitRates kMpeg1LayerI = {32,  64,  96,  128, 160, 192, 224,
                                   256, 288, 320, 352, 384, 416, 448};
constexpr BitRates kMpeg1LayerII = {32, 48, 56, 64, 80, 96, 112, 128, 160, 192, 224, 256, 320, 384};
constexpr BitRates kMpeg1LayerIII = {32, 40, 48, 56, 64, 80, 96, 112, 128, 160, 192, 224, 256, 320};
constexpr BitRates kMpeg2LayerI = {32, 48, 56, 64, 80, 96, 112, 128, 144, 160, 176, 192, 224, 256};
constexpr BitRates kMpeg2LayerIIAndIII = {8,  16, 24, 32,  40,  48,  56,
                                          64, 80, 96, 112, 128, 144, 160};

constexpr int kMpeg1SamplingRates[] = {44100, 48000, 32000};

const BitRates& bitRates(uint32_t version, uint32_t layer) {
    if (version != kMpeg1) return layer == kLayerI ? kMpeg2LayerI : kMpeg2LayerIIAndIII;
    if (layer == kLayerI) return kMpeg1LayerI;
    return layer == kLayerII ? kMpeg1LayerII : kMpeg1LayerIII;
}

int samplesOf(uint32_t version, uint32_t layer) {
    if (layer == kLayerI) return 384;
    if (layer == kLayerII || version == kMpeg1) return 1152;
    return version == kMpeg25 ? 576 : 0;
}

int samplingRateOf(uint32_t version, uint32_t index) {
    const int rate = kMpeg1SamplingRates[index];
    if (version == kMpeg1) return rate;
    return version == kMpeg2 ? rate / 2 : rate / 4;
}

}  // namespace

// sync 11 | version 2 | layer 2 | protection 1 | bit-rate index 4 | sampling-rate index 2 |
// padding 1 | private 1 | channel mode 2 | ...
bool parseMP3Header(uint32_t header, size_t* frameSize, uint32_t* layerOut, int* bitRateOut,
                    int* samplesPerFrame) {
    const uint32_t version = header >> 19 & 3;
    const uint32_t layer = header >> 17 & 3;
    const uint32_t bitRateIndex = header >> 12 & 15;
    const uint32_t samplingRateIndex = header >> 10 & 3;
    if (header >> 21 != 0x7FF || version == kReservedVersion || layer == 0) return false;
    if (bitRateIndex == 0 || bitRateIndex == 15 || samplingRateIndex == 3) return false;

    const int padding = static_cast<int>(header >> 9 & 1);
    const int bitRate = bitRates(version, layer)[bitRateIndex - 1];
    const int samplingRate = samplingRateOf(version, samplingRateIndex);
    const int samples = samplesOf(version, layer);
    const int size = layer == kLayerI ? (12000 * bitRate / samplingRate + padding) * 4
                                      : samples * bitRate * 125 / samplingRate + padding;
    if (frameSize != nullptr) *frameSize = static_cast<size_t>(size);
    if (layerOut != nullptr) *layerOut = layer;
    if (bitRateOut != nullptr) *bitRateOut = bitRate;
    if (samplesPerFrame != nullptr) *samplesPerFrame = samples;
    AVI_LOGV(
        "header %X ver %u layer %u protect %u smplPerfrm %d btrtIdx %u btrt %d smplingRtIdx %u "
        "smplingRt %d chMod %d padding %u frameSize %zu",
        header, version, layer, header >> 16 & 1, samples, bitRateIndex, bitRate, samplingRateIndex,
        samplingRate, static_cast<int>(header >> 6 & 3), static_cast<unsigned>(padding),
        static_cast<size_t>(size));
    return true;
}

}  // namespace android
