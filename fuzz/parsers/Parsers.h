// SPDX-License-Identifier: Apache-2.0
//
// The plug-in's functions over bytes and numbers, each fed with any bytes. They check what the
// headers of the functions promise and end the process when it does not hold.
#pragma once

#include <cstdint>
#include <vector>

#include "fuzz/Finding.h"
#include "fuzz/Orders.h"

namespace avifuzz {

// Memory of exactly its size, so that AddressSanitizer sees every access outside.
using ParserBytes = std::vector<uint8_t>;

inline void expect(bool holds, const char* promise) {
    if (!holds) finding("does not hold: %s", promise);
}

// VideoParsers.cpp
void fuzzAvcRecord(ParserBytes bytes);
void fuzzNalUnits(ParserBytes bytes);
void fuzzIdrSearch(ParserBytes bytes);
void fuzzSequenceParameterSet(ParserBytes bytes);
void fuzzHevcSequenceHeader(ParserBytes bytes);
void fuzzFrameTypes(ParserBytes bytes);
void fuzzVideoConversions(ParserBytes bytes);

// AudioParsers.cpp
void fuzzAacHeaders(ParserBytes bytes);
void fuzzMpegAudioHeader(ParserBytes bytes);
void fuzzMpegAudioCutter(ParserBytes bytes);
void fuzzDtsHeaders(ParserBytes bytes);
void fuzzPcmConversions(ParserBytes bytes);
void fuzzEsds(ParserBytes bytes);

// ByteParsers.cpp
void fuzzByteReader(ParserBytes bytes);
void fuzzGracefulBits(ParserBytes bytes);
void fuzzSubtitleTime(ParserBytes bytes);
void fuzzNumbers(ParserBytes bytes);
void fuzzLogTexts(ParserBytes bytes);

}  // namespace avifuzz
