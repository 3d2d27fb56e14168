// SPDX-License-Identifier: Apache-2.0
//
// Walks a sequence parameter set as far as the platform's parser does, with reads that may fail.
//
// Parsers differ. The platform's reads the bytes with their emulation prevention (00 00 03), knows
// a chroma format in seven profiles and eight scaling lists in any; a decoder reads as the standard
// says; a platform may be mended in part. So a set is walked in every mixture of these.
#include "codec/SequenceParameterSet.h"

#include <algorithm>
#include <iterator>
#include <memory>
#include <new>

#include "support/GracefulBits.h"

namespace android {

namespace {

constexpr uint32_t kMaxMacroblocks = 4096;  // 65536 samples: far above what any level allows

struct Reading {
    size_t profiles;  // how many it knows to have a chroma format
    size_t lists;     // scaling lists that it reads of 4:4:4
};

// The first is the platform's, the last the standard's. Seven profiles with twelve lists make no
// other: where the chroma format is read, the profiles do not matter, and else the lists do not.
constexpr Reading kReadings[] = {{7, 8}, {13, 8}, {13, 12}};

bool hasChromaFormat(uint32_t profile, const Reading& reading) {
    static constexpr uint32_t kProfiles[] = {100, 110, 122, 244, 44,  83, 86,
                                             118, 128, 138, 139, 134, 135};
    const uint32_t* const end = kProfiles + reading.profiles;
    return std::find(kProfiles, end, profile) != end;
}

void skipScalingList(GracefulBits* bits, size_t length) {
    int64_t lastScale = 8;
    for (size_t i = 0; i < length && bits->ok(); ++i) {
        const int64_t delta = std::clamp<int64_t>(bits->se(), -128, 127);
        const int64_t nextScale = (lastScale + delta + 256) % 256;
        if (nextScale == 0) return;
        lastScale = nextScale;
    }
}

// Returns chroma_format_idc. Separate planes are cropped in the units of 4:4:4 as well.
uint32_t readChromaFormat(GracefulBits* bits, const Reading& reading) {
    const uint32_t chromaFormat = bits->ue();
    if (chromaFormat == 3) bits->flag();  // separate_colour_plane_flag
    bits->ue();                           // bit_depth_luma_minus8
    bits->ue();                           // bit_depth_chroma_minus8
    bits->flag();                         // qpprime_y_zero_transform_bypass_flag
    if (bits->flag()) {
        const size_t lists = chromaFormat == 3 ? reading.lists : 8;
        for (size_t i = 0; i < lists && bits->ok(); ++i) {
            if (bits->flag()) skipScalingList(bits, i < 6 ? 16 : 64);
        }
    }
    return chromaFormat;
}

// Answers whether it has no more than the 255 frames that a set may have, which bounds the walk.
bool skipPictureOrderCount(GracefulBits* bits) {
    constexpr uint32_t kMaxFrames = 255;
    const uint32_t type = bits->ue();
    if (type == 0) bits->ue();  // log2_max_pic_order_cnt_lsb_minus4
    if (type != 1) return true;
    bits->flag();                        // delta_pic_order_always_zero_flag
    bits->se();                          // offset_for_non_ref_pic
    bits->se();                          // offset_for_top_to_bottom_field
    const uint32_t frames = bits->ue();  // num_ref_frames_in_pic_order_cnt_cycle
    if (frames > kMaxFrames) return false;
    for (uint32_t i = 0; i < frames; ++i) {
        bits->se();  // offset_for_ref_frame
    }
    return true;
}

// Two crop offsets must leave something of `size` samples.
bool cropsSanely(GracefulBits* bits, uint64_t size, uint64_t unit) {
    uint64_t crop = bits->ue();
    crop += bits->ue();
    return crop * unit < size;
}

// Reads the size and its cropping; answers whether that is a size to decode at.
bool readSaneSize(GracefulBits* bits, uint32_t chroma) {
    const uint64_t widthMbs = uint64_t{bits->ue()} + 1;
    const uint64_t heightUnits = uint64_t{bits->ue()} + 1;
    const uint64_t fields = bits->flag() ? 1 : 2;
    if (fields == 2) bits->flag();  // mb_adaptive_frame_field_flag
    bits->flag();                   // direct_8x8_inference_flag
    if (widthMbs > kMaxMacroblocks || heightUnits > kMaxMacroblocks) return false;
    if (!bits->flag()) return true;  // frame_cropping_flag
    const uint64_t cropWidth = chroma == 1 || chroma == 2 ? 2 : 1;
    const uint64_t cropHeight = (chroma == 1 ? 2 : 1) * fields;
    return cropsSanely(bits, widthMbs * 16, cropWidth) &&
           cropsSanely(bits, heightUnits * 16 * fields, cropHeight);
}

bool isSaneIn(const Reading& reading, const uint8_t* data, size_t size) {
    GracefulBits bits(data, size);
    const uint32_t profile = bits.u(8);
    bits.u(16);  // constraint flags, level
    bits.ue();   // seq_parameter_set_id
    const uint32_t chroma =
        hasChromaFormat(profile, reading) ? readChromaFormat(&bits, reading) : 1;
    if (chroma > 3) return false;  // no decoder knows them; the platform's parser takes them
    bits.ue();                     // log2_max_frame_num_minus4
    if (!skipPictureOrderCount(&bits)) return false;
    bits.ue();    // max_num_ref_frames
    bits.flag();  // gaps_in_frame_num_value_allowed_flag
    if (!readSaneSize(&bits, chroma)) return false;
    constexpr uint32_t kExtendedSar = 255;
    const bool hasAspectRatio = bits.flag() && bits.flag();
    if (hasAspectRatio && bits.u(8) == kExtendedSar) bits.u(32);
    return bits.ok();
}

// Copies `size` bytes without those of emulation prevention; answers how many there are.
size_t unescape(const uint8_t* data, size_t size, uint8_t* out) {
    size_t length = 0;
    size_t zeros = 0;
    for (size_t i = 0; i < size; ++i) {
        const bool isEmulationPrevention = zeros >= 2 && data[i] == 3;
        zeros = data[i] == 0 ? zeros + 1 : 0;
        if (!isEmulationPrevention) out[length++] = data[i];
    }
    return length;
}

}  // namespace

bool isSaneSequenceParameterSet(const uint8_t* data, size_t size) {
    if (size == 0) return false;
    const uint8_t* const raw = data + 1;
    const size_t rawSize = size - 1;
    const std::unique_ptr<uint8_t[]> payload(new (std::nothrow) uint8_t[rawSize]);
    if (payload == nullptr) return false;
    const size_t payloadSize = unescape(raw, rawSize, payload.get());
    return std::all_of(std::begin(kReadings), std::end(kReadings), [&](const Reading& reading) {
        return isSaneIn(reading, raw, rawSize) && isSaneIn(reading, payload.get(), payloadSize);
    });
}

}  // namespace android
