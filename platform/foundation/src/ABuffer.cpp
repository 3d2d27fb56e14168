// SPDX-License-Identifier: Apache-2.0

#include <media/stagefright/foundation/ABuffer.h>
#include <media/stagefright/foundation/ADebug.h>

#include <cstdlib>
#include <cstring>

namespace android {

// malloc and not new: sizes come from files, and without exceptions a failed new ends the process.
ABuffer::ABuffer(size_t capacity)
    : mData(static_cast<uint8_t*>(malloc(capacity))),
      mCapacity(mData == nullptr ? 0 : capacity),
      mRangeLength(mCapacity),
      mOwnsData(true) {}

ABuffer::ABuffer(void* data, size_t capacity)
    : mData(static_cast<uint8_t*>(data)), mCapacity(capacity), mRangeLength(capacity) {}

void ABuffer::release() {
    free(mData);
}

sp<ABuffer> ABuffer::CreateAsCopy(const void* data, size_t size) {
    sp<ABuffer> copy = new ABuffer(size);
    if (copy->base() == nullptr) {
        return nullptr;
    }
    if (size > 0) {
        memcpy(copy->base(), data, size);
    }
    return copy;
}

void ABuffer::setRange(size_t offset, size_t size) {
    CHECK_LE(offset, mCapacity);
    CHECK_LE(size, mCapacity - offset);
    mRangeOffset = offset;
    mRangeLength = size;
}

}  // namespace android
