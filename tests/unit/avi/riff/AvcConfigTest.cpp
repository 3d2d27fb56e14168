// SPDX-License-Identifier: Apache-2.0

#include "avi/codec/AvcConfig.h"

#include <memory>
#include <vector>

#include <gtest/gtest.h>

#include <media/stagefright/MediaErrors.h>

#include "avi/support/Switches.h"
#include "tests/support/ByteWriter.h"
#include "tests/support/LogCapture.h"

namespace android {

using avitest::Bytes;
using avitest::LogCapture;
using avitest::Logged;

namespace {

// A copy on the heap of exactly the bytes' length, so that a read beyond it is found out.
template <typename Function>
auto exactly(const Bytes& data, Function function) {
    const std::unique_ptr<uint8_t[]> copy(new uint8_t[data.size()]);
    std::copy(data.begin(), data.end(), copy.get());
    return function(copy.get(), data.size());
}

ssize_t startCode(const Bytes& data) {
    return exactly(data, findStartCode);
}

bool hasPictureSet(const Bytes& data) {
    return exactly(data, hasPictureParameterSet);
}

status_t parse(const Bytes& data) {
    return exactly(data, parseAVCCodecSpecificData);
}

void appendSets(Bytes* out, const std::vector<size_t>& lengths) {
    for (const size_t length : lengths) {
        out->push_back(static_cast<uint8_t>(length >> 8));
        out->push_back(static_cast<uint8_t>(length));
        out->insert(out->end(), length, 0xEE);
    }
}

// A decoder configuration record with parameter sets of these lengths.
Bytes record(const std::vector<size_t>& sequenceSets, const std::vector<size_t>& pictureSets) {
    Bytes out = {1, 0x64, 0x10, 41, 0xFE, static_cast<uint8_t>(0xE0 | sequenceSets.size())};
    appendSets(&out, sequenceSets);
    out.push_back(static_cast<uint8_t>(pictureSets.size()));
    appendSets(&out, pictureSets);
    return out;
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

class AvcRecord : public ::testing::Test {
  protected:
    // What a good record may look like.
    const std::vector<Bytes> mGood = {
        record({4}, {2}),
        record({23}, {4}),
        record({4, 5}, {2, 3, 1}),
        record({}, {}),
        record({}, {2}),
        record({4}, {}),
        record({0}, {0}),
        record({300}, {256}),
        record(std::vector<size_t>(31, 1), {1}),
        record({4}, std::vector<size_t>(255, 0)),
    };
    LogCapture mLog;
};

TEST_F(AvcRecord, GoodOneIsTaken) {
    for (const Bytes& data : mGood)
        EXPECT_EQ(OK, parse(data)) << testing::PrintToString(data);
    EXPECT_TRUE(mLog.lines().empty());
}

TEST_F(AvcRecord, BytesBehindItDoNotMatter) {
    for (Bytes data : mGood) {
        data.insert(data.end(), {0xFD, 0xF8, 0xF8, 0});
        EXPECT_EQ(OK, parse(data)) << testing::PrintToString(data);
    }
}

TEST_F(AvcRecord, EveryCutFails) {
    for (const Bytes& data : mGood) {
        for (size_t size = 0; size < data.size(); ++size) {
            const Bytes cut(data.begin(), data.begin() + static_cast<ptrdiff_t>(size));
            ASSERT_EQ(ERROR_MALFORMED, parse(cut)) << testing::PrintToString(cut);
        }
    }
}

TEST_F(AvcRecord, OtherVersionFails) {
    for (unsigned version = 0; version < 256; ++version) {
        Bytes data = record({4}, {2});
        data[0] = static_cast<uint8_t>(version);
        EXPECT_EQ(version == 1, parse(data) == OK) << version;
    }
}

TEST_F(AvcRecord, UpperBitsOfTheSetCountAreReserved) {
    for (const uint8_t reserved : {0x00, 0x20, 0x80, 0xE0}) {
        Bytes data = record({4}, {2});
        data[5] = static_cast<uint8_t>(reserved | 1);
        EXPECT_EQ(OK, parse(data)) << int{reserved};
    }
}

TEST_F(AvcRecord, LengthBeyondItsEndFails) {
    Bytes data = record({4}, {2});
    data[6] = 0xFF;  // the upper byte of the sequence set's length
    EXPECT_EQ(ERROR_MALFORMED, parse(data));
    data = record({4}, {2});
    data[data.size() - 3] = 3;  // the lower byte of the picture set's length
    EXPECT_EQ(ERROR_MALFORMED, parse(data));
}

TEST_F(AvcRecord, MoreSetsThanThereAreFail) {
    Bytes data = record({4}, {2});
    data[12] = 2;  // picture sets
    EXPECT_EQ(ERROR_MALFORMED, parse(data));
    data = record({4}, {});
    data[5] = 0xE2;
    EXPECT_EQ(ERROR_MALFORMED, parse(data));
}

TEST_F(AvcRecord, FailureIsReportedOnce) {
    EXPECT_EQ(ERROR_MALFORMED, parse(Bytes(6)));
    EXPECT_EQ(1u, mLog.lines().size());
    EXPECT_THAT(mLog, Logged(ANDROID_LOG_ERROR, "parseAVCCodecSpecificData(): error -3EF @line"));
}

TEST_F(AvcRecord, IsDescribedOnRequest) {
    gSwitches.extractLog = true;
    EXPECT_EQ(OK, parse(record({4, 5}, {1, 2, 3})));
    gSwitches.extractLog = false;
    EXPECT_THAT(mLog, Logged(ANDROID_LOG_VERBOSE,
                             "parseAVCCodecSpecificData(): configurationVersion 1 profile 100 "
                             "level 41 lengthSize 3"));
    EXPECT_THAT(mLog,
                Logged(ANDROID_LOG_VERBOSE, "parseAVCCodecSpecificData(): numSeqParameterSets 2"));
    EXPECT_THAT(mLog,
                Logged(ANDROID_LOG_VERBOSE, "parseAVCCodecSpecificData(): numPicParameterSets 3"));
}

}  // namespace android
