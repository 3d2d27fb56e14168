// SPDX-License-Identifier: Apache-2.0
// The pool from which a plug-in takes the buffers it fills. A buffer is either free or held by
// whoever acquired it, and only free ones are handed out or replaced.
// Owns its buffers. Misuse (deleting the group with a buffer held, releasing a buffer that is not
// held, a range beyond a buffer's size) ends the process with a fatal log message, as on the
// device. Threads: every method, and every entry of the plain records, may be called from several
// threads at once; a held buffer's range, bytes and metadata belong to its holder alone.
#pragma once

#include <condition_variable>
#include <cstddef>
#include <memory>
#include <mutex>
#include <vector>

#include <media/MediaExtractorPluginApi.h>

#include "service/BufferHandle.h"

namespace android::service {

class BufferGroup {
  public:
    /** The outcome of acquire: the buffer is empty unless the status is AMEDIA_OK. */
    struct Acquired {
        media_status_t status = AMEDIA_OK;
        BufferHandle buffer;
    };

    /** A group without buffers, which does not grow. */
    BufferGroup();
    BufferGroup(const BufferGroup&) = delete;
    BufferGroup& operator=(const BufferGroup&) = delete;
    /** Aborts the process when a buffer is still held. */
    ~BufferGroup();

    /**
     * Adds `buffers` buffers of `size` bytes to those already there and lets acquire add more while
     * there are fewer than `growthLimit`; 0 means that it adds none. A limit below `buffers` is
     * raised to it. False when there is no memory for all of them; then it adds none, since who
     * asks for two may hold one while it waits for the other.
     */
    bool init(size_t buffers, size_t size, size_t growthLimit = 0);

    /** Adds one free buffer of `size` bytes, whatever the growth limit. */
    void addBuffer(size_t size);

    /**
     * Hands out the first free buffer of at least `requestedSize` bytes (0: of any size). If there
     * is none, the smallest free one is replaced by one of 3/2 the requested size, or one of that
     * size is added while under the growth limit; a request of 0 then gets the size of the biggest.
     * If that is not possible either, or memory is short, waits until a buffer comes back. Returns
     * AMEDIA_ERROR_UNKNOWN at once with `nonBlocking`, and when memory was short and nobody holds a
     * buffer: the wait would have no end.
     *
     * The buffer's range is the whole buffer. Its metadata keeps what the previous holder put
     * there.
     */
    Acquired acquire(bool nonBlocking = false, size_t requestedSize = 0);

    /** Whether a buffer is free or could be added: acquire(false, 0) would not wait. */
    bool hasBuffers() const;

    /** Number of buffers, free and held. */
    size_t bufferCount() const;
    /** Number of buffers below which acquire adds one, as init left it. */
    size_t growthLimit() const;
    /** Number of buffers that are held. */
    size_t heldCount() const;
    /** Sizes in bytes of all buffers, in the order in which acquire looks at them. */
    std::vector<size_t> bufferSizes() const;

    /** The record to hand to a plug-in, valid while the group lives. */
    CMediaBufferGroup* plain() { return &mRecord; }

  private:
    class Buffer;

    media_status_t acquirePlain(CMediaBuffer** out, bool nonBlocking, size_t requestedSize);
    Buffer* findOrMake(size_t requestedSize);
    std::unique_ptr<Buffer> makeBuffer(size_t requestedSize);
    void giveBack(Buffer& buffer);
    bool isUsable(const Buffer& buffer);
    bool isHopeless() const;

    CMediaBufferGroup mRecord{};
    mutable std::mutex mLock;           // guards everything below
    std::condition_variable mReturned;  // a buffer came back, or one more may be had
    std::vector<std::unique_ptr<Buffer>> mBuffers;
    size_t mGrowthLimit = 0;
    bool mMemoryIsShort = false;  // for the last buffer that was to be made
};

}  // namespace android::service
