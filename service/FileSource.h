// SPDX-License-Identifier: Apache-2.0
// A data source over a regular file of any size, read with pread.
// Owns the file descriptor. Invariant: an object exists only for an open, readable, non-empty file.
// Threads: every method may be called from several threads at once.
#pragma once

#include <string>

#include "service/DataSource.h"

namespace android::service {

class FileSource : public DataSource {
  public:
    /**
     * Opens `path` for reading. Throws SourceError when the file is missing, may not be read, is a
     * directory or anything else but a regular file, or is empty.
     */
    explicit FileSource(const std::string& path);
    ~FileSource() override;

    ssize_t readAt(off64_t offset, void* data, size_t size) override;
    /** The length the file had when it was opened. */
    status_t getSize(off64_t* size) override;
    uint32_t flags() override { return kIsLocalFileSource; }

  private:
    int mDescriptor = -1;
    off64_t mSize = 0;
};

}  // namespace android::service
