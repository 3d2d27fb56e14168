// SPDX-License-Identifier: Apache-2.0
//
// usage: fuzz_make_sps_corpus FOLDER
//
// Writes the seeds that the fuzzer of parameter sets begins with: valid sets of every kind. The
// seeds in fuzz/corpus/sps_fuzzer are its output; seeds that mended bugs left lie beside them.
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <string>
#include <utility>

#include "tests/unit/platform/SpsBuilder.h"

namespace android {

namespace {

using Seed = std::pair<const char*, std::vector<uint8_t>>;

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

std::vector<Seed> seeds() {
    return {{"baseline", SpsFields().nal()},
            {"escaped", escaped().nal()},
            {"high_444", highProfile(244, 3).nal()},
            {"high_444_matrix", withMatrix(244, 3, 12).nal()},
            {"high_matrix", withMatrix(100, 1, 8).nal()},
            {"main_interlaced_cropped", interlaced().nal()},
            {"monochrome", highProfile(110, 0).nal()},
            {"multiview", multiview().nal()},
            {"multiview_444_matrix", withMatrix(118, 3, 12).nal()}};
}

void writeSeeds(const std::filesystem::path& folder) {
    std::filesystem::create_directories(folder);
    for (const auto& [name, bytes] : seeds()) {
        std::ofstream out(folder / (std::string(name) + ".sps"), std::ios::binary);
        out.exceptions(std::ios::failbit | std::ios::badbit);
        out.write(reinterpret_cast<const char*>(bytes.data()),
                  static_cast<std::streamsize>(bytes.size()));
    }
}

}  // namespace

}  // namespace android

int main(int argc, char** argv) {
    if (argc != 2) {
        std::fprintf(stderr, "usage: fuzz_make_sps_corpus FOLDER\n");
        return 2;
    }
    try {
        android::writeSeeds(argv[1]);
    } catch (const std::exception& error) {
        std::fprintf(stderr, "fuzz_make_sps_corpus: %s\n", error.what());
        return 1;
    }
    return 0;
}
