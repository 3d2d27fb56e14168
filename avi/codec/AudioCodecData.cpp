// SPDX-License-Identifier: Apache-2.0
//
// Codec configuration of an audio track, once its sample table is complete: hands on to the codec's
// own file.
#include "codec/AudioCodecData.h"

#include <media/stagefright/foundation/MediaDefs.h>

#include "codec/AacCodecData.h"
#include "codec/Ac3CodecData.h"
#include "codec/DtsCodecData.h"
#include "codec/MpegAudioCodecData.h"
#include "codec/PcmCodecData.h"
#include "support/Log.h"
#include "support/Mime.h"

namespace android {

namespace {

// ADPCM decoders need the size of a block: u32, little-endian.
void publishBlockAlign(AMediaFormat* meta, uint32_t blockAlign) {
    const uint8_t bytes[] = {
        static_cast<uint8_t>(blockAlign), static_cast<uint8_t>(blockAlign >> 8),
        static_cast<uint8_t>(blockAlign >> 16), static_cast<uint8_t>(blockAlign >> 24)};
    AMediaFormat_setBuffer(meta, AMEDIAFORMAT_KEY_CSD_0, bytes, sizeof(bytes));
}

// Sources time ADPCM by its blocks, whatever the stream header says: they need running totals.
void configureAdpcm(Track* track) {
    if (track->info.mBlockAlign != 0) track->mTable.makeRunningTotals();
    publishBlockAlign(track->meta.get(), track->info.mBlockAlign);
}

}  // namespace

void generateAudioCodecData(FileReader& reader, Track* track) {
    const char* mime = trackMime(*track);
    track->mBadTrack = track->mTable.size() == 0;
    if (track->mBadTrack || track->mIsSubtitle) return;
    AVI_LOGV("generateCodecData for [%s]:", mime);

    const bool isExtensible = track->info.mFormatTag == kWaveTagExtensible;
    if (isMime(mime, MEDIA_MIMETYPE_AUDIO_AAC)) {
        generateAACCodecData(reader, track);
    } else if (isMime(mime, MEDIA_MIMETYPE_AUDIO_MPEG)) {
        generateMPEGCodecData(reader, track);
    } else if (isExtensible || isMime(mime, MEDIA_MIMETYPE_AUDIO_RAW)) {
        generatePCMCodecData(reader, track);
    } else if (isMime(mime, MEDIA_MIMETYPE_AUDIO_AC3)) {
        generateAC3CodecData(reader, track);
    } else if (isMime(mime, MEDIA_MIMETYPE_AUDIO_DTS)) {
        generateDtsCodecData(reader, track);
    } else if (isMime(mime, MEDIA_MIMETYPE_AUDIO_MS_ADPCM) ||
               isMime(mime, MEDIA_MIMETYPE_AUDIO_DVI_IMA_ADPCM)) {
        configureAdpcm(track);
    }
}

}  // namespace android
