// SPDX-License-Identifier: Apache-2.0
//
// One call of read(): choose the next chunk, load it into a buffer in the form that decoders take,
// work out its time, hand it over.
#include <algorithm>
#include <utility>

#include "source/RuvoAVISource.h"
#include "support/Check.h"
#include "support/Log.h"

namespace android {

media_status_t RuvoAVISource::read(MediaBufferHelper** out, const ReadOptions* options) {
    const std::lock_guard<std::mutex> lock(mLock);
    AVI_CHECK(mStarted);
    *out = nullptr;
    if (mTrack.table.size() == 0) return endOfStream(LogPrefix(mTrack), __LINE__);

    Seek request;
    int64_t seekTimeUs = 0;
    ReadOptions::SeekMode mode = ReadOptions::SeekMode::SEEK_PREVIOUS_SYNC;
    media_status_t err = AMEDIA_OK;
    if (options != nullptr && options->getSeekTo(&seekTimeUs, &mode)) {
        err = seek(seekTimeUs, mode, &request);
        if (err != AMEDIA_OK) return err;
    }
    mCurrentSampleIndex = std::max(mCurrentSampleIndex, mTrack.info.mInvalidSampleIdx);
    if (mCutter.isActive()) return readMpegAudioFrame(request, out);

    Chunk chunk;
    if (!nextChunk(&chunk)) return endOfStream(LogPrefix(mTrack), __LINE__);
    err = mLoader.load(&chunk, &mBuffer);
    if (err != AMEDIA_OK) return err;
    const int64_t timeUs = mTimes.sampleTimeUs(chunk, mBuffer.data());
    mLog.logChunk(chunk, mBuffer, timeUs, request.timeUs);
    if (request.requested) mSeekTimes.share(chunk, timeUs);
    err = mLoader.convertPcm(chunk, &mBuffer);
    if (err != AMEDIA_OK) {
        mBuffer.reset();
        return err;
    }
    publishMetaData(mBuffer, timeUs, chunk.isSync || mTrack.isAudio);
    if (request.targetUs >= 0) {
        AMediaFormat_setInt64(mBuffer.metaData(), AMEDIAFORMAT_KEY_TARGET_TIME, request.targetUs);
    }
    returnBuffer(out, std::move(mBuffer), timeUs);
    return AMEDIA_OK;
}

media_status_t RuvoAVISource::seek(int64_t requestedUs, ReadOptions::SeekMode mode, Seek* out) {
    out->requested = true;
    out->timeUs = mSeekTimes.followedTimeUs(requestedUs);
    mLog.restart();
    mBuffer.reset();
    mChunkConsumed = 0;
    mCutter.setTime(out->timeUs);
    SeekLanding landing;
    if (!mSeeker.getSampleIndexBySeekTime(out->timeUs, mode, &landing)) {
        return endOfStream(LogPrefix(mTrack), __LINE__);
    }
    out->targetUs = landing.targetUs;
    mChunkConsumed = landing.consumed;
    mCurrentSampleIndex = landing.index;
    return AMEDIA_OK;
}

// Takes the next chunk off the table. Empty chunks are skipped, but for streams that count bytes.
bool RuvoAVISource::nextChunk(Chunk* out) {
    const bool countsBytes = mTrack.info.mSampleSize != 0;
    while (mCurrentSampleIndex < mTrack.table.size()) {
        const size_t i = mCurrentSampleIndex++;
        out->label = Chunk::Label::kFull;
        out->index = static_cast<uint32_t>(i);
        out->offset = mTrack.table.offset(i);
        out->size = mTrack.table.chunkSize(i);
        out->bytesBefore = mTrack.table.bytesBefore(i);
        out->isSync = mTrack.isVideo && !countsBytes && mTrack.table.syncFlag(i) != 0;
        if (out->size != 0 || countsBytes) return true;
    }
    return false;
}

void RuvoAVISource::publishMetaData(const SampleBuffer& buffer, int64_t timeUs, bool isSync) {
    AMediaFormat* meta = buffer.metaData();
    AMediaFormat_clear(meta);  // a reused buffer still has the keys of its last sample
    AMediaFormat_setInt64(meta, AMEDIAFORMAT_KEY_TIME_US, timeUs);
    if (isSync) AMediaFormat_setInt32(meta, AMEDIAFORMAT_KEY_IS_SYNC_FRAME, 1);
}

// Hands a finished buffer over, and logs it.
void RuvoAVISource::returnBuffer(MediaBufferHelper** out, SampleBuffer buffer, int64_t timeUs) {
    mLog.logReturned(buffer, timeUs, mCurrentSampleIndex - 1);
    *out = buffer.release();
}

}  // namespace android
