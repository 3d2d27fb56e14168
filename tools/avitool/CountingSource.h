// SPDX-License-Identifier: Apache-2.0
// A data source that counts the reads of the one it forwards to, which it borrows.
// Threads: as the wrapped source; the count may be asked for meanwhile.
#pragma once

#include <atomic>
#include <cstdint>
#include <optional>
#include <string>

#include "service/DataSource.h"

namespace avitool {

class CountingSource : public android::service::DataSource {
  public:
    /** `source` must outlive this object. */
    explicit CountingSource(android::service::DataSource& source) : mSource(source) {}

    /** Number of readAt calls so far. */
    uint64_t readCount() const { return mReads; }

    ssize_t readAt(off64_t offset, void* data, size_t size) override {
        ++mReads;
        return mSource.readAt(offset, data, size);
    }
    android::status_t getSize(off64_t* size) override { return mSource.getSize(size); }
    uint32_t flags() override { return mSource.flags(); }
    std::optional<std::string> getUri() override { return mSource.getUri(); }

  private:
    android::service::DataSource& mSource;
    std::atomic<uint64_t> mReads{0};
};

}  // namespace avitool
