// SPDX-License-Identifier: Apache-2.0
#include "bench/Libavformat.h"

extern "C" {
#include <libavformat/avformat.h>
}

#include <stdexcept>

namespace avibench {

namespace {

constexpr int kBufferBytes = 32768;  // as for files
constexpr AVRational kMicroseconds = {1, 1000000};

void check(int result, const std::string& what) {
    if (result < 0) throw std::runtime_error("libavformat: " + what);
}

}  // namespace

Libavformat::Libavformat(Parsers parsers) : mParsers(parsers), mPacket(av_packet_alloc()) {
    av_log_set_level(AV_LOG_QUIET);
}

Libavformat::~Libavformat() {
    close();
    av_packet_free(&mPacket);
}

int Libavformat::readPacket(void* handle, uint8_t* data, int size) {
    auto& reader = *static_cast<Reader*>(handle);
    const ssize_t got = reader.source->readAt(reader.position, data, static_cast<size_t>(size));
    if (got <= 0) return AVERROR_EOF;
    reader.position += got;
    return static_cast<int>(got);
}

int64_t Libavformat::seekTo(void* handle, int64_t offset, int whence) {
    auto& reader = *static_cast<Reader*>(handle);
    if ((whence & AVSEEK_SIZE) != 0) return reader.size;
    if (whence == SEEK_CUR) offset += reader.position;
    if (whence == SEEK_END) offset += reader.size;
    return reader.position = offset;
}

void Libavformat::open(const std::string& path) {
    mReader = Reader{std::make_unique<CountingSource>(path)};
    mReader.source->getSize(&mReader.size);
    auto* buffer = static_cast<uint8_t*>(av_malloc(kBufferBytes));
    mIo = avio_alloc_context(buffer, kBufferBytes, 0, &mReader, readPacket, nullptr, seekTo);
    mFormat = avformat_alloc_context();
    mFormat->pb = mIo;
    if (mParsers == Parsers::kNone) mFormat->flags |= AVFMT_FLAG_NOPARSE;
    check(avformat_open_input(&mFormat, nullptr, nullptr, nullptr), "cannot open " + path);
}

uint64_t Libavformat::read(uint64_t count) {
    for (uint64_t done = 0; done < count; ++done) {
        if (av_read_frame(mFormat, mPacket) < 0) return done;
        av_packet_unref(mPacket);
    }
    return count;
}

void Libavformat::seek(int64_t timeUs) {
    const int64_t time = av_rescale_q(timeUs, kMicroseconds, mFormat->streams[0]->time_base);
    check(av_seek_frame(mFormat, 0, time, AVSEEK_FLAG_BACKWARD), "cannot seek");
    bool isVideo = false;
    while (!isVideo) {
        check(av_read_frame(mFormat, mPacket), "cannot read after a seek");
        isVideo = mPacket->stream_index == 0;
        av_packet_unref(mPacket);
    }
}

void Libavformat::close() {
    avformat_close_input(&mFormat);
    if (mIo != nullptr) av_freep(&mIo->buffer);
    avio_context_free(&mIo);
}

}  // namespace avibench
