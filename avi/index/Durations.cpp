// SPDX-License-Identifier: Apache-2.0
#include "index/Durations.h"

#include <media/stagefright/MediaErrors.h>
#include <media/stagefright/foundation/AString.h>
#include <media/stagefright/foundation/MediaDefs.h>

#include <algorithm>

#include "support/BitRate.h"
#include "support/Log.h"
#include "support/Mime.h"

namespace android {

namespace {

// Audio may outlast the video by this much before its duration is taken for a header's mistake.
constexpr int64_t kMaxAudioOverhangUs = 500000;

// Bytes of a stream whose header counts in bytes: by header or by table, whichever is more.
uint32_t byteTimedTotal(const Track& track) {
    const SampleTable& table = track.mTable;
    return std::max(track.mTotalSamples, table.bytesThrough(table.size() - 1));
}

int64_t bytesPerSecond(const TrackInfo& info) {
    if (info.mAvgBytesPerSec != 0) return info.mAvgBytesPerSec;
    if (info.mBitsPerSample == 0) return 1;
    return int64_t{info.mSamplesPerSec} * info.mBitsPerSample / 8;
}

// REQUIRES: the track has samples.
int64_t durationOfAudioUs(const Track& track) {
    const TrackInfo& info = track.info;
    if (info.mBlockMode) {
        const int32_t blocks = track.mTable.blocksThrough(track.mTable.size() - 1);
        return unitsToUs(static_cast<uint32_t>(blocks), info.mScale, info.mRate);
    }
    if (info.mSampleSize == 1) return unitsToUs(byteTimedTotal(track), info.mScale, info.mRate);
    if (info.mSampleSize > 1) {
        return saturateToInt64(
            divideOrZero(Wide{info.mSampleSize} * track.mTotalSamples * kUsPerSecond,
                         Wide{bytesPerSecond(info)}));
    }
    return unitsToUs(track.mTotalSamples, info.mScale, info.mRate);
}

int64_t durationOfVideoUs(const Track& track) {
    if (track.info.mFrameRate == 0) return 0;
    const auto us = static_cast<float>(track.mTotalSamples * kUsPerSecond);
    return clampTo<int64_t>(us / track.info.mFrameRate);
}

bool publishesBitRate(const char* mime) {
    return isMime(mime, MEDIA_MIMETYPE_AUDIO_AAC) || isMime(mime, MEDIA_MIMETYPE_AUDIO_AC3) ||
           isMime(mime, MEDIA_MIMETYPE_AUDIO_DTS);
}

// True for raw AAC whose first two chunks differ in size: it is stored one frame a chunk, and timed
// by counting them.
bool isVbrWise(const Track& track) {
    const SampleTable& table = track.mTable;
    if (track.info.mAvgBytesPerSec == 0 || !track.info.mIsRawAACData) return false;
    for (size_t i = 0; i + 1 < table.size(); ++i) {
        const uint32_t a = table.chunkSize(i);
        const uint32_t c = table.chunkSize(i + 1);
        if (a != 0 && c != 0) return a % c != 0 || c % a != 0;
    }
    return false;
}

void logTable(const Track& track, const char* mime, uint32_t totalSize) {
    const TrackInfo& info = track.info;
    AVI_LOGD("[%s] SCNT %zu TTSZ %u BLKM %s TTBLKS %zu", mime, track.mTable.size(), totalSize,
             info.mBlockMode ? "true" : "false", track.mTable.blockTotals());
    AVI_LOGD("[%s] S %u R %u SSZ %u BLKA %u BPS %u SPS %u AVGBPS %u", mime, info.mScale, info.mRate,
             info.mSampleSize, info.mBlockAlign, info.mBitsPerSample, info.mSamplesPerSec,
             info.mAvgBytesPerSec);
}

void publishDuration(Track* track, const char* mime, int64_t durationUs) {
    const int32_t bitRate = lowInt32(saturateToInt64(
        divideOrZero(Wide{track->mTotalSampleSize} * 8 * kUsPerSecond, Wide{durationUs})));
    AString text;
    appendBitRate(bitRate, &text);
    const char* kind = track->info.mIsVBRWise ? "VBR Audio "
                       : track->mIsAudio      ? "CBR Audio "
                                              : "Video ";
    AVI_LOGD("[%s] %s%sduration %lldus avg bitRate %d(%s)", mime,
             track->info.mIsRawAACData ? "RawAAC/" : "", kind, ll(durationUs), bitRate,
             text.c_str());

    AMediaFormat* meta = track->meta.get();
    AMediaFormat_setInt32(meta, AMEDIAFORMAT_KEY_AVI_AV_BIT_RATE, bitRate);
    AMediaFormat_setInt64(meta, AMEDIAFORMAT_KEY_DURATION, durationUs);
    if (bitRate != 0 && publishesBitRate(mime)) {
        AMediaFormat_setInt32(meta, AMEDIAFORMAT_KEY_BIT_RATE, bitRate);
    }
}

// Audio stream headers often claim more than there is; nobody listens on after the film.
int64_t clampToVideo(int64_t audioDurationUs, int64_t videoDurationUs) {
    if (videoDurationUs < 1 || audioDurationUs <= videoDurationUs) return audioDurationUs;
    if (audioDurationUs - videoDurationUs <= kMaxAudioOverhangUs) return audioDurationUs;
    AVI_LOGW("The audio duration(%lldus) is much bigger than the video(%lldus).",
             ll(audioDurationUs), ll(videoDurationUs));
    return videoDurationUs;
}

}  // namespace

void updateSamples(Track* track, int64_t* videoDurationUs) {
    if (track->info.mRate == 0) {
        fail("updateSamples", status_t{ERROR_MALFORMED}, __LINE__);
        return;
    }
    track->info.mIsVBRWise = isVbrWise(*track);
    const char* mime = trackMime(*track);
    int64_t durationUs = 0;
    uint32_t totalSize = 0;
    if (track->mIsVideo) {
        const auto indexed = static_cast<uint32_t>(track->mTable.size());
        track->mTotalSamples = std::min(indexed, track->mTotalSamples);
        durationUs = *videoDurationUs = durationOfVideoUs(*track);
    } else if (track->mIsAudio) {
        const bool isByteTimed = !track->info.mBlockMode && track->info.mSampleSize == 1;
        totalSize = isByteTimed ? byteTimedTotal(*track) : 0;
        durationUs = clampToVideo(durationOfAudioUs(*track), *videoDurationUs);
    }
    logTable(*track, mime, totalSize);
    publishDuration(track, mime, durationUs);
}

}  // namespace android
