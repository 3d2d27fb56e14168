// SPDX-License-Identifier: Apache-2.0
//
// Valid AVC sequence parameter sets of every kind.
#include "fuzz/Seeds.h"
#include "tests/unit/platform/SpsBuilder.h"

namespace avitest {

namespace {

using android::SpsBits;
using android::SpsFields;

SpsFields highProfile(uint32_t profile, uint32_t chroma) {
    SpsFields fields;
    fields.profile = profile;
    fields.chroma = chroma;
    return fields;
}

SpsFields interlaced() {
    SpsFields fields;
    fields.profile = 77;
    fields.frameMbsOnly = false;
    fields.pictureOrder = [](SpsBits& bits) { bits.ue(1).u(1, 0).se(1).se(-1).ue(2).se(3).se(4); };
    fields.crop = {1, 2, 3, 4};
    fields.vui = [](SpsBits& bits) { bits.u(1, 1).u(8, 255).u(16, 0x0500).u(16, 3); };
    return fields;
}

SpsFields withMatrix(uint32_t profile, uint32_t chroma, int lists) {
    SpsFields fields = highProfile(profile, chroma);
    fields.scalingMatrix = [lists](SpsBits& bits) {
        for (int list = 0; list < lists; ++list)
            bits.u(1, 1).se(list - 127).se(130).se(-8);
    };
    return fields;
}

// A byte of emulation prevention in front of the size, and more after it.
SpsFields escaped() {
    SpsFields fields;
    fields.level = 0;
    fields.id = 255;
    fields.vui = [](SpsBits& bits) { bits.u(1, 1).u(8, 1).u(32, 0).u(32, 0); };
    return fields;
}

SpsFields multiview() {
    SpsFields fields = highProfile(128, 1);
    fields.vui = [](SpsBits& bits) { bits.u(1, 0).u(32, 0); };
    return fields;
}

}  // namespace

std::vector<Seed> parameterSetSeeds() {
    return {{"baseline.sps", SpsFields().nal()},
            {"escaped.sps", escaped().nal()},
            {"high_444.sps", highProfile(244, 3).nal()},
            {"high_444_matrix.sps", withMatrix(244, 3, 12).nal()},
            {"high_matrix.sps", withMatrix(100, 1, 8).nal()},
            {"main_interlaced_cropped.sps", interlaced().nal()},
            {"monochrome.sps", highProfile(110, 0).nal()},
            {"multiview.sps", multiview().nal()},
            {"multiview_444_matrix.sps", withMatrix(118, 3, 12).nal()}};
}

}  // namespace avitest
