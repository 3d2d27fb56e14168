// SPDX-License-Identifier: Apache-2.0
//
// What the fuzzers begin with. Every call returns the same bytes.
#pragma once

#include <string>
#include <vector>

#include "tests/support/ByteWriter.h"

namespace avitest {

struct Seed {
    std::string name;  // of its file
    Bytes bytes;
};

// Files as they are, without orders for a fuzzer. FileSeeds.cpp
std::vector<Seed> fileSeeds();

// AVC sequence parameter sets. SpsSeeds.cpp
std::vector<Seed> parameterSetSeeds();

// Inputs of the fuzzer of the parsers. ParserSeeds.cpp
std::vector<Seed> parserSeeds();

}  // namespace avitest
