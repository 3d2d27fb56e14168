// SPDX-License-Identifier: Apache-2.0
#include "source/SampleLog.h"

#include <stdio.h>
#include <string.h>
#include <sys/time.h>
#include <unistd.h>

#include <algorithm>

#include "source/FrameDescription.h"
#include "support/BitRate.h"
#include "support/HexDump.h"
#include "support/Log.h"

namespace android {

namespace {

// Buffers at the start, after a seek and at the end of a track that are logged with all switches
// off.
constexpr uint32_t kAlwaysLogged = 5;

// Dumps of buffers: whole up to this size, else their first and last bytes.
constexpr size_t kWholeDump = 24;
constexpr size_t kDumpHead = 16;
constexpr size_t kDumpTail = 8;

// The same of frames.
constexpr size_t kWholeFrame = 32;
constexpr size_t kFrameEnds = 16;

// The bracketed start and end time at the beginning of a subtitle.
constexpr size_t kSubtitleTimes = 27;

int64_t wallClockUs() {
    timeval now = {};
    gettimeofday(&now, nullptr);
    return int64_t{now.tv_sec} * kUsPerSecond + now.tv_usec;
}

int32_t bitsPerSecond(int64_t bytes, int64_t durationUs) {
    return saturateToInt32(mulDiv(bytes, 8 * kUsPerSecond, durationUs));
}

const char* kindOf(const SourceTrack& track) {
    if (track.isVideo) return "V";
    return track.isAudio ? "A" : "S";
}

}  // namespace

bool SampleLog::isEnableLogOutput(uint32_t index) const {
    if (mReadCount < kAlwaysLogged || verboseLogEnabled()) return true;
    const size_t count = mTrack.table.size();
    return count >= kAlwaysLogged && index >= count - kAlwaysLogged;
}

void SampleLog::restart() {
    mReadCount = 0;
    mTotalReadBytes = 0;
    mTotalReadTimeUs = 0;
}

void SampleLog::beginRead() {
    mReadStartUs = wallClockUs();
}

void SampleLog::dumpData(const uint8_t* data, size_t size, int64_t timeUs, uint32_t index) {
    if (size == 0 || !isEnableLogOutput(index)) return;
    const HexLine bytes =
        size <= kWholeDump ? HexLine(data, size) : HexLine(data, size, kDumpHead, kDumpTail);
    const AString information = timeUs == kNoTime ? AString() : readInformation(timeUs, size);
    AVI_LOGD("[%s][%d][%s][%u] %s(%s)", mTrack.mime.c_str(),
             static_cast<int>(mTrack.info.mStreamIndex), kindOf(mTrack), index, bytes.text(),
             information.c_str());
    ++mReadCount;
}

// Time and size of a sample, and the speed of its read: of this one, of all, and what the track
// asks for.
AString SampleLog::readInformation(int64_t timeUs, size_t size) {
    const int64_t elapsedUs = wallClockUs() - mReadStartUs;
    const auto bytes = static_cast<int64_t>(size);
    char text[160];
    snprintf(text, sizeof(text), "PTS %lld(%lld.%03llds) SZ %zu TimeConsumed %lldus", ll(timeUs),
             ll(timeUs / kUsPerSecond), ll(timeUs % kUsPerSecond / 1000), size, ll(elapsedUs));
    AString information(text);
    if (elapsedUs >= 1) {
        mTotalReadBytes += bytes;
        mTotalReadTimeUs += elapsedUs;
        information.append(" IOSpeed ");
        appendBitRate(bitsPerSecond(bytes, elapsedUs), &information);
        information.append("/");
        appendBitRate(bitsPerSecond(mTotalReadBytes, mTotalReadTimeUs), &information);
        information.append("/");
        appendBitRate(mTrack.bitRate, &information);
    }
    return information;
}

void SampleLog::logChunk(const Chunk& chunk, const SampleBuffer& loaded, int64_t timeUs,
                         int64_t seekTimeUs) const {
    if (!isEnableLogOutput(chunk.index)) return;
    const LogPrefix prefix(mTrack, chunk);
    if (!mTrack.isAvc && !mTrack.isHevc) logFrame(prefix, loaded);
    AVI_LOGD("%s DTS/OFF/SZ/SYNC/TTSZ/SKTM/%s/SSZ/TID=(%lld %llx %zu %d %u %lld %d %u %d)",
             prefix.text(), mTrack.isAudio ? "BLCKM" : "BRKIX", ll(timeUs),
             ull(static_cast<uint64_t>(chunk.offset)), size_t{chunk.size},
             chunk.isSync || mTrack.isAudio, chunk.bytesBefore, ll(seekTimeUs),
             mTrack.isAudio ? mTrack.info.mBlockMode : mTrack.info.mBrokenIndex,
             mTrack.info.mSampleSize, static_cast<int>(gettid()));
}

// What was loaded, described by its MPEG-4 start code where it is short enough to be shown whole.
// Of a subtitle the times are shown, as text too.
void SampleLog::logFrame(const LogPrefix& prefix, const SampleBuffer& loaded) const {
    const uint8_t* data = loaded.rangeStart();
    const size_t size = loaded.rangeLength();
    const bool isSubtitle = mTrack.info.mIsSubtitle;
    if (size > kWholeFrame && !isSubtitle) {
        AVI_LOGD("%s %s(SZ: %zu)", prefix.text(),
                 HexLine(data, size, kFrameEnds, kFrameEnds).text(), size);
        return;
    }
    const size_t shown = isSubtitle ? std::min(size, kSubtitleTimes) : size;
    char times[kSubtitleTimes + 1] = {};
    if (isSubtitle) memcpy(times, data, shown);
    AVI_LOGD("%s %s%s%s", prefix.text(), HexLine(data, shown).text(),
             describeMpeg4Start(data, size).c_str(), times);
}

void SampleLog::logReturned(const SampleBuffer& sample, int64_t timeUs, uint32_t index) {
    if (!isEnableLogOutput(index)) return;
    AVI_LOGD("[%s][%u][%u] mBuffer meta data: %s", mTrack.mime.c_str(), mTrack.info.mStreamIndex,
             index, AMediaFormat_toString(sample.metaData()));
    dumpData(sample.rangeStart(), sample.rangeLength(), timeUs, index);
}

}  // namespace android
