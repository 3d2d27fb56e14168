// SPDX-License-Identifier: Apache-2.0

#include "tests/behaviour/faults/FormFiles.h"

#include <algorithm>
#include <ostream>
#include <stdexcept>

#include "fuzz/Seeds.h"
#include "tests/support/AviBuilder.h"

namespace avitest {

namespace {

constexpr uint32_t kPictures = 12;

struct Form {
    const char* name;
    const char* seed;
};

constexpr Form kForms[] = {
    {"PlainChunks", "idx1_mjpeg_pcm16.avi"},
    {"AbsoluteOffsetsAdpcm", "idx1_absolute_div3_adpcm.avi"},
    {"TwoSegmentsMp3", "opendml_super_two_segments.avi"},
    {"NoIndexPcm8", "no_index_rec_lists_pcm8.avi"},
    {"AvcStartCodesRawAac", "avc_start_codes_aac_raw.avi"},
    {"AvcPrefixesAc3", "avc_prefixes_ac3.avi"},
    {"HevcDts", "hevc_dts.avi"},
    {"Mp3SpanningChunks", "mjpeg_mp3_by_bytes.avi"},
    {"Mp2Blocks", "mjpeg_mp2_in_blocks.avi"},
    {"Vc1Pcm24", "vc1_pcm24.avi"},
    {"AdtsSubtitles", "subtitles_aac_adts.avi"},
};

// Rows of two B-frames: the time of a frame depends on those after it.
FormFile mpeg4() {
    const std::vector<Bytes> heads = {
        {0, 0, 1, 0xB6, 0x10}, {0, 0, 1, 0xB6, 0x50}, {0, 0, 1, 0xB6, 0x90}, {0, 0, 1, 0xB6, 0x90}};
    AviFile avi;
    const size_t video = avi.addStream(videoStream("FMP4", 32, 16, 25));
    const size_t sound = avi.addStream(pcmStream(1, 8000, 16));
    for (uint32_t i = 0; i < kPictures; ++i) {
        const Bytes& head = heads[i % heads.size()];
        avi.addChunk(video, ByteWriter().bytes(head).bytes(patternBytes(30 + i, i)).take(),
                     i % 4 == 0 ? kKey : kNoFlags);
        avi.addChunk(sound, patternBytes(80, 100 + i));
    }
    return {"Mpeg4Pcm16", avi.build()};
}

}  // namespace

void PrintTo(const FormFile& file, std::ostream* out) {
    *out << file.name;
}

std::vector<FormFile> formFiles() {
    const std::vector<Seed> seeds = fileSeeds();
    std::vector<FormFile> files = {mpeg4()};
    for (const Form& form : kForms) {
        const auto seed = std::find_if(seeds.begin(), seeds.end(),
                                       [&form](const Seed& s) { return s.name == form.seed; });
        if (seed == seeds.end()) throw std::logic_error(form.seed);
        files.push_back({form.name, seed->bytes});
    }
    return files;
}

std::string formName(const ::testing::TestParamInfo<FormFile>& info) {
    return info.param.name;
}

}  // namespace avitest
