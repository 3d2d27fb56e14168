// SPDX-License-Identifier: Apache-2.0
//
// Writes structures whose fields and lengths are big-endian, as the codec configuration of ISO base
// media files is: into a buffer of a size that the writer was told, never beyond.
#pragma once

#include <media/stagefright/foundation/ABuffer.h>
#include <stddef.h>
#include <stdint.h>
#include <string.h>
#include <utils/StrongPointer.h>

#include <algorithm>

namespace android {

class ByteWriter {
  public:
    // A zero-filled buffer of `size` bytes; ok() is false when the memory cannot be had.
    explicit ByteWriter(size_t size) : mBuffer(new ABuffer(size)) {
        if (ok()) memset(mBuffer->data(), 0, mBuffer->size());
    }

    bool ok() const { return mBuffer->base() != nullptr; }

    void u8(uint32_t value) {
        const uint8_t byte = static_cast<uint8_t>(value);
        bytes(&byte, 1);
    }

    void u16(uint32_t value) {
        u8(value >> 8 & 0xFF);
        u8(value & 0xFF);
    }

    void zeros(size_t count) { mPosition += std::min(count, room()); }

    // What does not fit is left out.
    void bytes(const uint8_t* data, size_t count) {
        const size_t fitting = std::min(count, room());
        if (fitting > 0) memcpy(mBuffer->data() + mPosition, data, fitting);
        mPosition += fitting;
    }

    const sp<ABuffer>& buffer() const { return mBuffer; }

  private:
    size_t room() const { return ok() ? mBuffer->size() - mPosition : 0; }

    sp<ABuffer> mBuffer;
    size_t mPosition = 0;
};

}  // namespace android
