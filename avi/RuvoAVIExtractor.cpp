// SPDX-License-Identifier: Apache-2.0
//
// The framework's queries, and the driver that parses a file on the first of them.
#include "RuvoAVIExtractor.h"

#include <media/stagefright/MediaErrors.h>
#include <media/stagefright/foundation/MediaDefs.h>
#include <strings.h>

#include "ChunkWalker.h"
#include "riff/RiffSegments.h"
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

// Every capability, also for files that have yet to prove it: flags are asked before the parse.
constexpr uint32_t kAllCapabilities = 255;

namespace {

// The thumbnail time takes the place of the duration too: the service that asks for extensive
// metadata positions by it. REQUIRES: the track's format lock is held.
void publishThumbnailTime(Track* track) {
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

}  // namespace

RuvoAVIExtractor::RuvoAVIExtractor(DataSourceHelper* source) : mReader(source) {
    readSwitches();
}

RuvoAVIExtractor::~RuvoAVIExtractor() {
    for (const auto& track : mFile.tracks) {
        AVI_LOGD("delete track %s", AMediaFormat_toString(track->meta.get()));
    }
    AVI_LOGE("delete file meta %s", AMediaFormat_toString(mFile.meta.get()));
}

size_t RuvoAVIExtractor::countTracks() {
    const status_t err = readMetaData();
    if (err != OK) {
        AVI_LOGE("%s(): readMetaData() failed, err = %d!", "countTracks", err);
        return 0;
    }
    return mFile.tracks.size();
}

MediaTrackHelper* RuvoAVIExtractor::getTrack(size_t index) {
    if (readMetaData() != OK) return nullptr;
    Track* track = mFile.tracks.byPosition(index);
    if (track == nullptr) return nullptr;
    return new RuvoAVISource(track, mReader, mFile.audioSeekTimes);
}

media_status_t RuvoAVIExtractor::getTrackMetaData(AMediaFormat* out, size_t index, uint32_t flags) {
    if (readMetaData() != OK) {
        return fail("getTrackMetaData", AMEDIA_ERROR_UNKNOWN, kLineNoTrackMetaData);
    }
    Track* track = mFile.tracks.byPosition(index);
    if (track == nullptr) {
        const bool listEnds = index > mFile.tracks.size();
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

media_status_t RuvoAVIExtractor::getMetaData(AMediaFormat* out) {
    if (readMetaData() != OK) {
        return fail("getMetaData", AMEDIA_ERROR_UNKNOWN, kLineNoMetaData);
    }
    return AMediaFormat_copy(out, mFile.meta.get());
}

uint32_t RuvoAVIExtractor::flags() const {
    return kAllCapabilities;
}

media_status_t RuvoAVIExtractor::setMediaCas(const uint8_t* /*data*/, size_t /*size*/) {
    return AMEDIA_ERROR_INVALID_OPERATION;
}

status_t RuvoAVIExtractor::readMetaData() {
    const std::lock_guard<std::mutex> lock(mParseLock);
    if (mInitCheck == OK) return OK;
    if (mInitCheck != NO_INIT) {
        AVI_LOGE("%s(): mInitCheck = %d.", "readMetaData", mInitCheck);
        return mInitCheck;
    }
    return parseOnce();
}

status_t RuvoAVIExtractor::parseOnce() {
    const LogLimit limit;
    ChunkHeader header;
    if (readChunkHeader(mReader, 0, &header) != HeaderRead::kWhole) {
        return fail("readMetaData", status_t{ERROR_IO}, kLineUnreadableHeader);
    }
    AVI_LOGD("%s(): ID %X, size %X, type %X @L%d", "readMetaData", toWord(header.id), header.size,
             toWord(header.type), kLineHeader);
    if (header.id != fourcc("RIFF")) {
        return fail("readMetaData", status_t{ERROR_UNSUPPORTED}, kLineNotRiff);
    }
    mReader.keepSize();
    AVI_LOGD("%s(): mFileSize: %lld.", "readMetaData", ll(mReader.size()));

    RiffSegments segments(mReader, &mFile);
    const status_t err = segments.list();
    if (err != OK) return err;
    mInitCheck = segments.parseFirstRIFF();
    mReader.endParse();
    AMediaFormat_setString(mFile.meta.get(), AMEDIAFORMAT_KEY_MIME, MEDIA_MIMETYPE_CONTAINER_AVI);
    if (mInitCheck != OK) {
        AVI_LOGE("%s(): error(%d) happens when parse file!", "readMetaData", mInitCheck);
    }
    return mInitCheck;
}

}  // namespace android
