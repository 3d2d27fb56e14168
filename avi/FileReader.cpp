// SPDX-License-Identifier: Apache-2.0
#include "FileReader.h"

#include <media/stagefright/MediaErrors.h>
#include <string.h>

#include <algorithm>
#include <limits>

#include "support/Arithmetic.h"

namespace android {

namespace {

// An honest file has a part of its bytes read as buffers, and few of them twice.
constexpr int64_t kBufferBudgetFactor = 4;
constexpr int64_t kBufferBudgetBase = 0x10000;

// The window: up to the transfer unit of the platform's remote sources, and only for pieces that
// lie so close together that some of them fit in.
constexpr size_t kMaxWindow = 0x10000;
constexpr size_t kMinWindow = 0x1000;
constexpr int64_t kMaxGap = 0x2000;
constexpr uint32_t kMinRow = 16;  // pieces that lay so close, before any is fetched ahead of time

}  // namespace

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

void FileReader::keepSize() {
    mSize = askSize();
    const int64_t known = std::max<int64_t>(mSize, 0);  // sources may claim anything
    mBufferBudget = static_cast<uint64_t>(
        saturateToInt64(Wide{known} * kBufferBudgetFactor + kBufferBudgetBase));
}

bool FileReader::isInWindow(int64_t offset, size_t size) const {
    if (offset < mWindow.offset) return false;
    const auto skipped = static_cast<uint64_t>(offset - mWindow.offset);
    return skipped <= mWindow.size && size <= mWindow.size - skipped;
}

bool FileReader::takeFromWindow(int64_t offset, void* out, size_t size) const {
    if (!isInWindow(offset, size)) return false;
    memcpy(out, mWindow.bytes.data() + (offset - mWindow.offset), size);
    return true;
}

// Fetches the window that begins at `offset`, twice as much each time that pieces go on to follow
// closely.
void FileReader::moveWindow(int64_t offset, size_t size) {
    mWindow.size = 0;
    if (mWindow.row < kMinRow || !holds(offset, size)) {
        mWindow.reach = 0;
        return;
    }
    mWindow.reach = std::clamp(2 * mWindow.reach, kMinWindow, kMaxWindow);
    const auto rest = static_cast<uint64_t>(mSize - offset);
    fetchWindow(offset, std::min<uint64_t>(mWindow.reach, rest));
}

// Leaves the window with what the source gave: nothing, where it failed.
void FileReader::fetchWindow(int64_t offset, size_t size) {
    mWindow.size = 0;
    mWindow.bytes.resize(std::max(size, mWindow.bytes.size()));
    const ssize_t got = readAt(offset, mWindow.bytes.data(), size);
    if (got < 0 || static_cast<size_t>(got) > size) return;
    mWindow.offset = offset;
    mWindow.size = static_cast<size_t>(got);
}

ssize_t FileReader::readNear(int64_t offset, void* out, size_t size) {
    const bool isNear = offset >= mWindow.last && offset - mWindow.last <= kMaxGap;
    mWindow.row = isNear ? mWindow.row + 1 : 0;
    mWindow.last = offset;
    if (!isInWindow(offset, size)) moveWindow(offset, size);
    if (takeFromWindow(offset, out, size)) return static_cast<ssize_t>(size);
    return readAt(offset, out, size);
}

bool FileReader::readRun(int64_t offset, void* out, size_t size, int64_t end) {
    if (takeFromWindow(offset, out, size)) return true;
    const int64_t known = std::min(end, mSize);
    if (holds(offset, size) && known > offset + static_cast<int64_t>(size)) {
        fetchWindow(offset, std::min<uint64_t>(kMaxWindow, static_cast<uint64_t>(known - offset)));
        if (takeFromWindow(offset, out, size)) return true;
    }
    return readExactly(offset, out, size);
}

status_t FileReader::readBuffer(int64_t offset, size_t size, sp<ABuffer>* out) {
    if (!holds(offset, size) || size > mBufferBudget) return ERROR_IO;
    mBufferBudget -= size;
    sp<ABuffer> buffer = new ABuffer(size);
    if (buffer->base() == nullptr && size > 0) return NO_MEMORY;
    if (!readExactly(offset, buffer->data(), size)) return ERROR_IO;
    *out = buffer;
    return OK;
}

}  // namespace android
