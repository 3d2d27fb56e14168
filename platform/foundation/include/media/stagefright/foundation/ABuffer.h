// SPDX-License-Identifier: Apache-2.0
//
// A reference-counted block of bytes with a valid range in it.
// Invariant: offset() + size() <= capacity(); capacity() is 0 while base() is null.
// Threading: the count is thread-safe, the bytes and the range belong to one thread at a time.
#pragma once

#include <media/stagefright/foundation/ABase.h>
#include <utils/RefBase.h>

#include <cstddef>
#include <cstdint>

namespace android {

class ABuffer : public RefBase {
  public:
    /// Allocates `capacity` bytes, uninitialised, all of them in the range. When the memory cannot
    /// be had, base() is null and capacity() is 0: the caller has to look.
    explicit ABuffer(size_t capacity);

    /// Wraps `capacity` bytes at `data`, which stay the caller's and must outlive the buffer.
    ABuffer(void* data, size_t capacity);

    /// A new buffer with a copy of `size` bytes at `data`; null when the memory cannot be had.
    static sp<ABuffer> CreateAsCopy(const void* data, size_t size);

    /// The first byte of the memory, whatever the range; null after a failed allocation.
    uint8_t* base() { return mData; }

    /// The first byte of the range.
    uint8_t* data() { return mData + mRangeOffset; }

    /// Bytes of memory.
    size_t capacity() const { return mCapacity; }

    /// Bytes in the range.
    size_t size() const { return mRangeLength; }

    /// Bytes before the range.
    size_t offset() const { return mRangeOffset; }

    /// Sets the range to `size` bytes after the first `offset` ones. A range that does not lie
    /// within the capacity aborts the process.
    void setRange(size_t offset, size_t size);

  protected:
    ~ABuffer() override {
        if (mOwnsData) {
            release();
        }
    }

  private:
    void release();

    uint8_t* mData = nullptr;
    size_t mCapacity = 0;
    size_t mRangeOffset = 0;
    size_t mRangeLength = 0;
    bool mOwnsData = false;

    DISALLOW_EVIL_CONSTRUCTORS(ABuffer);
};

}  // namespace android
