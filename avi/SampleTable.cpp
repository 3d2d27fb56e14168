// SPDX-License-Identifier: Apache-2.0
#include "SampleTable.h"

namespace android {

void SampleTable::add(const RuvoAVISample& sample, Sizes sizes) {
    if (isEmpty()) mSizes = sizes;
    uint32_t entry = sample.size;
    if (mSizes == Sizes::kRunningTotals && !isEmpty()) {
        entry = wrapAdd32(sizeEntry(size() - 1), sample.size);
    }
    mSampleOffsets.push_back(sample.offset);
    mSampleSizes.push_back(static_cast<int32_t>(entry));
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

}  // namespace android
