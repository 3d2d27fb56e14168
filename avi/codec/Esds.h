// SPDX-License-Identifier: Apache-2.0
//
// Elementary stream descriptors (ISO/IEC 14496-1, 7.2.6): the form in which the platform's decoders
// take the configuration of AAC and MPEG-2 streams.
#pragma once

#include <media/stagefright/foundation/ABuffer.h>
#include <stddef.h>
#include <stdint.h>
#include <utils/StrongPointer.h>

namespace android {

// How the lengths of the nested descriptors are written.
enum class DescriptorLength {
    kOneByte,   // up to 127
    kTwoBytes,  // two groups of seven bits; larger lengths lose their upper bits
};

// The descriptor around decoder-specific information of `size` bytes; null without memory.
sp<ABuffer> makeEsds(const uint8_t* info, size_t size, DescriptorLength form);

}  // namespace android
