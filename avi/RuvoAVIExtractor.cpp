// SPDX-License-Identifier: Apache-2.0
//
// The framework's queries, and the driver that parses a file on the first of them.
#include "RuvoAVIExtractor.h"

#include <media/stagefright/foundation/MediaDefs.h>
#include <strings.h>

#include "source/RuvoAVISource.h"
#include "support/Log.h"

namespace android {

constexpr int kLineNoMetaData = 1670;
constexpr int kLineNoTrackMetaData = 1699;
constexpr int kLineTrackListEnds = 1705;
constexpr int kLineNoSuchTrack = 1713;
constexpr int kLineUnreadableHeader = 4399;
constexpr int kLineHeader = 4403;
constexpr int kLineNotRiff = 4406;
constexpr int kLineUnreadableSegment = 4424;

// Every capability, also for files that have yet to prove it: flags are asked before the parse.
constexpr uint32_t kAllCapabilities = 255;

RuvoAVIExtractor::RuvoAVIExtractor(DataSourceHelper* source)

    : mReader(source), mCurrentTrack(mTracks.end()) {
    readSwitches();
}

RuvoAVIExtractor::~RuvoAVIExtractor() {
    for (const Track& track : mTracks) {
        AVI_LOGD("delete track %s", AMediaFormat_toString(track.meta.get()));
    }
    mTracks.clear();
    AVI_LOGE("delete file meta %s", AMediaFormat_toString(mFileMeta.get()));
}

size_t RuvoAVIExtractor::countTracks() {
    const status_t err = readMetaData();
    if (err != OK) {
        AVI_LOGE("%s(): readMetaData() failed, err = %d!", "countTracks", err);
        return 0;
    }
    return mTrackTable.size();
}

Track* RuvoAVIExtractor::trackAt(size_t index) {
    return index < mTrackTable.size() ? mTrackTable[index] : nullptr;
}

MediaTrackHelper* RuvoAVIExtractor::getTrack(size_t index) {
    if (readMetaData() != OK) return nullptr;
    Track* track = trackAt(index);
    if (track == nullptr) return nullptr;
    track->info.mIsSubtitle = track->mIsSubtitle;
    return new RuvoAVISource(track->meta.get(), mReader, track->info, &track->mTable,
                             mAudioSeekTimes, &track->mFormatLock);
}

media_status_t RuvoAVIExtractor::getTrackMetaData(AMediaFormat* out, size_t index, uint32_t flags) {
    if (readMetaData() != OK) {
        fail("getTrackMetaData", AMEDIA_ERROR_UNKNOWN, kLineNoTrackMetaData);
        return AMEDIA_ERROR_UNKNOWN;
    }
    Track* track = trackAt(index);
    if (track == nullptr) {
        const bool listEnds = index > mTrackTable.size();
        fail("getTrackMetaData", AMEDIA_ERROR_UNKNOWN,
             listEnds ? kLineTrackListEnds : kLineNoSuchTrack);
        return AMEDIA_ERROR_UNKNOWN;
    }
    const std::lock_guard<std::mutex> lock(track->mFormatLock);
    if ((flags & kIncludeExtensiveMetaData) != 0 && !track->mIsIncludeExpensiveMeta) {
        track->mIsIncludeExpensiveMeta = true;
        publishThumbnailTime(track);
    }
    return AMediaFormat_copy(out, track->meta.get());
}

// The thumbnail time takes the place of the duration too: the service that asks for extensive
// metadata positions by it. REQUIRES: the track's format lock is held.
void RuvoAVIExtractor::publishThumbnailTime(Track* track) {
    AMediaFormat* meta = track->meta.get();
    const char* mime = nullptr;
    if (!AMediaFormat_getString(meta, AMEDIAFORMAT_KEY_MIME, &mime)) return;
    if (strncasecmp(mime, "video/", 6) != 0 || track->info.mRate == 0) return;
    // 32-bit products, as the players of these devices expect.
    const uint32_t scaled = wrapMul32(wrapMul32(track->mThumbNailIndex, track->info.mScale),
                                      static_cast<uint32_t>(kUsPerSecond));
    const int64_t timeUs = scaled / track->info.mRate;
    AMediaFormat_setInt64(meta, AMEDIAFORMAT_KEY_DURATION, timeUs);
    AMediaFormat_setInt64(meta, AMEDIAFORMAT_KEY_THUMBNAIL_TIME, timeUs);
    AVI_LOGD("%s(): Set thumbnail time %lld, index %u", "getTrackMetaData", ll(timeUs),
             track->mThumbNailIndex);
}

media_status_t RuvoAVIExtractor::getMetaData(AMediaFormat* out) {
    if (readMetaData() != OK) {
        fail("getMetaData", AMEDIA_ERROR_UNKNOWN, kLineNoMetaData);
        return AMEDIA_ERROR_UNKNOWN;
    }
    return AMediaFormat_copy(out, mFileMeta.get());
}

uint32_t RuvoAVIExtractor::flags() const {
    return kAllCapabilities;
}

media_status_t RuvoAVIExtractor::setMediaCas(const uint8_t* /*data*/, size_t /*size*/) {
    return AMEDIA_ERROR_INVALID_OPERATION;
}

status_t RuvoAVIExtractor::readMetaData() {
    if (mMetaDataRead) return OK;
    if (mInitCheck != NO_INIT) {
        AVI_LOGE("%s(): mInitCheck = %d.", "readMetaData", mInitCheck);
        return mInitCheck;
    }

    ChunkHeader header;
    if (readChunkHeader(mReader, 0, &header) != HeaderRead::kWhole) {
        fail("readMetaData", ERROR_IO, kLineUnreadableHeader);
        return ERROR_IO;
    }
    AVI_LOGD("%s(): ID %X, size %X, type %X @L%d", "readMetaData", toWord(header.id), header.size,
             toWord(header.type), kLineHeader);
    if (header.id != fourcc("RIFF")) {
        fail("readMetaData", ERROR_UNSUPPORTED, kLineNotRiff);
        return ERROR_UNSUPPORTED;
    }
    mReader.keepSize();
    AVI_LOGD("%s(): mFileSize: %lld.", "readMetaData", ll(mReader.size()));

    mIndexEntriesLeft = mReader.size() / kChunkHeaderSize;
    status_t err = listRiffSegments();
    if (err != OK) return err;
    err = mInitCheck = parseFirstRIFF();
    AMediaFormat_setString(mFileMeta.get(), AMEDIAFORMAT_KEY_MIME, MEDIA_MIMETYPE_CONTAINER_AVI);
    if (err != OK) {
        AVI_LOGE("%s(): error(%d) happens when parse file!", "readMetaData", err);
        return err;
    }
    for (Track& track : mTracks) {
        mTrackTable.push_back(&track);
    }
    return OK;
}

// Finds the RIFF chunks at the top level of the file. There is no padding between them.
status_t RuvoAVIExtractor::listRiffSegments() {
    for (int64_t position = 0; position < mReader.size();) {
        if (mReader.size() - position < kListHeaderSize) {
            AVI_LOGW("No more riff.");
            break;
        }
        ChunkHeader header;
        if (readChunkHeader(mReader, position, &header) != HeaderRead::kWhole) {
            mRiffList.clear();
            fail("readMetaData", ERROR_IO, kLineUnreadableSegment);
            return ERROR_IO;
        }
        if (header.id == fourcc("RIFF")) {
            AVI_LOGD("%s(): RIFF%zu size %lld(%llX) @%llX(%lld)", "readMetaData", mRiffList.size(),
                     ll(header.size), ull(header.size), ull(position), ll(position));
            mRiffList.push_back({position, header.size});
        }
        position += header.size + kChunkHeaderSize;
    }
    return OK;
}

}  // namespace android
