// SPDX-License-Identifier: Apache-2.0
#include "service/MemorySource.h"

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <utility>

namespace android::service {

MemorySource::MemorySource(std::vector<uint8_t> bytes)
    : mOwned(std::move(bytes)), mData(mOwned.data()), mSize(mOwned.size()) {}

MemorySource::MemorySource(const void* data, size_t size)
    : mData(static_cast<const uint8_t*>(data)), mSize(size) {}

ssize_t MemorySource::readAt(off64_t offset, void* data, size_t size) {
    if (offset < 0) return -EINVAL;
    const auto begin = static_cast<uint64_t>(offset);
    if (begin >= mSize) return 0;
    const size_t length = std::min<uint64_t>(size, mSize - begin);
    if (length > 0) std::memcpy(data, mData + begin, length);
    return static_cast<ssize_t>(length);
}

status_t MemorySource::getSize(off64_t* size) {
    *size = static_cast<off64_t>(mSize);
    return OK;
}

}  // namespace android::service
