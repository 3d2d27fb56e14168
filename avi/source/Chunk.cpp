// SPDX-License-Identifier: Apache-2.0
#include "source/Chunk.h"

namespace android {

bool ChunkCursor::take(Chunk* out) {
    const SampleTable& table = mTrack.table;
    const bool countsBytes = mTrack.info.mSampleSize != 0;
    while (mNext < table.size()) {
        const uint32_t i = mNext++;
        out->label = Chunk::Label::kFull;
        out->index = i;
        out->offset = table.offset(i);
        out->size = table.chunkSize(i);
        out->bytesBefore = table.bytesBefore(i);
        out->isSync = mTrack.isVideo && !countsBytes && table.syncFlag(i) != 0;
        if (out->size != 0 || countsBytes) return true;
    }
    return false;
}

}  // namespace android
