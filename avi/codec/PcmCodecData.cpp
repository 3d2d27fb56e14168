// SPDX-License-Identifier: Apache-2.0
//
// Tracks declared as PCM that carry AC-3 or DTS bit streams, as recordings of a digital output do;
// and AC-3 tracks with junk in front.
#include <media/stagefright/foundation/MediaDefs.h>

#include <algorithm>

#include "RuvoAVIExtractor.h"
#include "codec/Dts.h"
#include "codec/ReadSample.h"
#include "riff/StreamFormat.h"
#include "support/HexDump.h"
#include "support/Log.h"

namespace android {

namespace {

// Silence may come first: the content shows within the first chunks or not at all.
constexpr size_t kMaxProbedSamples = 11;
constexpr size_t kMinProbedBytes = 32;

bool isAc3SyncWord(const uint8_t* data) {
    return data[0] == 0x0B && data[1] == 0x77;
}

// Offset of the AC-3 sync word; `size` when there is none.
size_t findAc3SyncWord(const uint8_t* data, size_t size) {
    for (size_t i = 0; i + 1 < size; ++i) {
        if (isAc3SyncWord(data + i)) return i;
    }
    return size;
}

}  // namespace

void RuvoAVIExtractor::generatePCMCodecData(Track* track) {
    const bool isExtensible = track->info.mFormatTag == kWaveTagExtensible;
    AVI_LOGV("%s(): %s", "generatePCMCodecData",
             isExtensible ? "PCM extensible format. Need find the real format."
                          : "PCM format. Try to check the raw.");
    AMediaFormat* meta = track->meta.get();
    const size_t probed = std::min(track->mTable.size(), kMaxProbedSamples);
    for (size_t i = 0; i < probed; ++i) {
        const size_t size = std::max<size_t>(track->mTable.chunkSize(i), kMinProbedBytes);
        sp<ABuffer> sample;
        if (mReader.readBuffer(track->mTable.offset(i), size, &sample) != OK) continue;
        const uint8_t* data = sample->data();
        hexDump(data, kMinProbedBytes);
        if (isDtsSync(data)) {
            AMediaFormat_setString(meta, AMEDIAFORMAT_KEY_MIME, MEDIA_MIMETYPE_AUDIO_DTS);
            const bool parsed = parseDtsMetaData(meta, sample) == OK;
            if (parsed) AVI_LOGD("%s(): parseDtsMetaData OK.", "generatePCMCodecData");
            return;
        }
        if (isAc3SyncWord(data)) {
            AMediaFormat_setString(meta, AMEDIAFORMAT_KEY_MIME, MEDIA_MIMETYPE_AUDIO_AC3);
            return;
        }
        AMediaFormat_setString(meta, AMEDIAFORMAT_KEY_MIME, MEDIA_MIMETYPE_AUDIO_RAW);
    }
}

void RuvoAVIExtractor::generateAC3CodecData(Track* track) {
    uint32_t* invalid = &track->info.mInvalidDataSize;
    for (size_t i = 0; i < track->mTable.size(); ++i) {
        sp<ABuffer> sample;
        if (readSample(mReader, *track, i, &sample) != OK) continue;
        const size_t syncAt = findAc3SyncWord(sample->data(), sample->size());
        *invalid = wrapAdd32(*invalid, static_cast<uint32_t>(syncAt));
        if (syncAt < sample->size()) break;
    }
    AVI_LOGV("%s(): AC3 invalid data size %u", "generateAC3CodecData", *invalid);
}

void RuvoAVIExtractor::generateDtsCodecData(Track* track) {
    const size_t probed = std::min(track->mTable.size(), kMaxProbedSamples);
    for (size_t i = 0; i < probed; ++i) {
        sp<ABuffer> sample;
        if (readSample(mReader, *track, i, &sample) != OK) continue;
        if (parseDtsMetaData(track->meta.get(), sample) != OK) continue;
        AVI_LOGD("%s(): parseDtsMetaData OK.", "generateDtsCodecData");
        return;
    }
}

}  // namespace android
