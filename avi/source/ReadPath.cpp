// SPDX-License-Identifier: Apache-2.0
//
// One call of read(): choose the next chunk, load it into a buffer in the form that decoders take,
// work out its time, hand it over.
#include <string.h>

#include <algorithm>
#include <memory>
#include <new>

#include "source/Conversions.h"
#include "source/RuvoAVISource.h"
#include "support/Check.h"
#include "support/Log.h"

namespace android {

media_status_t RuvoAVISource::read(MediaBufferHelper** out, const ReadOptions* options) {
    const std::lock_guard<std::mutex> lock(mLock);
    AVI_CHECK(mStarted);
    *out = nullptr;
    if (mTable->size() == 0) return endOfStream(prefix(), __LINE__);

    Seek request;
    int64_t seekTimeUs = 0;
    SeekMode mode = SeekMode::SEEK_PREVIOUS_SYNC;
    media_status_t err = AMEDIA_OK;
    if (options != nullptr && options->getSeekTo(&seekTimeUs, &mode)) {
        err = seek(seekTimeUs, mode, &request);
        if (err != AMEDIA_OK) return err;
    }
    mCurrentSampleIndex = std::max(mCurrentSampleIndex, mInfo.mInvalidSampleIdx);
    if (mCutter.isActive()) return readMpegAudioFrame(request, out);

    Chunk chunk;
    err = loadNextChunk(&chunk);
    if (err != AMEDIA_OK) return err;
    const int64_t timeUs = sampleTimeUs(chunk);
    if (request.requested) shareSeekTime(chunk, timeUs);
    err = convertPcm(chunk);
    if (err != AMEDIA_OK) return err;
    publishMetaData(mBuffer, timeUs, chunk.isSync || mIsAudio);
    if (request.targetUs >= 0) {
        AMediaFormat_setInt64(mBuffer->meta_data(), AMEDIAFORMAT_KEY_TARGET_TIME, request.targetUs);
    }
    return returnBuffer(out);
}

// Fills mBuffer with the next chunk.
media_status_t RuvoAVISource::loadNextChunk(Chunk* chunk) {
    if (!nextChunk(chunk)) return endOfStream(prefix(), __LINE__);
    const media_status_t err = acquireChunkBuffer();
    return err == AMEDIA_OK ? loadChunk(chunk) : err;
}

// Takes the next chunk off the table. Empty chunks are skipped, but for streams that count bytes.
bool RuvoAVISource::nextChunk(Chunk* out) {
    const bool runningTotals = mInfo.mSampleSize != 0;
    while (mCurrentSampleIndex < mTable->size()) {
        const size_t i = mCurrentSampleIndex++;
        out->isLoaded = true;
        out->index = i;
        out->offset = mTable->mSampleOffsets[i];
        out->size = mTable->chunkSize(i, runningTotals);
        out->bytesBefore = mTable->bytesBefore(i, runningTotals);
        out->isSync = mIsVideo && !runningTotals && mTable->syncFlag(i) != 0;
        if (out->size != 0 || runningTotals) return true;
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
        AVI_LOG_FAILURE("read", AMEDIA_ERROR_UNKNOWN, __LINE__);
        return AMEDIA_ERROR_UNKNOWN;
    }
    AVI_CHECK_TEXT(mBuffer != nullptr, "mBuffer != NULL");
    return AMEDIA_OK;
}

// Fills mBuffer and sets its range.
media_status_t RuvoAVISource::loadChunk(Chunk* chunk) {
    size_t insertedBytes = 0;
    bool loaded = false;
    if (mIsWVC1) {
        loaded = loadVc1(chunk, &insertedBytes);
    } else if (mIsAVC && mInfo.mAVCStyle == 0 && mInfo.mAVCSizeLength >= 1) {
        loaded = loadLengthPrefixed(*chunk);
    } else {
        loaded = loadPlain(*chunk, 0);
    }
    if (!loaded) return shortRead(*chunk, __LINE__);
    mBuffer->set_range(0, insertedBytes + chunk->size);
    if (!mIsAudio) {
        chunk->isTyped = true;
        chunk->type =
            getFrameType(static_cast<const uint8_t*>(mBuffer->data()), insertedBytes + chunk->size);
    }
    return AMEDIA_OK;
}

// The common case: one read, straight into the buffer, from `position` on.
bool RuvoAVISource::loadPlain(const Chunk& chunk, size_t position) {
    if (position > mBufferCapacity || chunk.size > mBufferCapacity - position) return false;
    uint8_t* data = static_cast<uint8_t*>(mBuffer->data()) + position;
    return mDataSource->readAt(chunk.offset, data, chunk.size) == static_cast<ssize_t>(chunk.size);
}

// VC-1 decoders find frames by their start codes, which most writers leave out. The frame header
// tells key frames better than the index.
bool RuvoAVISource::loadVc1(Chunk* chunk, size_t* insertedBytes) {
    if (mBufferCapacity < kStartCodeSize) return false;
    uint8_t bytes[kVc1ProbeBytes] = {};
    const size_t probed = std::min<size_t>(chunk->size, sizeof(bytes));
    if (mDataSource->readAt(chunk->offset, bytes, probed) != static_cast<ssize_t>(probed)) {
        return false;
    }
    const Vc1Frame frame = probeVc1Frame(bytes);
    chunk->isSync = frame.isSync;
    if (!frame.hasStartCode) {
        writeVc1StartCode(static_cast<uint8_t*>(mBuffer->data()));
        *insertedBytes = kStartCodeSize;
    }
    return loadPlain(*chunk, *insertedBytes);
}

// Decoders take start codes. The published length stays that of the chunk, which is exact for the
// usual prefixes of four bytes.
bool RuvoAVISource::loadLengthPrefixed(const Chunk& chunk) {
    const int64_t size = fileSize();
    if (chunk.size > mBufferCapacity || (size > 0 && chunk.offset + chunk.size > size))
        return false;
    const std::unique_ptr<uint8_t[]> sample(new (std::nothrow) uint8_t[chunk.size]);
    if (sample == nullptr || mDataSource->readAt(chunk.offset, sample.get(), chunk.size) !=
                                 static_cast<ssize_t>(chunk.size)) {
        return false;
    }
    uint8_t* out = static_cast<uint8_t*>(mBuffer->data());
    size_t dstOffset = 0;
    PrefixedNal unit;
    PrefixedNalReader units(sample.get(), chunk.size, static_cast<size_t>(mInfo.mAVCSizeLength));
    for (unsigned number = 1; units.next(&unit); ++number) {
        AVI_CHECK_TEXT(dstOffset + kStartCodeSize <= mBufferCapacity,
                       "dstOffset + 4 <= mBuffer->size()");
        const size_t remaining = chunk.size - unit.offset;
        if (!unit.isWhole) logMalformedNal(chunk, sample.get(), unit, number);
        dstOffset += writeNalUnit(sample.get() + unit.offset, std::min(unit.length, remaining),
                                  out + dstOffset, mBufferCapacity - dstOffset);
    }
    if (dstOffset < chunk.size) memset(out + dstOffset, 0, chunk.size - dstOffset);
    return true;
}

void RuvoAVISource::logMalformedNal(const Chunk& chunk, const uint8_t* sample,
                                    const PrefixedNal& unit, unsigned number) const {
    uint8_t bytes[8] = {};
    const size_t prefixAt = unit.offset - static_cast<size_t>(mInfo.mAVCSizeLength);
    memcpy(bytes, sample + prefixAt, std::min(sizeof(bytes), chunk.size - prefixAt));
    AVI_LOGE(
        "%s %02X %02X %02X %02X %02X %02X %02X %02X NAL%u LenOff %zu Len %zu/%zu/%zu "
        "MALFORMED!!!",
        prefix(chunk).c_str(), bytes[0], bytes[1], bytes[2], bytes[3], bytes[4], bytes[5], bytes[6],
        bytes[7], number, unit.offset, unit.length, chunk.size - unit.offset, size_t{chunk.size});
}

// The platform's audio path takes 16 bits.
media_status_t RuvoAVISource::convertPcm(const Chunk& chunk) {
    if (!mIsRawPCM) return AMEDIA_OK;
    uint8_t* data = static_cast<uint8_t*>(mBuffer->data());
    switch (mInfo.mBitsPerSample) {
        case 32:
            mBuffer->set_range(0, narrowPcm32(data, chunk.size));
            return AMEDIA_OK;
        case 24:
            mBuffer->set_range(0, narrowPcm24(data, chunk.size));
            return AMEDIA_OK;
        case 8:
            return convertPcm8(chunk);
        default:
            return AMEDIA_OK;
    }
}

media_status_t RuvoAVISource::convertPcm8(const Chunk& chunk) {
    MediaBufferHelper* wide = nullptr;
    size_t capacity = 0;
    if (acquireBuffer(&wide, &capacity) != AMEDIA_OK) {
        return bufferFailure(chunk, __LINE__);
    }
    AVI_CHECK_TEXT(wide != nullptr, "tmp != NULL");
    const size_t size = std::min<size_t>(chunk.size, capacity / 2);
    widenPcm8(static_cast<const uint8_t*>(mBuffer->data()), size,
              static_cast<uint8_t*>(wide->data()));
    wide->set_range(0, 2 * size);
    releaseBuffer();
    mBuffer = wide;
    return AMEDIA_OK;
}

void RuvoAVISource::publishMetaData(MediaBufferHelper* buffer, int64_t timeUs, bool isSync) {
    AMediaFormat* meta = buffer->meta_data();
    AMediaFormat_clear(meta);  // a reused buffer still has the keys of its last sample
    AMediaFormat_setInt64(meta, AMEDIAFORMAT_KEY_TIME_US, timeUs);
    if (isSync) AMediaFormat_setInt32(meta, AMEDIAFORMAT_KEY_IS_SYNC_FRAME, 1);
}

media_status_t RuvoAVISource::returnBuffer(MediaBufferHelper** out) {
    *out = mBuffer;
    mBuffer = nullptr;
    return AMEDIA_OK;
}

// No second buffer, or no data for it: what was loaded is lost.
media_status_t RuvoAVISource::bufferFailure(const Chunk& chunk, int line) {
    releaseBuffer();
    return fileSize() < 1 ? endOfStream(prefix(chunk), line) : unknownError(prefix(chunk), line);
}

// A chunk that the file does not hold ends the stream: the rest of the file is missing.
media_status_t RuvoAVISource::shortRead(const Chunk& chunk, int line) {
    releaseBuffer();
    const bool atFileEnd = fileSize() <= chunk.offset + chunk.size;
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
    return "[" + mMime + "][" + std::to_string(mInfo.mStreamIndex) + "]";
}

// What stands in front of a log line about a chunk. Joined chunks are told without the type.
std::string RuvoAVISource::prefix(const Chunk& chunk) const {
    if (!chunk.isLoaded) return prefix();
    const std::string track =
        chunk.isJoined ? "[" + std::to_string(mInfo.mStreamIndex) + "]" : prefix();
    const std::string text =
        track + "[" + std::to_string(chunk.index) + "/" + std::to_string(mTable->size()) + "]";
    if (!mIsVideo || !chunk.isTyped) return text;
    return text + "[" + frameTypeText(chunk.type) + "]";
}

int64_t RuvoAVISource::fileSize() const {
    off64_t size = 0;
    return mDataSource->getSize(&size) == OK ? size : 0;
}

}  // namespace android
