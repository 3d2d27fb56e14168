// SPDX-License-Identifier: Apache-2.0
#include "source/FramesAhead.h"

#include <string.h>

#include <algorithm>
#include <new>

#include "source/FrameProbe.h"

namespace android {

std::optional<FrameType> FramesAhead::probe(size_t i) {
    const uint8_t* frame = fetch(i);
    if (frame == nullptr) return probeFrame(mTrack, i);
    return getFrameType(mTrack, frame, std::min<size_t>(mTrack.table.chunkSize(i), kProbedBytes));
}

// The whole frame; null where it is not to be kept, or cannot be read as a whole.
const uint8_t* FramesAhead::fetch(size_t i) {
    const size_t size = mTrack.table.chunkSize(i);
    const int64_t offset = mTrack.table.offset(i);
    const bool isWorthwhile = mReads >= kMinReads && size > 0 && mTrack.reader.holds(offset, size);
    if (!isWorthwhile || !hasRoom(size)) return nullptr;
    uint8_t* frame = mBytes.get() + mUsed;
    if (!mTrack.reader.readExactly(offset, frame, size)) return nullptr;
    mFrames[mCount++] = {i, mUsed};
    mUsed += size;
    return frame;
}

bool FramesAhead::hasRoom(size_t size) {
    if (mCount == kMaxFrames || size > kMaxBytes - mUsed) return false;
    if (!mBytes) mBytes.reset(new (std::nothrow) uint8_t[kMaxBytes]);
    return mBytes != nullptr;
}

bool FramesAhead::read(const Chunk& chunk, uint8_t* out) {
    ++mReads;
    const Frame* const begin = mFrames;
    const Frame* const end = begin + mCount;
    const Frame* const kept =
        std::find_if(begin, end, [&](const Frame& frame) { return frame.index == chunk.index; });
    const bool isKept = kept != end;
    if (isKept) memcpy(out, mBytes.get() + kept->at, chunk.size);
    dropThrough(chunk.index);
    return isKept || mTrack.reader.readExactly(chunk.offset, out, chunk.size);
}

void FramesAhead::dropThrough(size_t i) {
    Frame* const begin = mFrames;
    Frame* const end = begin + mCount;
    Frame* const rest =
        std::find_if(begin, end, [i](const Frame& frame) { return frame.index > i; });
    mCount = static_cast<size_t>(std::move(rest, end, begin) - begin);
    if (mCount == 0) mUsed = 0;
}

void FramesAhead::restart() {
    mCount = 0;
    mUsed = 0;
    mReads = 0;
}

}  // namespace android
