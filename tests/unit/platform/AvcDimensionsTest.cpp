// SPDX-License-Identifier: Apache-2.0

#include <media/stagefright/foundation/avc_utils.h>

#include <algorithm>
#include <array>
#include <vector>

#include "tests/unit/platform/AbortTest.h"
#include "tests/unit/platform/SpsBuilder.h"

namespace android {
namespace {

using Bytes = std::vector<uint8_t>;
using Size = std::array<int32_t, 2>;
using Answer = std::array<int32_t, 4>;  // width, height, sample aspect ratio

class AvcDimensionsDeathTest : public testing::Test {};

Answer find(const Bytes& nal) {
    Answer answer = {-1, -1, -1, -1};
    FindAVCDimensions(ABuffer::CreateAsCopy(nal.data(), nal.size()), &answer[0], &answer[1],
                      &answer[2], &answer[3]);
    return answer;
}

// Without emulation prevention, which would get between the bits of long codes.
Size size(const SpsFields& sps) {
    const Answer answer = find(sps.unescapedNal());
    return {answer[0], answer[1]};
}

// The answer for a set with this aspect_ratio_idc and nothing more in its VUI.
Size ratio(uint32_t idc) {
    SpsFields sps;
    sps.vui = [idc](SpsBits& bits) { bits.u(1, 1).u(8, idc); };
    const Answer answer = find(sps.nal());
    return {answer[2], answer[3]};
}

SpsFields croppedByOne(std::optional<uint32_t> chroma, bool frameMbsOnly) {
    SpsFields sps;
    sps.profile = chroma ? 244 : 66;
    sps.chroma = chroma;
    sps.frameMbsOnly = frameMbsOnly;
    sps.crop = {0, 1, 0, 1};
    return sps;
}

TEST(AvcDimensions, SizeIsInMacroblocks) {
    EXPECT_EQ(find(SpsFields{}.nal()), (Answer{352, 288, 0, 0}));
}

TEST(AvcDimensions, MapUnitsOfAnInterlacedSetCountTwice) {
    SpsFields sps;
    sps.frameMbsOnly = false;
    EXPECT_EQ(size(sps), (Size{352, 576}));
}

TEST(AvcDimensions, RatioPointersMayBeNull) {
    const Bytes nal = SpsFields{}.nal();
    int32_t width = 0;
    int32_t height = 0;
    FindAVCDimensions(ABuffer::CreateAsCopy(nal.data(), nal.size()), &width, &height);
    EXPECT_EQ((Size{width, height}), (Size{352, 288}));
}

TEST(AvcDimensions, RangeOfTheBufferIsWhatCounts) {
    Bytes nal = SpsFields{}.nal();
    nal.insert(nal.begin(), {0, 0, 1});
    sp<ABuffer> buffer = ABuffer::CreateAsCopy(nal.data(), nal.size());
    buffer->setRange(3, nal.size() - 3);
    int32_t width = 0;
    int32_t height = 0;
    FindAVCDimensions(buffer, &width, &height);
    EXPECT_EQ((Size{width, height}), (Size{352, 288}));
}

TEST(AvcDimensions, SizeBeyondThirtyOneBitsIsZero) {
    SpsFields sps;
    sps.widthInMbs = 0x7ffffff;
    sps.heightInMapUnits = 0x3ffffff;
    sps.frameMbsOnly = false;
    EXPECT_EQ(size(sps), (Size{0x7ffffff0, 0x7fffffe0}));
    ++sps.widthInMbs;
    EXPECT_EQ(size(sps), (Size{0, 0x7fffffe0}));
    ++sps.heightInMapUnits;
    EXPECT_EQ(size(sps), (Size{0, 0}));
    sps.widthInMbs = 22;
    sps.crop = {0, 1, 0, 1};
    EXPECT_EQ(size(sps), (Size{350, 0}));
}

TEST(AvcDimensions, SizeCroppedAwayIsZero) {
    SpsFields sps;
    sps.crop = {0, 175, 0, 143};
    EXPECT_EQ(size(sps), (Size{2, 2}));
    sps.crop = {0, 176, 0, 143};
    EXPECT_EQ(size(sps), (Size{0, 2}));
    sps.crop = {0, 175, 144, 0};
    EXPECT_EQ(size(sps), (Size{2, 0}));
    sps.crop = {0xfffffffe, 2, 0xfffffffe, 0xfffffffe};
    EXPECT_EQ(size(sps), (Size{0, 0}));
}

TEST(AvcDimensions, CropOffsetsOfBothSidesAdd) {
    SpsFields sps;
    sps.crop = {1, 2, 3, 4};
    EXPECT_EQ(size(sps), (Size{352 - 2 * 3, 288 - 2 * 7}));
}

TEST(AvcDimensions, CropUnitOfFourTwoZero) {
    EXPECT_EQ(size(croppedByOne({}, true)), (Size{350, 286}));
    EXPECT_EQ(size(croppedByOne(1, true)), (Size{350, 286}));
}

TEST(AvcDimensions, CropUnitOfMonochrome) {
    EXPECT_EQ(size(croppedByOne(0, true)), (Size{351, 287}));
}

TEST(AvcDimensions, CropUnitOfFourTwoTwo) {
    EXPECT_EQ(size(croppedByOne(2, true)), (Size{350, 287}));
}

TEST(AvcDimensions, CropUnitOfFourFourFour) {
    EXPECT_EQ(size(croppedByOne(3, true)), (Size{351, 287}));
}

TEST(AvcDimensions, CropUnitOfSeparatePlanes) {
    SpsFields sps = croppedByOne(3, true);
    sps.separatePlanes = true;
    EXPECT_EQ(size(sps), (Size{351, 287}));
}

TEST(AvcDimensions, CropUnitOfFieldPicturesIsTwiceAsHigh) {
    EXPECT_EQ(size(croppedByOne({}, false)), (Size{350, 572}));
    EXPECT_EQ(size(croppedByOne(0, false)), (Size{351, 574}));
    EXPECT_EQ(size(croppedByOne(2, false)), (Size{350, 574}));
    EXPECT_EQ(size(croppedByOne(3, false)), (Size{351, 574}));
}

TEST(AvcDimensions, ChromaFormatOfSevenProfilesIsRead) {
    for (const uint32_t profile : {100, 110, 122, 244, 44, 83, 86}) {
        SpsFields sps;
        sps.profile = profile;
        sps.chroma = 1;
        EXPECT_EQ(size(sps), (Size{352, 288})) << profile;
    }
}

TEST(AvcDimensions, OtherProfilesAreReadWithoutChromaFormat) {
    for (const uint32_t profile : {66, 77, 88, 118, 128, 138, 139, 134, 135, 0, 255}) {
        SpsFields sps;
        sps.profile = profile;
        EXPECT_EQ(size(sps), (Size{352, 288})) << profile;
    }
}

// A picture of 1280 x 720, in whose set the size is then looked for too early.
TEST(AvcDimensions, ChromaFormatOfAnotherProfileIsReadAsTheFieldsAfterIt) {
    SpsFields sps;
    sps.profile = 128;
    sps.chroma = 1;
    sps.widthInMbs = 80;
    sps.heightInMapUnits = 45;
    sps.vui = [](SpsBits& bits) { bits.u(1, 0).u(32, 0); };
    EXPECT_EQ(size(sps), (Size{32, 5120}));
}

TEST(AvcDimensions, ChromaFormatAboveThreeIsTaken) {
    for (const uint32_t chroma : {4u, 5u, 100u, 0xfffffffeu}) {
        SpsFields sps;
        sps.profile = 100;
        sps.chroma = chroma;
        EXPECT_EQ(size(sps), (Size{352, 288})) << chroma;
    }
}

TEST(AvcDimensions, AbsentScalingListsArePassedOver) {
    SpsFields sps;
    sps.profile = 100;
    sps.chroma = 1;
    sps.scalingMatrix = [](SpsBits& bits) { bits.u(8, 0); };
    EXPECT_EQ(size(sps), (Size{352, 288}));
}

TEST(AvcDimensions, EightScalingListsOfFourFourFourAreRead) {
    SpsFields sps;
    sps.profile = 244;
    sps.chroma = 3;
    sps.scalingMatrix = [](SpsBits& bits) { bits.u(8, 0); };
    EXPECT_EQ(size(sps), (Size{352, 288}));
}

// As sets of 4:4:4 have them: the last four are taken for the fields after the matrix.
TEST(AvcDimensions, TwelveScalingListsOfFourFourFourAreNotRead) {
    SpsFields sps;
    sps.profile = 244;
    sps.chroma = 3;
    sps.scalingMatrix = [](SpsBits& bits) {
        for (int list = 0; list < 12; ++list) {
            bits.u(1, 1).se(-8);
        }
    };
    EXPECT_EQ(size(sps), (Size{128, 16}));
}

TEST(AvcDimensions, FullScalingListsHaveSixteenOrSixtyFourValues) {
    SpsFields sps;
    sps.profile = 100;
    sps.chroma = 1;
    sps.scalingMatrix = [](SpsBits& bits) {
        for (int list = 0; list < 8; ++list) {
            bits.u(1, 1);
            for (int i = 0; i < (list < 6 ? 16 : 64); ++i) {
                bits.se(1);
            }
        }
    };
    EXPECT_EQ(size(sps), (Size{352, 288}));
}

TEST(AvcDimensions, ScalingListEndsWhenTheNextScaleIsZero) {
    SpsFields sps;
    sps.profile = 100;
    sps.chroma = 1;
    sps.scalingMatrix = [](SpsBits& bits) {
        bits.u(1, 1).se(-8);           // 8 - 8: the default list
        bits.u(1, 1).se(2).se(-10);    // the last scale, 10, goes on to the end
        bits.u(1, 1).se(127).se(121);  // 8 + 127 + 121 = 256, modulo 256
        bits.u(5, 0);
    };
    EXPECT_EQ(size(sps), (Size{352, 288}));
}

// Of 8 + 127 = 135 a delta of -135 would end the list, and so it would of 127 + 8 at 256; the
// nearest values allowed, -128 and 127, do not.
TEST(AvcDimensions, ScalingDeltasBeyondTheirRangeAreTheNearestInIt) {
    SpsFields sps;
    sps.profile = 100;
    sps.chroma = 1;
    sps.scalingMatrix = [](SpsBits& bits) {
        bits.u(1, 1).se(127).se(-135).se(-7);  // 135, 7, 0
        bits.u(1, 1).se(120).se(128).se(1);    // 128, 255, 0
        bits.u(1, 1).se(-2147483647).se(8);    // 136, 144, ...
        for (int i = 2; i < 16; ++i) {
            bits.se(0);
        }
        bits.u(5, 0);
    };
    EXPECT_EQ(size(sps), (Size{352, 288}));
}

TEST(AvcDimensions, PictureOrderOfTypeZeroIsRead) {
    SpsFields sps;
    sps.pictureOrder = [](SpsBits& bits) { bits.ue(0).ue(4); };
    EXPECT_EQ(size(sps), (Size{352, 288}));
}

TEST(AvcDimensions, PictureOrderOfTypeOneIsRead) {
    SpsFields sps;
    sps.pictureOrder = [](SpsBits& bits) {
        bits.ue(1).u(1, 0).se(-2).se(3).ue(3).se(1).se(-70000).se(0);
    };
    EXPECT_EQ(size(sps), (Size{352, 288}));
}

TEST(AvcDimensions, RatioIsZeroWithoutAspectRatioInfo) {
    SpsFields sps;
    sps.vui = [](SpsBits& bits) { bits.u(1, 0); };
    EXPECT_EQ(find(sps.nal()), (Answer{352, 288, 0, 0}));
}

TEST(AvcDimensions, RatiosOfTableE1) {
    EXPECT_EQ(ratio(0), (Size{0, 0}));
    EXPECT_EQ(ratio(1), (Size{1, 1}));
    EXPECT_EQ(ratio(2), (Size{12, 11}));
    EXPECT_EQ(ratio(3), (Size{10, 11}));
    EXPECT_EQ(ratio(4), (Size{16, 11}));
    EXPECT_EQ(ratio(5), (Size{40, 33}));
    EXPECT_EQ(ratio(6), (Size{24, 11}));
    EXPECT_EQ(ratio(7), (Size{20, 11}));
    EXPECT_EQ(ratio(8), (Size{32, 11}));
    EXPECT_EQ(ratio(9), (Size{80, 33}));
    EXPECT_EQ(ratio(10), (Size{18, 11}));
    EXPECT_EQ(ratio(11), (Size{15, 11}));
    EXPECT_EQ(ratio(12), (Size{64, 33}));
    EXPECT_EQ(ratio(13), (Size{160, 99}));
    EXPECT_EQ(ratio(14), (Size{4, 3}));
    EXPECT_EQ(ratio(15), (Size{3, 2}));
    EXPECT_EQ(ratio(16), (Size{2, 1}));
}

TEST(AvcDimensions, ReservedRatiosAreZero) {
    EXPECT_EQ(ratio(17), (Size{0, 0}));
    EXPECT_EQ(ratio(254), (Size{0, 0}));
}

TEST(AvcDimensions, ExtendedRatioIsReadAsItStands) {
    SpsFields sps;
    sps.vui = [](SpsBits& bits) { bits.u(1, 1).u(8, 255).u(16, 65535).u(16, 0x8001); };
    EXPECT_EQ(find(sps.nal()), (Answer{352, 288, 65535, 0x8001}));
}

// 1280:3 in the bytes 05 00 00 03.
TEST(AvcDimensions, EmulationPreventionBytesAreRead) {
    SpsFields sps;
    sps.vui = [](SpsBits& bits) { bits.u(1, 1).u(8, 255).u(16, 0x0500).u(16, 3); };
    const Bytes nal = sps.unescapedNal();
    const Bytes escape = {0, 0, 3};
    ASSERT_NE(std::search(nal.begin(), nal.end(), escape.begin(), escape.end()), nal.end());
    EXPECT_EQ(find(nal), (Answer{352, 288, 0x0500, 3}));
}

// The zeros of the level and of the code after it make an encoder put one in.
TEST(AvcDimensions, EmulationPreventionBytesInFrontMoveTheSize) {
    SpsFields sps;
    sps.level = 0;
    sps.id = 255;
    EXPECT_EQ(find(sps.nal()), (Answer{32, 32, 0, 0}));
}

// Sets as a common encoder writes them, with the rest of the VUI, in which there are emulation
// prevention bytes, after the ratio.
TEST(AvcDimensions, EncoderSetHighCropped) {
    EXPECT_EQ(
        find({0x67, 0x64, 0x00, 0x28, 0xac, 0xd9, 0x40, 0x78, 0x02, 0x27, 0xe5, 0xc0, 0x44, 0x00,
              0x00, 0x03, 0x00, 0x04, 0x00, 0x00, 0x03, 0x00, 0xc8, 0x3c, 0x60, 0xc6, 0x58}),
        (Answer{1920, 1080, 1, 1}));
}

TEST(AvcDimensions, EncoderSetMainInterlaced) {
    EXPECT_EQ(
        find({0x67, 0x4d, 0x40, 0x1e, 0xec, 0xa0, 0x5a, 0x12, 0x6f, 0xfc, 0x01, 0x00, 0x00, 0xb4,
              0x40, 0x00, 0x00, 0x03, 0x00, 0x40, 0x00, 0x00, 0x0c, 0x87, 0xc5, 0x0a, 0x65, 0x80}),
        (Answer{720, 576, 64, 45}));
}

TEST(AvcDimensions, EncoderSetHigh444Cropped) {
    EXPECT_EQ(
        find({0x67, 0xf4, 0x00, 0x28, 0x91, 0x9b, 0x28, 0x0f, 0x00, 0x44, 0xf7, 0x17, 0x80, 0x88,
              0x00, 0x00, 0x03, 0x00, 0x08, 0x00, 0x00, 0x03, 0x01, 0x90, 0x78, 0xc1, 0x8c, 0xb0}),
        (Answer{1918, 1078, 1, 1}));
}

TEST_F(AvcDimensionsDeathTest, EveryTruncationAborts) {
    SpsFields sps;
    sps.crop = {0, 3, 0,
                1};  // so that the last byte holds bits of the ratio, not the stop bit alone
    sps.vui = [](SpsBits& bits) { bits.u(1, 1).u(8, 255).u(16, 40).u(16, 33); };
    const Bytes nal = sps.nal();
    for (size_t length = 0; length < nal.size(); ++length) {
        EXPECT_ABORT(find({nal.begin(), nal.begin() + static_cast<ptrdiff_t>(length)}), "CHECK")
            << length;
    }
}

TEST_F(AvcDimensionsDeathTest, ChromaFormatOfAnotherProfileAborts) {
    for (const uint32_t profile : {118, 128, 138, 139, 134, 135}) {
        SpsFields sps;
        sps.profile = profile;
        sps.chroma = 1;
        EXPECT_ABORT(find(sps.nal()), "CHECK") << profile;
    }
}

TEST_F(AvcDimensionsDeathTest, TwelveAbsentScalingListsAbort) {
    SpsFields sps;
    sps.profile = 244;
    sps.chroma = 3;
    sps.scalingMatrix = [](SpsBits& bits) { bits.u(12, 0); };
    EXPECT_ABORT(find(sps.nal()), "CHECK");
}

TEST_F(AvcDimensionsDeathTest, PictureOrderCycleLongerThanTheSetAborts) {
    SpsFields sps;
    sps.pictureOrder = [](SpsBits& bits) { bits.ue(1).u(1, 0).se(0).se(0).ue(0xfffffffe); };
    EXPECT_ABORT(find(sps.nal()), "CHECK");
}

}  // namespace
}  // namespace android
