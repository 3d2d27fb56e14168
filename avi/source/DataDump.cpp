// SPDX-License-Identifier: Apache-2.0
//
// What the log tells of the samples that go out: their first and last bytes, their times, and how
// fast the file was read. Field problems are diagnosed from these lines, without a debugger.
#include <media/stagefright/foundation/AString.h>
#include <stdio.h>
#include <sys/time.h>
#include <unistd.h>

#include <algorithm>

#include "source/FrameDescription.h"
#include "source/RuvoAVISource.h"
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

std::string endsOf(const uint8_t* data, size_t size, size_t head, size_t tail) {
    return hexBytes(data, head) + "..." + hexBytes(data + size - tail, tail);
}

}  // namespace

// True for the first buffers since construction or the last seek, for the last ones of the track,
// and for all while the verbose-log switch is on.
bool RuvoAVISource::isEnableLogOutput() const {
    if (mReadCount < kAlwaysLogged || verboseLogEnabled()) return true;
    const size_t count = mTrack.table.size();
    return count >= kAlwaysLogged && mCurrentSampleIndex > count - kAlwaysLogged;
}

void RuvoAVISource::restartDumps() {
    mReadCount = 0;
    mTotalReadBytes = 0;
    mTotalReadTimeUs = 0;
}

void RuvoAVISource::beginRead() {
    mReadStartUs = wallClockUs();
}

// Logs the bytes of a buffer; `timeUs` is kNoTime for one that has no time yet.
void RuvoAVISource::dumpData(const uint8_t* data, size_t size, int64_t timeUs, uint32_t index) {
    if (size == 0 || !isEnableLogOutput()) return;
    const std::string bytes =
        size <= kWholeDump ? hexBytes(data, size) : endsOf(data, size, kDumpHead, kDumpTail);
    const std::string information = timeUs == kNoTime ? "" : readInformation(timeUs, size);
    AVI_LOGD("[%s][%d][%s][%u] %s(%s)", mTrack.mime.c_str(),
             static_cast<int>(mTrack.info.mStreamIndex),
             mTrack.isVideo   ? "V"
             : mTrack.isAudio ? "A"
                              : "S",
             index, bytes.c_str(), information.c_str());
    ++mReadCount;
}

// Time and size of a sample, and the speed of its read: of this one, of all, and what the track
// asks for.
std::string RuvoAVISource::readInformation(int64_t timeUs, size_t size) {
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
    return information.c_str();
}

// What was loaded into mBuffer, and where it stands in the file and in time.
void RuvoAVISource::logChunk(const Chunk& chunk, int64_t timeUs, const Seek& seek) const {
    if (!isEnableLogOutput()) return;
    const std::string text = prefix(chunk);
    if (!mTrack.isAvc && !mTrack.isHevc) logFrame(text);
    AVI_LOGD("%s DTS/OFF/SZ/SYNC/TTSZ/SKTM/%s/SSZ/TID=(%lld %llx %zu %d %u %lld %d %u %d)",
             text.c_str(), mTrack.isAudio ? "BLCKM" : "BRKIX", ll(timeUs),
             ull(static_cast<uint64_t>(chunk.offset)), size_t{chunk.size},
             chunk.isSync || mTrack.isAudio, chunk.bytesBefore, ll(seek.timeUs),
             mTrack.isAudio ? mTrack.info.mBlockMode : mTrack.info.mBrokenIndex,
             mTrack.info.mSampleSize, static_cast<int>(gettid()));
}

// The data in mBuffer, described by its MPEG-4 start code where it is short enough to be shown
// whole. Of a subtitle the times are shown, as text too.
void RuvoAVISource::logFrame(const std::string& prefix) const {
    const uint8_t* data = mBuffer.rangeStart();
    const size_t size = mBuffer.rangeLength();
    if (size > kWholeFrame && !mTrack.info.mIsSubtitle) {
        AVI_LOGD("%s %s(SZ: %zu)", prefix.c_str(),
                 endsOf(data, size, kFrameEnds, kFrameEnds).c_str(), size);
        return;
    }
    const size_t shown = mTrack.info.mIsSubtitle ? std::min(size, kSubtitleTimes) : size;
    const std::string times =
        mTrack.info.mIsSubtitle ? std::string(reinterpret_cast<const char*>(data), shown) : "";
    AVI_LOGD("%s %s%s%s", prefix.c_str(), hexBytes(data, shown).c_str(),
             describeMpeg4Start(data, size).c_str(), times.c_str());
}

}  // namespace android
