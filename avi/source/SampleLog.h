// SPDX-License-Identifier: Apache-2.0
//
// What a source logs of the samples that go out: their first and last bytes, their times, and how
// fast the file was read. Field problems are diagnosed from these lines, without a debugger.
// Not thread-safe.
#pragma once

#include <media/stagefright/foundation/AString.h>
#include <stddef.h>
#include <stdint.h>

#include "source/Chunk.h"
#include "source/LogPrefix.h"
#include "source/SampleBuffer.h"
#include "source/SourceTrack.h"

namespace android {

class SampleLog {
  public:
    static constexpr int64_t kNoTime = -1;

    explicit SampleLog(const SourceTrack& track) : mTrack(track) {}

    // True for the first dumps since construction or the last restart, for the last chunks of the
    // track, and for all while the verbose-log switch is on. `index`: of the chunk that was read
    // last.
    bool isEnableLogOutput(uint32_t index) const;

    // A seek: its first samples are logged, its reads are timed on their own.
    void restart();

    // The reading of a chunk begins now.
    void beginRead();

    // Logs the bytes of a sample; `timeUs` is kNoTime for one that has no time yet.
    void dumpData(const uint8_t* data, size_t size, int64_t timeUs, uint32_t index);

    // Logs a chunk that was loaded, and where it stands in the file and in time.
    void logChunk(const Chunk& chunk, const SampleBuffer& loaded, int64_t timeUs,
                  int64_t seekTimeUs) const;

    // Logs a sample that goes out, and its metadata.
    void logReturned(const SampleBuffer& sample, int64_t timeUs, uint32_t index);

  private:
    AString readInformation(int64_t timeUs, size_t size);
    void logFrame(const LogPrefix& prefix, const SampleBuffer& loaded) const;

    const SourceTrack& mTrack;
    uint32_t mReadCount = 0;      // dumps since construction or the last restart
    int64_t mReadStartUs = -1;    // wall clock when the reading of the last chunk began
    int64_t mTotalReadBytes = 0;  // dumped since then, with a measurable read time
    int64_t mTotalReadTimeUs = 0;
};

}  // namespace android
