// SPDX-License-Identifier: Apache-2.0
//
// The reader of one track: hands out one compressed access unit a call, with its time and sync
// flag. Invariant: mCurrentSampleIndex names the next chunk; mBuffer is empty between calls,
// but for MPEG audio, where it keeps the rest of a chunk.
// Threading: every operation holds mLock for its whole run, waits for buffers and the file
// included. Sources of one file share nothing that is written, but for their tracks' formats, which
// are only touched under the track's format lock.
#pragma once

#include <media/MediaExtractorPluginHelper.h>
#include <utils/Errors.h>

#include <mutex>
#include <string>

#include "source/AudioSeekTimes.h"
#include "source/ChunkLoader.h"
#include "source/FrameTimes.h"
#include "source/MpegAudioCutter.h"
#include "source/ReadFailure.h"
#include "source/SampleBuffer.h"
#include "source/SampleLog.h"
#include "source/Seeker.h"
#include "source/SourceTrack.h"

namespace android {

class RuvoAVISource : public MediaTrackHelper {
  public:
    // All arguments belong to the extractor, which outlives its sources.
    RuvoAVISource(Track* track, const FileReader& reader,
                  const Vector<sp<RuvoAVISeekTime>>& seekTimes);
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
    // What a seek of this call asked for and led to.
    struct Seek {
        bool requested = false;
        int64_t timeUs = 0;     // where reading resumes
        int64_t targetUs = -1;  // of the frame that was asked for, where the mode tells one
    };

    // source/RuvoAVISource.cpp
    uint32_t bufferSizeFor(uint32_t largest) const;

    // source/ReadPath.cpp
    bool nextChunk(Chunk* out);
    static void publishMetaData(const SampleBuffer& buffer, int64_t timeUs, bool isSync);
    void returnBuffer(MediaBufferHelper** out, SampleBuffer buffer, int64_t timeUs);

    // source/MpegAudioRead.cpp
    media_status_t readMpegAudioFrame(const Seek& seek, MediaBufferHelper** out);
    media_status_t loadMpegAudioChunk(Chunk* chunk);
    media_status_t appendMpegAudioChunk(size_t offset, size_t left, Chunk* chunk);
    size_t moveToFront(size_t offset, size_t length);
    media_status_t cutMpegAudioFrame(const Chunk& chunk, int64_t chunkTimeUs,
                                     MediaBufferHelper** out);
    void logCut(const Chunk& chunk, const MpegAudioFound& found, size_t length) const;
    media_status_t acquireFrameBuffer(const Chunk& chunk, size_t size, SampleBuffer* out);
    void takeFromRest(size_t count);
    bool completeMpegAudioFrame(const Chunk& loaded, size_t frameSize, size_t have,
                                const SampleBuffer& frame);
    void logWholeChunk(const Chunk& loaded) const;
    status_t readNextChunk(uint8_t* dst, size_t wanted, ssize_t* got);

    media_status_t seek(int64_t requestedUs, ReadOptions::SeekMode mode, Seek* out);

    std::mutex mLock;
    AMediaFormat* mFormat;    // not owned; touched only with *mFormatLock held
    std::mutex* mFormatLock;  // not owned
    const SourceTrack mTrack;

    bool mStarted = false;
    SampleLog mLog;
    SampleBufferPool mBuffers;
    uint32_t mCurrentSampleIndex = 0;
    uint32_t mChunkConsumed = 0;  // bytes of the next chunk that went out already
    // Being filled; between calls the rest of a chunk that is cut into frames.
    SampleBuffer mBuffer;
    ChunkLoader mLoader;
    MpegAudioCutter mCutter;
    FrameTimes mTimes;
    Seeker mSeeker;
    AudioSeekTimes mSeekTimes;
};

}  // namespace android
