// SPDX-License-Identifier: Apache-2.0

#include "avi/codec/SequenceParameterSet.h"

#include <vector>

#include <gtest/gtest.h>

#include <media/stagefright/foundation/avc_utils.h>

#include "tests/unit/avi/ExactBytes.h"
#include "tests/unit/platform/SpsBuilder.h"

namespace android {
namespace {

using Bytes = std::vector<uint8_t>;

bool isSane(const Bytes& nal) {
    const ExactBytes exact(nal);
    return isSaneSequenceParameterSet(exact.data(), exact.size());
}

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
    SpsFields fields = highProfile(3);
    fields.scalingMatrix = [](SpsBits& bits) {
        for (int list = 0; list < 12; ++list) {
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

}  // namespace

TEST(SequenceParameterSet, PlainSetIsSane) {
    EXPECT_TRUE(isSaneAndParsed(SpsFields().nal()));
}

TEST(SequenceParameterSet, EveryProfileWithChromaFormatIsSane) {
    for (const uint32_t profile :
         {100u, 110u, 122u, 244u, 44u, 83u, 86u, 118u, 128u, 138u, 139u, 134u, 135u}) {
        for (uint32_t chroma = 0; chroma < 4; ++chroma) {
            SCOPED_TRACE(testing::Message() << profile << ", " << chroma);
            SpsFields fields = highProfile(chroma);
            fields.profile = profile;
            EXPECT_TRUE(isSaneAndParsed(fields.nal()));
        }
    }
}

TEST(SequenceParameterSet, SetWithEverythingIsSane) {
    EXPECT_TRUE(isSaneAndParsed(fullSet().nal()));
}

TEST(SequenceParameterSet, EveryCutIsFoundOut) {
    for (const SpsFields& fields : {SpsFields(), fullSet()}) {
        const Bytes nal = fields.nal();
        for (size_t size = 0; size + 1 < nal.size(); ++size) {
            EXPECT_FALSE(isSane(Bytes(nal.begin(), nal.begin() + static_cast<ptrdiff_t>(size))))
                << size << " of " << nal.size();
        }
    }
}

TEST(SequenceParameterSet, ChromaFormatAboveThreeIsNotSane) {
    for (const uint32_t chroma : {4u, 255u, 0xFFFFFFFEu})
        EXPECT_FALSE(isSane(highProfile(chroma).nal())) << chroma;
}

TEST(SequenceParameterSet, SizesAreBounded) {
    for (const uint32_t macroblocks : {1u, 4096u, 4097u, 0x7FFFFFFFu, 0xFFFFFFFFu}) {
        SpsFields wide;
        wide.widthInMbs = macroblocks;
        EXPECT_EQ(isSaneAndParsed(wide.nal()), macroblocks <= 4096) << macroblocks;
        SpsFields high;
        high.heightInMapUnits = macroblocks;
        high.frameMbsOnly = false;
        EXPECT_EQ(isSaneAndParsed(high.nal()), macroblocks <= 4096) << macroblocks;
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
        EXPECT_EQ(isSaneAndParsed(fields.nal()), row.sane);
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

TEST(SequenceParameterSet, EndlessCycleIsNotSane) {
    SpsFields fields;
    fields.pictureOrder = [](SpsBits& bits) { bits.ue(1).u(1, 0).se(0).se(0).ue(0xFFFFFFFE); };
    EXPECT_FALSE(isSane(fields.nal()));
}

TEST(SequenceParameterSet, LongestCodeIsThirtyOneZeros) {
    SpsFields fields;
    fields.pictureOrder = [](SpsBits& bits) { bits.ue(0xFFFFFFFE); };
    EXPECT_TRUE(isSaneAndParsed(fields.nal()));
    fields.pictureOrder = [](SpsBits& bits) { bits.u(32, 0).u(1, 1).u(32, 0); };
    EXPECT_FALSE(isSane(fields.nal()));
}

TEST(SequenceParameterSet, ShortAndUniformDataIsNotSane) {
    for (size_t size = 0; size < 4; ++size)
        EXPECT_FALSE(isSane(SpsFields().nal().size() > size ? Bytes(size, 0x67) : Bytes())) << size;
    for (const size_t size : {4u, 16u, 256u})
        EXPECT_FALSE(isSane(Bytes(size, 0x00))) << size;
}

// Whatever the bits are: what counts as sane never ends the process.
TEST(SequenceParameterSet, RandomSetsAreSafe) {
    uint32_t state = 1;
    size_t sane = 0;
    for (int round = 0; round < 20000; ++round) {
        Bytes nal = round % 2 == 0 ? SpsFields().nal() : fullSet().nal();
        for (int change = 0; change < 2; ++change) {
            state = static_cast<uint32_t>(uint64_t{state} * 48271 % 0x7FFFFFFF);
            nal[1 + state % (nal.size() - 1)] = static_cast<uint8_t>(state >> 16);
        }
        if (isSaneAndParsed(nal)) ++sane;
    }
    EXPECT_GT(sane, 100u);
    EXPECT_LT(sane, 19900u);
}

}  // namespace android
