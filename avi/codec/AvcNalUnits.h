// SPDX-License-Identifier: Apache-2.0
//
// The NAL units of AVC byte streams (ISO/IEC 14496-10, annex B). Functions over bytes, without
// state; any thread.
#pragma once

#include <media/stagefright/foundation/ABuffer.h>
#include <stddef.h>
#include <stdint.h>
#include <utils/StrongPointer.h>

namespace android {

constexpr uint8_t kNalTypeMask = 0x1F;
constexpr uint8_t kNalIdr = 5;
constexpr uint8_t kNalSequenceParameterSet = 7;
constexpr uint8_t kNalPictureParameterSet = 8;

// Offset of the first start code (00 00 01, or 00 00 00 01 as one of four bytes); -1 when there is
// none.
ssize_t findStartCode(const uint8_t* data, size_t size);

// True when a picture parameter set follows a start code: the data is a byte stream.
bool hasPictureParameterSet(const uint8_t* data, size_t size);

// Offset of the first sequence parameter set's start code of three bytes; 0 when there is none.
size_t findSequenceParameterSet(const uint8_t* data, size_t size);

// The first NAL unit of a type, without its start code, as a copy; null when there is none.
sp<ABuffer> findNALUnit(const uint8_t* data, size_t size, uint8_t type);

// Where the first IDR picture begins, or where the search for it ended.
struct IdrSearch {
    bool found = false;
    size_t position = 0;      // of the start code
    size_t searchStart = 0;   // from where the last start code was looked for
    size_t prefixLength = 0;  // of the last start code
};
IdrSearch findFirstIdr(const uint8_t* data, size_t size);

}  // namespace android
