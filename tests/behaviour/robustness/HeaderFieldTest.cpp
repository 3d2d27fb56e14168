// SPDX-License-Identifier: Apache-2.0
//
// Files in which header fields lie: none of it crashes the reader or keeps it from ending.

#include <random>

#include "tests/behaviour/robustness/Endurance.h"
#include "tests/behaviour/robustness/HeaderFields.h"

namespace avitest {
namespace {

constexpr int kRandomValues = 24;   // for each field
constexpr int kRandomFiles = 2000;  // with several fields overwritten
constexpr int kMostFields = 6;

// The same on every machine and in every run.
using Random = std::mt19937;
constexpr uint32_t kSeed = 20040917;

class HeaderFieldValue : public QuietTest, public ::testing::WithParamInterface<SmallFile> {
  protected:
    // Overwrites each field by itself with a value that `choose` gives for it.
    template <typename Choose>
    void overwriteEach(Choose choose) {
        for (const HeaderField& field : headerFields(GetParam().bytes)) {
            const uint32_t value = choose(field);
            Bytes file = GetParam().bytes;
            overwrite(&file, field, value);
            ASSERT_TRUE(endures(file)) << field.name << " = " << value;
        }
    }
};

TEST_P(HeaderFieldValue, ZeroComesToAnEnd) {
    overwriteEach([](const HeaderField&) { return 0u; });
}

TEST_P(HeaderFieldValue, OneComesToAnEnd) {
    overwriteEach([](const HeaderField&) { return 1u; });
}

TEST_P(HeaderFieldValue, MaximumComesToAnEnd) {
    overwriteEach([](const HeaderField& field) { return field.largest(); });
}

TEST_P(HeaderFieldValue, SignedExtremesComeToAnEnd) {
    overwriteEach([](const HeaderField& field) { return field.largest() / 2; });
    overwriteEach([](const HeaderField& field) { return field.largest() / 2 + 1; });
}

TEST_P(HeaderFieldValue, LengthOfTheFileComesToAnEnd) {
    const auto length = static_cast<uint32_t>(GetParam().bytes.size());
    for (const uint32_t near : {length - 8, length - 1, length, length + 1})
        overwriteEach([near](const HeaderField&) { return near; });
}

TEST_P(HeaderFieldValue, RandomComesToAnEnd) {
    Random random(kSeed);
    for (int i = 0; i < kRandomValues; ++i) {
        SCOPED_TRACE("round " + std::to_string(i));
        overwriteEach([&random](const HeaderField&) { return static_cast<uint32_t>(random()); });
        // Small numbers get further than those that a first check throws out.
        overwriteEach(
            [&random](const HeaderField&) { return static_cast<uint32_t>(random() % 64); });
    }
}

TEST_P(HeaderFieldValue, SeveralAtRandomComeToAnEnd) {
    Random random(kSeed);
    const std::vector<HeaderField> fields = headerFields(GetParam().bytes);
    for (int i = 0; i < kRandomFiles; ++i) {
        Bytes file = GetParam().bytes;
        std::string changes;
        for (size_t left = 1 + random() % kMostFields; left > 0; --left) {
            const HeaderField& field = fields[random() % fields.size()];
            const auto value = static_cast<uint32_t>(random() >> random() % 32);
            overwrite(&file, field, value);
            changes += field.name + " = " + std::to_string(value) + "; ";
        }
        ASSERT_TRUE(endures(file)) << changes;
    }
}

INSTANTIATE_TEST_SUITE_P(Kinds, HeaderFieldValue, ::testing::ValuesIn(smallFiles()), kindName);

}  // namespace
}  // namespace avitest
