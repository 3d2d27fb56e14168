// SPDX-License-Identifier: Apache-2.0
//
// C++ classes over the plain records, header only so that plug-in and framework share no C++ binary
// interface: helpers that call the framework's records, base classes for what a plug-in implements,
// and wrap(), which turns those into records.
//
// Ownership: helpers do not own the records they forward to. A buffer's helper belongs to its
// group's helper, a group's helper to the track it was given to, and a wrapped object to its
// record. Threading: none here; see MediaExtractorPluginApi.h.

#pragma once

#include <media/MediaExtractorPluginApi.h>
#include <stdint.h>
#include <stdlib.h>
#include <sys/types.h>
#include <utils/Errors.h>

#include <map>
#include <memory>

namespace android {

class MediaTrackHelper;

/// Reads the framework's data source.
class DataSourceHelper {
  public:
    /// `source` must outlive the helper.
    explicit DataSourceHelper(CDataSource* source) : mSource(source) {}
    virtual ~DataSourceHelper() = default;

    /// Bytes read into `data`, less than `size` at the end of the source, or a negative error.
    virtual ssize_t readAt(off64_t offset, void* data, size_t size) {
        return mSource->readAt(mSource->handle, offset, data, size);
    }

    /// The source's length in bytes into `*size`; an error when it is not known.
    virtual status_t getSize(off64_t* size) { return mSource->getSize(mSource->handle, size); }

    virtual uint32_t flags() { return mSource->flags(mSource->handle); }

  protected:
    CDataSource* mSource = nullptr;
};

/// One of the framework's sample buffers. Its group's helper keeps one object a buffer and deletes
/// it; users call release() and never delete.
class MediaBufferHelper {
  public:
    explicit MediaBufferHelper(CMediaBuffer* buffer) : mBuffer(buffer) {}
    virtual ~MediaBufferHelper() = default;

    /// Gives the buffer back to its group; this object stays for the buffer's next use.
    virtual void release() { mBuffer->release(mBuffer->handle); }

    virtual void* data() { return mBuffer->data(mBuffer->handle); }

    /// Capacity in bytes. The device counts a small control block in it: see set_range().
    virtual size_t size() { return mBuffer->size(mBuffer->handle); }

    virtual size_t range_offset() { return mBuffer->range_offset(mBuffer->handle); }

    virtual size_t range_length() { return mBuffer->range_length(mBuffer->handle); }

    /// Says which bytes of data() are the sample; a range beyond size() aborts.
    virtual void set_range(size_t offset, size_t length) {
        mBuffer->set_range(mBuffer->handle, offset, length);
    }

    /// The buffer's own format, which keeps what an earlier use of the buffer left in it.
    virtual AMediaFormat* meta_data() { return mBuffer->meta_data(mBuffer->handle); }

  private:
    friend CMediaTrack* wrap(MediaTrackHelper* track);

    CMediaBuffer* mBuffer = nullptr;
};

/// The framework's pool of buffers for one track.
/// Invariant: one helper for each buffer ever acquired, living as long as this object.
class MediaBufferGroupHelper {
  public:
    /// `group` must outlive the helper's last call.
    explicit MediaBufferGroupHelper(CMediaBufferGroup* group) : mGroup(group) {}
    MediaBufferGroupHelper(const MediaBufferGroupHelper&) = delete;
    MediaBufferGroupHelper& operator=(const MediaBufferGroupHelper&) = delete;

    /// Adds `buffers` buffers of `size` bytes. A `growthLimit` of 0 forbids growth in number.
    bool init(size_t buffers, size_t size, size_t growthLimit = 0) {
        return mGroup->init(mGroup->handle, buffers, size, growthLimit);
    }

    void add_buffer(size_t size) { mGroup->add_buffer(mGroup->handle, size); }

    /// A free buffer of at least `requestedSize` bytes (0: any) into `*buffer`, waiting for one
    /// unless `nonBlocking`. On an error `*buffer` is null.
    media_status_t acquire_buffer(MediaBufferHelper** buffer, bool nonBlocking = false,
                                  size_t requestedSize = 0) {
        CMediaBuffer* record = nullptr;
        media_status_t status =
            mGroup->acquire_buffer(mGroup->handle, &record, nonBlocking, requestedSize);
        *buffer = record != nullptr ? helperOf(record) : nullptr;
        return status;
    }

    bool has_buffers() { return mGroup->has_buffers(mGroup->handle); }

  private:
    MediaBufferHelper* helperOf(CMediaBuffer* record) {
        std::unique_ptr<MediaBufferHelper>& helper = mHelpers[record];
        if (helper == nullptr) helper.reset(new MediaBufferHelper(record));
        return helper.get();
    }

    CMediaBufferGroup* mGroup = nullptr;
    std::map<CMediaBuffer*, std::unique_ptr<MediaBufferHelper>> mHelpers;
};

/// Base of a plug-in's tracks.
class MediaTrackHelper {
  public:
    MediaTrackHelper() = default;
    MediaTrackHelper(const MediaTrackHelper&) = delete;
    MediaTrackHelper& operator=(const MediaTrackHelper&) = delete;
    virtual ~MediaTrackHelper() { delete mBufferGroup; }

    /// mBufferGroup is set before the call, anew for every start.
    virtual media_status_t start() = 0;
    /// Must give every buffer back: the framework deletes the group before the track.
    virtual media_status_t stop() = 0;
    virtual media_status_t getFormat(AMediaFormat* format) = 0;

    /// How a read() seeks, if at all, and whether it may wait.
    class ReadOptions {
      public:
// The names are those of CMediaTrackReadOptions on the device too.
#pragma GCC diagnostic push
#pragma GCC diagnostic ignored "-Wshadow"
        enum SeekMode : int32_t {
            SEEK_PREVIOUS_SYNC,
            SEEK_NEXT_SYNC,
            SEEK_CLOSEST_SYNC,
            SEEK_CLOSEST,
            SEEK_FRAME_INDEX,
        };
#pragma GCC diagnostic pop

        /// `options` as CMediaTrackReadOptions; `seekPosUs` in microseconds, a frame number for
        /// SEEK_FRAME_INDEX.
        ReadOptions(uint32_t options, int64_t seekPosUs)
            : mOptions(options), mSeekPosUs(seekPosUs) {}

        /// False, with the outputs untouched, when no seek is wanted. `*mode` is what the caller
        /// wrote in three bits: it may be none of the enumerators.
        bool getSeekTo(int64_t* timeUs, SeekMode* mode) const {
            if ((mOptions & CMediaTrackReadOptions::SEEK) == 0) return false;
            *timeUs = mSeekPosUs;
            *mode = static_cast<SeekMode>(mOptions & kSeekModeMask);
            return true;
        }

        bool getNonBlocking() const {
            return (mOptions & CMediaTrackReadOptions::NONBLOCKING) != 0;
        }

      private:
        static constexpr uint32_t kSeekModeMask = 7;

        uint32_t mOptions = 0;
        int64_t mSeekPosUs = 0;
    };

    /// The next sample into `*buffer`, a buffer of mBufferGroup that the caller releases.
    /// AMEDIA_ERROR_END_OF_STREAM after the last one. Null options mean no seek.
    virtual media_status_t read(MediaBufferHelper** buffer,
                                const ReadOptions* options = nullptr) = 0;

    virtual bool supportsNonBlockingRead() {
        return false;
    }

  protected:
    friend CMediaTrack* wrap(MediaTrackHelper* track);

    MediaBufferGroupHelper* mBufferGroup = nullptr;
};

/// The record of a track, which it takes over; null gives null.
inline CMediaTrack* wrap(MediaTrackHelper* track) {
    if (track == nullptr) return nullptr;

    CMediaTrack* record = static_cast<CMediaTrack*>(malloc(sizeof(CMediaTrack)));
    record->data = track;
    record->free = [](void* data) { delete static_cast<MediaTrackHelper*>(data); };
    record->start = [](void* data, CMediaBufferGroup* group) -> media_status_t {
        MediaTrackHelper* self = static_cast<MediaTrackHelper*>(data);
        // The framework may start a track again without having stopped it.
        delete self->mBufferGroup;
        self->mBufferGroup = new MediaBufferGroupHelper(group);
        return self->start();
    };
    record->stop = [](void* data) -> media_status_t {
        return static_cast<MediaTrackHelper*>(data)->stop();
    };
    record->getFormat = [](void* data, AMediaFormat* format) -> media_status_t {
        return static_cast<MediaTrackHelper*>(data)->getFormat(format);
    };
    record->read = [](void* data, CMediaBuffer** buffer, uint32_t bits,
                      int64_t seekPosUs) -> media_status_t {
        MediaTrackHelper::ReadOptions options(bits, seekPosUs);
        MediaBufferHelper* helper = nullptr;
        media_status_t status = static_cast<MediaTrackHelper*>(data)->read(&helper, &options);
        if (status == AMEDIA_OK && helper != nullptr) *buffer = helper->mBuffer;
        return status;
    };
    record->supportsNonBlockingRead = [](void* data) -> bool {
        return static_cast<MediaTrackHelper*>(data)->supportsNonBlockingRead();
    };
    return record;
}

/// Base of a plug-in's extractor: one opened file.
class MediaExtractorPluginHelper {
  public:
    /// For getTrackMetaData(): also what is costly to find, such as the thumbnail's time.
    enum GetTrackMetaDataFlags { kIncludeExtensiveMetaData = 1 };

    /// For flags().
    enum Flags {
        CAN_SEEK_BACKWARD = 1,  // by some seconds, for a player's buttons
        CAN_SEEK_FORWARD = 2,
        CAN_PAUSE = 4,
        CAN_SEEK = 8,  // anywhere
    };

    MediaExtractorPluginHelper() = default;
    MediaExtractorPluginHelper(const MediaExtractorPluginHelper&) = delete;
    MediaExtractorPluginHelper& operator=(const MediaExtractorPluginHelper&) = delete;
    virtual ~MediaExtractorPluginHelper() = default;

    virtual size_t countTracks() = 0;
    /// A new track for the caller to own; null when `index` is out of range.
    virtual MediaTrackHelper* getTrack(size_t index) = 0;
    /// Fails when `index` is out of range or `meta` is null.
    virtual media_status_t getTrackMetaData(AMediaFormat* meta, size_t index,
                                            uint32_t flags = 0) = 0;
    /// What is known of the file as a whole; fails when `meta` is null.
    virtual media_status_t getMetaData(AMediaFormat* meta) = 0;

    /// Everything is allowed unless the plug-in says otherwise.
    virtual uint32_t flags() const {
        return CAN_SEEK_BACKWARD | CAN_SEEK_FORWARD | CAN_PAUSE | CAN_SEEK;
    }

    /// For descrambling; plug-ins without it refuse.
    virtual media_status_t setMediaCas(const uint8_t* /*casToken*/, size_t /*size*/) {
        return AMEDIA_ERROR_INVALID_OPERATION;
    }

    virtual const char* name() { return "<unspecified>"; }
};

/// The record of an extractor, which it takes over. `extractor` must not be null.
inline CMediaExtractor* wrap(MediaExtractorPluginHelper* extractor) {
    using Helper = MediaExtractorPluginHelper;

    CMediaExtractor* record = static_cast<CMediaExtractor*>(malloc(sizeof(CMediaExtractor)));
    record->data = extractor;
    record->free = [](void* data) { delete static_cast<Helper*>(data); };
    record->countTracks = [](void* data) -> size_t {
        return static_cast<Helper*>(data)->countTracks();
    };
    record->getTrack = [](void* data, size_t index) -> CMediaTrack* {
        return wrap(static_cast<Helper*>(data)->getTrack(index));
    };
    record->getTrackMetaData = [](void* data, AMediaFormat* meta, size_t index,
                                  uint32_t flags) -> media_status_t {
        return static_cast<Helper*>(data)->getTrackMetaData(meta, index, flags);
    };
    record->getMetaData = [](void* data, AMediaFormat* meta) -> media_status_t {
        return static_cast<Helper*>(data)->getMetaData(meta);
    };
    record->flags = [](void* data) -> uint32_t { return static_cast<Helper*>(data)->flags(); };
    record->setMediaCas = [](void* data, const uint8_t* casToken, size_t size) -> media_status_t {
        return static_cast<Helper*>(data)->setMediaCas(casToken, size);
    };
    record->name = [](void* data) -> const char* { return static_cast<Helper*>(data)->name(); };
    return record;
}

namespace uuid_detail {

constexpr uint8_t hexDigit(char c) {
    if (c >= '0' && c <= '9') return static_cast<uint8_t>(c - '0');
    if (c >= 'a' && c <= 'f') return static_cast<uint8_t>(c - 'a' + 10);
    if (c >= 'A' && c <= 'F') return static_cast<uint8_t>(c - 'A' + 10);
    abort();  // not a constant expression: a bad digit does not compile
}

}  // namespace uuid_detail

/// The sixteen bytes of "xxxxxxxx-xxxx-xxxx-xxxx-xxxxxxxxxxxx", in the order of the text.
constexpr media_uuid_t UUID(const char (&text)[37]) {
    media_uuid_t uuid = {};
    int pos = 0;
    for (uint8_t& byte : uuid.b) {
        if (text[pos] == '-') ++pos;
        byte = static_cast<uint8_t>(uuid_detail::hexDigit(text[pos]) << 4 |
                                    uuid_detail::hexDigit(text[pos + 1]));
        pos += 2;
    }
    return uuid;
}

}  // namespace android
