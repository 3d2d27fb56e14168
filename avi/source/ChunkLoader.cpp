// SPDX-License-Identifier: Apache-2.0
#include "source/ChunkLoader.h"

#include <string.h>

#include <algorithm>
#include <memory>
#include <new>

#include "source/FrameProbe.h"
#include "source/ReadFailure.h"
#include "support/Check.h"
#include "support/HexDump.h"
#include "support/Log.h"

namespace android {

// Units of a sample that are logged one by one unless all logs are asked for: no encoder makes so
// many, but a sample of zeros has one a byte, and logging them all would stall the player.
static constexpr unsigned kLoggedUnits = 1000;

bool readChunk(const SourceTrack& track, const Chunk& chunk, const SampleBuffer& buffer,
               size_t position, size_t skipped) {
    if (position > buffer.capacity() || chunk.size > buffer.capacity() - position) return false;
    // The last byte is read in any case: it tells whether the chunk is whole.
    const size_t from = chunk.size == 0 ? 0 : std::min<size_t>(skipped, chunk.size - 1);
    const int64_t offset = saturatingAdd(chunk.offset, static_cast<int64_t>(from));
    return track.reader.readExactly(offset, buffer.data() + position + from, chunk.size - from);
}

media_status_t ChunkLoader::load(Chunk* chunk, SampleBuffer* out) {
    SampleBuffer buffer;
    const media_status_t err = mBuffers.acquireForChunk(&buffer);
    if (err != AMEDIA_OK) return err;
    mLog.beginRead();
    size_t insertedBytes = 0;
    const bool loaded = mTrack.isWvc1        ? loadVc1(chunk, buffer, &insertedBytes)
                        : isLengthPrefixed() ? loadLengthPrefixed(*chunk, buffer)
                                             : loadPlain(*chunk, buffer);
    if (!loaded) return shortRead(mTrack, *chunk, __LINE__);
    const size_t length = insertedBytes + chunk->size;
    buffer.setRange(0, length);
    if (!mTrack.isAudio) chunk->type = getFrameType(mTrack, buffer.data(), length);
    *out = std::move(buffer);
    return AMEDIA_OK;
}

bool ChunkLoader::isLengthPrefixed() const {
    return mTrack.isAvc && mTrack.info.mAVCStyle == kLengthPrefixes &&
           mTrack.info.mAVCSizeLength >= 1;
}

bool ChunkLoader::loadPlain(const Chunk& chunk, const SampleBuffer& out) {
    return chunk.size <= out.capacity() && mFrames.read(chunk, out.data());
}

// VC-1 decoders find frames by their start codes, which most writers leave out. The frame header
// is better at key frames than the index. Of a buffer without room for a start code only a frame
// that has one makes use.
bool ChunkLoader::loadVc1(Chunk* chunk, const SampleBuffer& out, size_t* insertedBytes) {
    if (out.capacity() < kStartCodeSize) return false;
    const bool hasRoom = chunk->size <= out.capacity() - kStartCodeSize;
    const size_t position = hasRoom ? kStartCodeSize : 0;
    if (!readChunk(mTrack, *chunk, out, position)) return false;
    uint8_t* frameData = out.data() + position;
    uint8_t bytes[kVc1ProbeBytes] = {};
    memcpy(bytes, frameData, std::min<size_t>(chunk->size, sizeof(bytes)));
    const Vc1Frame frame = probeVc1Frame(bytes);
    chunk->isSync = frame.isSync;
    if (frame.hasStartCode) {
        memmove(out.data(), frameData, chunk->size);
        return true;
    }
    if (!hasRoom) return false;
    writeVc1StartCode(out.data());
    *insertedBytes = kStartCodeSize;
    return true;
}

// By the size that the file has now: a growing one is asked again.
bool ChunkLoader::liesBeyondFile(const Chunk& chunk) const {
    if (mTrack.reader.holds(chunk.offset, chunk.size)) return false;
    const int64_t fileSize = mTrack.reader.askSize();
    return fileSize > 0 && chunk.offset > fileSize - chunk.size;
}

// Decoders take start codes. The published length stays that of the chunk, which is exact for the
// usual prefixes of four bytes.
bool ChunkLoader::loadLengthPrefixed(const Chunk& chunk, const SampleBuffer& out) {
    if (chunk.size > out.capacity() || liesBeyondFile(chunk)) return false;
    const std::unique_ptr<uint8_t[]> sample(new (std::nothrow) uint8_t[chunk.size]);
    if (sample == nullptr || !mFrames.read(chunk, sample.get())) {
        return false;
    }
    mLog.dumpData(sample.get(), chunk.size, SampleLog::kNoTime, chunk.index);
    const size_t written = convertLengthPrefixed(chunk, sample.get(), out);
    if (written < chunk.size) memset(out.data() + written, 0, chunk.size - written);
    return true;
}

// Returns the bytes written.
size_t ChunkLoader::convertLengthPrefixed(const Chunk& chunk, const uint8_t* sample,
                                          const SampleBuffer& out) const {
    uint8_t* data = out.data();
    size_t dstOffset = 0;
    unsigned number = 1;
    unsigned unitsToLog = mLog.isEnableLogOutput(chunk.index) ? kLoggedUnits : 0;
    PrefixedNal unit;
    PrefixedNalReader units(sample, chunk.size, static_cast<size_t>(mTrack.info.mAVCSizeLength));
    while (units.next(&unit)) {
        if (unitsToLog > 0) {
            if (!verboseLogEnabled()) --unitsToLog;
            logNal(ANDROID_LOG_DEBUG, chunk, sample, unit, number,
                   unit.isWhole ? "GOOD NAL" : "MALFORMED");
        }
        if (unit.length == 0) continue;
        AVI_CHECK_TEXT(dstOffset + kStartCodeSize <= out.capacity(),
                       "dstOffset + 4 <= mBuffer->size()");
        if (!unit.isWhole) {
            logNal(ANDROID_LOG_ERROR, chunk, sample, unit, number, "MALFORMED!!!");
        }
        const size_t length = std::min(unit.length, chunk.size - unit.offset);
        dstOffset += writeNalUnit(sample + unit.offset, length, data + dstOffset,
                                  out.capacity() - dstOffset);
        ++number;
    }
    return dstOffset;
}

// One line about a unit, with the eight bytes from its prefix on.
void ChunkLoader::logNal(int priority, const Chunk& chunk, const uint8_t* sample,
                         const PrefixedNal& unit, unsigned number, const char* verdict) const {
    uint8_t bytes[8] = {};
    memcpy(bytes, sample + unit.prefixAt, std::min(sizeof(bytes), chunk.size - unit.prefixAt));
    AVI_LOG(priority, "%s %s NAL%u LenOff %zu Len %zu/%zu/%zu %s", LogPrefix(mTrack, chunk).text(),
            HexLine(bytes, sizeof(bytes)).text(), number, unit.offset, unit.length,
            chunk.size - unit.offset, size_t{chunk.size}, verdict);
}

media_status_t ChunkLoader::convertPcm(const Chunk& chunk, SampleBuffer* buffer) {
    if (!mTrack.isRawPcm) return AMEDIA_OK;
    switch (mTrack.info.mBitsPerSample) {
        case 32:
            buffer->setRange(0, narrowPcm32(buffer->data(), chunk.size));
            return AMEDIA_OK;
        case 24:
            buffer->setRange(0, narrowPcm24(buffer->data(), chunk.size));
            return AMEDIA_OK;
        case 8:
            return convertPcm8(chunk, buffer);
        default:
            return AMEDIA_OK;
    }
}

media_status_t ChunkLoader::convertPcm8(const Chunk& chunk, SampleBuffer* buffer) {
    SampleBuffer wide;
    if (mBuffers.acquire(&wide) != AMEDIA_OK) return bufferFailure(mTrack, chunk, __LINE__);
    AVI_CHECK_TEXT(wide, "tmp != NULL");
    const size_t size = std::min<size_t>(chunk.size, wide.capacity() / 2);
    widenPcm8(buffer->data(), size, wide.data());
    wide.setRange(0, 2 * size);
    *buffer = std::move(wide);
    return AMEDIA_OK;
}

}  // namespace android
