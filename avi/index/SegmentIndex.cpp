// SPDX-License-Identifier: Apache-2.0
#include "index/SegmentIndex.h"

#include <algorithm>

#include "index/AddSample.h"
#include "index/LegacyIndex.h"
#include "support/Arithmetic.h"
#include "support/Log.h"

namespace android {

constexpr int kLineMoreRiffWithoutIndex = 4376;

namespace {

// How many times the bytes of the file its further segments may have read, all together. They lie
// one behind the other in an honest file, and may not in a damaged one.
constexpr int64_t kFurtherShare = 4;

// A file that is cut within its index has lost the end of its movi list too.
bool isCut(int64_t end, int64_t fileSize) {
    if (fileSize >= end) return false;
    AVI_LOGW("%s(): Chunked file with wrong idx1(end %lld, fileSize %lld), ignore it!", "parseIDX1",
             ll(end), ll(fileSize));
    return true;
}

}  // namespace

void SegmentIndex::parseMOVI(int64_t start, int64_t end) {
    mMovi.start = static_cast<uint32_t>(start - kListHeaderSize);
    mMovi.size = static_cast<uint32_t>(end - start);
    AVI_LOGV("%s(): @%d, size %u, end...", "parseMOVI", static_cast<int>(mMovi.start), mMovi.size);
}

status_t SegmentIndex::readFirstIdx1(int64_t start, int64_t end) {
    AVI_LOGV("%s(): found idx, idx1Found: %d", "parseFirstRIFF", mIdx1Found);
    if (mIdx1Found) {
        AVI_LOGW("%s(): skip multiple idx1!", "parseFirstRIFF");
        return OK;
    }
    if (allTracksIndexed()) {
        AVI_LOGW("%s(): we already have index, ignore idx1!", "parseFirstRIFF");
        return OK;
    }
    for (const auto& track : mTracks) {
        clearSamples(track.get());
        track->mIsConfigured = false;  // what configured it may have been a wrong index
    }
    mIdx1Found = true;
    if (isCut(end, mReader.size())) return OK;
    const status_t err = parseIDX1(mReader, mTracks, start, end, mMovi.start);
    mHasIndex = err == OK;
    return err;
}

bool SegmentIndex::allTracksIndexed() {
    if (mAskedAt == mTracks.changes()) return mAllIndexed;
    mAskedAt = mTracks.changes();
    mAllIndexed = std::all_of(mTracks.begin(), mTracks.end(), [](const auto& track) {
        const bool hasSamples = track->mIsVideo || track->mIsAudio || track->mIsSubtitle;
        return !hasSamples || track->mINDXValid;
    });
    return mAllIndexed;
}

void SegmentIndex::completeFirst() {
    if (mHasIndex || allTracksIndexed()) return;
    for (const auto& track : mTracks) {
        if (track->mIsVideo) track->info.mBrokenIndex = true;
    }
    AVI_LOGW("%s(): The riff doesn't have index!", "parseFirstRIFF");
    AVI_LOGW("%s(): Need to parse 'movi' and may take a long time.", "parseFirstRIFF");
    MoviScan(mReader, mTracks).parseMOVIMore(mMovi);
}

// Takes what is to be read off what the further segments may read; false when it is too much.
bool SegmentIndex::takeFurther(int64_t bytes) {
    mFurtherBytes = saturatingAdd(mFurtherBytes, bytes);
    return mFurtherBytes / kFurtherShare <= mReader.size();
}

status_t SegmentIndex::readFurtherIdx1(int64_t start, int64_t end) {
    if (isCut(end, mReader.size()) || !takeFurther(end - start)) return OK;
    return parseIDX1(mReader, mTracks, start, end, mMovi.start);
}

void SegmentIndex::scanFurther() {
    AVI_LOGW("%s(): This riff doesn't have index. May take a long time to parse 'movi' chunk!@L%d",
             "parseMoreRIFF", kLineMoreRiffWithoutIndex);
    const int64_t rest = std::max<int64_t>(mReader.size() - mMovi.start, 0);
    if (!takeFurther(std::min<int64_t>(mMovi.size, rest))) return;
    MoviScan(mReader, mTracks).parseMOVIMore(mMovi);
}

bool SegmentIndex::videoFullyIndexed() const {
    for (const auto& track : mTracks) {
        if (!track->mIsVideo) continue;
        const size_t indexed = track->mTable.size();
        if (indexed >= track->mTotalSamples) {
            AVI_LOGD("%s(): All frames have been indexed. No need to parse other riff(s).",
                     "parseFirstRIFF");
            return true;
        }
        AVI_LOGD("%s(): Video track indexed frames %zu VS total frames %u", "parseFirstRIFF",
                 indexed, track->mTotalSamples);
    }
    AVI_LOGD("%s(): Not all frames have been indexed. Need parse more riff(s).", "parseFirstRIFF");
    return false;
}

}  // namespace android
