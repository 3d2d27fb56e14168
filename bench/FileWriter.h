// SPDX-License-Identifier: Apache-2.0
//
// Writes a file from its beginning to its end, with holes where nothing is put. One thread.
#pragma once

#include <cstdint>
#include <cstdio>
#include <memory>
#include <string>

#include "tests/support/ByteWriter.h"

namespace avibench {

class FileWriter {
  public:
    // An empty path: only the position advances, nothing is written.
    explicit FileWriter(const std::string& path);

    uint64_t position() const { return mPosition; }
    void put(const avitest::Bytes& bytes);
    // Leaves a hole, which reads as zeros.
    void skip(uint64_t bytes);
    // Overwrites what was put at `offset`; the position stays.
    void putAt(uint64_t offset, const avitest::Bytes& bytes);
    // Writes all of it, a hole at the end included. Throws std::runtime_error when it cannot.
    void close();

  private:
    struct Closer {
        void operator()(FILE* file) const { std::fclose(file); }
    };
    void seek(uint64_t offset);

    std::string mPath;
    std::unique_ptr<FILE, Closer> mFile;
    uint64_t mPosition = 0;
    bool mBehindHole = false;
};

}  // namespace avibench
