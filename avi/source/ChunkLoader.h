// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <media/MediaExtractorPluginHelper.h>
#include <stddef.h>
#include <stdint.h>

#include "source/Chunk.h"
#include "source/Conversions.h"
#include "source/FramesAhead.h"
#include "source/SampleBuffer.h"
#include "source/SampleLog.h"
#include "source/SourceTrack.h"

namespace android {

// One read of a chunk as it lies in the file, to `position` of the buffer. False when the file or
// the buffer does not hold it. Of its first `skipped` bytes nobody asks for, only their room is
// left.
bool readChunk(const SourceTrack& track, const Chunk& chunk, const SampleBuffer& buffer,
               size_t position, size_t skipped = 0);

// Loads chunks in the form that decoders take: start codes before VC-1 and AVC units, PCM of 16
// bits. Not for MPEG audio, which is cut into frames.
class ChunkLoader {
  public:
    // The frames, the pool and the log are those of the source.
    ChunkLoader(const SourceTrack& track, FramesAhead* frames, SampleBufferPool* buffers,
                SampleLog* log)
        : mTrack(track), mFrames(*frames), mBuffers(*buffers), mLog(*log) {}

    // Acquires a buffer, fills it, and types the frame. Samples of PCM are left as they are.
    media_status_t load(Chunk* chunk, SampleBuffer* out);

    // Makes PCM of other widths 16 bits wide, which the platform's audio path takes. Replaces the
    // buffer where it is too small.
    media_status_t convertPcm(const Chunk& chunk, SampleBuffer* buffer);

  private:
    bool isLengthPrefixed() const;
    bool liesBeyondFile(const Chunk& chunk) const;
    bool loadPlain(const Chunk& chunk, const SampleBuffer& out);
    bool loadVc1(Chunk* chunk, const SampleBuffer& out, size_t* insertedBytes);
    bool loadLengthPrefixed(const Chunk& chunk, const SampleBuffer& out);
    size_t convertLengthPrefixed(const Chunk& chunk, const uint8_t* sample,
                                 const SampleBuffer& out) const;
    void logNal(int priority, const Chunk& chunk, const uint8_t* sample, const PrefixedNal& unit,
                unsigned number, const char* verdict) const;
    media_status_t convertPcm8(const Chunk& chunk, SampleBuffer* buffer);

    const SourceTrack& mTrack;
    FramesAhead& mFrames;
    SampleBufferPool& mBuffers;
    SampleLog& mLog;
};

}  // namespace android
