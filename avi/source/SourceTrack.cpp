// SPDX-License-Identifier: Apache-2.0
#include "source/SourceTrack.h"

#include <media/stagefright/foundation/MediaDefs.h>

#include "support/Check.h"
#include "support/Mime.h"

namespace android {

namespace {

// ADPCM is cut and timed in blocks, whatever sample size the stream header claims.
uint32_t sampleSizeToRead(const TrackInfo& info, const char* mime) {
    const bool isAdpcm = isMime(mime, MEDIA_MIMETYPE_AUDIO_DVI_IMA_ADPCM) ||
                         isMime(mime, MEDIA_MIMETYPE_AUDIO_MS_ADPCM);
    return isAdpcm && info.mBlockAlign != 0 ? info.mBlockAlign : info.mSampleSize;
}

// REQUIRES: the format's lock is held.
void readFormat(AMediaFormat* format, SourceTrack* out) {
    const char* mime = nullptr;
    const bool success = AMediaFormat_getString(format, AMEDIAFORMAT_KEY_MIME, &mime);
    AVI_CHECK(success);
    out->mime = mime;
    if (!out->info.mIsSubtitle) {
        AMediaFormat_getInt64(format, AMEDIAFORMAT_KEY_DURATION, &out->durationUs);
    }
    if (!AMediaFormat_getInt32(format, AMEDIAFORMAT_KEY_AVI_AV_BIT_RATE, &out->bitRate)) {
        AMediaFormat_getInt32(format, AMEDIAFORMAT_KEY_BIT_RATE, &out->bitRate);
    }
}

}  // namespace

SourceTrack::SourceTrack(Track* track, const FileReader& fileReader)
    : reader(fileReader), table(track->mTable), info(track->info) {
    {
        const std::lock_guard<std::mutex> lock(track->mFormatLock);
        readFormat(track->meta.get(), this);
    }
    const char* type = mime.c_str();
    info.mSampleSize = sampleSizeToRead(info, type);
    isAudio = info.mFccType == fourcc("auds") || info.mFccType == fourcc("midi");
    isVideo = !isAudio && !info.mIsSubtitle;
    isRawPcm = isMime(type, MEDIA_MIMETYPE_AUDIO_RAW);
    isMpeg4 = isMime(type, MEDIA_MIMETYPE_VIDEO_MPEG4);
    isAvc = isMime(type, MEDIA_MIMETYPE_VIDEO_AVC);
    isHevc = isMime(type, MEDIA_MIMETYPE_VIDEO_HEVC);
    isWvc1 = info.mCompression == fourcc("WVC1");
}

}  // namespace android
