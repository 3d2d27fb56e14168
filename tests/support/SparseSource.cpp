// SPDX-License-Identifier: Apache-2.0

#include "tests/support/SparseSource.h"

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <fstream>
#include <stdexcept>

#include <unistd.h>

namespace avitest {

ssize_t SparseSource::readAt(off64_t offset, void* data, size_t size) {
    if (offset < 0) return -EINVAL;
    const auto begin = static_cast<uint64_t>(offset);
    if (begin >= mSize) return 0;
    const uint64_t end = begin + std::min<uint64_t>(size, mSize - begin);
    auto* out = static_cast<uint8_t*>(data);
    memset(out, 0, static_cast<size_t>(end - begin));
    for (const auto& [at, piece] : mPieces) {
        const uint64_t from = std::max(begin, at);
        const uint64_t to = std::min(end, at + piece.size());
        if (from < to) memcpy(out + (from - begin), piece.data() + (from - at), to - from);
    }
    return static_cast<ssize_t>(end - begin);
}

android::status_t SparseSource::getSize(off64_t* size) {
    *size = static_cast<off64_t>(mSize);
    return android::OK;
}

void SparseSource::writeTo(const std::string& path) const {
    std::ofstream out(path, std::ios::binary);
    for (const auto& [at, piece] : mPieces) {
        out.seekp(static_cast<std::streamoff>(at));
        out.write(reinterpret_cast<const char*>(piece.data()),
                  static_cast<std::streamsize>(piece.size()));
    }
    out.close();
    if (!out || truncate(path.c_str(), static_cast<off_t>(mSize)) != 0) {
        throw std::runtime_error("cannot write " + path);
    }
}

}  // namespace avitest
