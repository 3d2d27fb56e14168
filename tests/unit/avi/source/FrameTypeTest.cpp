// SPDX-License-Identifier: Apache-2.0

#include "source/FrameType.h"

#include <gtest/gtest.h>

#include <ostream>
#include <string>

#include "tests/unit/avi/ExactBytes.h"

namespace android {

void PrintTo(FrameType type, std::ostream* out) {
    *out << frameTypeText(type);
}

namespace {

constexpr FrameType kUnknown = FrameType::kUnknown;
constexpr FrameType kI = FrameType::kIntra;
constexpr FrameType kP = FrameType::kPredicted;
constexpr FrameType kB = FrameType::kBidirectional;

FrameType avc(const ExactBytes& bytes) {
    return avcFrameType(bytes.data(), bytes.size());
}

FrameType mpeg4(const ExactBytes& bytes) {
    return mpeg4FrameType(bytes.data(), bytes.size());
}

FrameType generic(const ExactBytes& bytes) {
    return genericFrameType(bytes.data(), bytes.size());
}

FrameType avcSliceType(uint8_t bits) {
    return avc({0, 0, 1, 0x41, bits, 0});
}

TEST(AvcFrameType, IdrUnitIsIntra) {
    EXPECT_EQ(avc({0, 0, 0, 1, 0x65, 0x88}), kI);
    EXPECT_EQ(avc({0, 0, 1, 0x65, 0, 0}), kI);
    EXPECT_EQ(avc({0, 0, 1, 0x25, 0, 0}), kI);
    EXPECT_EQ(avc({9, 9, 0, 0, 1, 0x05}), kI);
}

TEST(AvcFrameType, SliceTypeIsReadFromTheFirstBitsOfTheSliceHeader) {
    for (int bits = 0; bits < 256; ++bits) {
        SCOPED_TRACE(bits);
        FrameType expected = kUnknown;
        if (bits == 0x88 || (bits >= 0xB0 && bits <= 0xBF)) expected = kI;
        if ((bits >= 0x98 && bits <= 0x9B) || bits >= 0xC0) expected = kP;
        if ((bits >= 0x9C && bits <= 0x9F) || (bits >= 0xA0 && bits <= 0xAF)) expected = kB;
        EXPECT_EQ(avcSliceType(static_cast<uint8_t>(bits)), expected);
    }
}

TEST(AvcFrameType, EveryUnitTypeOfSlicesIsTyped) {
    for (int type = 0; type < 32; ++type) {
        SCOPED_TRACE(type);
        const bool isSlice = type >= 1 && type <= 4;
        const FrameType expected = type == 5 ? kI : isSlice ? kP : kUnknown;
        EXPECT_EQ(avc({0, 0, 1, static_cast<uint8_t>(0x60 | type), 0xC0, 0}), expected);
        EXPECT_EQ(avc({0, 0, 0, 1, static_cast<uint8_t>(type), 0xC0}), expected);
    }
}

TEST(AvcFrameType, OtherUnitsArePassedOver) {
    EXPECT_EQ(avc({0, 0, 1, 0x09, 0x10, 0, 0, 1, 0x41, 0xE0}), kP);
    EXPECT_EQ(avc({0, 0, 0, 1, 0x67, 1, 2, 0, 0, 0, 1, 0x68, 3, 0, 0, 1, 0x65, 0x88}), kI);
}

TEST(AvcFrameType, FirstSliceDecides) {
    EXPECT_EQ(avc({0, 0, 1, 0x41, 0xA0, 0, 0, 1, 0x65, 0x88}), kB);
    EXPECT_EQ(avc({0, 0, 1, 0x41, 0x40, 0, 0, 1, 0x65, 0x88}), kUnknown);
}

TEST(AvcFrameType, FewerThanSixBytesAreUnknown) {
    const std::vector<uint8_t> bytes = {0, 0, 1, 0x65, 0x88};
    for (size_t size = 0; size <= bytes.size(); ++size) {
        EXPECT_EQ(avc(ExactBytes(std::vector<uint8_t>(
                      bytes.begin(), bytes.begin() + static_cast<ptrdiff_t>(size)))),
                  kUnknown);
    }
}

TEST(AvcFrameType, StartCodeAtTheEndIsUnknown) {
    EXPECT_EQ(avc({9, 9, 9, 0, 0, 1}), kUnknown);
    EXPECT_EQ(avc({9, 9, 0, 0, 0, 1}), kUnknown);
    EXPECT_EQ(avc({0, 0, 1, 0x09, 0, 0, 1}), kUnknown);
}

TEST(AvcFrameType, SliceWithoutABodyIsUnknown) {
    EXPECT_EQ(avc({9, 9, 0, 0, 1, 0x41}), kUnknown);
    EXPECT_EQ(avc({9, 0, 0, 0, 1, 0x41}), kUnknown);
}

TEST(AvcFrameType, DataWithoutStartCodeIsUnknown) {
    EXPECT_EQ(avc({0, 0, 2, 0x65, 0x88, 0, 0, 0}), kUnknown);
    EXPECT_EQ(avc({0x65, 0x88, 0, 1, 0, 1, 0x65}), kUnknown);
}

TEST(Mpeg4FrameType, CodingTypeIsTheTopBitsBehindTheVopCode) {
    EXPECT_EQ(mpeg4({0, 0, 1, 0xB6, 0x10}), kI);
    EXPECT_EQ(mpeg4({0, 0, 1, 0xB6, 0x3F}), kI);
    EXPECT_EQ(mpeg4({0, 0, 1, 0xB6, 0x50}), kP);
    EXPECT_EQ(mpeg4({0, 0, 1, 0xB6, 0x80}), kB);
    EXPECT_EQ(mpeg4({0, 0, 1, 0xB6, 0xBF}), kB);
    EXPECT_EQ(mpeg4({0, 0, 1, 0xB6, 0xC0}), kUnknown);
}

TEST(Mpeg4FrameType, CodeIsLookedForAnywhere) {
    EXPECT_EQ(mpeg4({0, 0, 1, 0xB0, 5, 0, 0, 1, 0xB6, 0x50}), kP);
    EXPECT_EQ(mpeg4({0, 0, 0, 0, 1, 0xB6, 0x80}), kB);
    EXPECT_EQ(mpeg4({7, 0, 0, 1, 0xB3, 0x40}), kP);  // a group header that does not come first
}

TEST(Mpeg4FrameType, GroupHeaderInFrontIsPassedOver) {
    EXPECT_EQ(mpeg4({0, 0, 1, 0xB3, 1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11, 12, 0, 0, 1, 0xB6, 0x10}),
              kI);
    EXPECT_EQ(mpeg4({0, 0, 1, 0xB3, 0, 0, 1, 0xB6, 0x90}), kB);
    EXPECT_EQ(mpeg4({0, 0, 1, 0xB3, 0xC0, 0, 0, 1, 0xB3, 0x40}), kP);
}

// The bytes of the group's code are no part of the next one.
TEST(Mpeg4FrameType, CodeBehindAGroupHeaderNeedsFourBytesOfItsOwn) {
    EXPECT_EQ(mpeg4({0, 0, 1, 0xB3, 0, 1, 0xB6, 0x50}), kUnknown);
    EXPECT_EQ(mpeg4({0, 0, 1, 0xB3, 0x40, 0x40}), kUnknown);
}

TEST(Mpeg4FrameType, FourthByteB3CountsAsAGroupHeader) {
    EXPECT_EQ(mpeg4({9, 9, 9, 0xB3, 0, 0, 1, 0xB6, 0x50}), kP);
}

TEST(Mpeg4FrameType, CodeAtTheEndIsUnknown) {
    EXPECT_EQ(mpeg4({9, 0, 0, 1, 0xB6}), kUnknown);
    EXPECT_EQ(mpeg4({0, 0, 1, 0xB3, 9, 0, 0, 1, 0xB6}), kUnknown);
}

TEST(Mpeg4FrameType, FewerThanFiveBytesAreUnknown) {
    EXPECT_EQ(mpeg4(ExactBytes(std::vector<uint8_t>())), kUnknown);
    EXPECT_EQ(mpeg4({0, 0, 1, 0xB6}), kUnknown);
}

TEST(Mpeg4FrameType, DataWithoutCodeIsUnknown) {
    EXPECT_EQ(mpeg4({0, 0, 1, 0xB5, 0x50, 0, 1, 0xB6, 0x50}), kUnknown);
}

TEST(GenericFrameType, SecondBitOfTheFifthByteDecides) {
    for (int value = 0; value < 256; ++value) {
        SCOPED_TRACE(value);
        EXPECT_EQ(generic({0, 0, 0, 0, static_cast<uint8_t>(value)}), (value & 2) != 0 ? kP : kI);
    }
}

TEST(GenericFrameType, FewerThanFiveBytesAreUnknown) {
    EXPECT_EQ(generic(ExactBytes(std::vector<uint8_t>())), kUnknown);
    EXPECT_EQ(generic({2, 2, 2, 2}), kUnknown);
}

TEST(FrameTypeText, NamesEveryType) {
    EXPECT_EQ(std::string(frameTypeText(kI)), "I");
    EXPECT_EQ(std::string(frameTypeText(kP)), "P");
    EXPECT_EQ(std::string(frameTypeText(kB)), "B");
    EXPECT_EQ(std::string(frameTypeText(kUnknown)), "N/A");
}

}  // namespace
}  // namespace android
