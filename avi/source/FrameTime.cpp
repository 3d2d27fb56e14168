// SPDX-License-Identifier: Apache-2.0
//
// Times of samples. AVI has none: a chunk's place in the stream tells its time, corrected for the
// order in which B-frames are stored.
#include <algorithm>

#include "source/RuvoAVISource.h"
#include "source/SubtitleTime.h"
#include "support/Arithmetic.h"

namespace android {

FrameType RuvoAVISource::getFrameType(const uint8_t* data, size_t size) const {
    if (mTrack.isAvc || mTrack.isHevc) return avcFrameType(data, size);
    return mTrack.isMpeg4 ? mpeg4FrameType(data, size) : genericFrameType(data, size);
}

// Types frame i by its first bytes; false when they cannot be read.
bool RuvoAVISource::probeFrame(size_t i, FrameType* type) const {
    uint8_t bytes[256];
    const uint32_t chunkSize = mTrack.table.chunkSize(i);
    const size_t size = std::min<size_t>(chunkSize, sizeof(bytes));
    if (!mTrack.reader.readExactly(mTrack.table.offset(i), bytes, size)) return false;
    *type = getFrameType(bytes, size);
    return true;
}

// B-frames that directly follow the sample just read. Unreadable ones are passed over: they lie
// behind the end of a cut file.
int64_t RuvoAVISource::followingBFrames() const {
    int64_t count = 0;
    for (size_t i = mCurrentSampleIndex; i < mTrack.table.size(); ++i) {
        FrameType type = FrameType::kUnknown;
        if (!probeFrame(i, &type)) continue;
        if (type != FrameType::kBidirectional) break;
        ++count;
    }
    return count;
}

int64_t RuvoAVISource::sampleTimeUs(const Chunk& chunk) const {
    if (!mTrack.info.mIsSubtitle)
        return calculateFrameDTS(chunk.type.value_or(FrameType::kUnknown), chunk.bytesBefore);
    return getSubtitleDts(mBuffer.data(), chunk.size);
}

int64_t RuvoAVISource::calculateFrameDTS(FrameType type, uint32_t bytesBefore) const {
    const bool excluding = mTrack.info.mIsExcludingInvalidData;
    const int64_t index =
        int64_t{mCurrentSampleIndex} - 1 - (excluding ? mTrack.info.mInvalidSampleIdx : 0);
    int64_t timeUs = 0;
    if (mTrack.isAudio) {
        timeUs = audioTimeUs(index,
                             wrapSub32(bytesBefore, excluding ? mTrack.info.mInvalidDataSize : 0));
    } else if (mTrack.isVideo) {
        // A frame is shown after the B-frames stored behind it, which move one place forward.
        const int64_t place =
            type == FrameType::kBidirectional ? index - 1 : index + followingBFrames();
        timeUs = unitsToUs(place, mTrack.info.mScale, mTrack.info.mRate);
    }
    return std::max<int64_t>(timeUs, 0);
}

// `bytesBefore` counts as a signed 32-bit number.
int64_t RuvoAVISource::audioTimeUs(int64_t index, uint32_t bytesBefore) const {
    const int64_t bytes = static_cast<int32_t>(bytesBefore);
    if (mTrack.info.mSampleSize == 0) {
        return mulDiv(mTrack.durationUs, index, static_cast<int64_t>(mTrack.table.size()));
    }
    if (mTrack.info.mIsRawAACData) {
        return mTrack.info.mIsVBRWise ? unitsToUs(index, mTrack.info.mScale, mTrack.info.mRate)
                                      : mulDiv(bytes, kUsPerSecond, mTrack.info.mAvgBytesPerSec);
    }
    return unitsToUs(bytes, mTrack.info.mScale, mTrack.info.mRate) / mTrack.info.mSampleSize;
}

}  // namespace android
