// SPDX-License-Identifier: Apache-2.0
//
// A large source of which only some ranges hold anything. Threads: reads may come from several at
// once; pieces are put before the first one.

#pragma once

#include <map>
#include <string>

#include "service/DataSource.h"
#include "tests/support/ByteWriter.h"

namespace avitest {

// A file of any length whose bytes are 0 but for some pieces.
class SparseSource : public android::service::DataSource {
  public:
    explicit SparseSource(uint64_t size) : mSize(size) {}
    // Pieces do not overlap.
    void put(uint64_t offset, Bytes piece) { mPieces[offset] = std::move(piece); }
    // Writes the same file to disk, with holes for what is 0.
    void writeTo(const std::string& path) const;

    ssize_t readAt(off64_t offset, void* data, size_t size) override;
    android::status_t getSize(off64_t* size) override;

  private:
    uint64_t mSize;
    std::map<uint64_t, Bytes> mPieces;
};

}  // namespace avitest
