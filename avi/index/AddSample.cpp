// SPDX-License-Identifier: Apache-2.0
#include "index/AddSample.h"

#include <algorithm>

#include "ChunkWalker.h"
#include "codec/VideoCodecData.h"
#include "support/Check.h"
#include "support/Log.h"

namespace android {

namespace {

// Enough samples of a video track to tell how it is framed, while the index is still being read.
constexpr size_t kSamplesBeforeCodecData = 10;

// Every chunk has an 8-byte header, so a file cannot hold more chunks than this.
size_t maxSamples(int64_t fileSize) {
    return fileSize < 0 ? 0 : static_cast<size_t>(fileSize / kChunkHeaderSize);
}

bool isTableFull(Track* track, int64_t fileSize) {
    if (track->mTable.size() < maxSamples(fileSize)) return false;
    if (!track->mTableFull) {
        AVI_LOGW(
            "%s(): stream %u: the index lists more samples than the file can hold, drop the rest",
            "addSample", track->info.mStreamIndex);
        track->mTableFull = true;
    }
    return true;
}

void addSyncFlag(const RuvoAVISample& sample, Track* track) {
    const uint8_t isSyncSample = sample.isSyncSample;
    AVI_CHECK(isSyncSample == 0 || isSyncSample == 1);
    track->mTable.addSyncFlag(isSyncSample == 1);
    // The largest key frame makes the best thumbnail: a black frame is small.
    if (isSyncSample == 1 && sample.size > track->mMaxSyncSampleSize) {
        track->mMaxSyncSampleSize = sample.size;
        track->mThumbNailIndex = static_cast<uint32_t>(track->mTable.size() - 1);
    }
}

}  // namespace

void addSample(const FileReader& reader, const RuvoAVISample& sample, Track* track) {
    SampleTable* table = &track->mTable;
    // An empty video chunk is a dropped frame and takes a frame's time, but nothing can be shown
    // before the first real one. Empty audio chunks take no time.
    if (sample.size == 0 && (!track->mIsVideo || table->isEmpty())) return;
    if (isTableFull(track, reader.size())) return;

    table->add(sample, track->info.mSampleSize != 0 ? SampleTable::Sizes::kRunningTotals
                                                    : SampleTable::Sizes::kOfChunks);
    track->mMaxSampleSize = std::max(track->mMaxSampleSize, sample.size);
    track->mTotalSampleSize += sample.size;
    track->mTotalSyncSamples += sample.isSyncSample;
    if (!track->mIsVideo) return;
    addSyncFlag(sample, track);
    if (table->size() == kSamplesBeforeCodecData) generateVideoCodecData(reader, track);
}

void addSampleById(const FileReader& reader, const TrackList& tracks, uint32_t streamNumber,
                   const RuvoAVISample& sample) {
    Track* track = tracks.byStream(streamNumber);
    if (track == nullptr) return;
    if (sample.offset >= reader.size()) {
        AVI_LOGE("%s(): Sample offset(%lld) exceeds the fileSize(%lld)! @L%d", "addSampleById",
                 ll(sample.offset), ll(reader.size()), __LINE__);
        return;
    }
    addSample(reader, sample, track);
}

void clearSamples(Track* track) {
    track->mTable.clear();
    track->mMaxSampleSize = 0;
    track->mMaxSyncSampleSize = 0;
    track->mTotalSampleSize = 0;
    track->mThumbNailIndex = 0;
}

}  // namespace android
