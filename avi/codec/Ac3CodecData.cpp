// SPDX-License-Identifier: Apache-2.0
#include "codec/Ac3CodecData.h"

#include "codec/ReadSample.h"
#include "support/Log.h"

namespace android {

namespace {

// Offset of the AC-3 sync word; `size` when there is none.
size_t findAc3SyncWord(const uint8_t* data, size_t size) {
    for (size_t i = 0; i + 1 < size; ++i) {
        if (isAc3SyncWord(data + i)) return i;
    }
    return size;
}

}  // namespace

bool isAc3SyncWord(const uint8_t* data) {
    return data[0] == 0x0B && data[1] == 0x77;
}

void generateAC3CodecData(FileReader& reader, Track* track) {
    uint32_t* invalid = &track->info.mInvalidDataSize;
    for (size_t i = 0; i < track->mTable.size(); ++i) {
        sp<ABuffer> sample;
        if (readSample(reader, *track, i, &sample) != OK) continue;
        const size_t syncAt = findAc3SyncWord(sample->data(), sample->size());
        *invalid = wrapAdd32(*invalid, static_cast<uint32_t>(syncAt));
        if (syncAt < sample->size()) break;
    }
    AVI_LOGV("%s(): AC3 invalid data size %u", "generateAC3CodecData", *invalid);
}

}  // namespace android
