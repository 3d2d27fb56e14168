// SPDX-License-Identifier: Apache-2.0
//
// Loads a chunk into mBuffer in the form that decoders take: start codes in front of VC-1 and AVC
// units, PCM of 16 bits.
#include <string.h>

#include <algorithm>
#include <memory>
#include <new>

#include "source/Conversions.h"
#include "source/FrameProbe.h"
#include "source/RuvoAVISource.h"
#include "support/Check.h"
#include "support/HexDump.h"
#include "support/Log.h"

namespace android {

// Units of a sample that are told of one by one: no encoder makes so many, but a sample of zeros
// has one a byte, and logging them all would stall the player.
static constexpr unsigned kLoggedUnits = 1000;

// Fills mBuffer and sets its range.
media_status_t RuvoAVISource::loadChunk(Chunk* chunk) {
    size_t insertedBytes = 0;
    bool loaded = false;
    mLog.beginRead();
    if (mTrack.isWvc1) {
        loaded = loadVc1(chunk, &insertedBytes);
    } else if (mTrack.isAvc && mTrack.info.mAVCStyle == 0 && mTrack.info.mAVCSizeLength >= 1) {
        loaded = loadLengthPrefixed(*chunk);
    } else {
        loaded = loadPlain(*chunk, 0);
    }
    if (!loaded) {
        mBuffer.reset();
        return shortRead(mTrack, *chunk, __LINE__);
    }
    mBuffer.setRange(0, insertedBytes + chunk->size);
    if (!mTrack.isAudio) {
        chunk->type = getFrameType(mTrack, mBuffer.data(), insertedBytes + chunk->size);
    }
    return AMEDIA_OK;
}

// The common case: one read, straight into the buffer, from `position` on.
bool RuvoAVISource::loadPlain(const Chunk& chunk, size_t position) {
    if (position > mBuffer.capacity() || chunk.size > mBuffer.capacity() - position) return false;
    uint8_t* data = mBuffer.data() + position;
    return mTrack.reader.readExactly(chunk.offset, data, chunk.size);
}

// VC-1 decoders find frames by their start codes, which most writers leave out. The frame header
// tells key frames better than the index.
bool RuvoAVISource::loadVc1(Chunk* chunk, size_t* insertedBytes) {
    if (mBuffer.capacity() < kStartCodeSize) return false;
    uint8_t bytes[kVc1ProbeBytes] = {};
    const size_t probed = std::min<size_t>(chunk->size, sizeof(bytes));
    if (!mTrack.reader.readExactly(chunk->offset, bytes, probed)) return false;
    const Vc1Frame frame = probeVc1Frame(bytes);
    chunk->isSync = frame.isSync;
    if (!frame.hasStartCode) {
        writeVc1StartCode(mBuffer.data());
        *insertedBytes = kStartCodeSize;
    }
    return loadPlain(*chunk, *insertedBytes);
}

// Decoders take start codes. The published length stays that of the chunk, which is exact for the
// usual prefixes of four bytes.
bool RuvoAVISource::loadLengthPrefixed(const Chunk& chunk) {
    const int64_t size = mTrack.reader.askSize();
    if (chunk.size > mBuffer.capacity() || (size > 0 && chunk.offset + chunk.size > size))
        return false;
    const std::unique_ptr<uint8_t[]> sample(new (std::nothrow) uint8_t[chunk.size]);
    if (sample == nullptr || !mTrack.reader.readExactly(chunk.offset, sample.get(), chunk.size)) {
        return false;
    }
    mLog.dumpData(sample.get(), chunk.size, SampleLog::kNoTime, chunk.index);
    const size_t written = convertLengthPrefixed(chunk, sample.get());
    auto* out = mBuffer.data();
    if (written < chunk.size) memset(out + written, 0, chunk.size - written);
    return true;
}

// Returns the bytes written.
size_t RuvoAVISource::convertLengthPrefixed(const Chunk& chunk, const uint8_t* sample) {
    auto* out = mBuffer.data();
    size_t dstOffset = 0;
    unsigned number = 1;
    unsigned logged = 0;
    PrefixedNal unit;
    PrefixedNalReader units(sample, chunk.size, static_cast<size_t>(mTrack.info.mAVCSizeLength));
    while (units.next(&unit)) {
        if (logged < kLoggedUnits && mLog.isEnableLogOutput(mCurrentSampleIndex - 1)) {
            ++logged;
            logNal(ANDROID_LOG_DEBUG, chunk, sample, unit, number,
                   unit.isWhole ? "GOOD NAL" : "MALFORMED");
        }
        if (unit.length == 0) continue;
        AVI_CHECK_TEXT(dstOffset + kStartCodeSize <= mBuffer.capacity(),
                       "dstOffset + 4 <= mBuffer->size()");
        if (!unit.isWhole) {
            logNal(ANDROID_LOG_ERROR, chunk, sample, unit, number, "MALFORMED!!!");
        }
        const size_t length = std::min(unit.length, chunk.size - unit.offset);
        dstOffset += writeNalUnit(sample + unit.offset, length, out + dstOffset,
                                  mBuffer.capacity() - dstOffset);
        ++number;
    }
    return dstOffset;
}

// One line about a unit, with the eight bytes from its prefix on.
void RuvoAVISource::logNal(int priority, const Chunk& chunk, const uint8_t* sample,
                           const PrefixedNal& unit, unsigned number, const char* verdict) const {
    uint8_t bytes[8] = {};
    memcpy(bytes, sample + unit.prefixAt, std::min(sizeof(bytes), chunk.size - unit.prefixAt));
    AVI_LOG(priority, "%s %s NAL%u LenOff %zu Len %zu/%zu/%zu %s", LogPrefix(mTrack, chunk).text(),
            HexLine(bytes, sizeof(bytes)).text(), number, unit.offset, unit.length,
            chunk.size - unit.offset, size_t{chunk.size}, verdict);
}

// The platform's audio path takes 16 bits.
media_status_t RuvoAVISource::convertPcm(const Chunk& chunk) {
    if (!mTrack.isRawPcm) return AMEDIA_OK;
    uint8_t* data = mBuffer.data();
    switch (mTrack.info.mBitsPerSample) {
        case 32:
            mBuffer.setRange(0, narrowPcm32(data, chunk.size));
            return AMEDIA_OK;
        case 24:
            mBuffer.setRange(0, narrowPcm24(data, chunk.size));
            return AMEDIA_OK;
        case 8:
            return convertPcm8(chunk);
        default:
            return AMEDIA_OK;
    }
}

media_status_t RuvoAVISource::convertPcm8(const Chunk& chunk) {
    SampleBuffer wide;
    if (mBuffers.acquire(&wide) != AMEDIA_OK) {
        mBuffer.reset();
        return bufferFailure(mTrack, chunk, __LINE__);
    }
    AVI_CHECK_TEXT(wide, "tmp != NULL");
    const size_t size = std::min<size_t>(chunk.size, wide.capacity() / 2);
    widenPcm8(mBuffer.data(), size, wide.data());
    wide.setRange(0, 2 * size);
    mBuffer = std::move(wide);
    return AMEDIA_OK;
}

}  // namespace android
