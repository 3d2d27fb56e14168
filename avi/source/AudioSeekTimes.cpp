// SPDX-License-Identifier: Apache-2.0
#include "source/AudioSeekTimes.h"

#include <strings.h>

#include <algorithm>

#include "source/LogPrefix.h"
#include "support/Log.h"

namespace android {

namespace {

constexpr int64_t kNoSeekTime = -1;

long long wholeSeconds(int64_t timeUs) {
    return timeUs / kUsPerSecond;
}

long long milliseconds(int64_t timeUs) {
    return timeUs % kUsPerSecond / 1000;
}

}  // namespace

int64_t AudioSeekTimes::followedTimeUs(int64_t requestedUs) const {
    if (!mTrack.isAudio) return std::max<int64_t>(requestedUs, 0);
    const int64_t landingUs = getAudioSeekTimeByTrackId(trackId());
    if (landingUs < 0 || requestedUs <= 0) return std::max<int64_t>(requestedUs, 0);
    AVI_TRACE("%s get Audio seekTime @%lld.%03llds @L%d", LogPrefix(mTrack).text(),
              wholeSeconds(landingUs), milliseconds(landingUs), __LINE__);
    return landingUs;
}

void AudioSeekTimes::share(const Chunk& chunk, int64_t landingUs) {
    if (strncasecmp(mTrack.mime.c_str(), "video/", 6) == 0) {
        setAllAudioSeekTime(landingUs);
        AVI_TRACE("%s set seekTime @%lld.%03llds for audio track(s).@L%d",
                  LogPrefix(mTrack, chunk).text(), wholeSeconds(landingUs), milliseconds(landingUs),
                  __LINE__);
    } else if (strncasecmp(mTrack.mime.c_str(), "audio/", 6) == 0) {
        setAudioSeekTimeByTrackId(trackId(), kNoSeekTime);
        AVI_TRACE("%s reset seekTime to -1 after seeking.@L%d", LogPrefix(mTrack, chunk).text(),
                  __LINE__);
    }
}

int64_t AudioSeekTimes::getAudioSeekTimeByTrackId(int32_t trackId) const {
    for (size_t i = 0; i < mRecords.size(); ++i) {
        const sp<RuvoAVISeekTime> record = mRecords[i];
        const int64_t timeUs = record->mSeekTimeUs;
        AVI_LOGV("[%s][%d] VS [%d seekTimeUs %lld]", mTrack.mime.c_str(), trackId, record->mTrackId,
                 ll(timeUs));
        if (record->mTrackId == trackId) return timeUs;
    }
    AVI_LOGE("%s(%s): seekTime of track %d not found!", "getAudioSeekTimeByTrackId",
             mTrack.mime.c_str(), trackId);
    return kNoSeekTime;
}

void AudioSeekTimes::setAllAudioSeekTime(int64_t timeUs) {
    for (size_t i = 0; i < mRecords.size(); ++i) {
        const sp<RuvoAVISeekTime> record = mRecords[i];
        record->mSeekTimeUs = timeUs;
        AVI_LOGV("[%s][%d] set seekTimeUs %lld", mTrack.mime.c_str(), record->mTrackId, ll(timeUs));
    }
}

void AudioSeekTimes::setAudioSeekTimeByTrackId(int32_t trackId, int64_t timeUs) {
    for (size_t i = 0; i < mRecords.size(); ++i) {
        const sp<RuvoAVISeekTime> record = mRecords[i];
        AVI_LOGV("[[%s][%d] seekTimeUs %lld] VS [%d]", mTrack.mime.c_str(), trackId, ll(timeUs),
                 record->mTrackId);
        if (record->mTrackId != trackId) continue;
        record->mSeekTimeUs = timeUs;
        return;
    }
}

}  // namespace android
