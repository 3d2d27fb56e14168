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
    if (mCount > 0 && takeKept(chunk, out)) return true;
    return mTrack.reader.readExactly(chunk.offset, out, chunk.size);
}

bool FramesAhead::takeKept(const Chunk& chunk, uint8_t* out) {
    Frame* const begin = mFrames;
    Frame* const end = begin + mCount;
    Frame* rest = std::find_if(begin, end, [&](const Frame& f) { return f.index >= chunk.index; });
    const bool isKept = rest != end && rest->index == chunk.index;
    if (isKept) {
        memcpy(out, mBytes.get() + rest->at, chunk.size);
        ++rest;
    }
    mCount = static_cast<size_t>(std::move(rest, end, begin) - begin);
    if (mCount == 0) mUsed = 0;
    return isKept;
}

void FramesAhead::restart() {
    mCount = 0;
    mUsed = 0;
    mReads = 0;
}

}  // namespace android
