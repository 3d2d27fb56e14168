// SPDX-License-Identifier: Apache-2.0
//
// Reads MPEG-audio streams a frame at a time: loads chunks, cuts frames off them, and keeps what is
// left for the next call. Invariant: between calls mRest holds at least one byte, or nothing.
// Not thread-safe.
#pragma once

#include <stddef.h>
#include <stdint.h>
#include <utils/Errors.h>

#include "source/Chunk.h"
#include "source/MpegAudioCutter.h"
#include "source/SampleBuffer.h"
#include "source/SampleLog.h"
#include "source/SourceTrack.h"

namespace android {

class MpegAudioReader {
  public:
    // The cursor, the pool and the log are those of the source.
    MpegAudioReader(const SourceTrack& track, ChunkCursor* cursor, SampleBufferPool* buffers,
                    SampleLog* log);

    // True for streams in which a frame header was found; others are not read by this class.
    bool isActive() const { return mCutter.isActive(); }

    // A seek to `timeUs`: what is left of a chunk is dropped, and nothing is consumed of the next.
    void seek(int64_t timeUs);

    // The next chunk is read from its byte `consumed` on.
    void skip(uint32_t consumed) { mConsumed = consumed; }

    // Gives the buffer back. What was consumed of the next chunk stays so.
    void dropRest() { mRest.reset(); }

    // What is left is too short to be cut: a chunk must be loaded first.
    bool needsChunk() const;

    // Loads the next chunk, or two where little is left of the first; `chunk` is the last one.
    media_status_t load(Chunk* chunk);
    const SampleBuffer& rest() const { return mRest; }

    // Cuts the next frame into a buffer of its own, and stamps it. `chunk`: what this call of
    // read() loaded, if anything, and its time. REQUIRES: !needsChunk(), or load() was called.
    media_status_t cutFrame(const Chunk& chunk, int64_t chunkTimeUs, Sample* out);

  private:
    media_status_t append(size_t offset, size_t left, Chunk* chunk);
    void moveToFront(size_t offset, size_t length);
    media_status_t takeWhole(const Chunk& chunk, const MpegAudioCut& cut, int64_t chunkTimeUs,
                             Sample* out);
    media_status_t takeSpanning(const Chunk& chunk, const MpegAudioCut& cut, int64_t chunkTimeUs,
                                Sample* out);
    media_status_t acquireFrame(const Chunk& chunk, size_t size, SampleBuffer* out);
    bool completeFrame(const Chunk& loaded, size_t have, size_t frameSize, uint8_t* frame);
    status_t readNextChunk(uint8_t* dst, size_t wanted, ssize_t* got) const;
    bool isLogging() const { return mLog.isEnableLogOutput(mCursor.last()); }
    void logWholeChunk(const Chunk& loaded) const;
    void logCut(const Chunk& chunk, const MpegAudioFound& found, size_t length) const;

    const SourceTrack& mTrack;
    ChunkCursor& mCursor;
    SampleBufferPool& mBuffers;
    SampleLog& mLog;
    MpegAudioCutter mCutter;
    SampleBuffer mRest;      // the range is what is left of the last chunk
    uint32_t mConsumed = 0;  // bytes of the next chunk that went out already
};

}  // namespace android
