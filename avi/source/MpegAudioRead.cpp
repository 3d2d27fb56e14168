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
    if (!mBuffer || mBuffer.rangeLength() < kMinRest) {
        const media_status_t err = loadMpegAudioChunk(&chunk);
        if (err != AMEDIA_OK) return err;
        chunkTimeUs = mTimes.calculateFrameDTS(chunk);
        mLog.logChunk(chunk, mBuffer, chunkTimeUs, seek.timeUs);
        if (seek.requested) mSeekTimes.share(chunk, chunkTimeUs);
    }
    return cutMpegAudioFrame(chunk, chunkTimeUs, out);
}

// Leaves at least one byte in mBuffer's range.
media_status_t RuvoAVISource::loadMpegAudioChunk(Chunk* chunk) {
    if (!nextChunk(chunk)) return endOfStream(LogPrefix(mTrack), __LINE__);
    size_t rest = 0;
    if (mBuffer) {
        rest = moveToFront(mBuffer.rangeOffset(), mBuffer.rangeLength());
        mChunkConsumed = 0;
    } else {
        const media_status_t err = mBuffers.acquireForChunk(&mBuffer);
        if (err != AMEDIA_OK) return err;
    }
    mLog.beginRead();
    if (!readChunk(mTrack, *chunk, mBuffer, rest)) {
        mBuffer.reset();
        return shortRead(mTrack, *chunk, __LINE__);
    }
    const size_t consumed = std::min<size_t>(mChunkConsumed, rest + chunk->size);
    mChunkConsumed = 0;
    const size_t left = rest + chunk->size - consumed;
    if (left >= kMinLeft) {
        mBuffer.setRange(consumed, left);
        return AMEDIA_OK;
    }
    if (mLog.isEnableLogOutput(mCurrentSampleIndex - 1)) {
        AVI_LOGD("%s Only %zu bytes left@%zu in this chunk with size %zu...",
                 LogPrefix(mTrack, *chunk).text(), left, consumed, size_t{chunk->size});
    }
    return appendMpegAudioChunk(consumed, left, chunk);
}

// Puts the next chunk behind the last `left` bytes of this one.
media_status_t RuvoAVISource::appendMpegAudioChunk(size_t offset, size_t left, Chunk* chunk) {
    moveToFront(offset, left);
    if (!nextChunk(chunk)) {
        mBuffer.reset();
        return endOfStream(LogPrefix(mTrack, *chunk), __LINE__);
    }
    chunk->label = Chunk::Label::kWithoutMime;
    if (!readChunk(mTrack, *chunk, mBuffer, left)) {
        mBuffer.reset();
        return shortRead(mTrack, *chunk, __LINE__);
    }
    mBuffer.setRange(0, left + chunk->size);
    return AMEDIA_OK;
}

size_t RuvoAVISource::moveToFront(size_t offset, size_t length) {
    uint8_t* data = mBuffer.data();
    memmove(data, data + offset, length);
    return length;
}

media_status_t RuvoAVISource::cutMpegAudioFrame(const Chunk& chunk, int64_t chunkTimeUs,
                                                MediaBufferHelper** out) {
    uint8_t* data = mBuffer.data() + mBuffer.rangeOffset();
    const size_t length = mBuffer.rangeLength();
    const MpegAudioCut cut = mCutter.cut(data, length);
    if (mLog.isEnableLogOutput(mCurrentSampleIndex - 1)) logCut(chunk, cut.found, length);
    if (cut.kind == MpegAudioCut::Kind::kHeaderless) {
        AVI_LOGW("%s %d bytes bad MP3 frame without header, create header for it.",
                 LogPrefix(mTrack, chunk).text(), static_cast<int>(length));
        mCutter.createHeader(data, length);
    }

    const bool spans = cut.kind == MpegAudioCut::Kind::kSpanning;
    int64_t timeUs = spans ? 0 : mCutter.stamp(cut, chunkTimeUs);
    SampleBuffer frame;
    const media_status_t err = acquireFrameBuffer(chunk, cut.size, &frame);
    if (err != AMEDIA_OK) return err;
    if (spans) {
        const size_t have = length - cut.start;
        memcpy(frame.data(), data + cut.start, have);
        if (!completeMpegAudioFrame(chunk, cut.size, have, frame)) {
            mBuffer.reset();
            return bufferFailure(mTrack, chunk, __LINE__);
        }
        mBuffer.reset();
        timeUs = mCutter.stamp(cut, chunkTimeUs);
    } else {
        memcpy(frame.data(), data + cut.start, cut.size);
        takeFromRest(cut.start + cut.size);
    }
    frame.setRange(0, cut.size);
    publishMetaData(frame, timeUs, true);
    returnBuffer(out, std::move(frame), timeUs);
    return AMEDIA_OK;
}

void RuvoAVISource::logCut(const Chunk& chunk, const MpegAudioFound& found, size_t length) const {
    AVI_LOGD("%s MP3HDR/START/FRMSZ/CHKSZ/BUFLEN/BITRATE/LAYER=(%X/%d/%zd/%zu/%d/%d/%u) %s",
             LogPrefix(mTrack, chunk).text(), found.header, found.position,
             static_cast<ssize_t>(found.frameSize), size_t{chunk.size}, static_cast<int>(length),
             found.bitRate, found.layer, found.isValid ? "OK" : "");
}

// A buffer for a frame of `size` bytes.
media_status_t RuvoAVISource::acquireFrameBuffer(const Chunk& chunk, size_t size,
                                                 SampleBuffer* out) {
    if (mBuffers.acquire(out) != AMEDIA_OK) {
        mBuffer.reset();
        return bufferFailure(mTrack, chunk, __LINE__);
    }
    const SampleBuffer& clone = *out;
    AVI_CHECK_TEXT(clone, "clone != NULL");
    if (size <= clone.capacity()) return AMEDIA_OK;
    mBuffer.reset();
    return unknownError(LogPrefix(mTrack, chunk), __LINE__);
}

void RuvoAVISource::takeFromRest(size_t count) {
    const size_t offset = mBuffer.rangeOffset() + count;
    const size_t length = mBuffer.rangeLength() - count;
    if (length == 0) {
        mBuffer.reset();
    } else {
        mBuffer.setRange(offset, length);
    }
}

// Reads the rest of a frame, of which `have` bytes are there, from the chunks that follow. The last
// of them is read again by the next call, from where this frame ends.
bool RuvoAVISource::completeMpegAudioFrame(const Chunk& loaded, size_t frameSize, size_t have,
                                           const SampleBuffer& frame) {
    bool wholeChunkConsumed = false;
    ssize_t got = 0;
    while (have < frameSize) {
        const size_t missing = frameSize - have;
        auto* rest = frame.data() + have;
        const status_t err = readNextChunk(rest, missing, &got);
        if (mLog.isEnableLogOutput(mCurrentSampleIndex - 1)) {
            AVI_LOGD("%s[%u] Read remained %d bytes from next chunk %d/%zd/%zu %s",
                     LogPrefix(mTrack, loaded).text(), mCurrentSampleIndex - 1,
                     static_cast<int>(missing), static_cast<int>(have), got, size_t{loaded.size},
                     err == OK ? "OK" : "");
        }
        if (err != OK) {
            AVI_LOGE("%s readNextChunk return %d!", LogPrefix(mTrack, loaded).text(), err);
            return false;
        }
        ++mCurrentSampleIndex;
        if (missing == loaded.size) {
            wholeChunkConsumed = true;
            logWholeChunk(loaded);
        }
        have += static_cast<size_t>(got);
    }
    if (wholeChunkConsumed) {
        mChunkConsumed = 0;
    } else {
        --mCurrentSampleIndex;
        mChunkConsumed = static_cast<uint32_t>(got);
    }
    return true;
}

void RuvoAVISource::logWholeChunk(const Chunk& loaded) const {
    if (!mLog.isEnableLogOutput(mCurrentSampleIndex - 1)) return;
    AVI_LOGD("%s[%u] chunk consumed with whole size %zu...", LogPrefix(mTrack, loaded).text(),
             mCurrentSampleIndex - 1, size_t{loaded.size});
}

// Reads up to `wanted` bytes of the chunk at mCurrentSampleIndex, which stays the next one. `got`
// is what the read answered.
status_t RuvoAVISource::readNextChunk(uint8_t* dst, size_t wanted, ssize_t* got) {
    const size_t i = mCurrentSampleIndex;
    if (i >= mTrack.table.size()) {
        fail("readNextChunk", ERROR_END_OF_STREAM, __LINE__);
        return ERROR_END_OF_STREAM;
    }
    const size_t size = std::min<size_t>(mTrack.table.chunkSize(i), wanted);
    *got = mTrack.reader.readAt(mTrack.table.offset(i), dst, size);
    if (*got == static_cast<ssize_t>(size)) return OK;
    fail("readNextChunk", ERROR_IO, __LINE__);
    return ERROR_IO;
}

}  // namespace android
