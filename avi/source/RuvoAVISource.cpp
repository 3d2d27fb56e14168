// SPDX-License-Identifier: Apache-2.0
//
// The source's life: construction over a track, start, stop.
#include "source/RuvoAVISource.h"

#include "support/Check.h"
#include "support/Log.h"

namespace android {

namespace {

constexpr uint32_t kStartCodeRoom = 4;  // reading may put a start code in front of a sample

media_status_t startFailure(int line) {
    fail("start", AMEDIA_ERROR_MALFORMED, line);
    return AMEDIA_ERROR_MALFORMED;
}

}  // namespace

RuvoAVISource::RuvoAVISource(Track* track, const FileReader& reader,
                             const Vector<sp<RuvoAVISeekTime>>& seekTimes)
    : mFormat(track->meta.get()),
      mFormatLock(&track->mFormatLock),
      mTrack(track, reader),
      mLog(mTrack),
      mLoader(mTrack, &mBuffers, &mLog),
      mCutter(mTrack.info),
      mTimes(mTrack),
      mSeeker(mTrack),
      mSeekTimes(mTrack, seekTimes) {}

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
    if (maxInputSize < 1 || static_cast<uint32_t>(maxInputSize) > SampleBufferPool::kMaxBytes) {
        return startFailure(__LINE__);
    }
    const uint32_t bufferSize = bufferSizeFor(static_cast<uint32_t>(maxInputSize));
    mBuffers.init(mBufferGroup, bufferSize);
    AVI_LOGD("+ start track %s bufferSize %d", AMediaFormat_toString(format.get()),
             static_cast<int>(bufferSize));
    mStarted = true;
    return AMEDIA_OK;
}

// Reading may make a sample larger. REQUIRES: largest <= SampleBufferPool::kMaxBytes.
uint32_t RuvoAVISource::bufferSizeFor(uint32_t largest) const {
    if (mTrack.isRawPcm && mTrack.info.mBitsPerSample == 8)
        return 2 * largest;                      // widened to 16 bits
    if (mCutter.isActive()) return 4 * largest;  // frames that span chunks, rests in front of one
    return largest + kStartCodeRoom;
}

media_status_t RuvoAVISource::stop() {
    const std::lock_guard<std::mutex> lock(mLock);
    AVI_CHECK(mStarted);
    mBuffer.reset();
    mCurrentSampleIndex = 0;
    mStarted = false;
    return AMEDIA_OK;
}

media_status_t RuvoAVISource::getFormat(AMediaFormat* out) {
    const std::lock_guard<std::mutex> lock(mLock);
    const std::lock_guard<std::mutex> formatLock(*mFormatLock);
    return AMediaFormat_copy(out, mFormat);
}

}  // namespace android
