// SPDX-License-Identifier: Apache-2.0
//
// Sequence parameter sets that the platform's parser ends the process at, valid ones among them:
// they count as not found.

#include "tests/behaviour/codecs/AvcFixture.h"

namespace avitest {
namespace {

using android::SpsBits;
using android::SpsFields;
using ::testing::Contains;

class AvcDamagedSets : public AvcTest {
  protected:
    void expectNotFound(const Bytes& sps) {
        openSets(sps, mPps);
        expectUnchanged();
        EXPECT_THAT(log(),
                    Contains(LineFrom(ANDROID_LOG_ERROR,
                                      "generateAvcCodecData(): No SPS found!!! Try to play it "
                                      "anyway. @L")));
    }
    // Cuts the set behind every byte. Only the stop bit may be missing from a set that is used.
    void expectCutsHarmless(const Bytes& sps) {
        for (size_t kept = 1; kept + 1 < sps.size(); ++kept) {
            SCOPED_TRACE(kept);
            expectNotFound(Bytes(sps.begin(), sps.begin() + static_cast<ptrdiff_t>(kept)));
        }
        openSets(sps, mPps);
        EXPECT_EQ(record().value_or(Bytes()).size(), sps.size() + mPps.size() + 11);
    }
};

TEST_F(AvcDamagedSets, PlainSetCutAnywhereIsNotFound) {
    expectCutsHarmless(mSps);
}

TEST_F(AvcDamagedSets, SetWithEverythingCutAnywhereIsNotFound) {
    SpsFields fields;
    fields.profile = 100;
    fields.chroma = 1;
    fields.scalingMatrix = [](SpsBits& bits) {
        for (int list = 0; list < 8; ++list)
            bits.u(1, 1).se(-8);
    };
    fields.pictureOrder = [](SpsBits& bits) { bits.ue(1).u(1, 0).se(1).se(-1).ue(2).se(3).se(4); };
    fields.frameMbsOnly = false;
    fields.crop = {0, 1, 0, 2};
    fields.vui = [](SpsBits& bits) { bits.u(1, 1).u(8, 255).u(16, 0xABCD).u(16, 0x1234); };
    expectCutsHarmless(fields.nal());
}

TEST_F(AvcDamagedSets, AbsurdSizesAreNotFound) {
    for (const uint32_t size : {4097u, 65536u, 0x08000001u, 0x7FFFFFFFu, 0xFFFFFFFFu}) {
        SCOPED_TRACE(size);
        SpsFields wide;
        wide.widthInMbs = size;
        expectNotFound(wide.nal());
        SpsFields high;
        high.heightInMapUnits = size;
        expectNotFound(high.nal());
    }
}

TEST_F(AvcDamagedSets, CroppingOfTheWholePictureIsNotFound) {
    for (const auto& crop :
         {std::array<uint32_t, 4>{88, 88, 0, 0}, std::array<uint32_t, 4>{0, 0, 72, 72},
          std::array<uint32_t, 4>{0, 0x7FFFFFFF, 0, 0},
          std::array<uint32_t, 4>{0xFFFFFFFE, 0xFFFFFFFE, 0, 0},
          std::array<uint32_t, 4>{0, 0, 0xFFFFFFFE, 2}}) {
        SCOPED_TRACE(testing::PrintToString(crop));
        SpsFields fields;
        fields.crop = crop;
        expectNotFound(fields.nal());
    }
}

TEST_F(AvcDamagedSets, CroppingThatLeavesALineIsFine) {
    SpsFields fields;
    fields.crop = {88, 87, 72, 71};
    openSets(fields.nal(), mPps);
    EXPECT_EQ(number(AMEDIAFORMAT_KEY_WIDTH), 2);
    EXPECT_EQ(number(AMEDIAFORMAT_KEY_HEIGHT), 2);
}

TEST_F(AvcDamagedSets, UnknownChromaFormatIsNotFound) {
    for (const uint32_t chroma : {4u, 100u, 0xFFFFFFFEu}) {
        SCOPED_TRACE(chroma);
        SpsFields fields;
        fields.profile = 100;
        fields.chroma = chroma;
        expectNotFound(fields.nal());
    }
}

// The platform's parser knows no chroma format in these profiles and looks for the size too early.
TEST_F(AvcDamagedSets, ShortSetOfAMultiviewProfileIsNotFound) {
    for (const uint32_t profile : {118u, 128u, 138u, 139u, 134u, 135u}) {
        SCOPED_TRACE(profile);
        SpsFields fields;
        fields.profile = profile;
        fields.chroma = 1;
        expectNotFound(fields.nal());
        fields.chroma.reset();
        expectNotFound(fields.nal());
    }
}

TEST_F(AvcDamagedSets, LongerSetOfAMultiviewProfileHasTheSizeThatThePlatformReads) {
    for (const uint32_t profile : {118u, 128u}) {
        SCOPED_TRACE(profile);
        SpsFields fields;
        fields.profile = profile;
        fields.chroma = 1;
        fields.widthInMbs = 80;
        fields.heightInMapUnits = 45;
        fields.vui = [](SpsBits& bits) { bits.u(1, 0).u(32, 0); };
        openSets(fields.nal(), mPps);
        EXPECT_EQ(number(AMEDIAFORMAT_KEY_WIDTH), 32);
        EXPECT_EQ(number(AMEDIAFORMAT_KEY_HEIGHT), 5120);
    }
}

// The parser reads eight lists of the twelve.
TEST_F(AvcDamagedSets, ShortScalingMatrixOfFourFourFourIsNotFound) {
    SpsFields fields;
    fields.profile = 244;
    fields.chroma = 3;
    for (const uint32_t lists : {8u, 12u}) {
        SCOPED_TRACE(lists);
        fields.scalingMatrix = [=](SpsBits& bits) { bits.u(lists, 0); };
        expectNotFound(fields.nal());
    }
    fields.scalingMatrix = nullptr;
    openSets(fields.nal(), mPps);
    EXPECT_EQ(number(AMEDIAFORMAT_KEY_WIDTH), 352);
}

TEST_F(AvcDamagedSets, ScalingDeltasBeyondTheirRangeAreTheNearestInIt) {
    SpsFields fields;
    fields.profile = 100;
    fields.chroma = 1;
    fields.scalingMatrix = [](SpsBits& bits) {
        bits.u(1, 1).se(127).se(-135).se(-7);  // 8, 135, 7, 0
        bits.u(1, 1).se(120).se(128).se(1);    // 8, 128, 255, 0
        bits.u(6, 0);
    };
    openSets(fields.nal(), mPps);
    EXPECT_EQ(number(AMEDIAFORMAT_KEY_WIDTH), 352);
    EXPECT_EQ(number(AMEDIAFORMAT_KEY_HEIGHT), 288);
}

// The zeros of the level and of the id make an encoder put a byte in, which the platform's parser
// reads as part of the id; what it then takes for the size is cut off or beyond 31 bits.
TEST_F(AvcDamagedSets, EmulationPreventionInFrontOfTheSizeIsNotFound) {
    SpsFields fields;
    fields.level = 0;
    fields.id = 255;
    fields.widthInMbs = 80;
    fields.heightInMapUnits = 45;
    expectNotFound(fields.nal());
    fields.widthInMbs = 120;
    fields.heightInMapUnits = 68;
    fields.vui = [](SpsBits& bits) { bits.u(1, 1).u(8, 1).u(16, 0x1234); };
    expectNotFound(fields.nal());
}

TEST_F(AvcDamagedSets, EmulationPreventionAfterTheSizeIsKeptInTheRecord) {
    SpsFields fields;
    fields.vui = [](SpsBits& bits) { bits.u(1, 1).u(8, 2).u(32, 0).u(32, 0); };
    const Bytes sps = fields.nal();
    ASSERT_GT(sps.size(), fields.unescapedNal().size());
    openSets(sps, mPps);
    EXPECT_EQ(number(AMEDIAFORMAT_KEY_WIDTH), 352);
    EXPECT_EQ(number(AMEDIAFORMAT_KEY_HEIGHT), 288);
    EXPECT_EQ(number(AMEDIAFORMAT_KEY_SAR_WIDTH), 12);
    EXPECT_EQ(number(AMEDIAFORMAT_KEY_SAR_HEIGHT), 11);
    EXPECT_EQ(record().value_or(Bytes()).size(), sps.size() + mPps.size() + 11);
}

// Cut after the ratio: a reader that takes the byte out has three of its four bytes.
TEST_F(AvcDamagedSets, EmulationPreventionThatEndsTheRatioIsNotFound) {
    SpsFields fields;
    fields.vui = [](SpsBits& bits) { bits.u(1, 1).u(8, 255).u(16, 0x0500).u(16, 3); };
    Bytes sps = fields.unescapedNal();
    openSets(sps, mPps);
    EXPECT_EQ(number(AMEDIAFORMAT_KEY_SAR_WIDTH), 0x0500);
    sps.pop_back();
    ASSERT_EQ(sps.back(), 3);
    expectNotFound(sps);
}

TEST_F(AvcDamagedSets, LongPictureOrderCycleIsNotFound) {
    SpsFields fields;
    fields.pictureOrder = [](SpsBits& bits) { bits.ue(1).u(1, 0).se(0).se(0).ue(0xFFFFFFFE); };
    expectNotFound(fields.nal());
    fields.pictureOrder = [](SpsBits& bits) {
        bits.ue(1).u(1, 0).se(0).se(0).ue(256);
        for (int i = 0; i < 256; ++i)
            bits.se(0);
    };
    expectNotFound(fields.nal());
}

TEST_F(AvcDamagedSets, CodesOfMoreThanThirtyTwoBitsAreNotFound) {
    const Bytes zeros = {0x67, 66, 0x80, 30, 0, 0, 3, 0, 0, 3, 0, 0, 3, 1, 0xFF, 0xFF, 0xFF, 0xFF};
    expectNotFound(zeros);
}

TEST_F(AvcDamagedSets, SetsOfOneValueAreNotFound) {
    for (const size_t size : {1u, 2u, 3u, 4u, 5u, 64u}) {
        SCOPED_TRACE(size);
        expectNotFound(Bytes{0x67} + Bytes(size - 1, 0));
    }
    // All ones are codes of one bit: a set of 16 x 16 that its cropping leaves as it is, whose
    // aspect ratio is cut off at first.
    for (const size_t size : {2u, 3u, 4u, 5u})
        expectNotFound(Bytes{0x67} + Bytes(size - 1, 0xFF));
}

TEST_F(AvcDamagedSets, EmptyUnitsAreSkipped) {
    openFirst(Bytes{0, 0, 1} + unit4(mSps) + unit4(mPps) + unit4(mIdr));
    EXPECT_EQ(record().value_or(Bytes()).size(), mSps.size() + mPps.size() + 11);
}

TEST_F(AvcDamagedSets, LongExtensionIsKeptInTheRecord) {
    const Bytes sps = mSps + Bytes(300, 0x5A);
    openSets(sps, mPps);
    const Bytes csd = record().value_or(Bytes());
    ASSERT_EQ(csd.size(), sps.size() + mPps.size() + 11);
    EXPECT_EQ(csd[6] << 8 | csd[7], static_cast<int>(sps.size()));
}

}  // namespace
}  // namespace avitest
