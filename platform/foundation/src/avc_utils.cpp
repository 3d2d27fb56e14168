// SPDX-License-Identifier: Apache-2.0

#include <media/stagefright/foundation/ABitReader.h>
#include <media/stagefright/foundation/ADebug.h>
#include <media/stagefright/foundation/avc_utils.h>

#include <algorithm>
#include <cerrno>
#include <iterator>

namespace android {

namespace {

constexpr size_t kStartCodeSize = 3;

// Where the first start code at or after `from` begins; `size` when there is none.
size_t findStartCode(const uint8_t* data, size_t size, size_t from) {
    static constexpr uint8_t kStartCode[kStartCodeSize] = {0, 0, 1};
    const uint8_t* found =
        std::search(data + from, data + size, std::begin(kStartCode), std::end(kStartCode));
    return static_cast<size_t>(found - data);
}

// se(v): 0, 1, -1, 2, -2, ...
int64_t parseSE(ABitReader* br) {
    const int64_t code = parseUE(br);
    return code % 2 != 0 ? (code + 1) / 2 : -(code / 2);
}

// The profiles whose chroma format and scaling lists the platform knows. The standard
// (7.3.2.1.1) has six more, which the platform reads as if they had neither.
bool hasChromaFormat(uint32_t profile) {
    static constexpr uint32_t kProfiles[] = {100, 110, 122, 244, 44, 83, 86};
    return std::find(std::begin(kProfiles), std::end(kProfiles), profile) != std::end(kProfiles);
}

// scaling_list(), 7.3.2.1.1.1: only its length matters, but that depends on the values.
void skipScalingList(ABitReader* br, size_t length) {
    int64_t lastScale = 8;
    int64_t nextScale = 8;
    for (size_t i = 0; i < length && nextScale != 0; ++i) {
        // Beyond the range that the standard allows, the nearest allowed value counts.
        const int64_t delta = std::clamp<int64_t>(parseSE(br), -128, 127);
        nextScale = (lastScale + delta + 256) % 256;
        lastScale = nextScale;
    }
}

// Eight lists of every chroma format: of 4:4:4 sets, which have twelve, the last four are left.
void skipScalingMatrix(ABitReader* br) {
    constexpr size_t kLists = 8;
    for (size_t i = 0; i < kLists; ++i) {
        if (br->getBits(1) != 0) {  // seq_scaling_list_present_flag
            skipScalingList(br, i < 6 ? 16 : 64);
        }
    }
}

// Reads the part that only the high profiles have; answers ChromaArrayType. Any chroma format is
// taken, those above 3 too, which the standard does not have.
unsigned parseChromaArrayType(ABitReader* br) {
    const unsigned chromaFormat = parseUE(br);
    const bool separatePlanes = chromaFormat == 3 && br->getBits(1) != 0;
    parseUE(br);     // bit_depth_luma_minus8
    parseUE(br);     // bit_depth_chroma_minus8
    br->getBits(1);  // qpprime_y_zero_transform_bypass_flag
    if (br->getBits(1) != 0) {
        skipScalingMatrix(br);
    }
    return separatePlanes ? 0 : chromaFormat;
}

void skipPictureOrderCount(ABitReader* br) {
    const unsigned type = parseUE(br);
    if (type == 0) {
        parseUE(br);  // log2_max_pic_order_cnt_lsb_minus4
    } else if (type == 1) {
        br->getBits(1);  // delta_pic_order_always_zero_flag
        parseSE(br);     // offset_for_non_ref_pic
        parseSE(br);     // offset_for_top_to_bottom_field
        // An absurd count ends at the end of the set: each round reads at least one bit or aborts.
        for (unsigned left = parseUE(br); left > 0; --left) {
            parseSE(br);  // offset_for_ref_frame
        }
    }
}

// Reads the two crop offsets of one direction and takes them off `size` (luma samples); 0 when
// nothing is left.
int32_t cropSize(ABitReader* br, int32_t size, unsigned unit) {
    uint64_t crop = parseUE(br);
    crop += parseUE(br);
    crop *= unit;
    const auto whole = static_cast<uint64_t>(size);
    return crop < whole ? static_cast<int32_t>(whole - crop) : 0;
}

// Reads the cropping part (7.4.2.1.1, equations 7-18 to 7-21).
void parseCropping(ABitReader* br, unsigned chromaArrayType, bool frameMbsOnly, int32_t* width,
                   int32_t* height) {
    if (br->getBits(1) == 0) {  // frame_cropping_flag
        return;
    }
    const bool halfWidth = chromaArrayType == 1 || chromaArrayType == 2;
    const bool halfHeight = chromaArrayType == 1;
    const unsigned fields = frameMbsOnly ? 1 : 2;
    *width = cropSize(br, *width, halfWidth ? 2 : 1);
    *height = cropSize(br, *height, (halfHeight ? 2 : 1) * fields);
}

struct AspectRatio {
    uint32_t width = 0;
    uint32_t height = 0;
};

// aspect_ratio_idc, table E-1; the first row is "unspecified".
constexpr AspectRatio kAspectRatios[] = {
    {0, 0},   {1, 1},   {12, 11}, {10, 11}, {16, 11},  {40, 33}, {24, 11}, {20, 11}, {32, 11},
    {80, 33}, {18, 11}, {15, 11}, {64, 33}, {160, 99}, {4, 3},   {3, 2},   {2, 1},
};

AspectRatio parseAspectRatio(ABitReader* br) {
    constexpr uint32_t kExtendedSar = 255;
    // vui_parameters_present_flag, aspect_ratio_info_present_flag
    if (br->getBits(1) == 0 || br->getBits(1) == 0) {
        return {};
    }
    const uint32_t idc = br->getBits(8);
    if (idc == kExtendedSar) {
        const uint32_t width = br->getBits(16);
        return {width, br->getBits(16)};
    }
    return idc < std::size(kAspectRatios) ? kAspectRatios[idc] : AspectRatio{};
}

// 0 when the size is beyond 31 bits.
int32_t macroblocksToSamples(uint64_t macroblocks) {
    constexpr uint64_t kSamples = 16;
    const uint64_t samples = macroblocks * kSamples;
    return samples <= INT32_MAX ? static_cast<int32_t>(samples) : 0;
}

}  // namespace

unsigned parseUE(ABitReader* br) {
    size_t leadingZeros = 0;
    while (br->getBits(1) == 0) {
        ++leadingZeros;
    }
    CHECK_LT(leadingZeros, 32u);
    return (1u << leadingZeros) - 1 + br->getBits(leadingZeros);
}

status_t getNextNALUnit(const uint8_t** data, size_t* size, const uint8_t** nalStart,
                        size_t* nalSize, bool startCodeFollows) {
    *nalStart = nullptr;
    *nalSize = 0;
    const uint8_t* const stream = *data;
    const size_t streamSize = *size;
    if (streamSize < kStartCodeSize) {
        return -EAGAIN;
    }
    const size_t code = findStartCode(stream, streamSize, 0);
    if (code == streamSize) {
        *data = stream + (streamSize - 2);
        *size = 2;
        return -EAGAIN;
    }
    const size_t start = code + kStartCodeSize;
    const size_t next = findStartCode(stream, streamSize, start);
    if (next == streamSize && !startCodeFollows) {
        return -EAGAIN;
    }
    size_t end = next;
    // The first byte is the unit's header: it stays, even when it is 0.
    while (end > start + 1 && stream[end - 1] == 0) {
        --end;
    }
    *nalStart = stream + start;
    *nalSize = end - start;
    const bool resumes = streamSize - next >= kStartCodeSize + 2;
    *data = resumes ? stream + next : nullptr;
    *size = resumes ? streamSize - next : 0;
    return OK;
}

void FindAVCDimensions(const sp<ABuffer>& seqParamSet, int32_t* width, int32_t* height,
                       int32_t* sarWidth, int32_t* sarHeight) {
    CHECK_GE(seqParamSet->size(), 1u);
    // The bytes as they are: the platform takes no emulation prevention bytes (7.4.1) out.
    ABitReader br(seqParamSet->data() + 1, seqParamSet->size() - 1);
    const uint32_t profile = br.getBits(8);
    br.getBits(16);  // constraint flags, level_idc
    parseUE(&br);    // seq_parameter_set_id
    const unsigned chromaArrayType = hasChromaFormat(profile) ? parseChromaArrayType(&br) : 1;
    parseUE(&br);  // log2_max_frame_num_minus4
    skipPictureOrderCount(&br);
    parseUE(&br);   // max_num_ref_frames
    br.getBits(1);  // gaps_in_frame_num_value_allowed_flag

    const uint64_t columns = uint64_t{parseUE(&br)} + 1;
    const uint64_t mapUnits = uint64_t{parseUE(&br)} + 1;
    const bool frameMbsOnly = br.getBits(1) != 0;
    *width = macroblocksToSamples(columns);
    // A map unit of an interlaced set is a pair of macroblocks.
    *height = macroblocksToSamples(frameMbsOnly ? mapUnits : 2 * mapUnits);
    if (!frameMbsOnly) {
        br.getBits(1);  // mb_adaptive_frame_field_flag
    }
    br.getBits(1);  // direct_8x8_inference_flag
    parseCropping(&br, chromaArrayType, frameMbsOnly, width, height);

    const AspectRatio ratio = parseAspectRatio(&br);
    if (sarWidth != nullptr) {
        *sarWidth = static_cast<int32_t>(ratio.width);
    }
    if (sarHeight != nullptr) {
        *sarHeight = static_cast<int32_t>(ratio.height);
    }
}

const char* AVCProfileToString(uint8_t profile) {
    switch (profile) {
        case 0x42:
            return "Baseline";
        case 0x4d:
            return "Main";
        case 0x58:
            return "Extended";
        case 0x64:
            return "High";
        case 0x6e:
            return "High 10";
        case 0x7a:
            return "High 422";
        case 0xf4:
            return "High 444";
        case 0x2c:
            return "CAVLC 444 Intra";
        default:
            return "Unknown";
    }
}

}  // namespace android
