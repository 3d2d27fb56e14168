// SPDX-License-Identifier: Apache-2.0
// A buffer that a track handed over, released back to its group when the handle goes.
// Invariant: a non-empty handle holds exactly one acquisition. The buffer's group must outlive it.
// Threads: a handle may move to another thread but is used by one at a time.
#pragma once

#include <cstddef>
#include <cstdint>
#include <utility>
#include <vector>

#include <media/MediaExtractorPluginApi.h>

#include "service/MediaFormat.h"

namespace android::service {

class BufferHandle {
  public:
    /** An empty handle. */
    BufferHandle() = default;
    /** Takes over an acquired buffer; null gives an empty handle. */
    explicit BufferHandle(CMediaBuffer* buffer) : mBuffer(buffer) {}
    BufferHandle(BufferHandle&& other) noexcept : mBuffer(std::exchange(other.mBuffer, nullptr)) {}
    BufferHandle& operator=(BufferHandle&& other) noexcept;
    ~BufferHandle() { release(); }

    /** Whether there is a buffer; every accessor below needs one. */
    explicit operator bool() const { return mBuffer != nullptr; }

    /** Start of the whole buffer, not of its range. */
    uint8_t* base() const;
    /** Size of the whole buffer in bytes. */
    size_t size() const;
    size_t rangeOffset() const;
    size_t rangeLength() const;
    /** The first byte of the range, which holds the sample. */
    const uint8_t* data() const { return base() + rangeOffset(); }
    /** A copy of the bytes in the range. */
    std::vector<uint8_t> bytes() const;
    /** Sets the range; aborts the process when it does not lie in the buffer. */
    void setRange(size_t offset, size_t length);
    /** The buffer's own metadata, valid while the buffer is held. */
    FormatView metaData() const;

    /** Gives the buffer back now; the handle is empty afterwards. No effect on an empty handle. */
    void release();
    /** The plain record, null for an empty handle; still held by this handle. */
    CMediaBuffer* get() const { return mBuffer; }
    /** The plain record, which the caller now has to release. */
    CMediaBuffer* detach() { return std::exchange(mBuffer, nullptr); }

  private:
    CMediaBuffer* mBuffer = nullptr;
};

}  // namespace android::service
