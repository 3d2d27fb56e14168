// SPDX-License-Identifier: Apache-2.0
//
// A format that deletes itself, and one filled with an entry of each type.

#pragma once

#include <gtest/gtest.h>
#include <media/NdkMediaFormat.h>

#include <memory>

struct FormatDeleter {
    void operator()(AMediaFormat* format) const { AMediaFormat_delete(format); }
};
using Format = std::unique_ptr<AMediaFormat, FormatDeleter>;

// Entries are named after their type.
class MediaFormat : public ::testing::Test {
  protected:
    void SetUp() override {
        AMediaFormat_setInt32(mFormat.get(), "int32", -7);
        AMediaFormat_setInt64(mFormat.get(), "int64", int64_t{1} << 40);
        AMediaFormat_setFloat(mFormat.get(), "float", 1.5f);
        AMediaFormat_setDouble(mFormat.get(), "double", 2.25);
        AMediaFormat_setSize(mFormat.get(), "size", 99);
        AMediaFormat_setRect(mFormat.get(), "rect", 1, 2, 3, 4);
        AMediaFormat_setString(mFormat.get(), "string", "text");
        AMediaFormat_setBuffer(mFormat.get(), "buffer", "abc", 3);
    }

    Format mFormat{AMediaFormat_new()};
};
