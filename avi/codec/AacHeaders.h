// SPDX-License-Identifier: Apache-2.0
//
// AAC configuration (ISO/IEC 14496-3): what ADTS headers and an AudioSpecificConfig tell. Functions
// over bytes and numbers, without state; any thread.
#pragma once

#include <stddef.h>
#include <stdint.h>

namespace android {

// A stream's configuration in the terms of the standard's tables.
struct AacConfig {
    uint32_t profile = 1;  // audio object type minus 1: 1 is AAC LC
    uint32_t samplingFreqIndex = 0;
    uint32_t channels = 0;
};

constexpr uint32_t kMaxAacFreqIndex = 11;

constexpr size_t kAdtsProbeBytes = 4;

// True when the bytes begin an ADTS frame.
bool isAdtsHeader(const uint8_t (&bytes)[kAdtsProbeBytes]);

// The configuration in an ADTS header; the Main profile counts as LC, which plays it as well.
AacConfig readAdtsHeader(const uint8_t (&bytes)[kAdtsProbeBytes]);

// The configuration in the first two bytes of an AudioSpecificConfig.
AacConfig readAudioSpecificConfig(const uint8_t* data);

// Index of a sampling rate in Hz; 0 for a rate without one.
uint32_t aacFreqIndex(uint32_t rate);

// Sampling rate of an index in Hz, or -1 for an index above kMaxAacFreqIndex.
int32_t aacRate(uint32_t freqIndex);

// The two bytes of an AudioSpecificConfig.
void writeAudioSpecificConfig(const AacConfig& config, uint8_t (&out)[2]);

}  // namespace android
