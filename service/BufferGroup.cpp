// SPDX-License-Identifier: Apache-2.0
#define LOG_TAG "BufferGroup"

#include "service/BufferGroup.h"

#include <algorithm>
#include <iterator>
#include <limits>
#include <new>

#include <log/log.h>

namespace android::service {

namespace {

// Room to spare, so that slowly growing samples do not need a new buffer each.
size_t withHeadroom(size_t requestedSize) {
    const size_t headroom = requestedSize / 2;
    const size_t room = std::numeric_limits<size_t>::max() - requestedSize;
    return headroom > room ? requestedSize : requestedSize + headroom;
}

}  // namespace

// One buffer. Its bytes are left uninitialised, so that memory checkers see what was never written.
class BufferGroup::Buffer {
  public:
    // The memory may be short: usable() shows it.
    Buffer(BufferGroup& group, size_t size)
        : mGroup(group), mSize(size), mBytes(new (std::nothrow) uint8_t[size]), mRangeLength(size) {
        mRecord.handle = this;
        mRecord.release = [](void* handle) { self(handle).mGroup.giveBack(self(handle)); };
        mRecord.data = [](void* handle) -> void* { return self(handle).mBytes.get(); };
        mRecord.size = [](void* handle) { return self(handle).mSize; };
        mRecord.range_offset = [](void* handle) { return self(handle).mRangeOffset; };
        mRecord.range_length = [](void* handle) { return self(handle).mRangeLength; };
        mRecord.set_range = [](void* handle, size_t offset, size_t length) {
            self(handle).setRange(offset, length);
        };
        mRecord.meta_data = [](void* handle) { return self(handle).mMetaData.get(); };
    }

    bool usable() const { return mBytes != nullptr; }
    size_t size() const { return mSize; }
    bool held() const { return mHeld; }

    // Marks the buffer as held; the metadata stays as the previous holder left it.
    CMediaBuffer* take() {
        mHeld = true;
        mRangeOffset = 0;
        mRangeLength = mSize;
        return &mRecord;
    }

    void giveBack() {
        LOG_ALWAYS_FATAL_IF(!mHeld, "buffer %p released while nobody holds it", this);
        mHeld = false;
    }

  private:
    static Buffer& self(void* handle) { return *static_cast<Buffer*>(handle); }

    void setRange(size_t offset, size_t length) {
        LOG_ALWAYS_FATAL_IF(offset > mSize || length > mSize - offset,
                            "range of %zu bytes at %zu is outside the buffer's %zu bytes", length,
                            offset, mSize);
        mRangeOffset = offset;
        mRangeLength = length;
    }

    BufferGroup& mGroup;
    CMediaBuffer mRecord{};
    const size_t mSize;
    std::unique_ptr<uint8_t[]> mBytes;
    MediaFormat mMetaData;
    size_t mRangeOffset = 0;  // the range and the metadata belong to the holder
    size_t mRangeLength;
    bool mHeld = false;  // guarded by the group's lock
};

BufferGroup::BufferGroup() {
    mRecord.handle = this;
    mRecord.init = [](void* handle, size_t buffers, size_t size, size_t growthLimit) {
        return static_cast<BufferGroup*>(handle)->init(buffers, size, growthLimit);
    };
    mRecord.add_buffer = [](void* handle, size_t size) {
        static_cast<BufferGroup*>(handle)->addBuffer(size);
    };
    mRecord.acquire_buffer = [](void* handle, CMediaBuffer** out, bool nonBlocking,
                                size_t requestedSize) {
        return static_cast<BufferGroup*>(handle)->acquirePlain(out, nonBlocking, requestedSize);
    };
    mRecord.has_buffers = [](void* handle) {
        return static_cast<BufferGroup*>(handle)->hasBuffers();
    };
}

BufferGroup::~BufferGroup() {
    const size_t held = heldCount();
    LOG_ALWAYS_FATAL_IF(held != 0, "buffer group deleted while %zu of its buffers are held", held);
}

bool BufferGroup::init(size_t buffers, size_t size, size_t growthLimit) {
    std::vector<std::unique_ptr<Buffer>> made;
    for (size_t i = 0; i < buffers; ++i)
        made.push_back(std::make_unique<Buffer>(*this, size));
    std::lock_guard<std::mutex> lock(mLock);
    const bool complete = std::all_of(made.begin(), made.end(),
                                      [this](const auto& buffer) { return isUsable(*buffer); });
    if (complete) std::move(made.begin(), made.end(), std::back_inserter(mBuffers));
    mGrowthLimit = growthLimit > 0 && growthLimit < buffers ? buffers : growthLimit;
    mReturned.notify_all();
    return complete;
}

void BufferGroup::addBuffer(size_t size) {
    auto buffer = std::make_unique<Buffer>(*this, size);
    std::lock_guard<std::mutex> lock(mLock);
    // As with acquire: without memory the group stays as it is.
    if (isUsable(*buffer)) mBuffers.push_back(std::move(buffer));
    mReturned.notify_all();
}

// Needs the lock.
bool BufferGroup::isUsable(const Buffer& buffer) {
    mMemoryIsShort = !buffer.usable();
    if (mMemoryIsShort) ALOGE("no memory for a buffer of %zu bytes", buffer.size());
    return buffer.usable();
}

BufferGroup::Acquired BufferGroup::acquire(bool nonBlocking, size_t requestedSize) {
    CMediaBuffer* buffer = nullptr;
    const media_status_t status = acquirePlain(&buffer, nonBlocking, requestedSize);
    return {status, BufferHandle(buffer)};
}

media_status_t BufferGroup::acquirePlain(CMediaBuffer** out, bool nonBlocking,
                                         size_t requestedSize) {
    std::unique_lock<std::mutex> lock(mLock);
    Buffer* buffer = findOrMake(requestedSize);
    while (buffer == nullptr && !nonBlocking && !isHopeless()) {
        mReturned.wait(lock);
        buffer = findOrMake(requestedSize);
    }
    *out = buffer == nullptr ? nullptr : buffer->take();
    return buffer == nullptr ? AMEDIA_ERROR_UNKNOWN : AMEDIA_OK;
}

// Nobody holds a buffer that could come back, and there is no memory for another. Needs the lock.
bool BufferGroup::isHopeless() const {
    return mMemoryIsShort && std::none_of(mBuffers.begin(), mBuffers.end(),
                                          [](const auto& buffer) { return buffer->held(); });
}

// Returns a free buffer that is big enough, if need be a new one; null if there is none to be had.
BufferGroup::Buffer* BufferGroup::findOrMake(size_t requestedSize) {
    std::unique_ptr<Buffer>* smallestFree = nullptr;
    for (auto& buffer : mBuffers) {
        if (buffer->held()) continue;
        if (buffer->size() >= requestedSize) return buffer.get();
        if (smallestFree == nullptr || buffer->size() < (*smallestFree)->size()) {
            smallestFree = &buffer;
        }
    }
    if (smallestFree == nullptr && mBuffers.size() >= mGrowthLimit) return nullptr;

    auto made = makeBuffer(requestedSize);
    if (!isUsable(*made)) return nullptr;
    Buffer* result = made.get();
    if (smallestFree != nullptr) {
        *smallestFree = std::move(made);
    } else {
        mBuffers.push_back(std::move(made));
    }
    return result;
}

auto BufferGroup::makeBuffer(size_t requestedSize) -> std::unique_ptr<Buffer> {
    size_t size = withHeadroom(requestedSize);
    if (requestedSize == 0) {
        for (const auto& buffer : mBuffers) {
            size = std::max(size, buffer->size());
        }
    }
    return std::make_unique<Buffer>(*this, size);
}

void BufferGroup::giveBack(Buffer& buffer) {
    std::lock_guard<std::mutex> lock(mLock);
    buffer.giveBack();
    mReturned.notify_all();
}

bool BufferGroup::hasBuffers() const {
    std::lock_guard<std::mutex> lock(mLock);
    return mBuffers.size() < mGrowthLimit ||
           std::any_of(mBuffers.begin(), mBuffers.end(),
                       [](const auto& buffer) { return !buffer->held(); });
}

size_t BufferGroup::bufferCount() const {
    std::lock_guard<std::mutex> lock(mLock);
    return mBuffers.size();
}

size_t BufferGroup::growthLimit() const {
    std::lock_guard<std::mutex> lock(mLock);
    return mGrowthLimit;
}

size_t BufferGroup::heldCount() const {
    std::lock_guard<std::mutex> lock(mLock);
    const auto held = std::count_if(mBuffers.begin(), mBuffers.end(),
                                    [](const auto& buffer) { return buffer->held(); });
    return static_cast<size_t>(held);
}

std::vector<size_t> BufferGroup::bufferSizes() const {
    std::lock_guard<std::mutex> lock(mLock);
    std::vector<size_t> sizes;
    for (const auto& buffer : mBuffers) {
        sizes.push_back(buffer->size());
    }
    return sizes;
}

}  // namespace android::service
