// SPDX-License-Identifier: Apache-2.0
//
// The source's life: construction over a track, start, stop.
#include "source/RuvoAVISource.h"

#include <media/stagefright/foundation/MediaDefs.h>

#include <algorithm>

#include "support/Check.h"
#include "support/Log.h"
#include "support/Mime.h"

namespace android {

namespace {

constexpr uint32_t kMaxBufferBytes = 64 * 1024 * 1024;  // a buffer, and all buffers of a group
constexpr size_t kInitialBuffers = 2;
constexpr uint32_t kMaxBuffers = 8;
constexpr uint32_t kStartCodeRoom = 4;  // reading may put a start code in front of a sample

std::string mimeOf(AMediaFormat* format) {
    const char* mime = nullptr;
    const bool success = AMediaFormat_getString(format, AMEDIAFORMAT_KEY_MIME, &mime);
    AVI_CHECK(success);
    return mime;
}

// ADPCM is cut and timed in blocks, whatever sample size the stream header claims.
uint32_t readSampleSize(const TrackInfo& info, const char* mime) {
    const bool isAdpcm = isMime(mime, MEDIA_MIMETYPE_AUDIO_DVI_IMA_ADPCM) ||
                         isMime(mime, MEDIA_MIMETYPE_AUDIO_MS_ADPCM);
    return isAdpcm && info.mBlockAlign != 0 ? info.mBlockAlign : info.mSampleSize;
}

media_status_t startFailure(int line) {
    fail("start", AMEDIA_ERROR_MALFORMED, line);
    return AMEDIA_ERROR_MALFORMED;
}

}  // namespace

RuvoAVISource::RuvoAVISource(AMediaFormat* format, const FileReader& reader, const TrackInfo& info,
                             SampleTable* table, const Vector<sp<RuvoAVISeekTime>>& seekTimes,
                             std::mutex* formatLock)
    : mFormat(format),
      mFormatLock(formatLock),
      mReader(reader),
      mInfo(info),
      mTable(table),
      mAudioSeekTimes(seekTimes),
      mCutter(info) {
    const std::lock_guard<std::mutex> lock(*mFormatLock);
    mMime = mimeOf(mFormat);
    const char* mime = mMime.c_str();
    if (!mInfo.mIsSubtitle) {
        AMediaFormat_getInt64(mFormat, AMEDIAFORMAT_KEY_DURATION, &mDurationUs);
    }
    mInfo.mSampleSize = readSampleSize(mInfo, mime);
    mIsAudio = mInfo.mFccType == fourcc("auds") || mInfo.mFccType == fourcc("midi");
    mIsVideo = !mIsAudio && !mInfo.mIsSubtitle;
    mIsAVC = isMime(mime, MEDIA_MIMETYPE_VIDEO_AVC);
    mIsHEVC = isMime(mime, MEDIA_MIMETYPE_VIDEO_HEVC);
    mIsRawPCM = isMime(mime, MEDIA_MIMETYPE_AUDIO_RAW);
    mIsMPEG4 = isMime(mime, MEDIA_MIMETYPE_VIDEO_MPEG4);
    mIsWVC1 = mInfo.mCompression == fourcc("WVC1");
}

RuvoAVISource::~RuvoAVISource() {
    if (mStarted) RuvoAVISource::stop();
}

media_status_t RuvoAVISource::start() {
    const std::lock_guard<std::mutex> lock(mLock);
    AVI_CHECK(!mStarted);
    // A copy of our own: printing a format writes to it.
    const MediaFormatPtr format(AMediaFormat_new());
    {
        const std::lock_guard<std::mutex> formatLock(*mFormatLock);
        AMediaFormat_copy(format.get(), mFormat);
    }
    int32_t maxInputSize = 0;
    if (!AMediaFormat_getInt32(format.get(), AMEDIAFORMAT_KEY_MAX_INPUT_SIZE, &maxInputSize) ||
        mBufferGroup == nullptr) {
        return startFailure(__LINE__);
    }
    if (maxInputSize < 1 || static_cast<uint32_t>(maxInputSize) > kMaxBufferBytes) {
        return startFailure(__LINE__);
    }
    mBufferSize = bufferSizeFor(static_cast<uint32_t>(maxInputSize));
    mBufferGroup->init(kInitialBuffers, mBufferSize,
                       std::min(kMaxBufferBytes / mBufferSize, kMaxBuffers));
    AVI_LOGD("+ start track %s bufferSize %d", AMediaFormat_toString(format.get()),
             static_cast<int>(mBufferSize));
    mStarted = true;
    return AMEDIA_OK;
}

// Reading may make a sample larger. REQUIRES: largest <= kMaxBufferBytes.
uint32_t RuvoAVISource::bufferSizeFor(uint32_t largest) const {
    if (mIsRawPCM && mInfo.mBitsPerSample == 8) return 2 * largest;  // widened to 16 bits
    if (mCutter.isActive()) return 4 * largest;  // frames that span chunks, rests in front of one
    return largest + kStartCodeRoom;
}

media_status_t RuvoAVISource::stop() {
    const std::lock_guard<std::mutex> lock(mLock);
    AVI_CHECK(mStarted);
    releaseBuffer();
    mCurrentSampleIndex = 0;
    mStarted = false;
    return AMEDIA_OK;
}

void RuvoAVISource::releaseBuffer() {
    if (mBuffer == nullptr) return;
    mBuffer->release();
    mBuffer = nullptr;
}

media_status_t RuvoAVISource::getFormat(AMediaFormat* out) {
    const std::lock_guard<std::mutex> lock(mLock);
    const std::lock_guard<std::mutex> formatLock(*mFormatLock);
    return AMediaFormat_copy(out, mFormat);
}

}  // namespace android
