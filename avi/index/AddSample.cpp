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
    if (track->mTableFull) return true;
    if (track->mTable.size() < maxSamples(fileSize)) return false;
    AVI_LOGW("%s(): stream %u: the index lists more samples than the file can hold, drop the rest",
             "addSample", track->info.mStreamIndex);
    track->mTableFull = true;
    return true;
}

void noMemoryFor(Track* track) {
    AVI_LOGW("%s(): stream %u: no memory for more samples, drop the rest", "addSample",
             track->info.mStreamIndex);
    track->mTableFull = true;
}

// The largest key frame makes the best thumbnail: a black frame is small.
void noteKeySample(const RuvoAVISample& sample, Track* track) {
    if (sample.isSyncSample != 1 || sample.size <= track->mMaxSyncSampleSize) return;
    track->mMaxSyncSampleSize = sample.size;
    track->mThumbNailIndex = static_cast<uint32_t>(track->mTable.size() - 1);
}

}  // namespace

void addSample(FileReader& reader, const RuvoAVISample& sample, Track* track) {
    SampleTable* table = &track->mTable;
    // An empty video chunk is a dropped frame and takes a frame's time, but nothing can be shown
    // before the first real one. Empty audio chunks take no time.
    if (sample.size == 0 && (!track->mIsVideo || table->isEmpty())) return;
    if (isTableFull(track, reader.size())) return;

    const uint8_t isSyncSample = sample.isSyncSample;
    if (track->mIsVideo) AVI_CHECK(isSyncSample == 0 || isSyncSample == 1);
    const auto sizes = track->info.mSampleSize != 0 ? SampleTable::Sizes::kRunningTotals
                                                    : SampleTable::Sizes::kOfChunks;
    if (!table->add(sample, sizes, track->mIsVideo)) {
        noMemoryFor(track);
        return;
    }
    track->mMaxSampleSize = std::max(track->mMaxSampleSize, sample.size);
    track->mTotalSampleSize += sample.size;
    track->mTotalSyncSamples += sample.isSyncSample;
    if (!track->mIsVideo) return;
    noteKeySample(sample, track);
    // Once: a file may fill and empty a table again and again.
    if (table->size() < kSamplesBeforeCodecData || track->mIsConfigured) return;
    track->mIsConfigured = true;
    generateVideoCodecData(reader, track);
}

void addSampleById(FileReader& reader, const TrackList& tracks, uint32_t streamNumber,
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
    track->mTableFull = false;
    track->mMaxSampleSize = 0;
    track->mMaxSyncSampleSize = 0;
    track->mTotalSampleSize = 0;
    track->mThumbNailIndex = 0;
}

}  // namespace android
