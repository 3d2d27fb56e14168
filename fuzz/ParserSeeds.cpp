// SPDX-License-Identifier: Apache-2.0
//
// Headers and samples as the parsers meet them, each after the number of its parser in
// fuzz/ParserFuzzer.cpp.
#include <utility>

#include "fuzz/DtsSeeds.h"
#include "fuzz/Seeds.h"
#include "tests/unit/platform/SpsBuilder.h"

namespace avitest {

namespace {

using android::SpsFields;

// In the order of ParserFuzzer.cpp.
enum Parser : uint8_t {
    kAvcRecord,
    kNalUnits,
    kIdrSearch,
    kSequenceParameterSet,
    kHevcSequenceHeader,
    kAacHeaders,
    kMpegAudioHeader,
    kMpegAudioCutter,
    kDtsHeaders,
    kFrameTypes,
    kVideoConversions,
    kPcmConversions,
    kSubtitleTime,
    kByteReader,
    kGracefulBits,
    kEsds,
    kNumbers,
    kLogTexts,
};

const Bytes kStartCode = {0, 0, 0, 1};
const Bytes kPps = {0x68, 0xCE, 0x3C, 0x80};

class SeedList {
  public:
    void add(Parser parser, const std::string& name, const Bytes& bytes) {
        mSeeds.push_back({name, ByteWriter().u8(parser).bytes(bytes).take()});
    }
    std::vector<Seed> take() { return std::move(mSeeds); }

  private:
    std::vector<Seed> mSeeds;
};

Bytes joined(const std::vector<Bytes>& parts) {
    ByteWriter out;
    for (const Bytes& part : parts)
        out.bytes(part);
    return out.take();
}

void addVideo(SeedList* list) {
    const Bytes sps = SpsFields().nal();
    const auto spsSize = static_cast<uint8_t>(sps.size());
    list->add(kAvcRecord, "avc_record",
              joined({{1, 66, 0, 30, 0xFF, 0xE1, 0, spsSize}, sps, {1, 0, 4}, kPps}));
    const Bytes sample = joined({kStartCode, sps, kStartCode, kPps, {0, 0, 1, 0x65, 0x88, 0x84}});
    list->add(kNalUnits, "nal_units", sample);
    list->add(kIdrSearch, "idr_search", sample);
    for (const Seed& set : parameterSetSeeds())
        list->add(kSequenceParameterSet, set.name, set.bytes);
    list->add(kHevcSequenceHeader, "hevc_sequence_header",
              joined({kStartCode,
                      {0x40, 1, 0x0C, 1},
                      kStartCode,
                      {0x42, 1, 1, 0x60},
                      kStartCode,
                      {0x44, 1, 0xC1, 0x72},
                      kStartCode,
                      {0x26, 1, 0xAF}}));
    list->add(kHevcSequenceHeader, "hevc_sets_in_reverse",
              joined({kStartCode,
                      {0x44, 1, 0xC1, 0x72},
                      kStartCode,
                      {0x42, 1, 1, 0x60},
                      kStartCode,
                      {0x40, 1, 0x0C, 1},
                      kStartCode,
                      {0x26, 1, 0xAF}}));
    list->add(kFrameTypes, "avc_slice", joined({kStartCode, {0x41, 0x9A, 0x02, 0x05}}));
    list->add(kFrameTypes, "mpeg4_group", {0, 0, 1, 0xB3, 0, 0x10, 7, 0, 0, 1, 0xB6, 0x90, 0});
    list->add(kVideoConversions, "prefixed_units",
              {0, 0, 0, 4, 0x65, 0x88, 1, 2, 0, 0, 0, 0, 0, 0, 0, 9, 0x41});
    list->add(kVideoConversions, "vc1_frame", {0, 0, 1, 0x0D, 0xC5, 0x12});
}

void addAudio(SeedList* list) {
    list->add(kAacHeaders, "adts", {0xFF, 0xF1, 0x50, 0x80, 0x0C, 0x1F, 0xFC});
    list->add(kAacHeaders, "audio_specific_config", {0x12, 0x10});
    list->add(kMpegAudioHeader, "mpeg_audio_headers",
              {0xFF, 0xFB, 0x14, 0xC4, 0xFF, 0xFD, 0x14, 0xC4, 0xFF, 0xFF,
               0x18, 0,    0xFF, 0xF3, 0x40, 0xC0, 0xFF, 0xE3, 0x18, 0xC4});
    // The stream's header, block mode, block size, rate and times; then two frames and a half.
    ByteWriter cutter;
    cutter.bytes(
        Bytes{0xFF, 0xFF, 0x18, 0, 1, 1, 0, 96, 0, 1, 0x80, 0, 0x7D, 0, 12, 0, 9, 12, 0, 8});
    for (size_t length : {44, 44, 20})
        cutter.bytes(Bytes{0xFF, 0xFF, 0x18, 0}).fill(length, 0x2A);
    list->add(kMpegAudioCutter, "mpeg_audio_cutter", cutter.take());
    list->add(kDtsHeaders, "dts_core", dtsCoreFrame());
    list->add(kDtsHeaders, "dts_lossless", dtsSubstream(kDtsLossless));
    list->add(kDtsHeaders, "dts_express", dtsFullSubstream(kDtsExpress));
    list->add(kDtsHeaders, "dts_core_in_substream",
              joined({dtsSubstream(kDtsCore), dtsCoreFrame()}));
    list->add(kPcmConversions, "pcm", patternBytes(25));
    list->add(kEsds, "esds", {0x12, 0x10});
    list->add(kEsds, "esds_long", patternBytes(200));
}

void addBytes(SeedList* list) {
    list->add(kSubtitleTime, "subtitle_time", bytesOf("[01:02:03.456-01:02:04.000]"));
    list->add(kByteReader, "byte_reader", {0, 1, 2, 3, 4, 5, 6, 0, 0, 3, 6, 49, 255, 255, 0, 0});
    list->add(kGracefulBits, "graceful_bits", {0, 7, 1, 3, 4, 2, 0, 9, 3, 0x80, 4, 0x60, 0, 32});
    list->add(kNumbers, "numbers",
              {20, 0, 9, 30, 1, 2, 0, 0, 1, 0, 0, 25, 1, 0, 3, 0, 7, 200, 0, 1, 0x20, 0});
    list->add(kLogTexts, "log_texts", patternBytes(40));
}

}  // namespace

std::vector<Seed> parserSeeds() {
    SeedList list;
    addVideo(&list);
    addAudio(&list);
    addBytes(&list);
    return list.take();
}

}  // namespace avitest
