// SPDX-License-Identifier: Apache-2.0
//
// The bytes of one file: the framework's data source, and what its size allows.
// Threading: any thread. The source is asked by one thread at a time, since the extractor service's
// own for remote files mixes up the bytes of two calls at once; the lock is held for the call
// alone.
#pragma once

#include <media/MediaExtractorPluginHelper.h>
#include <media/stagefright/foundation/ABuffer.h>
#include <stddef.h>
#include <stdint.h>
#include <utils/Errors.h>
#include <utils/StrongPointer.h>

#include <memory>
#include <mutex>

namespace android {

class FileReader {
  public:
    // Takes ownership of `source`. Reads nothing.
    explicit FileReader(DataSourceHelper* source) : mSource(source) {}

    // Asks the source for the size of the file; 0 when it does not know.
    int64_t askSize() const;

    // Asks for the size and keeps it for size() and holds(). Called by the parse, before any other
    // thread reads.
    void keepSize() { mSize = askSize(); }
    int64_t size() const { return mSize; }

    // True when the file, by the size kept, has `size` bytes at `offset`: asked before anything is
    // allocated.
    bool holds(int64_t offset, size_t size) const;

    // Reads up to `size` bytes: the number that came, or a negative error. No file has bytes below
    // 0 or beyond the range of int64_t, whatever an index says: the source is not asked for them.
    ssize_t readAt(int64_t offset, void* out, size_t size) const;

    // Reads exactly `size` bytes; false when another number came back.
    bool readExactly(int64_t offset, void* out, size_t size) const;

    // Reads a whole payload into a new buffer: ERROR_IO when the file does not hold it, NO_MEMORY.
    status_t readBuffer(int64_t offset, size_t size, sp<ABuffer>* out) const;

  private:
    const std::unique_ptr<DataSourceHelper> mSource;
    mutable std::mutex mLock;  // held while the source is asked
    int64_t mSize = 0;
};

}  // namespace android
