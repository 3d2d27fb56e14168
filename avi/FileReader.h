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
#include <vector>

namespace android {

class FileReader {
  public:
    // Takes ownership of `source`. Reads nothing.
    explicit FileReader(DataSourceHelper* source) : mSource(source) {}

    // Asks the source for the size of the file; 0 when it does not know.
    int64_t askSize() const;

    // Asks for the size and keeps it for size() and holds(). Called by the parse, before any other
    // thread reads.
    void keepSize();
    int64_t size() const { return mSize; }

    // True when the file, by the size kept, has `size` bytes at `offset`: asked before anything is
    // allocated.
    bool holds(int64_t offset, size_t size) const;

    // Reads up to `size` bytes: the number that came, or a negative error. No file has bytes below
    // 0 or beyond the range of int64_t, whatever an index says: the source is not asked for them.
    ssize_t readAt(int64_t offset, void* out, size_t size) const;

    // Reads exactly `size` bytes; false when another number came back.
    bool readExactly(int64_t offset, void* out, size_t size) const;

    // For the parse alone, which reads one small piece after the other: as readAt(), but where the
    // pieces lie close together they are fetched ahead of time, many in one call of the source.
    // Only the bytes that are asked for decide: a fetch that fails or comes short is made again for
    // them alone.
    ssize_t readNear(int64_t offset, void* out, size_t size);

    // For the parse alone, which reads all bytes up to `end` piece by piece: as readExactly(), but
    // many pieces are fetched in one call of the source. The same holds for fetches that fail.
    bool readRun(int64_t offset, void* out, size_t size, int64_t end);

    // For the parse alone: reads a whole payload into a new buffer. ERROR_IO when the file does not
    // hold it, NO_MEMORY. All buffers together may have a few times the bytes of the file, since
    // many entries of an index can name the same ones; what exceeds that is ERROR_IO too.
    status_t readBuffer(int64_t offset, size_t size, sp<ABuffer>* out);

    // Gives back what readNear() fetched.
    void endParse() { mWindow = {}; }

  private:
    // Bytes that were fetched ahead of time.
    struct Window {
        std::vector<uint8_t> bytes;
        int64_t offset = 0;  // of the bytes in the file
        size_t size = 0;     // how many of them are there
        int64_t last = 0;    // where the last piece began
        uint32_t row = 0;    // how many pieces in a row lay close to the one before
        size_t reach = 0;    // how much was fetched last; 0: nothing
    };
    bool isInWindow(int64_t offset, size_t size) const;
    bool takeFromWindow(int64_t offset, void* out, size_t size) const;
    void moveWindow(int64_t offset, size_t size);
    void fetchWindow(int64_t offset, size_t size);

    const std::unique_ptr<DataSourceHelper> mSource;
    mutable std::mutex mLock;  // held while the source is asked
    int64_t mSize = 0;
    uint64_t mBufferBudget = 0;  // bytes that readBuffer() may still read
    Window mWindow;
};

}  // namespace android
