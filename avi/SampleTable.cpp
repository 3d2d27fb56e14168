// SPDX-License-Identifier: Apache-2.0
#include "SampleTable.h"

#include <algorithm>
#include <utility>

namespace android {

namespace {

// A file may have thousands of tracks with a sample each.
constexpr size_t kMinRows = 16;

// Flags that other sources of the track may be correcting: each is read as a single value.
bool isSet(const int8_t* flag) {
    return __atomic_load_n(flag, __ATOMIC_RELAXED) != 0;
}

// Eight of them at once.
using FlagWord = uint64_t __attribute__((may_alias));
constexpr size_t kWord = sizeof(FlagWord);

bool isAligned(const int8_t* flag) {
    return reinterpret_cast<uintptr_t>(flag) % kWord == 0;
}

bool areClear(const int8_t* flags) {
    const void* word = flags;
    return __atomic_load_n(static_cast<const FlagWord*>(word), __ATOMIC_RELAXED) == 0;
}

}  // namespace

// Makes room for more rows in every column, or for none.
bool SampleTable::grow(bool keepsSyncFlags) {
    const size_t more = std::max(kMinRows, mRows + mRows / 2);
    if (!mSampleOffsets.setCapacity(more) || !mSampleSizes.setCapacity(more)) return false;
    if (keepsSyncFlags) {
        if (!mSampleSyncs.setCapacity(more)) return false;
        mSyncCapacity = more;
    }
    mCapacity = more;
    return true;
}

void SampleTable::trim() {
    // An array that cannot be made smaller stays as it is.
    mSampleOffsets.setCapacity(mRows);
    mSampleSizes.setCapacity(mRows);
    mSampleSyncs.setCapacity(mSyncRows);
    mCapacity = mRows;
    mSyncCapacity = mSyncRows;
}

bool SampleTable::addBlockTotals(uint32_t blockSize) {
    PlainArray<int32_t> totals;
    if (!totals.setCapacity(mRows)) return false;
    uint32_t blocks = 0;
    for (size_t i = 0; i < mRows; ++i) {
        const uint32_t bytes = chunkSize(i);
        blocks = wrapAdd32(blocks, bytes / blockSize + (bytes % blockSize != 0 ? 1 : 0));
        totals[i] = static_cast<int32_t>(blocks);
    }
    mSampleBlockSizes = std::move(totals);
    mBlockRows = mRows;
    return true;
}

void SampleTable::makeRunningTotals() {
    if (mSizes == Sizes::kRunningTotals) return;
    for (size_t i = 1; i < mRows; ++i) {
        mSampleSizes[i] = wrapAdd32(sizeEntry(i - 1), sizeEntry(i));
    }
    mSizes = Sizes::kRunningTotals;
}

void SampleTable::clear() {
    mRows = mSyncRows = 0;
    trim();
    mIsFromOpenDml = false;
}

void SampleTable::correctSyncFlag(size_t i, bool isSync) {
    __atomic_store_n(&mSampleSyncs[i], isSync ? kConfirmedSync : int8_t{0}, __ATOMIC_RELAXED);
}

size_t SampleTable::nextSync(size_t from) const {
    const int8_t* flags = mSampleSyncs.begin();
    size_t i = from;
    while (i < mSyncRows) {
        if (isAligned(flags + i) && mSyncRows - i >= kWord && areClear(flags + i)) {
            i += kWord;
        } else if (isSet(flags + i)) {
            return i;
        } else {
            ++i;
        }
    }
    return size();
}

size_t SampleTable::previousSync(size_t from) const {
    const int8_t* flags = mSampleSyncs.begin();
    size_t end = std::min(from + 1, mSyncRows);
    while (end > 0) {
        if (isAligned(flags + end) && end >= kWord && areClear(flags + end - kWord)) {
            end -= kWord;
        } else if (isSet(flags + end - 1)) {
            return end - 1;
        } else {
            --end;
        }
    }
    return size();
}

}  // namespace android
