// SPDX-License-Identifier: Apache-2.0
//
// The plug-in's functions over bytes, without a file around them. The first byte of an input
// chooses the function.
#include <android/log.h>

#include <iterator>

#include "fuzz/Entry.h"
#include "fuzz/parsers/Parsers.h"
#include "support/Switches.h"

namespace {

using Parser = void (*)(avifuzz::ParserBytes);

// The seeds go by this order: see fuzz/ParserSeeds.cpp. New ones come last.
constexpr Parser kParsers[] = {
    avifuzz::fuzzAvcRecord,
    avifuzz::fuzzNalUnits,
    avifuzz::fuzzIdrSearch,
    avifuzz::fuzzSequenceParameterSet,
    avifuzz::fuzzHevcSequenceHeader,
    avifuzz::fuzzAacHeaders,
    avifuzz::fuzzMpegAudioHeader,
    avifuzz::fuzzMpegAudioCutter,
    avifuzz::fuzzDtsHeaders,
    avifuzz::fuzzFrameTypes,
    avifuzz::fuzzVideoConversions,
    avifuzz::fuzzPcmConversions,
    avifuzz::fuzzSubtitleTime,
    avifuzz::fuzzByteReader,
    avifuzz::fuzzGracefulBits,
    avifuzz::fuzzEsds,
    avifuzz::fuzzNumbers,
    avifuzz::fuzzLogTexts,
};

void dropLine(const __android_logger_data* /*data*/, const char* /*message*/) {}

}  // namespace

int LLVMFuzzerInitialize(int* /*argc*/, char*** /*argv*/) {
    __android_log_set_logger(dropLine);
    __android_log_set_minimum_priority(ANDROID_LOG_VERBOSE);  // lines are formatted, not shown
    android::gSwitches.extractLog = true;
    return 0;
}

int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    if (size == 0) return 0;
    kParsers[data[0] % std::size(kParsers)](avifuzz::ParserBytes(data + 1, data + size));
    return 0;
}
