// SPDX-License-Identifier: Apache-2.0

#include "avi/codec/SequenceParameterSet.h"

#include <algorithm>
#include <array>
#include <vector>

#include <gtest/gtest.h>

#include <media/stagefright/foundation/avc_utils.h>

#include "tests/unit/avi/ExactBytes.h"
#include "tests/unit/avi/codec/UnitBytes.h"
#include "tests/unit/platform/SpsBuilder.h"

namespace android {
namespace {

using Bytes = std::vector<uint8_t>;

// What is sane must not end the process in the platform's parser.
bool isSaneAndParsed(const Bytes& nal) {
    if (!isSane(nal)) return false;
    int32_t width = 0;
    int32_t height = 0;
    int32_t sarWidth = 0;
    int32_t sarHeight = 0;
    FindAVCDimensions(ABuffer::CreateAsCopy(nal.data(), nal.size()), &width, &height, &sarWidth,
                      &sarHeight);
    return width > 0 && height > 0;
}

SpsFields highProfile(uint32_t chroma) {
    SpsFields fields;
    fields.profile = 100;
    fields.chroma = chroma;
    return fields;
}

// A set with something of everything.
SpsFields fullSet() {
    SpsFields fields = highProfile(2);
    fields.scalingMatrix = [](SpsBits& bits) {
        for (int list = 0; list < 8; ++list) {
            bits.u(1, static_cast<uint32_t>(list % 2));
            for (int i = 0; list % 2 == 1 && i < (list < 6 ? 16 : 64); ++i)
                bits.se(1);
        }
    };
    fields.pictureOrder = [](SpsBits& bits) { bits.ue(1).u(1, 0).se(1).se(-1).ue(2).se(3).se(4); };
    fields.frameMbsOnly = false;
    fields.crop = {1, 2, 3, 4};
    fields.vui = [](SpsBits& bits) { bits.u(1, 1).u(8, 255).u(16, 0xABCD).u(16, 0x1234); };
    return fields;
}

// Twelve lists that begin with the end of the list. A reader of eight takes the rest for a size.
SpsFields fourFourFourSet() {
    SpsFields fields = highProfile(3);
    fields.profile = 244;
    fields.scalingMatrix = [](SpsBits& bits) {
        for (int list = 0; list < 12; ++list)
            bits.u(1, 1).se(-8);
    };
    return fields;
}

// Deltas beyond -128 to 127, which count as these; as they are they would end their lists.
SpsFields clampedSet() {
    SpsFields fields = highProfile(1);
    fields.scalingMatrix = [](SpsBits& bits) {
        bits.u(1, 1).se(127).se(-135).se(-7);  // 8, 135, 7, 0
        bits.u(1, 1).se(120).se(128).se(1);    // 8, 128, 255, 0
        bits.u(6, 0);
    };
    return fields;
}

// A set that ends with the aspect ratio's escape code and then these bytes.
Bytes withRatioBytes(const Bytes& tail) {
    SpsFields fields;
    fields.vui = [](SpsBits& bits) { bits.u(1, 1).u(8, 255); };
    Bytes nal = fields.unescapedNal();
    nal.pop_back();  // the stop bit
    EXPECT_EQ(nal.back(), 255);
    nal.insert(nal.end(), tail.begin(), tail.end());
    return nal;
}

}  // namespace

TEST(SequenceParameterSet, PlainSetIsSane) {
    EXPECT_TRUE(isSaneAndParsed(SpsFields().nal()));
}

TEST(SequenceParameterSet, ChromaFormatOfSevenProfilesIsSane) {
    for (const uint32_t profile : {100u, 110u, 122u, 244u, 44u, 83u, 86u}) {
        for (uint32_t chroma = 0; chroma < 4; ++chroma) {
            SCOPED_TRACE(testing::Message() << profile << ", " << chroma);
            SpsFields fields = highProfile(chroma);
            fields.profile = profile;
            EXPECT_TRUE(isSaneAndParsed(fields.nal()));
        }
    }
}

// The platform looks for the size where the chroma format is, and does not find one.
TEST(SequenceParameterSet, ChromaFormatOfSixMoreProfilesIsNotSane) {
    for (const uint32_t profile : {118u, 128u, 138u, 139u, 134u, 135u}) {
        for (uint32_t chroma = 0; chroma < 4; ++chroma) {
            SCOPED_TRACE(testing::Message() << profile << ", " << chroma);
            SpsFields fields = highProfile(chroma);
            fields.profile = profile;
            EXPECT_FALSE(isSane(fields.nal()));
        }
    }
}

// The platform would find the size, but a decoder the chroma format in its place.
TEST(SequenceParameterSet, NoChromaFormatOfThirteenProfilesIsNotSane) {
    for (const uint32_t profile :
         {100u, 110u, 122u, 244u, 44u, 83u, 86u, 118u, 128u, 138u, 139u, 134u, 135u}) {
        SpsFields fields;
        fields.profile = profile;
        EXPECT_FALSE(isSane(fields.nal())) << profile;
    }
}

TEST(SequenceParameterSet, NoChromaFormatOfOtherProfilesIsSane) {
    for (uint32_t profile = 0; profile < 256; ++profile) {
        static constexpr std::array<uint32_t, 13> kHigh = {100, 110, 122, 244, 44,  83, 86,
                                                           118, 128, 138, 139, 134, 135};
        if (std::find(kHigh.begin(), kHigh.end(), profile) != kHigh.end()) continue;
        SpsFields fields;
        fields.profile = profile;
        EXPECT_TRUE(isSaneAndParsed(fields.nal())) << profile;
    }
}

// One that the platform finds a size in, if not that of the picture.
TEST(SequenceParameterSet, SetOfAnotherProfileThatBothReadToASizeIsSane) {
    SpsFields fields = highProfile(1);
    fields.profile = 128;
    fields.vui = [](SpsBits& bits) { bits.u(1, 0).u(32, 0); };
    fields.widthInMbs = 80;
    fields.heightInMapUnits = 45;
    EXPECT_TRUE(isSaneAndParsed(fields.nal()));
}

TEST(SequenceParameterSet, FourFourFourMatrixIsSaneInEightAndTwelveLists) {
    EXPECT_TRUE(isSaneAndParsed(fourFourFourSet().nal()));
    SpsFields fields = fourFourFourSet();
    fields.scalingMatrix = [](SpsBits& bits) { bits.u(12, 0); };
    EXPECT_FALSE(isSane(fields.nal()));  // too short for a reader of eight
    fields.scalingMatrix = [](SpsBits& bits) { bits.u(8, 0); };
    EXPECT_FALSE(isSane(fields.nal()));  // too short for a reader of twelve
}

TEST(SequenceParameterSet, ClampedScalingDeltasAreSane) {
    EXPECT_TRUE(isSaneAndParsed(clampedSet().nal()));
}

TEST(SequenceParameterSet, SetWithEverythingIsSane) {
    EXPECT_TRUE(isSaneAndParsed(fullSet().nal()));
}

TEST(SequenceParameterSet, EveryCutIsFoundOut) {
    for (const SpsFields& fields : {SpsFields(), fullSet(), fourFourFourSet(), clampedSet()}) {
        const Bytes nal = fields.nal();
        for (size_t size = 0; size + 1 < nal.size(); ++size) {
            EXPECT_FALSE(isSane(Bytes(nal.begin(), nal.begin() + static_cast<ptrdiff_t>(size))))
                << size << " of " << nal.size();
        }
    }
}

TEST(SequenceParameterSet, ChromaFormatAboveThreeIsNotSane) {
    for (const uint32_t chroma : {4u, 255u, 0xFFFFFFFEu})
        EXPECT_FALSE(isSane(highProfile(chroma).unescapedNal())) << chroma;
}

TEST(SequenceParameterSet, SizesAreBounded) {
    for (const uint32_t macroblocks : {1u, 4096u, 4097u, 0x7FFFFFFFu, 0xFFFFFFFFu}) {
        SpsFields wide;
        wide.widthInMbs = macroblocks;
        EXPECT_EQ(isSaneAndParsed(wide.unescapedNal()), macroblocks <= 4096) << macroblocks;
        SpsFields high;
        high.heightInMapUnits = macroblocks;
        high.frameMbsOnly = false;
        EXPECT_EQ(isSaneAndParsed(high.unescapedNal()), macroblocks <= 4096) << macroblocks;
    }
}

TEST(SequenceParameterSet, CroppingLeavesSomething) {
    const struct {
        std::array<uint32_t, 4> crop;
        bool sane;
    } kRows[] = {
        {{0, 0, 0, 0}, true},           {{88, 87, 72, 71}, true},
        {{88, 88, 0, 0}, false},        {{0, 0, 72, 72}, false},
        {{0xFFFFFFFE, 2, 0, 0}, false}, {{0, 0, 0xFFFFFFFE, 0xFFFFFFFE}, false},
    };
    for (const auto& row : kRows) {
        SCOPED_TRACE(testing::PrintToString(row.crop));
        SpsFields fields;
        fields.crop = row.crop;
        EXPECT_EQ(isSaneAndParsed(fields.unescapedNal()), row.sane);
    }
}

TEST(SequenceParameterSet, CropUnitsDependOnChromaAndFields) {
    // 352 x 288 without subsampling: one sample a unit; interlaced: two lines a unit.
    SpsFields fields = highProfile(3);
    fields.crop = {351, 0, 287, 0};
    EXPECT_TRUE(isSaneAndParsed(fields.nal()));
    fields.crop = {352, 0, 0, 0};
    EXPECT_FALSE(isSane(fields.nal()));

    SpsFields interlaced;
    interlaced.frameMbsOnly = false;
    interlaced.crop = {0, 0, 143, 0};
    EXPECT_TRUE(isSaneAndParsed(interlaced.nal()));
    interlaced.crop = {0, 0, 144, 0};
    EXPECT_FALSE(isSane(interlaced.nal()));
}

TEST(SequenceParameterSet, CycleOfMoreThan255FramesIsNotSane) {
    SpsFields fields;
    for (const uint32_t frames : {0u, 1u, 255u, 256u, 257u}) {
        fields.pictureOrder = [=](SpsBits& bits) {
            bits.ue(1).u(1, 0).se(0).se(0).ue(frames);
            for (uint32_t i = 0; i < frames; ++i)
                bits.se(1);
        };
        EXPECT_EQ(isSaneAndParsed(fields.unescapedNal()), frames <= 255) << frames;
    }
    fields.pictureOrder = [](SpsBits& bits) { bits.ue(1).u(1, 0).se(0).se(0).ue(0xFFFFFFFE); };
    EXPECT_FALSE(isSane(fields.unescapedNal()));
}

TEST(SequenceParameterSet, LongestCodeIsThirtyOneZeros) {
    SpsFields fields;
    fields.pictureOrder = [](SpsBits& bits) { bits.ue(0xFFFFFFFE); };
    EXPECT_TRUE(isSaneAndParsed(fields.unescapedNal()));
    fields.pictureOrder = [](SpsBits& bits) { bits.u(32, 0).u(1, 1).u(32, 0); };
    EXPECT_FALSE(isSane(fields.unescapedNal()));
}

TEST(SequenceParameterSet, ShortAndUniformDataIsNotSane) {
    for (size_t size = 0; size < 4; ++size)
        EXPECT_FALSE(isSane(SpsFields().nal().size() > size ? Bytes(size, 0x67) : Bytes())) << size;
    for (const size_t size : {4u, 16u, 256u})
        EXPECT_FALSE(isSane(Bytes(size, 0x00))) << size;
}

// The zeros of the level and of the code after it make an encoder put a byte in, which the platform
// reads with the fields, so that it looks for the size in other bits.
TEST(SequenceParameterSet, SetThatOnlyItsRawBytesSpoilIsNotSane) {
    SpsFields fields;
    fields.level = 0;
    fields.id = 255;
    fields.widthInMbs = 80;
    fields.heightInMapUnits = 45;
    EXPECT_TRUE(isSane(fields.unescapedNal()));
    EXPECT_FALSE(isSane(fields.nal()));
    // Long enough, but the size is beyond 31 bits.
    fields.widthInMbs = 120;
    fields.heightInMapUnits = 68;
    fields.vui = [](SpsBits& bits) { bits.u(1, 1).u(8, 1).u(16, 0x1234); };
    EXPECT_TRUE(isSane(fields.unescapedNal()));
    EXPECT_FALSE(isSane(fields.nal()));
}

// A ratio has four bytes. Which ones are emulation prevention shows in whether four are left.
TEST(SequenceParameterSet, ThreeAfterTwoZerosIsNoData) {
    const struct {
        Bytes tail;
        bool sane;
    } kRows[] = {
        {{5, 6, 7}, false},      {{5, 6, 7, 8}, true},    {{5, 0, 0, 3}, false},
        {{5, 0, 0, 3, 4}, true}, {{0, 0, 0, 3}, false},   {{0, 0, 0, 3, 4}, true},
        {{5, 5, 0, 3}, true},    {{0, 5, 0, 3}, true},    {{0, 0, 5, 3}, true},
        {{5, 0, 0, 2}, true},    {{5, 0, 0, 4}, true},    {{0, 0, 3, 3}, false},
        {{0, 0, 3, 3, 3}, true}, {{0, 0, 3, 0, 3}, true}, {{0, 0, 3, 0, 0, 3}, true},
        {{0, 0, 3, 0, 0}, true}, {{0, 0, 3, 0}, false},
    };
    for (const auto& row : kRows)
        EXPECT_EQ(isSaneAndParsed(withRatioBytes(row.tail)), row.sane)
            << testing::PrintToString(row.tail);
}

// Sets that read well in five of six ways, found among random ones.
TEST(SequenceParameterSet, OneBadReadingIsEnough) {
    const struct {
        const char* reading;
        Bytes nal;
    } kRows[] = {
        {"raw bytes, seven profiles", {0x67, 0x87, 0x00, 0x00, 0x03, 0x03, 0xE9, 0x39, 0x69, 0x79}},
        {"raw bytes, 13 profiles, eight lists",
         {0x67, 0x80, 0x00, 0x00, 0x93, 0xA2, 0x11, 0x00, 0x00, 0x03, 0x84, 0x4C, 0x23, 0x68, 0x20,
          0xD9}},
        {"raw bytes, 13 profiles, twelve lists",
         {0x67, 0x87, 0x00, 0x00, 0x93, 0x00, 0x00, 0x03, 0x98, 0xD4, 0x12, 0x00, 0xAA, 0xF2}},
        {"without emulation prevention, seven profiles",
         {0x67, 0x86, 0x00, 0x00, 0x03, 0x03, 0x11, 0x39, 0x69, 0x92}},
        {"without emulation prevention, 13 profiles, eight lists",
         {0x67, 0x87, 0x00, 0x00, 0x03, 0x01, 0x0E, 0x46, 0x80, 0x06, 0x44, 0x9B, 0xF6, 0x80}},
        {"without emulation prevention, 13 profiles, twelve lists",
         {0x67, 0x76, 0x00, 0x00, 0x03, 0x03, 0xA1, 0x3A, 0x01, 0x8E, 0x45, 0x36, 0x95}},
    };
    for (const auto& row : kRows)
        EXPECT_FALSE(isSane(row.nal)) << row.reading;
}

}  // namespace android
