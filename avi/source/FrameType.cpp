// SPDX-License-Identifier: Apache-2.0
#include "source/FrameType.h"

#include "support/PaddedBytes.h"
#include "support/StartCode.h"

namespace android {

namespace {

constexpr size_t kMinAvcBytes = 6;
constexpr size_t kMinFrameBytes = 5;
constexpr uint8_t kNalTypeMask = 0x1F;
constexpr uint8_t kNalLastSlice = 4;  // types 1 to 4 are slices of non-IDR pictures
constexpr uint8_t kNalIdr = 5;
constexpr uint8_t kGroupOfVop = 0xB3;
constexpr uint8_t kVop = 0xB6;

// The first bits of a slice header: first_mb_in_slice and slice_type, both Exp-Golomb codes. Only a
// slice that starts its picture (first_mb_in_slice 0, a single 1 bit) tells the picture's type.
FrameType sliceType(uint8_t bits) {
    if ((bits & 0x80) == 0) return FrameType::kUnknown;
    if ((bits & 0x40) != 0 || bits >> 2 == 0x26) return FrameType::kPredicted;    // 0, 5
    if (bits >> 4 == 0xA || bits >> 2 == 0x27) return FrameType::kBidirectional;  // 1, 6
    if (bits >> 4 == 0xB || bits == 0x88) return FrameType::kIntra;               // 2, 7
    return FrameType::kUnknown;
}

FrameType vopType(uint8_t bits) {
    switch (bits >> 6) {
        case 0:
            return FrameType::kIntra;
        case 1:
            return FrameType::kPredicted;
        case 2:
            return FrameType::kBidirectional;
        default:
            return FrameType::kUnknown;  // a sprite
    }
}

// Offset of the byte after the next VOP or group header code at or after `from`; 0 when there is
// none, or nothing after it.
size_t afterVopCode(const uint8_t* data, size_t size, size_t from) {
    for (size_t at = from;; at += kStartCodePrefixSize) {
        at = findStartCodePrefix(data, size, at);
        if (size - at <= kStartCodePrefixSize + 1) return 0;
        const uint8_t code = data[at + kStartCodePrefixSize];
        if (code == kGroupOfVop || code == kVop) return at + kStartCodePrefixSize + 1;
    }
}

}  // namespace

FrameType avcFrameType(const uint8_t* data, size_t size) {
    if (size < kMinAvcBytes) return FrameType::kUnknown;
    for (size_t at = 0;; at += kStartCodePrefixSize) {
        at = findStartCodePrefix(data, size, at);
        if (size - at <= kStartCodePrefixSize) return FrameType::kUnknown;
        const PaddedBytes unit = PaddedBytes(data, size).from(at + kStartCodePrefixSize);
        const uint8_t type = unit.byteAt(0) & kNalTypeMask;
        if (type == kNalIdr) return FrameType::kIntra;
        if (type >= 1 && type <= kNalLastSlice) return sliceType(unit.byteAt(1));
    }
}

FrameType mpeg4FrameType(const uint8_t* data, size_t size) {
    if (size < kMinFrameBytes) return FrameType::kUnknown;
    size_t at = afterVopCode(data, size, 0);
    if (at != 0 && data[3] == kGroupOfVop) at = afterVopCode(data, size, 4);
    return at == 0 ? FrameType::kUnknown : vopType(data[at]);
}

FrameType genericFrameType(const uint8_t* data, size_t size) {
    if (size < kMinFrameBytes) return FrameType::kUnknown;
    return (data[4] & 2) != 0 ? FrameType::kPredicted : FrameType::kIntra;
}

const char* frameTypeText(FrameType type) {
    switch (type) {
        case FrameType::kIntra:
            return "I";
        case FrameType::kPredicted:
            return "P";
        case FrameType::kBidirectional:
            return "B";
        default:
            return "N/A";
    }
}

}  // namespace android
