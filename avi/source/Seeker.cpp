// SPDX-License-Identifier: Apache-2.0
#include "source/Seeker.h"

#include <media/stagefright/MediaErrors.h>

#include <algorithm>

#include "source/FrameProbe.h"
#include "source/SeekMath.h"
#include "support/Log.h"

namespace android {

namespace {

bool beyondEnd(int line) {
    fail("getSampleIndexBySeekTime", ERROR_END_OF_STREAM, line);
    return false;
}

bool isSyncFrame(FrameType type) {
    AVI_TRACE("isSyncFrame type %d", static_cast<int>(type));
    return type == FrameType::kIntra;
}

}  // namespace

bool Seeker::getSampleIndexBySeekTime(int64_t timeUs, SeekMode mode, SeekLanding* out) const {
    if (mTrack.info.mBlockMode) return seekBlocks(timeUs, out);
    if (mTrack.isVideo) return seekVideo(timeUs, mode, out);
    if (mTrack.isAudio) return seekAudio(timeUs, out);
    out->index = 0;  // subtitles carry their times in their data
    return true;
}

bool Seeker::seekVideo(int64_t timeUs, SeekMode mode, SeekLanding* out) const {
    const auto count = static_cast<int32_t>(mTrack.table.size());
    int32_t calculated = unitAtTime(timeUs, mTrack.info.mScale, mTrack.info.mRate);
    AVI_LOGD("[%s] Calculated sample index %d @seekTime%lldus", mTrack.mime.c_str(), calculated,
             ll(timeUs));
    if (mode == SeekMode::SEEK_NEXT_SYNC) {
        if (!findNextSync(static_cast<size_t>(calculated), &out->index)) return beyondEnd(__LINE__);
    } else {
        calculated = std::min(calculated, count - 1);
        out->index = findPreviousSync(static_cast<size_t>(calculated));
    }
    if (mode == SeekMode::SEEK_CLOSEST) {
        // The decoder drops what lies between the key frame and the frame that was asked for.
        out->targetUs = unitsToUs(calculated, mTrack.info.mScale, mTrack.info.mRate);
    }
    AVI_LOGD("[%s] seekTo sync index %d/%d nearby seekTime %lldus", mTrack.mime.c_str(),
             static_cast<int>(out->index), count, ll(timeUs));
    return true;
}

bool Seeker::findNextSync(size_t from, uint32_t* index) const {
    const SampleTable& table = mTrack.table;
    for (size_t i = table.nextSync(from); i < table.size(); i = table.nextSync(i + 1)) {
        if (!landsOn(i, "index:")) continue;
        *index = static_cast<uint32_t>(i);
        return true;
    }
    return false;
}

uint32_t Seeker::findPreviousSync(size_t from) const {
    const SampleTable& table = mTrack.table;
    size_t i = table.previousSync(from);
    while (i < table.size()) {
        if (landsOn(i, "index: ")) return static_cast<uint32_t>(i);
        i = i == 0 ? table.size() : table.previousSync(i - 1);
    }
    AVI_LOGW("[%s] found no prev sync frame", mTrack.mime.c_str());
    return 0;
}

// Whether a seek may land on sample i, which has a key flag: a key frame, by its data where the
// index is not trusted. `label` is how the log line names the index.
bool Seeker::landsOn(size_t i, const char* label) const {
    const int8_t flag = mTrack.table.syncFlag(i);
    if (!mTrack.info.mBrokenIndex || flag < 0) {
        AVI_LOGD("[%s] seek mBrokenIndex:%d -- isSyncSample:%d, %s%d @L%d", mTrack.mime.c_str(),
                 mTrack.info.mBrokenIndex, flag, label, static_cast<int>(i), __LINE__);
        return true;
    }
    if (!fixSyncSample(i)) return false;
    AVI_LOGD("[%s] seek sync index: %d @L%d", mTrack.mime.c_str(), static_cast<int>(i), __LINE__);
    return true;
}

// Corrects the key flag of a sample by its data; the table keeps what was found.
bool Seeker::fixSyncSample(size_t i) const {
    std::optional<FrameType> type;
    if (mTrack.table.chunkSize(i) != 0) type = probeFrame(mTrack, i);
    const bool isSync = type && isSyncFrame(*type);
    if (isSync) AVI_TRACE("fixSyncSample at %d", static_cast<int>(i));
    mTrack.table.correctSyncFlag(i, isSync);
    return isSync;
}

// Lands inside a chunk, at a whole block.
bool Seeker::seekBlocks(int64_t timeUs, SeekLanding* out) const {
    const SampleTable& table = mTrack.table;
    const int32_t blocks = unitAtTime(timeUs, mTrack.info.mScale, mTrack.info.mRate);
    AVI_LOGD("[%s] Calculated seekBlocks %d @seekTime %lldus", mTrack.mime.c_str(), blocks,
             ll(timeUs));
    const size_t k =
        firstBeyond(table.size(), blocks, [&](size_t i) { return table.blocksThrough(i); });
    if (k >= table.size()) return beyondEnd(__LINE__);
    const auto before = static_cast<uint32_t>(k == 0 ? 0 : table.blocksThrough(k - 1));
    out->index = static_cast<uint32_t>(k);
    out->consumed =
        wrapMul32(mTrack.info.mBlockAlign, wrapSub32(static_cast<uint32_t>(blocks), before));
    AVI_LOGD("[%s] seek blocks %d block offset %x", mTrack.mime.c_str(), blocks, out->consumed);
    return true;
}

bool Seeker::seekAudio(int64_t timeUs, SeekLanding* out) const {
    const TrackInfo& info = mTrack.info;
    const bool isOneFrameAChunk = info.mIsRawAACData && info.mIsVBRWise;
    size_t found = 0;
    if (info.mSampleSize == 0) {
        found = static_cast<size_t>(chunkAtTime(timeUs, mTrack.durationUs, mTrack.table.size()));
        AVI_LOGD("[%s] seekTo index %d nearby seekTime %lldus @L%d", mTrack.mime.c_str(),
                 static_cast<int>(found), ll(timeUs), __LINE__);
    } else if (isOneFrameAChunk) {
        found = static_cast<size_t>(frameAtTime(timeUs, info.mScale, info.mRate));
    } else {
        found = seekBytes(timeUs);
    }
    if (found >= mTrack.table.size()) return beyondEnd(__LINE__);
    out->index = static_cast<uint32_t>(found);
    return true;
}

// The chunk that holds the time, by the running totals of the table.
size_t Seeker::seekBytes(int64_t timeUs) const {
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
int64_t Seeker::byteTimeUs(int64_t bytes) const {
    const TrackInfo& info = mTrack.info;
    if (info.mIsRawAACData && info.mAvgBytesPerSec != 0) {
        return mulDiv(bytes, kUsPerSecond, info.mAvgBytesPerSec);
    }
    return unitsToUs(bytes, info.mScale, info.mRate) / info.mSampleSize;
}

}  // namespace android
