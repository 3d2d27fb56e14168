// SPDX-License-Identifier: Apache-2.0
//
// The walk over length-prefixed units, and the start code in front of a copied one.

#include <gtest/gtest.h>

#include <ostream>

#include "source/Conversions.h"
#include "tests/unit/avi/ExactBytes.h"

namespace android {
namespace {

using Bytes = std::vector<uint8_t>;

struct Unit {
    size_t offset;
    size_t length;
    bool isWhole;
};

bool operator==(const Unit& a, const Unit& b) {
    return a.offset == b.offset && a.length == b.length && a.isWhole == b.isWhole;
}

void PrintTo(const Unit& unit, std::ostream* out) {
    *out << unit.length << " bytes @" << unit.offset << (unit.isWhole ? "" : " (cut)");
}

std::vector<Unit> unitsOf(size_t prefixSize, const ExactBytes& sample) {
    PrefixedNalReader reader(sample.data(), sample.size(), prefixSize);
    std::vector<Unit> units;
    PrefixedNal unit;
    // Every unit takes a byte at least.
    while (units.size() <= sample.size() && reader.next(&unit))
        units.push_back({unit.offset, unit.length, unit.isWhole});
    return units;
}

TEST(PrefixedNalReader, ReadsPrefixesOfEveryWidth) {
    EXPECT_EQ(unitsOf(1, {2, 9, 9, 1, 9}), (std::vector<Unit>{{1, 2, true}, {4, 1, true}}));
    EXPECT_EQ(unitsOf(2, {0, 2, 9, 9, 0, 1, 9}), (std::vector<Unit>{{2, 2, true}, {6, 1, true}}));
    EXPECT_EQ(unitsOf(3, {0, 0, 2, 9, 9, 0, 0, 1, 9}),
              (std::vector<Unit>{{3, 2, true}, {8, 1, true}}));
    EXPECT_EQ(unitsOf(4, {0, 0, 0, 2, 9, 9, 0, 0, 0, 1, 9}),
              (std::vector<Unit>{{4, 2, true}, {10, 1, true}}));
}

TEST(PrefixedNalReader, PrefixesAreBigEndian) {
    EXPECT_EQ(unitsOf(2, {0x12, 0x34, 9}), (std::vector<Unit>{{2, 0x1234, false}}));
    EXPECT_EQ(unitsOf(3, {0x12, 0x34, 0x56, 9}), (std::vector<Unit>{{3, 0x123456, false}}));
    EXPECT_EQ(unitsOf(4, {0xFF, 0xFF, 0xFF, 0xFF, 9}), (std::vector<Unit>{{4, 0xFFFFFFFF, false}}));
}

TEST(PrefixedNalReader, EmptyUnitsAreUnits) {
    EXPECT_EQ(unitsOf(1, {0, 1, 9, 0}),
              (std::vector<Unit>{{1, 0, true}, {2, 1, true}, {4, 0, true}}));
    EXPECT_EQ(unitsOf(4, {0, 0, 0, 0}), (std::vector<Unit>{{4, 0, true}}));
}

TEST(PrefixedNalReader, UnitBeyondTheEndIsCutAndTheLast) {
    EXPECT_EQ(unitsOf(1, {1, 9, 3, 9, 9}), (std::vector<Unit>{{1, 1, true}, {3, 3, false}}));
    EXPECT_EQ(unitsOf(1, {5}), (std::vector<Unit>{{1, 5, false}}));
}

TEST(PrefixedNalReader, RestShorterThanAPrefixIsALastEmptyUnitAndNotWhole) {
    EXPECT_EQ(unitsOf(2, {0, 1, 9, 0}), (std::vector<Unit>{{2, 1, true}, {3, 0, false}}));
    EXPECT_EQ(unitsOf(4, {0, 0, 0, 1, 9, 0, 0, 9}),
              (std::vector<Unit>{{4, 1, true}, {5, 0, false}}));
    EXPECT_EQ(unitsOf(4, {0, 0, 9}), (std::vector<Unit>{{0, 0, false}}));
}

TEST(PrefixedNalReader, TellsWhereThePrefixOfAUnitStands) {
    const ExactBytes sample({0, 2, 9, 9, 0, 0, 7});
    PrefixedNalReader reader(sample.data(), sample.size(), 2);
    PrefixedNal unit;
    for (const size_t prefixAt : {0u, 4u, 6u}) {
        ASSERT_TRUE(reader.next(&unit));
        EXPECT_EQ(unit.prefixAt, prefixAt);
    }
    EXPECT_FALSE(reader.next(&unit));
}

TEST(PrefixedNalReader, EmptySampleHasNoUnits) {
    for (size_t prefixSize = 1; prefixSize <= 4; ++prefixSize)
        EXPECT_EQ(unitsOf(prefixSize, ExactBytes(Bytes())), std::vector<Unit>());
}

TEST(PrefixedNalReader, AnyBytesEnd) {
    for (size_t prefixSize = 1; prefixSize <= 4; ++prefixSize) {
        for (int value = 0; value < 256; ++value) {
            const ExactBytes sample(Bytes(50, static_cast<uint8_t>(value)));
            EXPECT_LE(unitsOf(prefixSize, sample).size(), sample.size());
        }
    }
}

TEST(WriteNalUnit, PutsAStartCodeInFront) {
    const ExactBytes unit({0x65, 0x88, 0x84});
    ExactBytes out(Bytes(8, 0xEE));
    EXPECT_EQ(writeNalUnit(unit.data(), unit.size(), out.data(), out.size()), 7u);
    EXPECT_EQ(out.first(8), (Bytes{0, 0, 0, 1, 0x65, 0x88, 0x84, 0xEE}));
}

TEST(WriteNalUnit, CopiesNoMoreThanFits) {
    const ExactBytes unit({0x65, 0x88, 0x84});
    const ExactBytes converted({0, 0, 0, 1, 0x65, 0x88, 0x84});
    for (size_t capacity = kStartCodeSize; capacity <= 7; ++capacity) {
        SCOPED_TRACE(capacity);
        ExactBytes out(Bytes(capacity, 0xEE));
        EXPECT_EQ(writeNalUnit(unit.data(), unit.size(), out.data(), capacity), capacity);
        EXPECT_EQ(out.first(capacity), converted.first(capacity));
    }
}

TEST(WriteNalUnit, EmptyUnitIsAStartCode) {
    const ExactBytes unit((Bytes()));
    ExactBytes out(Bytes(4, 0xEE));
    EXPECT_EQ(writeNalUnit(unit.data(), 0, out.data(), out.size()), 4u);
    EXPECT_EQ(out.first(4), (Bytes{0, 0, 0, 1}));
}

}  // namespace
}  // namespace android
