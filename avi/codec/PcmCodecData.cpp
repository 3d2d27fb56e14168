// SPDX-License-Identifier: Apache-2.0
//
// Tracks declared as PCM that carry AC-3 or DTS bit streams, as recordings of a digital output do.
#include "codec/PcmCodecData.h"

#include <media/stagefright/foundation/MediaDefs.h>

#include <algorithm>

#include "codec/Ac3CodecData.h"
#include "codec/DtsHeaders.h"
#include "codec/ReadSample.h"
#include "support/HexDump.h"
#include "support/Log.h"

namespace android {

namespace {

// Silence may come first: the content shows within the first chunks or not at all.
constexpr size_t kMaxProbedSamples = 11;
constexpr size_t kMinProbedBytes = 32;

}  // namespace

void generatePCMCodecData(FileReader& reader, Track* track) {
    const bool isExtensible = track->info.mFormatTag == kWaveTagExtensible;
    AVI_LOGV("%s(): %s", "generatePCMCodecData",
             isExtensible ? "PCM extensible format. Need find the real format."
                          : "PCM format. Try to check the raw.");
    AMediaFormat* meta = track->meta.get();
    const size_t probed = std::min(track->mTable.size(), kMaxProbedSamples);
    for (size_t i = 0; i < probed; ++i) {
        const size_t size = std::max<size_t>(track->mTable.chunkSize(i), kMinProbedBytes);
        sp<ABuffer> sample;
        if (reader.readBuffer(track->mTable.offset(i), size, &sample) != OK) continue;
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

}  // namespace android
