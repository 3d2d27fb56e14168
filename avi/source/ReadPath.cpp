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
    if (mTrack.table.size() == 0) return endOfStream(prefix(), __LINE__);

    Seek request;
    int64_t seekTimeUs = 0;
    SeekMode mode = SeekMode::SEEK_PREVIOUS_SYNC;
    media_status_t err = AMEDIA_OK;
    if (options != nullptr && options->getSeekTo(&seekTimeUs, &mode)) {
        err = seek(seekTimeUs, mode, &request);
        if (err != AMEDIA_OK) return err;
    }
    mCurrentSampleIndex = std::max(mCurrentSampleIndex, mTrack.info.mInvalidSampleIdx);
    if (mCutter.isActive()) return readMpegAudioFrame(request, out);

    Chunk chunk;
    err = loadNextChunk(&chunk);
    if (err != AMEDIA_OK) return err;
    const int64_t timeUs = sampleTimeUs(chunk);
    logChunk(chunk, timeUs, request);
    if (request.requested) shareSeekTime(chunk, timeUs);
    err = convertPcm(chunk);
    if (err != AMEDIA_OK) return err;
    publishMetaData(mBuffer, timeUs, chunk.isSync || mTrack.isAudio);
    if (request.targetUs >= 0) {
        AMediaFormat_setInt64(mBuffer->meta_data(), AMEDIAFORMAT_KEY_TARGET_TIME, request.targetUs);
    }
    return returnBuffer(out, std::exchange(mBuffer, nullptr), timeUs);
}

// Fills mBuffer with the next chunk.
media_status_t RuvoAVISource::loadNextChunk(Chunk* chunk) {
    if (!nextChunk(chunk)) return endOfStream(prefix(), __LINE__);
    const media_status_t err = acquireChunkBuffer();
    return err == AMEDIA_OK ? loadChunk(chunk) : err;
}

// Takes the next chunk off the table. Empty chunks are skipped, but for streams that count bytes.
bool RuvoAVISource::nextChunk(Chunk* out) {
    const bool countsBytes = mTrack.info.mSampleSize != 0;
    while (mCurrentSampleIndex < mTrack.table.size()) {
        const size_t i = mCurrentSampleIndex++;
        out->isLoaded = true;
        out->index = i;
        out->offset = mTrack.table.offset(i);
        out->size = mTrack.table.chunkSize(i);
        out->bytesBefore = mTrack.table.bytesBefore(i);
        out->isSync = mTrack.isVideo && !countsBytes && mTrack.table.syncFlag(i) != 0;
        if (out->size != 0 || countsBytes) return true;
    }
    return false;
}

// `capacity` is what may be written: on the device a buffer's size counts a control block too.
media_status_t RuvoAVISource::acquireBuffer(MediaBufferHelper** out, size_t* capacity) {
    const media_status_t err = mBufferGroup->acquire_buffer(out);
    if (err != AMEDIA_OK && *out != nullptr) {
        (*out)->release();
        *out = nullptr;
    }
    if (*out != nullptr) *capacity = std::min<size_t>((*out)->size(), mBufferSize);
    return err;
}

media_status_t RuvoAVISource::acquireChunkBuffer() {
    if (acquireBuffer(&mBuffer, &mBufferCapacity) != AMEDIA_OK) {
        fail("read", AMEDIA_ERROR_UNKNOWN, __LINE__);
        return AMEDIA_ERROR_UNKNOWN;
    }
    AVI_CHECK_TEXT(mBuffer != nullptr, "mBuffer != NULL");
    return AMEDIA_OK;
}

void RuvoAVISource::publishMetaData(MediaBufferHelper* buffer, int64_t timeUs, bool isSync) {
    AMediaFormat* meta = buffer->meta_data();
    AMediaFormat_clear(meta);  // a reused buffer still has the keys of its last sample
    AMediaFormat_setInt64(meta, AMEDIAFORMAT_KEY_TIME_US, timeUs);
    if (isSync) AMediaFormat_setInt32(meta, AMEDIAFORMAT_KEY_IS_SYNC_FRAME, 1);
}

// Hands a finished buffer over, and tells the log of it.
media_status_t RuvoAVISource::returnBuffer(MediaBufferHelper** out, MediaBufferHelper* buffer,
                                           int64_t timeUs) {
    *out = buffer;
    if (!isEnableLogOutput()) return AMEDIA_OK;
    const uint32_t index = mCurrentSampleIndex - 1;
    AVI_LOGD("[%s][%u][%u] mBuffer meta data: %s", mTrack.mime.c_str(), mTrack.info.mStreamIndex,
             index, AMediaFormat_toString(buffer->meta_data()));
    dumpData(static_cast<const uint8_t*>(buffer->data()) + buffer->range_offset(),
             buffer->range_length(), timeUs, index);
    return AMEDIA_OK;
}

// No second buffer, or no data for it: what was loaded is lost.
media_status_t RuvoAVISource::bufferFailure(const Chunk& chunk, int line) {
    releaseBuffer();
    return mTrack.reader.askSize() < 1 ? endOfStream(prefix(chunk), line)
                                       : unknownError(prefix(chunk), line);
}

// A chunk that the file does not hold ends the stream: the rest of the file is missing.
media_status_t RuvoAVISource::shortRead(const Chunk& chunk, int line) {
    releaseBuffer();
    const bool atFileEnd = mTrack.reader.askSize() <= chunk.offset + chunk.size;
    return atFileEnd ? endOfStream(prefix(chunk), line) : unknownError(prefix(chunk), line);
}

media_status_t RuvoAVISource::endOfStream(const std::string& prefix, int line) {
    AVI_LOGE("%s end of stream @L%d", prefix.c_str(), line);
    return AMEDIA_ERROR_END_OF_STREAM;
}

media_status_t RuvoAVISource::unknownError(const std::string& prefix, int line) {
    AVI_LOGE("%s Unknown error(-%x) @L%d", prefix.c_str(),
             static_cast<unsigned>(-AMEDIA_ERROR_UNKNOWN), line);
    return AMEDIA_ERROR_UNKNOWN;
}

std::string RuvoAVISource::prefix() const {
    return "[" + mTrack.mime + "][" + std::to_string(mTrack.info.mStreamIndex) + "]";
}

// What stands in front of a log line about a chunk. Joined chunks are told without the type.
std::string RuvoAVISource::prefix(const Chunk& chunk) const {
    if (!chunk.isLoaded) return prefix();
    const std::string track =
        chunk.isJoined ? "[" + std::to_string(mTrack.info.mStreamIndex) + "]" : prefix();
    std::string text =
        track + "[" + std::to_string(chunk.index) + "/" + std::to_string(mTrack.table.size()) + "]";
    if (!mTrack.isVideo || !chunk.isTyped) return text;
    return text + "[" + frameTypeText(chunk.type) + "]";
}

}  // namespace android
