// SPDX-License-Identifier: Apache-2.0
#include "SampleTable.h"

#include <algorithm>

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

// Makes room for one more row in every column, or reports that there is none.
bool SampleTable::hasRoom(bool keepsSyncFlags) {
    const size_t rows = size();
    if (rows < mSampleSizes.capacity()) return true;
    const size_t more = std::max(kMinRows, rows + rows / 2);
    return mSampleOffsets.setCapacity(more) >= 0 &&
           (!keepsSyncFlags || mSampleSyncs.setCapacity(more) >= 0) &&
           mSampleSizes.setCapacity(more) >= 0;  // the last: it tells what all have room for
}

bool SampleTable::add(const RuvoAVISample& sample, Sizes sizes, bool keepsSyncFlags) {
    if (!hasRoom(keepsSyncFlags)) return false;
    if (isEmpty()) mSizes = sizes;
    uint32_t entry = sample.size;
    if (mSizes == Sizes::kRunningTotals && !isEmpty()) {
        entry = wrapAdd32(sizeEntry(size() - 1), sample.size);
    }
    mSampleOffsets.push_back(sample.offset);
    mSampleSizes.push_back(static_cast<int32_t>(entry));
    if (keepsSyncFlags) mSampleSyncs.push_back(static_cast<int8_t>(sample.isSyncSample));
    return true;
}

bool SampleTable::addBlockTotals(uint32_t blockSize) {
    Vector<int32_t> totals;
    if (totals.setCapacity(size()) < 0) return false;
    uint32_t blocks = 0;
    for (size_t i = 0; i < size(); ++i) {
        const uint32_t bytes = chunkSize(i);
        blocks = wrapAdd32(blocks, bytes / blockSize + (bytes % blockSize != 0 ? 1 : 0));
        totals.push_back(static_cast<int32_t>(blocks));
    }
    mSampleBlockSizes = totals;
    return true;
}

void SampleTable::makeRunningTotals() {
    if (mSizes == Sizes::kRunningTotals) return;
    int32_t* entries = mSampleSizes.editArray();
    for (size_t i = 1; i < size(); ++i) {
        entries[i] = static_cast<int32_t>(wrapAdd32(sizeEntry(i - 1), sizeEntry(i)));
    }
    mSizes = Sizes::kRunningTotals;
}

void SampleTable::clear() {
    mSampleSyncs.clear();
    mSampleSizes.clear();
    mSampleOffsets.clear();
    mIsFromOpenDml = false;
}

void SampleTable::correctSyncFlag(size_t i, bool isSync) {
    // The flags have one owner: editing them in place moves nothing under a reader.
    __atomic_store_n(&mSampleSyncs.editItemAt(i), isSync ? kConfirmedSync : int8_t{0},
                     __ATOMIC_RELAXED);
}

size_t SampleTable::nextSync(size_t from) const {
    const int8_t* flags = mSampleSyncs.array();
    const size_t count = mSampleSyncs.size();
    size_t i = from;
    while (i < count) {
        if (isAligned(flags + i) && count - i >= kWord && areClear(flags + i)) {
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
    const int8_t* flags = mSampleSyncs.array();
    size_t end = std::min(from + 1, mSampleSyncs.size());
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
