// SPDX-License-Identifier: Apache-2.0
#include "FileReader.h"

#include <media/stagefright/MediaErrors.h>

#include <limits>

namespace android {

int64_t FileReader::askSize() const {
    const std::lock_guard<std::mutex> lock(mLock);
    off64_t size = 0;
    return mSource->getSize(&size) == OK ? size : 0;
}

bool FileReader::holds(int64_t offset, size_t size) const {
    if (offset < 0 || offset > mSize) return false;
    return size <= static_cast<uint64_t>(mSize - offset);
}

ssize_t FileReader::readAt(int64_t offset, void* out, size_t size) const {
    const bool isPosition =
        offset >= 0 && size <= static_cast<uint64_t>(std::numeric_limits<int64_t>::max() - offset);
    if (!isPosition) return ERROR_IO;
    const std::lock_guard<std::mutex> lock(mLock);
    return mSource->readAt(offset, out, size);
}

bool FileReader::readExactly(int64_t offset, void* out, size_t size) const {
    return readAt(offset, out, size) == static_cast<ssize_t>(size);
}

status_t FileReader::readBuffer(int64_t offset, size_t size, sp<ABuffer>* out) const {
    if (!holds(offset, size)) return ERROR_IO;
    sp<ABuffer> buffer = new ABuffer(size);
    if (buffer->base() == nullptr && size > 0) return NO_MEMORY;
    if (!readExactly(offset, buffer->data(), size)) return ERROR_IO;
    *out = buffer;
    return OK;
}

}  // namespace android
