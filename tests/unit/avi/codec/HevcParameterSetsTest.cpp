// SPDX-License-Identifier: Apache-2.0

#include "avi/codec/HevcParameterSets.h"

#include <optional>
#include <vector>

#include <gtest/gtest.h>

#include "avi/support/Switches.h"
#include "tests/support/LogCapture.h"
#include "tests/unit/avi/ExactBytes.h"

namespace android {
namespace {

using Bytes = std::vector<uint8_t>;
using Offsets = std::vector<size_t>;

constexpr uint8_t kVps = 0x40;
constexpr uint8_t kSps = 0x42;
constexpr uint8_t kPps = 0x44;
constexpr uint8_t kPicture = 0x26;

struct Unit {
    uint8_t header;
    size_t size;
};

// Units behind four-byte start codes.
Bytes sample(const std::vector<Unit>& units) {
    Bytes out;
    for (const Unit& unit : units) {
        out.insert(out.end(), {0, 0, 0, 1, unit.header});
        out.insert(out.end(), unit.size - 1, 0x99);
    }
    return out;
}

// Offsets of the sets and the end; none when no sequence header is found.
std::optional<Offsets> find(const Bytes& data) {
    ExactBytes exact(data);
    HevcSequenceHeader h;
    if (!rewriteHevcSequenceHeader(exact.data(), exact.size(), &h)) return std::nullopt;
    return Offsets{h.vps.at, h.sps.at, h.pps.at, h.end};
}

}  // namespace

TEST(HevcSequence, SetsAreFoundInTheirOrder) {
    EXPECT_EQ(find(sample({{kVps, 24}, {kSps, 40}, {kPps, 7}, {kPicture, 3}})),
              (Offsets{0, 28, 72, 83}));
}

TEST(HevcSequence, SmallestSetsAreFound) {
    EXPECT_EQ(find(sample({{kVps, 1}, {kSps, 1}, {kPps, 1}, {kPicture, 1}})),
              (Offsets{0, 5, 10, 15}));
}

TEST(HevcSequence, EveryShorterSampleHasNone) {
    const Bytes whole = sample({{kVps, 5}, {kSps, 6}, {kPps, 7}, {kPicture, 1}});
    for (size_t size = 0; size < whole.size(); ++size) {
        EXPECT_EQ(find(Bytes(whole.begin(), whole.begin() + static_cast<ptrdiff_t>(size))),
                  std::nullopt)
            << size;
    }
    EXPECT_NE(find(whole), std::nullopt);
}

TEST(HevcSequence, ScanEndsAfterThousandPositions) {
    for (const size_t end : {998u, 999u, 1000u, 1001u}) {
        SCOPED_TRACE(end);
        const Bytes data = sample({{kVps, 10}, {kSps, 10}, {kPps, end - 32}, {kPicture, 100}});
        EXPECT_EQ(find(data).has_value(), end < 1000);
    }
}

TEST(HevcSequence, LastOfRepeatedSetsCounts) {
    EXPECT_EQ(find(sample({{kVps, 5}, {kVps, 5}, {kSps, 5}, {kPps, 5}, {kPicture, 1}})),
              (Offsets{9, 18, 27, 36}));
    EXPECT_EQ(find(sample({{kVps, 5}, {kSps, 5}, {kSps, 5}, {kPps, 5}, {kPicture, 1}})),
              (Offsets{0, 18, 27, 36}));
    EXPECT_EQ(find(sample({{kVps, 5}, {kSps, 5}, {kPps, 5}, {kPps, 5}, {kPicture, 1}})),
              (Offsets{0, 9, 27, 36}));
}

TEST(HevcSequence, SetsInAnyOrderMakeAHeader) {
    const uint8_t kOrders[][3] = {
        {kVps, kPps, kSps}, {kSps, kVps, kPps}, {kSps, kPps, kVps},
        {kPps, kVps, kSps}, {kPps, kSps, kVps},
    };
    for (const auto& order : kOrders) {
        SCOPED_TRACE(testing::PrintToString(order));
        const auto found =
            find(sample({{order[0], 5}, {order[1], 6}, {order[2], 7}, {kPicture, 1}}));
        ASSERT_TRUE(found);
        EXPECT_EQ(found->back(), 30u);
    }
}

TEST(HevcSequence, NoSetsAreNone) {
    EXPECT_EQ(find({}), std::nullopt);
    EXPECT_EQ(find(Bytes(2000, 0)), std::nullopt);
    EXPECT_EQ(find(Bytes(2000, 0xFF)), std::nullopt);
    EXPECT_EQ(find(sample({{kPicture, 100}, {kPicture, 100}})), std::nullopt);
}

TEST(HevcSequence, PositionsAreLoggedWithTheExtractLogOnly) {
    const Bytes data = sample({{kVps, 24}, {kSps, 40}, {kPps, 7}, {kPicture, 3}});
    avitest::LogCapture log;
    find(data);
    EXPECT_TRUE(log.lines().empty());
    gSwitches.extractLog = true;
    find(data);
    gSwitches.extractLog = false;
    std::vector<avitest::LogLine> expected;
    for (const char* text :
         {"generateHevcCodecData(): VPS found @0", "generateHevcCodecData(): SPS found @28",
          "generateHevcCodecData(): PPS found @72"})
        expected.push_back({ANDROID_LOG_VERBOSE, "RuvoAVIExtractor", text});
    EXPECT_EQ(log.lines(), expected);
}

TEST(HevcPrefixes, CodesBecomeCountAndLength) {
    const Bytes data = sample({{kVps, 300}, {kSps, 11}, {kPps, 7}, {kPicture, 3}});
    ExactBytes exact(data);
    HevcSequenceHeader header;
    ASSERT_TRUE(rewriteHevcSequenceHeader(exact.data(), exact.size(), &header));

    Bytes expected = data;
    const auto put = [&](size_t at, const Bytes& prefix) {
        std::copy(prefix.begin(), prefix.end(), expected.begin() + static_cast<ptrdiff_t>(at));
    };
    put(0, {0, 1, 0x01, 0x2C});
    put(304, {0, 1, 0, 11});
    put(319, {0, 1, 0, 7});
    EXPECT_EQ(exact.first(data.size()), expected);
    EXPECT_EQ(header.vps.entrySize, 304u);
    EXPECT_EQ(header.sps.entrySize, 15u);
    EXPECT_EQ(header.pps.entrySize, 11u);
}

TEST(HevcRecord, EntriesFollowTheirArrays) {
    const ExactBytes data{9, 9, 1, 2, 3, 4, 5, 6, 7};
    const sp<ABuffer> record =
        makeHevcRecord(data.data(), data.size(), {{true, 2, 2}, {true, 4, 3}, {true, 7, 2}, 9});
    const Bytes expected = {0x01, 0x01, 0,    0,    0,    0,    0,    0, 0, 0,    0,    0,
                            0x99, 0xF0, 0,    0xFC, 0xFC, 0xF8, 0xF8, 0, 0, 0x03, 0x03, 0xA0,
                            1,    2,    0xA1, 3,    4,    5,    0xA2, 6, 7, 0,    0};
    EXPECT_EQ(Bytes(record->data(), record->data() + record->size()), expected);
    EXPECT_EQ(record->size(), 26u + 9);
}

}  // namespace android
