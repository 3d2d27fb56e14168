// SPDX-License-Identifier: Apache-2.0
//
// Where reading resumes after a seek, and how audio follows video: the video source leaves its
// landing time in the records of the audio tracks, which take it at their next seek.
#include <media/stagefright/MediaErrors.h>
#include <strings.h>

#include <algorithm>

#include "source/RuvoAVISource.h"
#include "source/SeekMath.h"
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

media_status_t RuvoAVISource::seek(int64_t requestedUs, SeekMode mode, Seek* out) {
    out->requested = true;
    out->timeUs = std::max<int64_t>(requestedUs, 0);
    mChunkConsumed = 0;
    mLog.restart();
    mBuffer.reset();
    if (mTrack.isAudio) {
        const int64_t landingUs =
            getAudioSeekTimeByTrackId(static_cast<int32_t>(mTrack.info.mStreamIndex));
        if (landingUs >= 0 && requestedUs > 0) {
            out->timeUs = landingUs;
            AVI_TRACE("%s get Audio seekTime @%lld.%03llds @L%d", LogPrefix(mTrack).text(),
                      wholeSeconds(landingUs), milliseconds(landingUs), __LINE__);
        }
    }
    mCutter.setTime(out->timeUs);

    int32_t index = 0;
    const status_t err = getSampleIndexBySeekTime(out->timeUs, mode, &index, &out->targetUs);
    if (err != OK) return endOfStream(LogPrefix(mTrack), __LINE__);
    mCurrentSampleIndex = static_cast<uint32_t>(index);
    return AMEDIA_OK;
}

// After the first sample of a seek.
void RuvoAVISource::shareSeekTime(const Chunk& chunk, int64_t landingUs) {
    if (strncasecmp(mTrack.mime.c_str(), "video/", 6) == 0) {
        setAllAudioSeekTime(landingUs);
        AVI_TRACE("%s set seekTime @%lld.%03llds for audio track(s).@L%d",
                  LogPrefix(mTrack, chunk).text(), wholeSeconds(landingUs), milliseconds(landingUs),
                  __LINE__);
    } else if (strncasecmp(mTrack.mime.c_str(), "audio/", 6) == 0) {
        setAudioSeekTimeByTrackId(static_cast<int32_t>(mTrack.info.mStreamIndex), kNoSeekTime);
        AVI_TRACE("%s reset seekTime to -1 after seeking.@L%d", LogPrefix(mTrack, chunk).text(),
                  __LINE__);
    }
}

status_t RuvoAVISource::getSampleIndexBySeekTime(int64_t timeUs, SeekMode mode, int32_t* index,
                                                 int64_t* targetUs) {
    if (mTrack.info.mBlockMode) return seekBlocks(timeUs, index);
    if (mTrack.isVideo) return seekVideo(timeUs, mode, index, targetUs);
    if (mTrack.isAudio) return seekAudio(timeUs, index);
    *index = 0;  // subtitles carry their times in their data
    return OK;
}

status_t RuvoAVISource::beyondEnd(int line) const {
    fail("getSampleIndexBySeekTime", ERROR_END_OF_STREAM, line);
    return ERROR_END_OF_STREAM;
}

status_t RuvoAVISource::seekVideo(int64_t timeUs, SeekMode mode, int32_t* index,
                                  int64_t* targetUs) {
    const auto last = static_cast<int32_t>(mTrack.table.size()) - 1;
    int32_t calculated = unitAtTime(timeUs, mTrack.info.mScale, mTrack.info.mRate);
    AVI_LOGD("[%s] Calculated sample index %d @seekTime%lldus", mTrack.mime.c_str(), calculated,
             ll(timeUs));
    if (mode == SeekMode::SEEK_NEXT_SYNC) {
        if (!findNextSync(calculated, last, index)) return beyondEnd(__LINE__);
    } else {
        calculated = std::min(calculated, last);
        *index = findPreviousSync(calculated);
    }
    if (mode == SeekMode::SEEK_CLOSEST) {
        // The decoder drops what lies between the key frame and the frame that was asked for.
        *targetUs = unitsToUs(calculated, mTrack.info.mScale, mTrack.info.mRate);
    }
    AVI_LOGD("[%s] seekTo sync index %d/%d nearby seekTime %lldus", mTrack.mime.c_str(), *index,
             last + 1, ll(timeUs));
    return OK;
}

bool RuvoAVISource::findNextSync(int32_t from, int32_t last, int32_t* index) {
    for (int32_t i = from; i <= last; ++i) {
        if (!landsOn(i, "index:")) continue;
        *index = i;
        return true;
    }
    return false;
}

int32_t RuvoAVISource::findPreviousSync(int32_t from) {
    for (int32_t i = from; i >= 0; --i) {
        if (landsOn(i, "index: ")) return i;
    }
    AVI_LOGW("[%s] found no prev sync frame", mTrack.mime.c_str());
    return 0;
}

// Whether a seek may land on sample i: a key frame, by its data where the index is not trusted.
// `label` is how the log line names the index.
bool RuvoAVISource::landsOn(int32_t i, const char* label) {
    const auto at = static_cast<size_t>(i);
    const int8_t flag = mTrack.table.syncFlag(at);
    if (flag == 0) return false;
    if (!mTrack.info.mBrokenIndex || flag < 0) {
        AVI_LOGD("[%s] seek mBrokenIndex:%d -- isSyncSample:%d, %s%d @L%d", mTrack.mime.c_str(),
                 mTrack.info.mBrokenIndex, flag, label, i, __LINE__);
        return true;
    }
    if (!fixSyncSample(at)) return false;
    AVI_LOGD("[%s] seek sync index: %d @L%d", mTrack.mime.c_str(), i, __LINE__);
    return true;
}

// Corrects the key flag of a sample by its data; the table keeps what was found.
bool RuvoAVISource::fixSyncSample(size_t i) {
    const bool isEmpty = mTrack.table.chunkSize(i) == 0;
    FrameType type = FrameType::kUnknown;
    const bool isSync = !isEmpty && probeFrame(i, &type) && isSyncFrame(type);
    if (isSync) AVI_TRACE("fixSyncSample at %d", static_cast<int>(i));
    mTrack.table.correctSyncFlag(i, isSync);
    return isSync;
}

bool RuvoAVISource::isSyncFrame(FrameType type) {
    AVI_TRACE("isSyncFrame type %d", static_cast<int>(type));
    return type == FrameType::kIntra;
}

// Lands inside a chunk, at a whole block.
status_t RuvoAVISource::seekBlocks(int64_t timeUs, int32_t* index) {
    const int32_t blocks = unitAtTime(timeUs, mTrack.info.mScale, mTrack.info.mRate);
    AVI_LOGD("[%s] Calculated seekBlocks %d @seekTime %lldus", mTrack.mime.c_str(), blocks,
             ll(timeUs));
    const size_t k = firstBeyond(mTrack.table.size(), blocks,
                                 [this](size_t i) { return mTrack.table.blocksThrough(i); });
    if (k >= mTrack.table.size()) return beyondEnd(__LINE__);
    const auto before = static_cast<uint32_t>(k == 0 ? 0 : mTrack.table.blocksThrough(k - 1));
    mChunkConsumed =
        wrapMul32(mTrack.info.mBlockAlign, wrapSub32(static_cast<uint32_t>(blocks), before));
    AVI_LOGD("[%s] seek blocks %d block offset %x", mTrack.mime.c_str(), blocks, mChunkConsumed);
    *index = static_cast<int32_t>(k);
    return OK;
}

status_t RuvoAVISource::seekAudio(int64_t timeUs, int32_t* index) {
    const bool isOneFrameAChunk = mTrack.info.mIsRawAACData && mTrack.info.mIsVBRWise;
    size_t found = 0;
    if (mTrack.info.mSampleSize == 0) {
        found = static_cast<size_t>(chunkAtTime(timeUs, mTrack.durationUs, mTrack.table.size()));
        AVI_LOGD("[%s] seekTo index %d nearby seekTime %lldus @L%d", mTrack.mime.c_str(),
                 static_cast<int>(found), ll(timeUs), __LINE__);
    } else if (isOneFrameAChunk) {
        found = static_cast<size_t>(frameAtTime(timeUs, mTrack.info.mScale, mTrack.info.mRate));
    } else {
        found = seekBytes(timeUs);
    }
    if (found >= mTrack.table.size()) return beyondEnd(__LINE__);
    *index = static_cast<int32_t>(found);
    return OK;
}

// The chunk that holds the time, by the running totals of the table.
size_t RuvoAVISource::seekBytes(int64_t timeUs) const {
    return firstBeyond(mTrack.table.size(), timeUs, [&](size_t i) {
        const int64_t endUs = byteTimeUs(mTrack.table.bytesThrough(i));
        if (endUs > timeUs) {
            AVI_LOGD("[%s] seekTo index %d/%lld nearby seekTime %lldus @L%d", mTrack.mime.c_str(),
                     static_cast<int>(i), ll(endUs), ll(timeUs), __LINE__);
        }
        return endUs;
    });
}

// Time at which `bytes` of the stream have been played.
int64_t RuvoAVISource::byteTimeUs(int64_t bytes) const {
    if (mTrack.info.mIsRawAACData && mTrack.info.mAvgBytesPerSec != 0) {
        return mulDiv(bytes, kUsPerSecond, mTrack.info.mAvgBytesPerSec);
    }
    return unitsToUs(bytes, mTrack.info.mScale, mTrack.info.mRate) / mTrack.info.mSampleSize;
}

int64_t RuvoAVISource::getAudioSeekTimeByTrackId(int32_t trackId) const {
    for (size_t i = 0; i < mAudioSeekTimes.size(); ++i) {
        const sp<RuvoAVISeekTime> record = mAudioSeekTimes[i];
        const int64_t timeUs = record->mSeekTimeUs;
        AVI_LOGV("[%s][%d] VS [%d seekTimeUs %lld]", mTrack.mime.c_str(), trackId, record->mTrackId,
                 ll(timeUs));
        if (record->mTrackId == trackId) return timeUs;
    }
    AVI_LOGE("%s(%s): seekTime of track %d not found!", "getAudioSeekTimeByTrackId",
             mTrack.mime.c_str(), trackId);
    return kNoSeekTime;
}

void RuvoAVISource::setAllAudioSeekTime(int64_t timeUs) {
    for (size_t i = 0; i < mAudioSeekTimes.size(); ++i) {
        const sp<RuvoAVISeekTime> record = mAudioSeekTimes[i];
        record->mSeekTimeUs = timeUs;
        AVI_LOGV("[%s][%d] set seekTimeUs %lld", mTrack.mime.c_str(), record->mTrackId, ll(timeUs));
    }
}

void RuvoAVISource::setAudioSeekTimeByTrackId(int32_t trackId, int64_t timeUs) {
    for (size_t i = 0; i < mAudioSeekTimes.size(); ++i) {
        const sp<RuvoAVISeekTime> record = mAudioSeekTimes[i];
        AVI_LOGV("[[%s][%d] seekTimeUs %lld] VS [%d]", mTrack.mime.c_str(), trackId, ll(timeUs),
                 record->mTrackId);
        if (record->mTrackId != trackId) continue;
        record->mSeekTimeUs = timeUs;
        return;
    }
}

}  // namespace android
