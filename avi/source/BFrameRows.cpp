// SPDX-License-Identifier: Apache-2.0
#include "source/BFrameRows.h"

#include <new>

namespace android {

int64_t BFrameRows::countFrom(size_t first) {
    if (first < mBegin || first > mEnd) return findRow(first);
    for (; mBegin < first; ++mBegin) {
        if (mSeen[mBegin] == Seen::kBFrame) --mCount;
    }
    return mCount;
}

// A row with an entry that may be readable later is not kept as the last one.
int64_t BFrameRows::findRow(size_t first) {
    const size_t size = mTrack.table.size();
    if (!mSeen) mSeen.reset(new (std::nothrow) Seen[size]());
    bool isSettled = mSeen != nullptr;
    int64_t count = 0;
    size_t i = first;
    for (; i < size; ++i) {
        const Seen seen = look(i);
        if (seen == Seen::kOther) break;
        if (seen == Seen::kBFrame) ++count;
        if (seen == Seen::kUnreadable) isSettled = false;
    }
    mBegin = isSettled ? first : 1;
    mEnd = isSettled ? i : 0;
    mCount = count;
    return count;
}

BFrameRows::Seen BFrameRows::look(size_t i) {
    const Seen before = mSeen ? mSeen[i] : Seen::kNever;
    if (before != Seen::kNever && before != Seen::kUnreadable) return before;
    const std::optional<FrameType> type = mFrames.probe(i);
    Seen now = Seen::kOther;
    if (!type) {
        const bool isInFile = mTrack.reader.holds(mTrack.table.offset(i), 1);
        now = before == Seen::kNever && isInFile ? Seen::kUnreadable : Seen::kMissing;
    } else if (type == FrameType::kBidirectional) {
        now = Seen::kBFrame;
    }
    if (mSeen) mSeen[i] = now;
    return now;
}

}  // namespace android
