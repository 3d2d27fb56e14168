// SPDX-License-Identifier: Apache-2.0
// A data source over bytes in memory, owned or borrowed. An empty one is allowed.
// Threads: every method may be called from several threads at once; the bytes never change.
#pragma once

#include <cstdint>
#include <vector>

#include "service/DataSource.h"

namespace android::service {

class MemorySource : public DataSource {
  public:
    /** Takes the bytes over. */
    explicit MemorySource(std::vector<uint8_t> bytes);
    /** Borrows `size` bytes at `data`, which must outlive the source; for input that is not copied.
     */
    MemorySource(const void* data, size_t size);

    ssize_t readAt(off64_t offset, void* data, size_t size) override;
    status_t getSize(off64_t* size) override;

  private:
    std::vector<uint8_t> mOwned;
    const uint8_t* mData = nullptr;
    size_t mSize = 0;
};

}  // namespace android::service
