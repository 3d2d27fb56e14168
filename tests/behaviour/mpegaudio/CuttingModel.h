// SPDX-License-Identifier: Apache-2.0
//
// A plain model of reading an MPEG-1 Layer III stream frame by frame: what each read has to give,
// worked out on chunks in memory. It knows nothing of buffers but their size. One thread.

#pragma once

#include <cstdint>
#include <vector>

#include "tests/behaviour/mpegaudio/MpegAudioFixture.h"

namespace avitest {

// What is known of the stream before it is read.
struct ModelStream {
    uint32_t header = kHeader;
    uint32_t scale = 1;
    uint32_t rate = 16000;
    bool countsBytes = true;  // else chunks, which share the duration evenly
    int64_t durationUs = 0;
    size_t blockSize = 0;   // of headerless data in block mode, 0: all there is
    size_t firstChunk = 0;  // chunks in front of it are junk
};

struct ModelRead {
    media_status_t status = AMEDIA_OK;
    Bytes bytes;
    int64_t timeUs = 0;
};

class CuttingModel {
  public:
    CuttingModel(const ModelStream& stream, std::vector<Bytes> chunks);

    ModelRead read();
    // Every frame to the end of the stream.
    std::vector<ModelRead> readAll();

  private:
    struct Found {
        uint32_t header = 0;
        size_t start = 0;
        size_t size = 0;
        int bitRate = 0;
    };

    bool refill();
    void take();
    int64_t chunkTimeUs() const;
    Found find() const;
    ModelRead giveHeader();
    ModelRead giveWhole(const Found& found);
    ModelRead giveSplit(const Found& found);

    ModelStream mStream;
    std::vector<Bytes> mChunks;
    size_t mCapacity = 0;  // of a buffer
    size_t mNext = 0;
    size_t mConsumed = 0;  // of the next chunk
    Bytes mRest;
    int64_t mTimeUs = 0;
    // Of the read going on.
    size_t mLoadedSize = 0;
    int64_t mChunkTimeUs = 0;
};

}  // namespace avitest
