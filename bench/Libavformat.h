// SPDX-License-Identifier: Apache-2.0
//
// FFmpeg's demuxer over the same counted source, with its usual buffer. It looks at no sample to
// learn more about streams (avformat_find_stream_info). One thread.
#pragma once

#include <memory>

#include "bench/Contender.h"
#include "bench/CountingSource.h"

struct AVFormatContext;
struct AVIOContext;
struct AVPacket;

namespace avibench {

class Libavformat : public Contender {
  public:
    // Parsers read the headers of frames, which tells their types and lengths.
    enum class Parsers { kUsed, kNone };

    explicit Libavformat(Parsers parsers);
    Libavformat(const Libavformat&) = delete;
    Libavformat& operator=(const Libavformat&) = delete;
    ~Libavformat() override;

    void open(const std::string& path) override;
    uint64_t read(uint64_t count) override;
    void seek(int64_t timeUs) override;
    void close() override;
    uint64_t calls() const override { return mReader.source->calls(); }

  private:
    struct Reader {
        std::unique_ptr<CountingSource> source;
        int64_t position = 0;
        int64_t size = 0;
    };
    static int readPacket(void* reader, uint8_t* data, int size);
    static int64_t seekTo(void* reader, int64_t offset, int whence);

    const Parsers mParsers;
    Reader mReader;
    AVIOContext* mIo = nullptr;
    AVFormatContext* mFormat = nullptr;
    AVPacket* mPacket = nullptr;
};

}  // namespace avibench
