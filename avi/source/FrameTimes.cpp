// SPDX-License-Identifier: Apache-2.0
#include "source/FrameTimes.h"

#include <algorithm>

#include "source/FrameProbe.h"
#include "source/SubtitleTime.h"
#include "support/Arithmetic.h"

namespace android {

int64_t BFrameRow::countFrom(size_t i) const {
    const auto passedOver =
        unreadable.end() - std::lower_bound(unreadable.begin(), unreadable.end(), i);
    return static_cast<int64_t>(end - i) - passedOver;
}

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
                                  : index + followingBFrames(size_t{chunk.index} + 1);
        timeUs = unitsToUs(place, info.mScale, info.mRate);
    }
    return std::max<int64_t>(timeUs, 0);
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

// B-frames that directly follow one another from entry `first` on. Unreadable entries are passed
// over: they lie after the end of a cut file.
int64_t FrameTimes::followingBFrames(size_t first) {
    if (!mRow.knows(first)) mRow = findRow(first);
    return mRow.countFrom(first);
}

BFrameRow FrameTimes::findRow(size_t first) const {
    BFrameRow row;
    row.begin = first;
    for (row.end = first; row.end < mTrack.table.size(); ++row.end) {
        const std::optional<FrameType> type = probeFrame(mTrack, row.end);
        if (!type) {
            row.unreadable.push_back(static_cast<uint32_t>(row.end));
        } else if (type != FrameType::kBidirectional) {
            break;
        }
    }
    return row;
}

}  // namespace android
