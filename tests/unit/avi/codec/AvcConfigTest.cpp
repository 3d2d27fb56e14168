// SPDX-License-Identifier: Apache-2.0
//
// Parameter sets between start codes and the record made from them. Start codes themselves and
// records from stream formats are tested with the header parsers.

#include "avi/codec/AvcConfig.h"

#include <optional>
#include <tuple>
#include <vector>

#include <gtest/gtest.h>

#include "tests/unit/avi/source/ExactBytes.h"

namespace android {
namespace {

using Bytes = std::vector<uint8_t>;

Bytes bytesOf(const sp<ABuffer>& buffer) {
    return {buffer->data(), buffer->data() + buffer->size()};
}

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

sp<ABuffer> bufferOf(const Bytes& data) {
    return ABuffer::CreateAsCopy(data.data(), data.size());
}

}  // namespace

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

TEST(MakeAvcRecord, FieldsAreThoseOfTheSets) {
    const sp<ABuffer> record =
        makeAvcRecord(bufferOf({0x67, 0x4D, 0x40, 0x1E, 0xAA}), bufferOf({0x68, 0xBB}));
    EXPECT_EQ(bytesOf(record), (Bytes{1, 0x4D, 0x40, 0x1E, 0xFD, 0xE1, 0, 5, 0x67, 0x4D, 0x40, 0x1E,
                                      0xAA, 1, 0, 2, 0x68, 0xBB}));
}

TEST(MakeAvcRecord, LengthsHaveTwoBytes) {
    Bytes sps(0x0123, 0x67);
    Bytes pps(0x0456, 0x68);
    const Bytes record = bytesOf(makeAvcRecord(bufferOf(sps), bufferOf(pps)));
    ASSERT_EQ(record.size(), sps.size() + pps.size() + 11);
    EXPECT_EQ(std::make_tuple(record[6], record[7]), std::make_tuple(0x01, 0x23));
    const size_t at = 9 + sps.size();
    EXPECT_EQ(std::make_tuple(record[at], record[at + 1]), std::make_tuple(0x04, 0x56));
}

TEST(MakeAvcRecord, LengthsAreTheLow16Bits) {
    const Bytes larger(0x10203, 0x67);
    const sp<ABuffer> record = makeAvcRecord(bufferOf(larger), bufferOf({0x68}));
    ASSERT_NE(record, nullptr);
    EXPECT_EQ(record->size(), 0x10203u + 12);
    EXPECT_EQ(record->data()[6], 0x02);
    EXPECT_EQ(record->data()[7], 0x03);
}

TEST(MakeAvcRecord, RecordIsWellFormed) {
    const sp<ABuffer> record = makeAvcRecord(bufferOf({0x67, 1, 2, 3}), bufferOf({0x68}));
    EXPECT_EQ(parseAVCCodecSpecificData(record->data(), record->size()), OK);
}

}  // namespace android
