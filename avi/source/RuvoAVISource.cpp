// SPDX-License-Identifier: Apache-2.0
#include "source/RuvoAVISource.h"

#include <algorithm>
#include <utility>

#include "source/ReadFailure.h"
#include "support/Check.h"
#include "support/Log.h"

namespace android {

namespace {

constexpr uint32_t kStartCodeRoom = 4;  // reading may put a start code in front of a sample

media_status_t startFailure(int line) {
    fail("start", AMEDIA_ERROR_MALFORMED, line);
    return AMEDIA_ERROR_MALFORMED;
}

void publishMetaData(const Sample& sample) {
    AMediaFormat* meta = sample.buffer.metaData();
    AMediaFormat_clear(meta);  // a reused buffer still has the keys of its last sample
    AMediaFormat_setInt64(meta, AMEDIAFORMAT_KEY_TIME_US, sample.timeUs);
    if (sample.isSync) AMediaFormat_setInt32(meta, AMEDIAFORMAT_KEY_IS_SYNC_FRAME, 1);
    if (sample.targetUs >= 0) {
        AMediaFormat_setInt64(meta, AMEDIAFORMAT_KEY_TARGET_TIME, sample.targetUs);
    }
}

}  // namespace

RuvoAVISource::RuvoAVISource(Track* track, const FileReader& reader,
                             const Vector<sp<RuvoAVISeekTime>>& seekTimes)
    : mFormat(track->meta.get()),
      mFormatLock(&track->mFormatLock),
      mTrack(track, reader),
      mFrames(mTrack),
      mLog(mTrack),
      mCursor(mTrack),
      mLoader(mTrack, &mFrames, &mBuffers, &mLog),
      mMpegAudio(mTrack, &mCursor, &mBuffers, &mLog),
      mTimes(mTrack, &mFrames),
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
    const auto largest = static_cast<uint32_t>(maxInputSize);
    if (largest < 1 || largest > SampleBufferPool::kMaxBytes) return startFailure(__LINE__);
    const uint32_t bufferSize = bufferSizeFor(largest);
    mBuffers.init(mBufferGroup, bufferSize);
    AVI_LOGD("+ start track %s bufferSize %d", AMediaFormat_toString(format.get()),
             static_cast<int>(bufferSize));
    mStarted = true;
    return AMEDIA_OK;
}

// Reading may make a sample larger. REQUIRES: largest <= SampleBufferPool::kMaxBytes.
uint32_t RuvoAVISource::bufferSizeFor(uint32_t largest) const {
    if (mTrack.isRawPcm && mTrack.info.mBitsPerSample == 8) return 2 * largest;  // widened to 16
    if (mMpegAudio.isActive()) return 4 * largest;  // frames that span chunks, rests before one
    return largest + kStartCodeRoom;
}

media_status_t RuvoAVISource::stop() {
    const std::lock_guard<std::mutex> lock(mLock);
    AVI_CHECK(mStarted);
    mMpegAudio.dropRest();
    mFrames.restart();
    mCursor.moveTo(0);
    mStarted = false;
    return AMEDIA_OK;
}

media_status_t RuvoAVISource::getFormat(AMediaFormat* out) {
    const std::lock_guard<std::mutex> lock(mLock);
    const std::lock_guard<std::mutex> formatLock(*mFormatLock);
    return AMediaFormat_copy(out, mFormat);
}

media_status_t RuvoAVISource::read(MediaBufferHelper** out, const ReadOptions* options) {
    const std::lock_guard<std::mutex> lock(mLock);
    AVI_CHECK(mStarted);
    *out = nullptr;
    if (mTrack.table.isEmpty()) return endOfStream(LogPrefix(mTrack), __LINE__);

    Seek request;
    int64_t seekTimeUs = 0;
    ReadOptions::SeekMode mode = ReadOptions::SeekMode::SEEK_PREVIOUS_SYNC;
    if (options != nullptr && options->getSeekTo(&seekTimeUs, &mode)) {
        const media_status_t err = seek(seekTimeUs, mode, &request);
        if (err != AMEDIA_OK) return err;
    }
    mCursor.moveTo(std::max(mCursor.next(), mTrack.info.mInvalidSampleIdx));

    Sample sample;
    const media_status_t err =
        mMpegAudio.isActive() ? readMpegAudioFrame(request, &sample) : readSample(request, &sample);
    if (err != AMEDIA_OK) return err;
    publishMetaData(sample);
    returnBuffer(std::move(sample), out);
    return AMEDIA_OK;
}

media_status_t RuvoAVISource::seek(int64_t requestedUs, ReadOptions::SeekMode mode, Seek* out) {
    out->requested = true;
    out->timeUs = mSeekTimes.followedTimeUs(requestedUs);
    mLog.restart();
    mFrames.restart();
    mMpegAudio.seek(out->timeUs);
    SeekLanding landing;
    if (!mSeeker.getSampleIndexBySeekTime(out->timeUs, mode, &landing)) {
        return endOfStream(LogPrefix(mTrack), __LINE__);
    }
    out->targetUs = landing.targetUs;
    mMpegAudio.skip(landing.consumed);
    mCursor.moveTo(landing.index);
    return AMEDIA_OK;
}

// The common case: a chunk is a sample.
media_status_t RuvoAVISource::readSample(const Seek& seek, Sample* out) {
    Chunk chunk;
    if (!mCursor.take(&chunk)) return endOfStream(LogPrefix(mTrack), __LINE__);
    const media_status_t err = mLoader.load(&chunk, &out->buffer);
    if (err != AMEDIA_OK) return err;
    out->timeUs = mTimes.sampleTimeUs(chunk, out->buffer.data());
    out->targetUs = seek.targetUs;
    out->isSync = chunk.isSync || mTrack.isAudio;
    afterLoad(chunk, out->buffer, out->timeUs, seek);
    return mLoader.convertPcm(chunk, &out->buffer);
}

// A frame of MPEG audio is a sample, wherever chunks begin and end.
media_status_t RuvoAVISource::readMpegAudioFrame(const Seek& seek, Sample* out) {
    Chunk chunk;
    int64_t chunkTimeUs = 0;
    if (mMpegAudio.needsChunk()) {
        const media_status_t err = mMpegAudio.load(&chunk);
        if (err != AMEDIA_OK) return err;
        chunkTimeUs = mTimes.calculateFrameDTS(chunk);
        afterLoad(chunk, mMpegAudio.rest(), chunkTimeUs, seek);
    }
    return mMpegAudio.cutFrame(chunk, chunkTimeUs, out);
}

void RuvoAVISource::afterLoad(const Chunk& chunk, const SampleBuffer& loaded, int64_t timeUs,
                              const Seek& seek) {
    mLog.logChunk(chunk, loaded, timeUs, seek.timeUs);
    if (seek.requested) mSeekTimes.share(chunk, timeUs);
}

// Hands a finished sample over, and logs it.
void RuvoAVISource::returnBuffer(Sample sample, MediaBufferHelper** out) {
    mLog.logReturned(sample.buffer, sample.timeUs, mCursor.last());
    *out = sample.buffer.release();
}

}  // namespace android
