// SPDX-License-Identifier: Apache-2.0
//
// The kind of a video frame, by its first bytes. Functions over bytes, without state.
#pragma once

#include <stddef.h>
#include <stdint.h>

namespace android {

enum class FrameType {
    kUnknown = 0,  // or not a picture that can be typed
    kIntra = 1,
    kPredicted = 2,
    kBidirectional = 3,
};

// By the first slice header after a start code (ISO/IEC 14496-10, 7.3.3). HEVC streams are typed
// by the same rules.
FrameType avcFrameType(const uint8_t* data, size_t size);

// By the coding type of the first VOP (ISO/IEC 14496-2, 6.2.5), looked for after the group header
// when the data begins with one.
FrameType mpeg4FrameType(const uint8_t* data, size_t size);

// For all other codecs. A guess: one bit of the fifth byte is taken for the picture type, whatever
// the codec has there. The type shows in the log, and decides whether a seek in a file with an
// untrusted index lands on a frame.
FrameType genericFrameType(const uint8_t* data, size_t size);

// 'I', 'P' or 'B' as text for the log, "N/A" when unknown.
const char* frameTypeText(FrameType type);

}  // namespace android
