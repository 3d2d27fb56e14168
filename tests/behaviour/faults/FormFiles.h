// SPDX-License-Identifier: Apache-2.0
//
// Small valid files of different forms: every kind of index, and each way that samples take from
// their chunks to the player. Plain values.

#pragma once

#include <iosfwd>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "tests/support/ByteWriter.h"

namespace avitest {

struct FormFile {
    std::string name;
    Bytes bytes;
};

void PrintTo(const FormFile& file, std::ostream* out);

std::vector<FormFile> formFiles();

// Names the tests of a suite over formFiles().
std::string formName(const ::testing::TestParamInfo<FormFile>& info);

}  // namespace avitest
