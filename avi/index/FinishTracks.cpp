// SPDX-License-Identifier: Apache-2.0
#include "index/FinishTracks.h"

#include <media/stagefright/MediaErrors.h>

#include <string>

#include "TrackDump.h"
#include "codec/AudioCodecData.h"
#include "index/Durations.h"
#include "support/Log.h"
#include "support/Mime.h"

namespace android {

namespace {

// A bad track stays in the list: players number their tracks by the streams of the file.
void makeUnknown(Track* track) {
    AMediaFormat_setString(track->meta.get(), AMEDIAFORMAT_KEY_MIME,
                           track->mIsAudio ? kMimeAudioUnknown : MEDIA_MIMETYPE_AVI_VIDEO_UNKNOWN);
    track->mIsVideo = track->mIsAudio = track->mIsSubtitle = false;
}

// True when the track can be played. `videoDurationUs` as for updateSamples().
bool finishTrack(FileReader& reader, Track* track, int64_t* videoDurationUs) {
    const std::string mime = trackMime(*track);  // the one it has now: configuration may change it
    AVI_LOGV("======================================");
    const int samples = static_cast<int>(track->mTable.size());
    AVI_LOGD("%s(%s): set kKeyMaxInputSize %d sampleCount %d", "finishParse", mime.c_str(),
             static_cast<int>(track->mMaxSampleSize), samples);
    AMediaFormat_setInt32(track->meta.get(), AMEDIAFORMAT_KEY_MAX_INPUT_SIZE,
                          static_cast<int32_t>(track->mMaxSampleSize));
    if (samples == 0) {
        AVI_LOGE("%s(%s): The track doesn't have any samples!", "finishParse", mime.c_str());
        track->mBadTrack = true;
    } else if (track->mIsAudio) {
        generateAudioCodecData(reader, track);
    }
    if (track->mBadTrack) {
        AVI_LOGW("%s(%s): BAD TRACK!!! Skip it.", "finishParse", mime.c_str());
        makeUnknown(track);
        return false;
    }
    AVI_LOGD("%s(%s): finished samples %d syncSamples %u", "finishParse", mime.c_str(), samples,
             track->mTotalSyncSamples);
    updateSamples(track, videoDurationUs);
    return track->mIsVideo || track->mIsAudio || track->mIsSubtitle;
}

}  // namespace

status_t finishParse(FileReader& reader, const TrackList& tracks) {
    bool anyPlayable = false;
    int64_t videoDurationUs = 0;
    for (const auto& track : tracks) {
        anyPlayable |= finishTrack(reader, track.get(), &videoDurationUs);
        dumpTrack(*track);
        track->mTable.trim();
        track->info.mIsSubtitle = track->mIsSubtitle;
    }
    if (!anyPlayable) return ERROR_UNSUPPORTED;
    return OK;
}

}  // namespace android
