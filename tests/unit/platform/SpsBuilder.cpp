// SPDX-License-Identifier: Apache-2.0

#include "tests/unit/platform/SpsBuilder.h"

namespace android {
namespace {

std::vector<uint8_t> escaped(const std::vector<uint8_t>& unescaped) {
    std::vector<uint8_t> nal;
    unsigned zeros = 0;
    for (const uint8_t byte : unescaped) {
        if (zeros == 2 && byte <= 3) {
            nal.push_back(3);
            zeros = 0;
        }
        zeros = byte == 0 ? zeros + 1 : 0;
        nal.push_back(byte);
    }
    return nal;
}

// A present-flag and, if there is something to write, what it announces.
void writeOptional(SpsBits& bits, const std::function<void(SpsBits&)>& part) {
    bits.u(1, part ? 1 : 0);
    if (part) {
        part(bits);
    }
}

void writeChroma(SpsBits& bits, const SpsFields& fields) {
    bits.ue(*fields.chroma);
    if (*fields.chroma == 3) {
        bits.u(1, fields.separatePlanes ? 1 : 0);
    }
    bits.ue(0).ue(0).u(1, 0);  // bit depths, transform bypass
    writeOptional(bits, fields.scalingMatrix);
}

}  // namespace

std::vector<uint8_t> SpsFields::unescapedNal() const {
    SpsBits bits;
    bits.u(8, 0x67).u(8, profile).u(8, 0).u(8, level).ue(id);  // header, ..., constraint flags
    if (chroma) {
        writeChroma(bits, *this);
    }
    bits.ue(0);  // log2_max_frame_num_minus4
    pictureOrder(bits);
    bits.ue(1).u(1, 0);  // reference frames, gaps allowed
    bits.ue(widthInMbs - 1).ue(heightInMapUnits - 1).u(1, frameMbsOnly ? 1 : 0);
    if (!frameMbsOnly) {
        bits.u(1, 0);  // mb_adaptive_frame_field_flag
    }
    bits.u(1, 1);  // direct_8x8_inference_flag
    bits.u(1, crop ? 1 : 0);
    if (crop) {
        for (const uint32_t offset : *crop) {
            bits.ue(offset);
        }
    }
    writeOptional(bits, vui);
    bits.u(1, 1);  // rbsp_stop_one_bit
    return bits.bytes();
}

std::vector<uint8_t> SpsFields::nal() const {
    return escaped(unescapedNal());
}

}  // namespace android
