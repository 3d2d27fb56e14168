// SPDX-License-Identifier: Apache-2.0
//
// The read path of MPEG-audio streams: one frame a call, cut from chunks whose rest stays in
// mBuffer between calls.
#include <media/stagefright/MediaErrors.h>
#include <string.h>

#include <algorithm>

#include "source/RuvoAVISource.h"
#include "support/Check.h"
#include "support/Log.h"

namespace android {

namespace {

// A rest too short to be cut goes in front of the next chunk.
constexpr size_t kMinRest = 4;
// What is left of a chunk that a spanning frame began to eat, and is too short to be looked at.
constexpr size_t kMinLeft = 5;

}  // namespace

media_status_t RuvoAVISource::readMpegAudioFrame(const Seek& seek, MediaBufferHelper** out) {
    Chunk chunk;
    int64_t chunkTimeUs = 0;
    if (mBuffer == nullptr || mBuffer->range_length() < kMinRest) {
        const media_status_t err = loadMpegAudioChunk(&chunk);
        if (err != AMEDIA_OK) return err;
        chunkTimeUs = calculateFrameDTS(FrameType::kUnknown, chunk.bytesBefore);
        if (seek.requested) shareSeekTime(chunk, chunkTimeUs);
    }
    return cutMpegAudioFrame(chunk, chunkTimeUs, out);
}

// Leaves at least one byte in mBuffer's range.
media_status_t RuvoAVISource::loadMpegAudioChunk(Chunk* chunk) {
    if (!nextChunk(chunk)) return endOfStream(prefix(), __LINE__);
    size_t rest = 0;
    if (mBuffer != nullptr) {
        rest = moveToFront(mBuffer->range_offset(), mBuffer->range_length());
        mChunkConsumed = 0;
    } else {
        const media_status_t err = acquireChunkBuffer();
        if (err != AMEDIA_OK) return err;
    }
    if (!loadPlain(*chunk, rest)) return shortRead(*chunk, __LINE__);
    const size_t consumed = std::min<size_t>(mChunkConsumed, rest + chunk->size);
    mChunkConsumed = 0;
    const size_t left = rest + chunk->size - consumed;
    if (left >= kMinLeft) {
        mBuffer->set_range(consumed, left);
        return AMEDIA_OK;
    }
    return appendMpegAudioChunk(consumed, left, chunk);
}

// Puts the next chunk behind the last `left` bytes of this one.
media_status_t RuvoAVISource::appendMpegAudioChunk(size_t offset, size_t left, Chunk* chunk) {
    moveToFront(offset, left);
    if (!nextChunk(chunk)) {
        releaseBuffer();
        return endOfStream(prefix(*chunk), __LINE__);
    }
    chunk->isJoined = true;
    if (!loadPlain(*chunk, left)) return shortRead(*chunk, __LINE__);
    mBuffer->set_range(0, left + chunk->size);
    return AMEDIA_OK;
}

size_t RuvoAVISource::moveToFront(size_t offset, size_t length) {
    uint8_t* data = static_cast<uint8_t*>(mBuffer->data());
    memmove(data, data + offset, length);
    return length;
}

media_status_t RuvoAVISource::cutMpegAudioFrame(const Chunk& chunk, int64_t chunkTimeUs,
                                                MediaBufferHelper** out) {
    uint8_t* data = static_cast<uint8_t*>(mBuffer->data()) + mBuffer->range_offset();
    const size_t length = mBuffer->range_length();
    const MpegAudioCut cut = mCutter.cut(data, length);
    if (cut.kind == MpegAudioCut::Kind::kHeaderless) {
        AVI_LOGW("%s %d bytes bad MP3 frame without header, create header for it.",
                 prefix(chunk).c_str(), static_cast<int>(length));
        mCutter.createHeader(data, length);
    }

    const bool spans = cut.kind == MpegAudioCut::Kind::kSpanning;
    int64_t timeUs = spans ? 0 : mCutter.stamp(cut, chunkTimeUs);
    MediaBufferHelper* frame = nullptr;
    const media_status_t err = acquireFrameBuffer(chunk, cut.size, &frame);
    if (err != AMEDIA_OK) return err;
    if (spans) {
        const size_t have = length - cut.start;
        memcpy(frame->data(), data + cut.start, have);
        if (!completeMpegAudioFrame(chunk, cut.size, have, frame)) {
            frame->release();
            return bufferFailure(chunk, __LINE__);
        }
        releaseBuffer();
        timeUs = mCutter.stamp(cut, chunkTimeUs);
    } else {
        memcpy(frame->data(), data + cut.start, cut.size);
        takeFromRest(cut.start + cut.size);
    }
    frame->set_range(0, cut.size);
    publishMetaData(frame, timeUs, true);
    *out = frame;
    return AMEDIA_OK;
}

// A buffer for a frame of `size` bytes.
media_status_t RuvoAVISource::acquireFrameBuffer(const Chunk& chunk, size_t size,
                                                 MediaBufferHelper** out) {
    size_t capacity = 0;
    if (acquireBuffer(out, &capacity) != AMEDIA_OK) return bufferFailure(chunk, __LINE__);
    AVI_CHECK_TEXT(*out != nullptr, "clone != NULL");
    if (size <= capacity) return AMEDIA_OK;
    (*out)->release();
    releaseBuffer();
    return unknownError(prefix(chunk), __LINE__);
}

void RuvoAVISource::takeFromRest(size_t count) {
    const size_t offset = mBuffer->range_offset() + count;
    const size_t length = mBuffer->range_length() - count;
    if (length == 0) {
        releaseBuffer();
    } else {
        mBuffer->set_range(offset, length);
    }
}

// Reads the rest of a frame, of which `have` bytes are there, from the chunks that follow. The last
// of them is read again by the next call, from where this frame ends.
bool RuvoAVISource::completeMpegAudioFrame(const Chunk& loaded, size_t frameSize, size_t have,
                                           MediaBufferHelper* frame) {
    bool wholeChunkConsumed = false;
    size_t got = 0;
    while (have < frameSize) {
        const size_t missing = frameSize - have;
        const status_t err =
            readNextChunk(static_cast<uint8_t*>(frame->data()) + have, missing, &got);
        if (err != OK) {
            AVI_LOGE("%s readNextChunk return %d!", prefix(loaded).c_str(), err);
            return false;
        }
        ++mCurrentSampleIndex;
        wholeChunkConsumed = wholeChunkConsumed || missing == loaded.size;
        have += got;
    }
    if (wholeChunkConsumed) {
        mChunkConsumed = 0;
    } else {
        --mCurrentSampleIndex;
        mChunkConsumed = static_cast<uint32_t>(got);
    }
    return true;
}

// Reads up to `wanted` bytes of the chunk at mCurrentSampleIndex, which stays the next one.
status_t RuvoAVISource::readNextChunk(uint8_t* dst, size_t wanted, size_t* got) {
    const size_t i = mCurrentSampleIndex;
    if (i >= mTable->size()) {
        AVI_LOG_FAILURE("readNextChunk", ERROR_END_OF_STREAM, __LINE__);
        return ERROR_END_OF_STREAM;
    }
    const size_t size = std::min<size_t>(mTable->chunkSize(i, mInfo.mSampleSize != 0), wanted);
    if (mDataSource->readAt(mTable->mSampleOffsets[i], dst, size) != static_cast<ssize_t>(size)) {
        AVI_LOG_FAILURE("readNextChunk", ERROR_IO, __LINE__);
        return ERROR_IO;
    }
    *got = size;
    return OK;
}

}  // namespace android
