// SPDX-License-Identifier: Apache-2.0
//
// A file as a data source that counts its calls. One thread at a time.
#pragma once

#include <cstdint>
#include <string>

#include "service/FileSource.h"

namespace avibench {

class CountingSource : public android::service::DataSource {
  public:
    explicit CountingSource(const std::string& path) : mFile(path) {}

    ssize_t readAt(off64_t offset, void* data, size_t size) override {
        ++mCalls;
        return mFile.readAt(offset, data, size);
    }
    android::status_t getSize(off64_t* size) override { return mFile.getSize(size); }
    uint32_t flags() override { return mFile.flags(); }

    // Of readAt.
    uint64_t calls() const { return mCalls; }

  private:
    android::service::FileSource mFile;
    uint64_t mCalls = 0;
};

}  // namespace avibench
