// SPDX-License-Identifier: Apache-2.0
#include "service/BufferHandle.h"

namespace android::service {

BufferHandle& BufferHandle::operator=(BufferHandle&& other) noexcept {
    if (this != &other) {
        release();
        mBuffer = other.detach();
    }
    return *this;
}

uint8_t* BufferHandle::base() const {
    return static_cast<uint8_t*>(mBuffer->data(mBuffer->handle));
}

size_t BufferHandle::size() const {
    return mBuffer->size(mBuffer->handle);
}

size_t BufferHandle::rangeOffset() const {
    return mBuffer->range_offset(mBuffer->handle);
}

size_t BufferHandle::rangeLength() const {
    return mBuffer->range_length(mBuffer->handle);
}

std::vector<uint8_t> BufferHandle::bytes() const {
    return {data(), data() + rangeLength()};
}

void BufferHandle::setRange(size_t offset, size_t length) {
    mBuffer->set_range(mBuffer->handle, offset, length);
}

FormatView BufferHandle::metaData() const {
    return FormatView(mBuffer->meta_data(mBuffer->handle));
}

void BufferHandle::release() {
    if (CMediaBuffer* buffer = detach()) buffer->release(buffer->handle);
}

}  // namespace android::service
