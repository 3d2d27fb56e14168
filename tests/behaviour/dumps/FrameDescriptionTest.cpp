// SPDX-License-Identifier: Apache-2.0
//
// What the start code at the beginning of a short sample announces, behind its bytes in the log.

#include "tests/behaviour/dumps/DumpsFixture.h"

namespace avitest {
namespace {

struct DescriptionRow {
    const char* name;
    Bytes data;
    const char* type;  // of the frame, as the line's prefix shows it
    const char* text;
};

void PrintTo(const DescriptionRow& row, std::ostream* out) {
    *out << row.name;
}

const DescriptionRow kDescriptions[] = {
    {"IntraVop", {0, 0, 1, 0xB6, 0x10, 7}, "I", "(VOP Start@0x000001b6, VOP-I frame(0x"},
    {"PredictedVop", {0, 0, 1, 0xB6, 0x50, 7}, "P", "(VOP Start@0x000001b6, VOP-P frame(0x"},
    {"BidirectionalVop", {0, 0, 1, 0xB6, 0x90, 7}, "B", "(VOP Start@0x000001b6, VOP-B frame(0x"},
    {"SpriteVop", {0, 0, 1, 0xB6, 0xD0, 7}, "N/A", "(VOP Start@0x000001b6, VOP-S frame(0x"},
    {"OtherBitsOfAVop", {0, 0, 1, 0xB6, 0x3F, 7}, "I", "(VOP Start@0x000001b6, VOP-I frame(0x"},
    {"SequenceWithObject",
     {0, 0, 1, 0xB0, 0xF5, 0, 0, 1, 0xB5, 0x89, 0x13},
     "N/A",
     "(VOS start@0x000001b0, profile level=0xf5, VO start@0x000001b5, VO Info=0x89)"},
    {"SequenceWithoutObject",
     {0, 0, 1, 0xB0, 0x03, 0, 0, 1, 0xB2, 0x89, 0x13},
     "N/A",
     "(VOS start@0x000001b0, profile level=0x03)"},
    {"SequenceWithItsObjectElsewhere",
     {0, 0, 1, 0xB0, 0x03, 0xFF, 0, 0, 1, 0xB5, 0x89},
     "N/A",
     "(VOS start@0x000001b0, profile level=0x03)"},
    {"SequenceEnd", {0, 0, 1, 0xB1, 0x03, 1}, "N/A", "(VOS end@0x000001b1)"},
    {"UserData", {0, 0, 1, 0xB2, 'a', 'b'}, "N/A", "(UserData start@0x000001b2)"},
    {"GroupOfVops", {0, 0, 1, 0xB3, 0, 0x10, 7}, "N/A", "(Group VOP start@0x000001b3)"},
    {"VisualObject", {0, 0, 1, 0xB5, 0x89, 0x13}, "N/A", "(VO start@0x000001b5)"},
    {"OtherStartCode", {0, 0, 1, 0x20, 1, 2}, "N/A", "(00000120"},
    {"NoStartCode", {0xDE, 0xAD, 0xBE, 0xEF, 1, 2}, "N/A", "(deadbeef"},
    {"ShiftedVop", {0, 0, 0, 1, 0xB6, 0x10, 7}, "I", "(00000001"},
};

class FrameDescription : public DumpsTest, public ::testing::WithParamInterface<DescriptionRow> {};

TEST_P(FrameDescription, FollowsTheBytes) {
    openStream(videoStream("FMP4", 320, 240, 25), {GetParam().data});
    readAll(0);
    const std::string hex = hexText(GetParam().data);
    EXPECT_EQ(format("[video/mp4v-es][0][0/1][%s] ", GetParam().type) + hex + GetParam().text,
              onlyDebugLineWith("] " + hex + GetParam().text));
}

INSTANTIATE_TEST_SUITE_P(Table, FrameDescription, ::testing::ValuesIn(kDescriptions),
                         [](const auto& param) { return std::string(param.param.name); });

}  // namespace
}  // namespace avitest
