// SPDX-License-Identifier: Apache-2.0
//
// Configuration of MPEG-audio tracks: names the layer, notes the junk in front, and settles whether
// the stream is counted in bytes, frames or blocks.
#include "codec/MpegAudioCodecData.h"

#include <media/stagefright/foundation/MediaDefs.h>

#include "codec/MpegAudioHeader.h"
#include "codec/MpegAudioSearch.h"
#include "support/Log.h"

namespace android {

namespace {

const char* layerMime(uint32_t layer) {
    if (layer == kLayerI) return MEDIA_MIMETYPE_AUDIO_MPEG_LAYER_I;
    return layer == kLayerII ? MEDIA_MIMETYPE_AUDIO_MPEG_LAYER_II : MEDIA_MIMETYPE_AUDIO_MPEG;
}

// Stream headers with a sample size other than 0 or 1 and a scale of 1 count bytes after all.
void repairSampleSize(TrackInfo* info) {
    if (info->mSampleSize < 2 || info->mScale != 1) return;
    AVI_LOGW("%s(): rewrite abnormal mp3 samplesize %u to 1", "generateMPEGCodecData",
             info->mSampleSize);
    info->mSampleSize = 1;
}

// Chunks that hold whole blocks of mBlockAlign bytes are timed by blocks. Only streams with junk in
// front are written that way.
void enableBlockMode(Track* track, uint32_t samplesPerFrame) {
    TrackInfo* info = &track->info;
    const uint32_t align = info->mBlockAlign;
    const uint32_t firstSize = track->mTable.chunkSize(0);
    const bool isBlocked = info->mInvalidSampleIdx >= 1 && align >= 1 && align == samplesPerFrame &&
                           firstSize >= 1 && firstSize % align == 0;
    if (!isBlocked) return;
    SampleTable* table = &track->mTable;
    if (!table->addBlockTotals(align)) return;
    info->mBlockMode = true;
    AVI_LOGW("%s(): Enable block mode align %d total %d", "generateMPEGCodecData",
             static_cast<int>(align), table->blocksThrough(table->size() - 1));
}

}  // namespace

void generateMPEGCodecData(FileReader& reader, Track* track) {
    TrackInfo* info = &track->info;
    MpegAudioStart start;
    const status_t err = MpegAudioSearch(reader, *track).findMP3Header(&start);
    info->mMP3Header = start.header;
    track->mBadTrack = err != OK || start.header == 0;
    if (track->mBadTrack) return;

    size_t frameSize = 0;
    uint32_t layer = 0;
    int samplesPerFrame = 0;
    parseMP3Header(start.header, &frameSize, &layer, nullptr, &samplesPerFrame);
    AMediaFormat_setString(track->meta.get(), AMEDIAFORMAT_KEY_MIME, layerMime(layer));
    AVI_LOGD("%s(): MP3 Header %x at frame %d, offset %x, framesize %d, layer %u",
             "generateMPEGCodecData", start.header, static_cast<int>(start.sampleIndex),
             static_cast<unsigned>(start.offset), static_cast<int>(frameSize), layer);

    // Junk in front is not played and takes no time. What lies in front of the header in its own
    // chunk is left to the frame cutter.
    info->mInvalidSampleIdx = static_cast<uint32_t>(start.sampleIndex);
    for (size_t i = 0; i < start.sampleIndex; ++i) {
        info->mInvalidDataSize = wrapAdd32(info->mInvalidDataSize, track->mTable.chunkSize(i));
    }
    info->mIsExcludingInvalidData = true;

    repairSampleSize(info);
    if (info->mSampleSize == 0) {
        AVI_LOGW("%s(): framed mp3? with samplesize 0", "generateMPEGCodecData");
        enableBlockMode(track, static_cast<uint32_t>(samplesPerFrame));
    }
}

}  // namespace android
