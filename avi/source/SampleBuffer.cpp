// SPDX-License-Identifier: Apache-2.0
#include "source/SampleBuffer.h"

#include <algorithm>

#include "support/Check.h"
#include "support/Log.h"

namespace android {

void SampleBufferPool::init(MediaBufferGroupHelper* group, uint32_t size) {
    constexpr size_t kInitialBuffers = 2;
    constexpr uint32_t kMaxBuffers = 8;
    mGroup = group;
    mSize = size;
    mGroup->init(kInitialBuffers, size, std::min(kMaxBytes / size, kMaxBuffers));
}

media_status_t SampleBufferPool::acquire(SampleBuffer* out) {
    MediaBufferHelper* buffer = nullptr;
    const media_status_t err = mGroup->acquire_buffer(&buffer);
    // On the device a buffer's size counts a control block too.
    const size_t capacity = buffer == nullptr ? 0 : std::min<size_t>(buffer->size(), mSize);
    SampleBuffer acquired(buffer, capacity);
    if (err == AMEDIA_OK) *out = std::move(acquired);
    return err;
}

media_status_t SampleBufferPool::acquireForChunk(SampleBuffer* out) {
    if (acquire(out) != AMEDIA_OK) {
        fail("read", AMEDIA_ERROR_UNKNOWN, __LINE__);
        return AMEDIA_ERROR_UNKNOWN;
    }
    const SampleBuffer& buffer = *out;
    AVI_CHECK_TEXT(buffer, "mBuffer != NULL");
    return AMEDIA_OK;
}

}  // namespace android
