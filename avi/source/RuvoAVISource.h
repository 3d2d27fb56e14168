// SPDX-License-Identifier: Apache-2.0
//
// The reader of one track: hands out one compressed access unit a call, with its time and sync
// flag. Invariant: mCurrentSampleIndex names the next chunk; mBuffer is empty between calls.
// Threading: every operation holds mLock for its whole run, waits for buffers and the file
// included. Sources of one file share nothing that is written, but for their tracks' formats, which
// are only touched under the track's format lock.
#pragma once

#include <media/MediaExtractorPluginHelper.h>
#include <utils/Errors.h>

#include <mutex>
#include <string>

#include "Track.h"
#include "source/Conversions.h"
#include "source/FrameType.h"

namespace android {

class RuvoAVISource : public MediaTrackHelper {
  public:
    // All arguments belong to the extractor, which outlives its sources. `formatLock` guards
    // `format`. What is needed of `info` is copied now.
    RuvoAVISource(AMediaFormat* format, DataSourceHelper* source, const TrackInfo& info,
                  SampleTable* table, std::mutex* formatLock);
    ~RuvoAVISource() override;

    // Prepares the buffers. AMEDIA_ERROR_MALFORMED when the track's largest sample is unknown, 0 or
    // above 64 MiB. Aborts when already started.
    media_status_t start() override;

    // Gives every buffer back and rewinds to the first sample. Aborts when not started.
    media_status_t stop() override;

    // Copies the track's format into `out`.
    media_status_t getFormat(AMediaFormat* out) override;

    // The next sample. AMEDIA_ERROR_END_OF_STREAM behind the last one, also where the file is cut;
    // AMEDIA_ERROR_UNKNOWN when a read fails inside the file. Aborts when not started.
    media_status_t read(MediaBufferHelper** out, const ReadOptions* options) override;

    bool supportsNonBlockingRead() override { return false; }

  private:
    // The chunk that a call of read() works on.
    struct Chunk {
        size_t index = 0;
        int64_t offset = 0;  // of its data in the file
        uint32_t size = 0;
        uint32_t bytesBefore = 0;  // of the stream, where the table counts bytes
        bool isSync = false;
        FrameType type = FrameType::kUnknown;
    };

    // source/RuvoAVISource.cpp
    void releaseBuffer();

    // source/ReadPath.cpp
    bool nextChunk(Chunk* out);
    media_status_t acquireBuffer(MediaBufferHelper** out, size_t* capacity);
    media_status_t loadChunk(Chunk* chunk, size_t capacity);
    bool loadPlain(const Chunk& chunk, size_t capacity, size_t insertedBytes);
    bool loadVc1(Chunk* chunk, size_t capacity, size_t* insertedBytes);
    bool loadLengthPrefixed(const Chunk& chunk, size_t capacity);
    void logMalformedNal(const Chunk& chunk, const uint8_t* sample, const PrefixedNal& unit,
                         unsigned number) const;
    media_status_t convertPcm(const Chunk& chunk);
    media_status_t convertPcm8(const Chunk& chunk);
    void publishMetaData(const Chunk& chunk, int64_t timeUs);
    media_status_t returnBuffer(MediaBufferHelper** out);
    media_status_t shortRead(const Chunk& chunk, int line);
    media_status_t endOfStream(const std::string& prefix, int line);
    media_status_t unknownError(const std::string& prefix, int line);
    std::string prefix() const;
    std::string prefix(const Chunk& chunk) const;
    int64_t fileSize() const;

    // source/FrameTime.cpp
    FrameType getFrameType(const uint8_t* data, size_t size) const;
    int64_t followingBFrames() const;
    int64_t sampleTimeUs(const Chunk& chunk) const;
    int64_t calculateFrameDTS(FrameType type, uint32_t bytesBefore) const;
    int64_t audioTimeUs(int64_t index, uint32_t bytesBefore) const;

    std::mutex mLock;
    AMediaFormat* mFormat;          // not owned; touched only with *mFormatLock held
    std::mutex* mFormatLock;        // not owned
    DataSourceHelper* mDataSource;  // not owned
    TrackInfo mInfo;
    SampleTable* mTable;  // not owned

    // Asking a format for a string writes to it, so the type is asked for once, before any other
    // thread can copy the format.
    std::string mMime;
    int64_t mDurationUs = 0;
    bool mIsVideo = false;
    bool mIsAudio = false;
    bool mIsRawPCM = false;
    bool mIsMPEG4 = false;
    bool mIsAVC = false;
    bool mIsHEVC = false;
    bool mIsWVC1 = false;

    bool mStarted = false;
    uint32_t mBufferSize = 0;  // as asked of the group: buffers may report more than is usable
    uint32_t mCurrentSampleIndex = 0;
    MediaBufferHelper* mBuffer = nullptr;  // being filled; belongs to the group
};

}  // namespace android
