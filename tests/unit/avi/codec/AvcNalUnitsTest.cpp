// SPDX-License-Identifier: Apache-2.0

#include "avi/codec/AvcNalUnits.h"

#include <algorithm>
#include <optional>
#include <tuple>
#include <vector>

#include <gtest/gtest.h>

#include "tests/unit/avi/ExactBytes.h"
#include "tests/unit/avi/codec/UnitBytes.h"

namespace android {
namespace {

using Bytes = std::vector<uint8_t>;

size_t findSps(const Bytes& data) {
    const ExactBytes exact(data);
    return findSequenceParameterSet(exact.data(), exact.size());
}

std::optional<Bytes> findUnit(const Bytes& data, uint8_t type) {
    const ExactBytes exact(data);
    const sp<ABuffer> unit = findNALUnit(exact.data(), exact.size(), type);
    return unit == nullptr ? std::nullopt : std::optional<Bytes>(bytesOf(unit));
}

IdrSearch findIdr(const Bytes& data) {
    const ExactBytes exact(data);
    return findFirstIdr(exact.data(), exact.size());
}

ssize_t startCode(const Bytes& data) {
    const ExactBytes exact(data);
    return findStartCode(exact.data(), exact.size());
}

bool hasPictureSet(const Bytes& data) {
    const ExactBytes exact(data);
    return hasPictureParameterSet(exact.data(), exact.size());
}

struct StartCodeRow {
    Bytes data;
    ssize_t offset;
};

}  // namespace

TEST(FindStartCode, GivesTheOffsetOfTheFirstOne) {
    const StartCodeRow kRows[] = {
        {{}, -1},
        {{1}, -1},
        {{0, 1}, -1},
        {{0, 0}, -1},
        {{0, 0, 0, 0}, -1},
        {{0, 0, 2}, -1},
        {{0, 1, 1}, -1},
        {{1, 0, 1}, -1},
        {{0, 0, 1}, 0},
        {{0, 0, 0, 1}, 0},
        {{0, 0, 0, 0, 1}, 1},
        {{5, 0, 0, 1}, 1},
        {{5, 0, 0, 0, 1}, 1},
        {{5, 5, 5, 0, 0, 1}, 3},
        {{0, 0, 3, 0, 0, 1}, 3},
        {{5, 0, 0, 1, 0, 0, 1}, 1},
        {{0xFF, 0xFF, 0xFF, 0xFF}, -1},
    };
    for (const StartCodeRow& row : kRows)
        EXPECT_EQ(row.offset, startCode(row.data)) << testing::PrintToString(row.data);
}

TEST(HasPictureParameterSet, NeedsStartCodeAndType) {
    const std::pair<Bytes, bool> kRows[] = {
        {{}, false},
        {{0, 0, 1}, false},
        {{0, 0, 1, 0x68}, true},
        {{0, 0, 0, 1, 0x68}, true},
        {{0, 0, 1, 0x08}, true},
        {{0, 0, 1, 0xE8}, true},
        {{0, 0, 1, 0x67}, false},
        {{0, 0, 1, 0x78}, false},
        {{0, 0, 2, 0x68}, false},
        {{0, 1, 0x68}, false},
        {{0, 0, 1, 0x67, 9, 0, 0, 1, 0x68}, true},
        {{0, 0, 1, 0x67, 9, 0, 0, 1}, false},
        {{1, 0x64, 0, 41, 0xFF, 0xE1, 0, 1, 0x67, 1, 0, 1, 0x68}, false},
    };
    for (const auto& [data, expected] : kRows)
        EXPECT_EQ(expected, hasPictureSet(data)) << testing::PrintToString(data);
}

TEST(FindSequenceParameterSet, GivesTheOffsetOfItsThreeByteCode) {
    EXPECT_EQ(findSps({0, 0, 1, 0x67}), 0u);
    EXPECT_EQ(findSps({0, 0, 0, 1, 0x67}), 1u);
    EXPECT_EQ(findSps({0, 0, 1, 9, 0xF0, 0, 0, 1, 0x27}), 5u);
    EXPECT_EQ(findSps({9, 9, 0, 0, 1, 0x07}), 2u);
}

TEST(FindSequenceParameterSet, NoSetGivesZero) {
    EXPECT_EQ(findSps({}), 0u);
    EXPECT_EQ(findSps({0, 0, 1}), 0u);
    EXPECT_EQ(findSps({9, 0, 0, 1}), 0u);
    EXPECT_EQ(findSps({9, 0, 0, 1, 0x68, 0, 0, 1, 0x65}), 0u);
    EXPECT_EQ(findSps({9, 0, 0, 2, 0x67}), 0u);
    EXPECT_EQ(findSps({9, 0, 1, 0x67}), 0u);
}

TEST(FindNalUnit, GivesTheFirstUnitOfItsType) {
    const Bytes data = {0, 0, 0, 1, 0x67, 1, 2, 0, 0, 1,    0x68, 3,
                        0, 0, 0, 1, 0x67, 4, 0, 0, 1, 0x65, 5};
    EXPECT_EQ(findUnit(data, 7), (Bytes{0x67, 1, 2}));
    EXPECT_EQ(findUnit(data, 8), (Bytes{0x68, 3}));
    EXPECT_EQ(findUnit(data, 5), (Bytes{0x65, 5}));
    EXPECT_EQ(findUnit(data, 1), std::nullopt);
}

TEST(FindNalUnit, EmptyUnitsAreSkipped) {
    EXPECT_EQ(findUnit({0, 0, 1, 0, 0, 1, 0x68, 3}, 8), (Bytes{0x68, 3}));
}

TEST(FindNalUnit, UnitAtTheEndIsCutThere) {
    EXPECT_EQ(findUnit({0, 0, 1, 0x68, 3, 7}, 8), (Bytes{0x68, 3, 7}));
    EXPECT_EQ(findUnit({0, 0, 1, 0x68}, 8), Bytes{0x68});
}

// The platform's search resumes at a start code only if two bytes follow it.
TEST(FindNalUnit, UnitOfOneByteAfterAnotherIsNotFound) {
    EXPECT_EQ(findUnit({0, 0, 1, 0x67, 1, 0, 0, 1, 0x68}, 8), std::nullopt);
    EXPECT_EQ(findUnit({0, 0, 1, 0x67, 1, 0, 0, 1, 0x68, 2}, 8), (Bytes{0x68, 2}));
    EXPECT_EQ(findUnit({0, 0, 1, 0x67, 1, 0, 0, 1, 0x68}, 7), (Bytes{0x67, 1}));
}

// Every unit is within the data: a copy of what is outside would show in the size.
TEST(FindNalUnit, CutsOfAStreamGiveTheFrontOfItsUnit) {
    const Bytes stream = {0, 0, 0, 1, 0x67, 1, 2, 0, 0, 1, 0x68, 3, 0, 0, 3, 1, 0, 0, 0, 1};
    const Bytes unit = {0x68, 3, 0, 0, 3, 1};
    for (size_t size = 0; size <= stream.size(); ++size) {
        SCOPED_TRACE(size);
        const Bytes cut(stream.begin(), stream.begin() + static_cast<ptrdiff_t>(size));
        const std::optional<Bytes> found = findUnit(cut, 8);
        ASSERT_EQ(found.has_value(), size >= 12);
        if (!found) continue;
        const size_t length = size <= 14 ? 2 : std::min<size_t>(size - 10, 6);  // less zeros
        EXPECT_EQ(*found, Bytes(unit.begin(), unit.begin() + static_cast<ptrdiff_t>(length)));
    }
}

TEST(FindNalUnit, NothingToFindGivesNull) {
    EXPECT_EQ(findUnit({}, 7), std::nullopt);
    EXPECT_EQ(findUnit({0, 0}, 7), std::nullopt);
    EXPECT_EQ(findUnit({0, 0, 1}, 7), std::nullopt);
    EXPECT_EQ(findUnit(Bytes(50, 0), 7), std::nullopt);
    EXPECT_EQ(findUnit(Bytes(50, 0x67), 7), std::nullopt);
}

TEST(FindFirstIdr, GivesThePositionOfItsStartCode) {
    const struct {
        Bytes data;
        size_t position;
        size_t prefix;
    } kRows[] = {
        {{0, 0, 1, 0x65}, 0, 3},
        {{0, 0, 0, 1, 0x25}, 0, 4},
        {{0, 0, 1, 0x67, 0xAB, 0, 0, 1, 0x65}, 5, 3},
        {{0, 0, 1, 0x67, 0xAB, 0, 0, 0, 1, 0x65}, 5, 4},
        {{0, 0, 1, 0x67, 0xAB, 0, 0, 0, 0, 1, 0x65}, 6, 4},
        {{0, 0, 1, 0x41, 0, 0, 1, 0x65, 0, 0, 1, 0x65}, 4, 3},
    };
    for (const auto& row : kRows) {
        SCOPED_TRACE(testing::PrintToString(row.data));
        const IdrSearch search = findIdr(row.data);
        EXPECT_TRUE(search.found);
        EXPECT_EQ(search.position, row.position);
        EXPECT_EQ(search.prefixLength, row.prefix);
    }
}

TEST(FindFirstIdr, NoPictureTellsWhereTheSearchEnded) {
    const struct {
        Bytes data;
        size_t start;
        size_t prefix;
    } kRows[] = {
        {{}, 0, 0},
        {Bytes(40, 0x65), 0, 0},
        {{0, 0, 1, 0x67, 1}, 3, 3},
        {{0, 0, 0, 1, 0x67, 1, 0, 0, 1, 0x41, 2, 3}, 9, 3},
        {{0, 0, 1, 0x67, 0, 0, 0, 1}, 8, 4},
    };
    for (const auto& row : kRows) {
        SCOPED_TRACE(testing::PrintToString(row.data));
        const IdrSearch search = findIdr(row.data);
        EXPECT_FALSE(search.found);
        EXPECT_EQ(search.searchStart, row.start);
        EXPECT_EQ(search.prefixLength, row.prefix);
    }
}

}  // namespace android
