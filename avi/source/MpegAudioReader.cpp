// SPDX-License-Identifier: Apache-2.0
#include "source/MpegAudioReader.h"

#include <media/stagefright/MediaErrors.h>
#include <string.h>

#include <algorithm>

#include "source/ChunkLoader.h"
#include "source/ReadFailure.h"
#include "support/Check.h"
#include "support/Log.h"

namespace android {

namespace {

// A rest too short to be cut goes before the next chunk.
constexpr size_t kMinRest = 4;
// What is left of a chunk that a spanning frame began to eat, and is too short to be looked at.
constexpr size_t kMinLeft = 5;

}  // namespace

MpegAudioReader::MpegAudioReader(const SourceTrack& track, ChunkCursor* cursor,
                                 SampleBufferPool* buffers, SampleLog* log)
    : mTrack(track), mCursor(*cursor), mBuffers(*buffers), mLog(*log), mCutter(track.info) {}

void MpegAudioReader::seek(int64_t timeUs) {
    mCutter.setTime(timeUs);
    mConsumed = 0;
    mRest.reset();
}

bool MpegAudioReader::needsChunk() const {
    return !mRest || mRest.rangeLength() < kMinRest;
}

media_status_t MpegAudioReader::load(Chunk* chunk) {
    if (!mCursor.take(chunk)) return endOfStream(LogPrefix(mTrack), __LINE__);
    size_t rest = 0;
    if (mRest) {
        rest = mRest.rangeLength();
        moveToFront(mRest.rangeOffset(), rest);
        mConsumed = 0;
    } else {
        const media_status_t err = mBuffers.acquireForChunk(&mRest);
        if (err != AMEDIA_OK) return err;
    }
    mCutter.beginData();
    mLog.beginRead();
    if (!readChunk(mTrack, *chunk, mRest, rest, mConsumed)) {
        mRest.reset();
        return shortRead(mTrack, *chunk, __LINE__);
    }
    const size_t consumed = std::min<size_t>(mConsumed, rest + chunk->size);
    mConsumed = 0;
    const size_t left = rest + chunk->size - consumed;
    if (left < kMinLeft) return append(consumed, left, chunk);
    mRest.setRange(consumed, left);
    return AMEDIA_OK;
}

// Puts the next chunk after the last `left` bytes of this one.
media_status_t MpegAudioReader::append(size_t offset, size_t left, Chunk* chunk) {
    if (isLogging()) {
        AVI_LOGD("%s Only %zu bytes left@%zu in this chunk with size %zu...",
                 LogPrefix(mTrack, *chunk).text(), left, offset, size_t{chunk->size});
    }
    moveToFront(offset, left);
    if (!mCursor.take(chunk)) {
        mRest.reset();
        return endOfStream(LogPrefix(mTrack, *chunk), __LINE__);
    }
    chunk->label = Chunk::Label::kWithoutMime;
    if (!readChunk(mTrack, *chunk, mRest, left)) {
        mRest.reset();
        return shortRead(mTrack, *chunk, __LINE__);
    }
    mRest.setRange(0, left + chunk->size);
    return AMEDIA_OK;
}

void MpegAudioReader::moveToFront(size_t offset, size_t length) {
    uint8_t* data = mRest.data();
    memmove(data, data + offset, length);
}

media_status_t MpegAudioReader::cutFrame(const Chunk& chunk, int64_t chunkTimeUs, Sample* out) {
    uint8_t* data = mRest.data() + mRest.rangeOffset();
    const size_t length = mRest.rangeLength();
    const MpegAudioCut cut = mCutter.cut(data, length);
    if (isLogging()) logCut(chunk, cut.found, length);
    if (cut.kind == MpegAudioCut::Kind::kHeaderless) {
        AVI_LOGW("%s %d bytes bad MP3 frame without header, create header for it.",
                 LogPrefix(mTrack, chunk).text(), static_cast<int>(length));
        mCutter.createHeader(data, length);
    }
    out->isSync = true;
    if (cut.kind == MpegAudioCut::Kind::kSpanning) {
        return takeSpanning(chunk, cut, chunkTimeUs, out);
    }
    return takeWhole(chunk, cut, chunkTimeUs, out);
}

// The frame lies in the rest with all its bytes.
media_status_t MpegAudioReader::takeWhole(const Chunk& chunk, const MpegAudioCut& cut,
                                          int64_t chunkTimeUs, Sample* out) {
    out->timeUs = mCutter.stamp(cut, chunkTimeUs);
    const media_status_t err = acquireFrame(chunk, cut.size, &out->buffer);
    if (err != AMEDIA_OK) return err;
    memcpy(out->buffer.data(), mRest.rangeStart() + cut.start, cut.size);
    out->buffer.setRange(0, cut.size);
    const size_t taken = cut.start + cut.size;
    const size_t left = mRest.rangeLength() - taken;
    if (left == 0) {
        mRest.reset();
    } else {
        mRest.setRange(mRest.rangeOffset() + taken, left);
    }
    return AMEDIA_OK;
}

// The frame begins in the rest and ends in a later chunk.
media_status_t MpegAudioReader::takeSpanning(const Chunk& chunk, const MpegAudioCut& cut,
                                             int64_t chunkTimeUs, Sample* out) {
    const media_status_t err = acquireFrame(chunk, cut.size, &out->buffer);
    if (err != AMEDIA_OK) return err;
    uint8_t* frame = out->buffer.data();
    const size_t have = mRest.rangeLength() - cut.start;
    memcpy(frame, mRest.rangeStart() + cut.start, have);
    mRest.reset();
    if (!completeFrame(chunk, have, cut.size, frame)) {
        return bufferFailure(mTrack, chunk, __LINE__);
    }
    out->buffer.setRange(0, cut.size);
    out->timeUs = mCutter.stamp(cut, chunkTimeUs);
    return AMEDIA_OK;
}

void MpegAudioReader::logCut(const Chunk& chunk, const MpegAudioFound& found, size_t length) const {
    AVI_LOGD("%s MP3HDR/START/FRMSZ/CHKSZ/BUFLEN/BITRATE/LAYER=(%X/%d/%zd/%zu/%d/%d/%u) %s",
             LogPrefix(mTrack, chunk).text(), found.header, found.position,
             static_cast<ssize_t>(found.frameSize), size_t{chunk.size}, static_cast<int>(length),
             found.bitRate, found.layer, found.isValid ? "OK" : "");
}

// A buffer for a frame of `size` bytes. Without one, what was loaded is lost.
media_status_t MpegAudioReader::acquireFrame(const Chunk& chunk, size_t size, SampleBuffer* out) {
    if (mBuffers.acquire(out) != AMEDIA_OK) {
        mRest.reset();
        return bufferFailure(mTrack, chunk, __LINE__);
    }
    const SampleBuffer& clone = *out;
    AVI_CHECK_TEXT(clone, "clone != NULL");
    if (size <= clone.capacity()) return AMEDIA_OK;
    mRest.reset();
    return unknownError(LogPrefix(mTrack, chunk), __LINE__);
}

// Reads the rest of a frame, of which `have` bytes are there, from the chunks that follow. The last
// of them is read again by the next call, from where this frame ends.
bool MpegAudioReader::completeFrame(const Chunk& loaded, size_t have, size_t frameSize,
                                    uint8_t* frame) {
    bool isWhole = false;
    ssize_t got = 0;
    while (have < frameSize) {
        const size_t missing = frameSize - have;
        const status_t err = readNextChunk(frame + have, missing, &got);
        if (isLogging()) {
            AVI_LOGD("%s[%u] Read remained %d bytes from next chunk %d/%zd/%zu %s",
                     LogPrefix(mTrack, loaded).text(), mCursor.last(), static_cast<int>(missing),
                     static_cast<int>(have), got, size_t{loaded.size}, err == OK ? "OK" : "");
        }
        if (err != OK) {
            AVI_LOGE("%s readNextChunk return %d!", LogPrefix(mTrack, loaded).text(), err);
            return false;
        }
        mCursor.moveTo(mCursor.next() + 1);
        if (missing == loaded.size) {
            isWhole = true;
            logWholeChunk(loaded);
        }
        have += static_cast<size_t>(got);
    }
    mConsumed = isWhole ? 0 : static_cast<uint32_t>(got);
    if (!isWhole) mCursor.moveTo(mCursor.last());
    return true;
}

void MpegAudioReader::logWholeChunk(const Chunk& loaded) const {
    if (!isLogging()) return;
    AVI_LOGD("%s[%u] chunk consumed with whole size %zu...", LogPrefix(mTrack, loaded).text(),
             mCursor.last(), size_t{loaded.size});
}

// Reads up to `wanted` bytes of the next chunk, which stays the next one. `got` is what the read
// answered.
status_t MpegAudioReader::readNextChunk(uint8_t* dst, size_t wanted, ssize_t* got) const {
    const size_t i = mCursor.next();
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
