// SPDX-License-Identifier: Apache-2.0
//
// A buffer group as the framework's side of the records would offer it, with what was asked of it.
// Buffers are handed out in turn, whether or not they came back. No locking.

#pragma once

#include <media/MediaExtractorPluginApi.h>
#include <stddef.h>
#include <stdint.h>

namespace android {

class FakeBuffer {
  public:
    FakeBuffer() = default;
    FakeBuffer(const FakeBuffer&) = delete;
    FakeBuffer& operator=(const FakeBuffer&) = delete;
    ~FakeBuffer() { AMediaFormat_delete(mFormat); }

    static constexpr size_t kSize = 16;

    uint8_t mBytes[kSize] = {};
    size_t mOffset = 0;
    size_t mLength = kSize;
    int mReleases = 0;
    AMediaFormat* const mFormat = AMediaFormat_new();

    CMediaBuffer mRecord = {
        this,
        [](void* handle) { ++self(handle)->mReleases; },
        [](void* handle) -> void* { return self(handle)->mBytes; },
        [](void*) { return kSize; },
        [](void* handle) { return self(handle)->mOffset; },
        [](void* handle) { return self(handle)->mLength; },
        [](void* handle, size_t offset, size_t length) {
            self(handle)->mOffset = offset;
            self(handle)->mLength = length;
        },
        [](void* handle) { return self(handle)->mFormat; },
    };

  private:
    static FakeBuffer* self(void* handle) { return static_cast<FakeBuffer*>(handle); }
};

class FakeBufferGroup {
  public:
    FakeBufferGroup() = default;
    FakeBufferGroup(const FakeBufferGroup&) = delete;
    FakeBufferGroup& operator=(const FakeBufferGroup&) = delete;

    static constexpr size_t kBuffers = 2;

    FakeBuffer mBuffers[kBuffers];
    size_t mNext = 0;
    size_t mInitBuffers = 0;
    size_t mInitSize = 0;
    size_t mInitGrowthLimit = SIZE_MAX;
    size_t mAddedSize = 0;
    bool mNonBlocking = true;
    size_t mRequestedSize = SIZE_MAX;
    // What acquire_buffer answers; anything but AMEDIA_OK comes with no buffer.
    media_status_t mAcquireStatus = AMEDIA_OK;

    CMediaBufferGroup mRecord = {
        this,
        [](void* handle, size_t buffers, size_t size, size_t growthLimit) {
            self(handle)->mInitBuffers = buffers;
            self(handle)->mInitSize = size;
            self(handle)->mInitGrowthLimit = growthLimit;
            return true;
        },
        [](void* handle, size_t size) { self(handle)->mAddedSize = size; },
        [](void* handle, CMediaBuffer** buffer, bool nonBlocking, size_t requestedSize) {
            return self(handle)->acquire(buffer, nonBlocking, requestedSize);
        },
        [](void* handle) { return self(handle)->mInitBuffers != 0; },
    };

  private:
    static FakeBufferGroup* self(void* handle) { return static_cast<FakeBufferGroup*>(handle); }

    media_status_t acquire(CMediaBuffer** buffer, bool nonBlocking, size_t requestedSize) {
        mNonBlocking = nonBlocking;
        mRequestedSize = requestedSize;
        if (mAcquireStatus != AMEDIA_OK) return mAcquireStatus;
        *buffer = &mBuffers[mNext].mRecord;
        mNext = (mNext + 1) % kBuffers;
        return AMEDIA_OK;
    }
};

}  // namespace android
