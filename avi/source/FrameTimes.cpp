// SPDX-License-Identifier: Apache-2.0
#include "source/FrameTimes.h"

#include <algorithm>

#include "source/SubtitleTime.h"
#include "support/Arithmetic.h"

namespace android {

int64_t FrameTimes::sampleTimeUs(const Chunk& chunk, const uint8_t* data) {
    return mTrack.info.mIsSubtitle ? getSubtitleDts(data, chunk.size) : calculateFrameDTS(chunk);
}

int64_t FrameTimes::calculateFrameDTS(const Chunk& chunk) {
    const TrackInfo& info = mTrack.info;
    const bool excluding = info.mIsExcludingInvalidData;
    const int64_t index = int64_t{chunk.index} - (excluding ? info.mInvalidSampleIdx : 0);
    int64_t timeUs = 0;
    if (mTrack.isAudio) {
        timeUs =
            audioTimeUs(index, wrapSub32(chunk.bytesBefore, excluding ? info.mInvalidDataSize : 0));
    } else if (mTrack.isVideo) {
        // A frame is shown after the B-frames stored after it, which move one place forward.
        const int64_t place = chunk.type == FrameType::kBidirectional
                                  ? index - 1
                                  : index + followingBFrames(chunk.index);
        timeUs = unitsToUs(place, info.mScale, info.mRate);
    }
    return std::max<int64_t>(timeUs, 0);
}

// Those of other codecs are not told apart from other frames.
int64_t FrameTimes::followingBFrames(size_t i) {
    const bool hasBFrames = mTrack.isMpeg4 || mTrack.isAvc || mTrack.isHevc;
    return hasBFrames ? mBFrames.countFrom(i + 1) : 0;
}

// `bytesBefore` counts as a signed 32-bit number.
int64_t FrameTimes::audioTimeUs(int64_t index, uint32_t bytesBefore) const {
    const TrackInfo& info = mTrack.info;
    const int64_t bytes = static_cast<int32_t>(bytesBefore);
    if (info.mSampleSize == 0) {
        return mulDiv(mTrack.durationUs, index, static_cast<int64_t>(mTrack.table.size()));
    }
    if (info.mIsRawAACData) {
        return info.mIsVBRWise ? unitsToUs(index, info.mScale, info.mRate)
                               : mulDiv(bytes, kUsPerSecond, info.mAvgBytesPerSec);
    }
    return unitsToUs(bytes, info.mScale, info.mRate) / info.mSampleSize;
}

}  // namespace android
