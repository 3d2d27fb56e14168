// SPDX-License-Identifier: Apache-2.0
//
// The reader of one track: hands out one compressed access unit a call, with its time and sync
// flag. The work is done by the parts it has as members; this class is their order.
// Threading: every operation holds mLock for its whole run, waits for buffers and the file
// included. Sources of one file share nothing that is written, but for the key flags of a table,
// the seek times, and their tracks' formats, which are only touched under the track's format lock.
#pragma once

#include <media/MediaExtractorPluginHelper.h>

#include <mutex>

#include "FileReader.h"
#include "Track.h"
#include "source/AudioSeekTimes.h"
#include "source/Chunk.h"
#include "source/ChunkLoader.h"
#include "source/FrameTimes.h"
#include "source/FramesAhead.h"
#include "source/MpegAudioReader.h"
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

    // The next sample. AMEDIA_ERROR_END_OF_STREAM after the last one, also where the file is cut;
    // AMEDIA_ERROR_UNKNOWN when a read fails inside the file. Aborts when not started.
    media_status_t read(MediaBufferHelper** out, const ReadOptions* options) override;

    bool supportsNonBlockingRead() override { return false; }

  private:
    // What a seek of this call led to.
    struct Seek {
        bool requested = false;
        int64_t timeUs = 0;     // where reading resumes
        int64_t targetUs = -1;  // of the frame that was asked for, where the mode knows one
    };

    uint32_t bufferSizeFor(uint32_t largest) const;
    media_status_t seek(int64_t requestedUs, ReadOptions::SeekMode mode, Seek* out);
    media_status_t readSample(const Seek& seek, Sample* out);
    media_status_t readMpegAudioFrame(const Seek& seek, Sample* out);
    void afterLoad(const Chunk& chunk, const SampleBuffer& loaded, int64_t timeUs,
                   const Seek& seek);
    void returnBuffer(Sample sample, MediaBufferHelper** out);

    std::mutex mLock;
    AMediaFormat* mFormat;    // not owned; touched only with *mFormatLock held
    std::mutex* mFormatLock;  // not owned
    bool mStarted = false;

    const SourceTrack mTrack;
    FramesAhead mFrames;
    SampleBufferPool mBuffers;
    SampleLog mLog;
    ChunkCursor mCursor;
    ChunkLoader mLoader;
    MpegAudioReader mMpegAudio;
    FrameTimes mTimes;
    Seeker mSeeker;
    AudioSeekTimes mSeekTimes;
};

}  // namespace android
