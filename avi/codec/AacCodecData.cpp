// SPDX-License-Identifier: Apache-2.0
//
// Configuration of AAC tracks: reconciles what the first sample, the extra data of the stream
// format and the wave format say.
#include "codec/AacCodecData.h"

#include <string.h>

#include <algorithm>

#include "codec/AacHeaders.h"
#include "codec/Esds.h"
#include "codec/ReadSample.h"
#include "support/Check.h"
#include "support/HexDump.h"
#include "support/Log.h"

namespace android {

namespace {

constexpr size_t kLoggedSamples = 10;

// The configuration by the first sample; sets the track's framing keys.
AacConfig configFromSample(const uint8_t (&header)[kAdtsProbeBytes], Track* track) {
    // The top bit of the frame length: no frame is that long, so what looks like a header is data.
    constexpr uint8_t kFrameOf4096Bytes = 0x02;
    AMediaFormat* meta = track->meta.get();
    AacConfig config;
    config.samplingFreqIndex = aacFreqIndex(track->info.mSamplesPerSec);
    config.channels = track->info.mChannels;
    track->info.mIsRawAACData = true;
    const bool isAdts = isAdtsHeader(header) && (header[3] & kFrameOf4096Bytes) == 0;
    if (isAdts) {
        track->info.mIsRawAACData = false;
        config = readAdtsHeader(header);
    }
    AMediaFormat_setInt32(meta, AMEDIAFORMAT_KEY_AAC_PROFILE, static_cast<int32_t>(config.profile));
    if (isAdts) AMediaFormat_setInt32(meta, AMEDIAFORMAT_KEY_IS_ADTS, 1);
    return config;
}

// The stream knows better than the wave format.
void reconcileFormat(AMediaFormat* meta, const AacConfig& config, uint32_t waveRate) {
    const int32_t rate = aacRate(config.samplingFreqIndex);
    if (static_cast<uint32_t>(rate) != waveRate) {
        AVI_LOGW("AAC Sample Rate(%d) not the same as that(%u) in waveFormat!", rate, waveRate);
        AMediaFormat_setInt32(meta, AMEDIAFORMAT_KEY_SAMPLE_RATE, rate);
    }
    int32_t channels = 0;
    AMediaFormat_getInt32(meta, AMEDIAFORMAT_KEY_CHANNEL_COUNT, &channels);
    if (static_cast<int32_t>(config.channels) != channels) {
        AVI_LOGW("AAC Channel Count(%u) not the same as that(%d) in waveFormat!", config.channels,
                 channels);
        AMediaFormat_setInt32(meta, AMEDIAFORMAT_KEY_CHANNEL_COUNT,
                              static_cast<int32_t>(config.channels));
    }
}

// The first bytes of a sample that can be read whole; what it does not have counts as 0.
bool readAdtsProbe(FileReader& reader, const Track& track, size_t i,
                   uint8_t (*out)[kAdtsProbeBytes]) {
    sp<ABuffer> sample;
    if (readSample(reader, track, i, &sample) != OK) return false;
    memset(*out, 0, sizeof(*out));
    memcpy(*out, sample->data(), std::min(sample->size(), sizeof(*out)));
    return true;
}

void publishAacConfig(const uint8_t (&header)[kAdtsProbeBytes], Track* track) {
    AMediaFormat* meta = track->meta.get();
    AMediaFormat_setInt32(meta, AMEDIAFORMAT_KEY_BIT_RATE,
                          static_cast<int32_t>(wrapMul32(track->info.mAvgBytesPerSec, 8)));
    AacConfig config = configFromSample(header, track);
    const char* label = "Codec";
    if (track->mCodecData != nullptr && track->mCodecData->size() >= 2) {
        config = readAudioSpecificConfig(track->mCodecData->data());
        label = "RAW";
    }
    reconcileFormat(meta, config, track->info.mSamplesPerSec);
    AVI_LOGD("AAC %s Data: profile %u, samplingFreqIndex %u/%d, channels %u", label, config.profile,
             config.samplingFreqIndex, aacRate(config.samplingFreqIndex), config.channels);
    AVI_CHECK_LE(config.samplingFreqIndex, kMaxAacFreqIndex, "samplingFreqIndex,11u");

    uint8_t specificConfig[2];
    writeAudioSpecificConfig(config, specificConfig);
    const sp<ABuffer> esds =
        makeEsds(specificConfig, sizeof(specificConfig), DescriptorLength::kOneByte);
    if (esds == nullptr) return;
    AMediaFormat_setBuffer(meta, AMEDIAFORMAT_KEY_ESDS, esds->data(), esds->size());
    AVI_LOGD("%s(): Make AAC ESDS(%zuB) done @%d...", "generateAACCodecData", esds->size(),
             __LINE__);
    hexDump(esds->data(), esds->size());
}

}  // namespace

void generateAACCodecData(FileReader& reader, Track* track) {
    uint8_t header[kAdtsProbeBytes];
    if (readAdtsProbe(reader, *track, 0, &header)) publishAacConfig(header, track);
    if (!extractLogEnabled()) return;
    for (size_t i = 1; i < std::min(track->mTable.size(), kLoggedSamples); ++i) {
        if (!readAdtsProbe(reader, *track, i, &header)) continue;
        AVI_LOGV("%s(): AAC sample-%u, header %02X %02X %02X %02X size %d @%llx",
                 "generateAACCodecData", static_cast<unsigned>(i), header[0], header[1], header[2],
                 header[3], static_cast<int>(track->mTable.chunkSize(i)),
                 ull(track->mTable.offset(i)));
    }
}

}  // namespace android
