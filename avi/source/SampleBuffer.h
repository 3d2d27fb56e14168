// SPDX-License-Identifier: Apache-2.0
//
// The buffers that samples go out in. They belong to the framework's group; who acquires one gives
// it back or hands it over. Threading: one thread at a time.
#pragma once

#include <media/MediaExtractorPluginHelper.h>
#include <stddef.h>
#include <stdint.h>

#include <memory>

namespace android {

// A buffer that was acquired, or none. Gives the buffer back when it goes.
class SampleBuffer {
  public:
    SampleBuffer() = default;
    SampleBuffer(MediaBufferHelper* buffer, size_t capacity)
        : mBuffer(buffer), mCapacity(capacity) {}

    explicit operator bool() const { return mBuffer != nullptr; }

    // REQUIRES of all below: there is a buffer.

    uint8_t* data() const { return static_cast<uint8_t*>(mBuffer->data()); }

    // Bytes at data() that may be written.
    size_t capacity() const { return mCapacity; }

    // Which bytes of data() are the sample, or are left of a chunk that is cut into samples.
    const uint8_t* rangeStart() const { return data() + mBuffer->range_offset(); }
    size_t rangeOffset() const { return mBuffer->range_offset(); }
    size_t rangeLength() const { return mBuffer->range_length(); }
    void setRange(size_t offset, size_t length) { mBuffer->set_range(offset, length); }

    AMediaFormat* metaData() const { return mBuffer->meta_data(); }

    // Hands the buffer over to the caller; there is none afterwards.
    MediaBufferHelper* release() { return mBuffer.release(); }

    // Gives the buffer back, if there is one.
    void reset() { mBuffer.reset(); }

  private:
    struct GiveBack {
        void operator()(MediaBufferHelper* buffer) const { buffer->release(); }
    };

    std::unique_ptr<MediaBufferHelper, GiveBack> mBuffer;
    size_t mCapacity = 0;
};

// A buffer that goes out as the next sample, and what its metadata say.
struct Sample {
    SampleBuffer buffer;
    int64_t timeUs = 0;
    int64_t targetUs = -1;  // of the frame that a seek asked for, where it is not this one
    bool isSync = false;
};

// Acquires the buffers of a started source.
class SampleBufferPool {
  public:
    // Asks `group` for buffers of `size` bytes. The group outlives the use of the pool.
    void init(MediaBufferGroupHelper* group, uint32_t size);

    // Waits for a buffer. On an error there is none.
    media_status_t acquire(SampleBuffer* out);

    // The same for a chunk that is read: a failure is logged.
    media_status_t acquireForChunk(SampleBuffer* out);

    // Largest buffer that may be asked for, and all that a group may hold.
    static constexpr uint32_t kMaxBytes = 64 * 1024 * 1024;

  private:
    MediaBufferGroupHelper* mGroup = nullptr;
    uint32_t mSize = 0;  // as asked of the group: buffers may report more than is usable
};

}  // namespace android
