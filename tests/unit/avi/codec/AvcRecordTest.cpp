// SPDX-License-Identifier: Apache-2.0

#include "avi/codec/AvcRecord.h"

#include <memory>
#include <vector>

#include <gtest/gtest.h>

#include <media/stagefright/MediaErrors.h>

#include "avi/support/Switches.h"
#include "tests/support/ByteWriter.h"
#include "tests/support/LogCapture.h"
#include "tests/unit/avi/codec/UnitBytes.h"

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

status_t parseRecord(const Bytes& data) {
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

sp<ABuffer> bufferOf(const Bytes& data) {
    return ABuffer::CreateAsCopy(data.data(), data.size());
}

}  // namespace

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
        EXPECT_EQ(OK, parseRecord(data)) << testing::PrintToString(data);
    EXPECT_TRUE(mLog.lines().empty());
}

TEST_F(AvcRecord, BytesBehindItDoNotMatter) {
    for (Bytes data : mGood) {
        data.insert(data.end(), {0xFD, 0xF8, 0xF8, 0});
        EXPECT_EQ(OK, parseRecord(data)) << testing::PrintToString(data);
    }
}

TEST_F(AvcRecord, EveryCutFails) {
    for (const Bytes& data : mGood) {
        for (size_t size = 0; size < data.size(); ++size) {
            const Bytes cut(data.begin(), data.begin() + static_cast<ptrdiff_t>(size));
            ASSERT_EQ(ERROR_MALFORMED, parseRecord(cut)) << testing::PrintToString(cut);
        }
    }
}

TEST_F(AvcRecord, OtherVersionFails) {
    for (unsigned version = 0; version < 256; ++version) {
        Bytes data = record({4}, {2});
        data[0] = static_cast<uint8_t>(version);
        EXPECT_EQ(version == 1, parseRecord(data) == OK) << version;
    }
}

TEST_F(AvcRecord, UpperBitsOfTheSetCountAreReserved) {
    for (const uint8_t reserved : {0x00, 0x20, 0x80, 0xE0}) {
        Bytes data = record({4}, {2});
        data[5] = static_cast<uint8_t>(reserved | 1);
        EXPECT_EQ(OK, parseRecord(data)) << int{reserved};
    }
}

TEST_F(AvcRecord, LengthBeyondItsEndFails) {
    Bytes data = record({4}, {2});
    data[6] = 0xFF;  // the upper byte of the sequence set's length
    EXPECT_EQ(ERROR_MALFORMED, parseRecord(data));
    data = record({4}, {2});
    data[data.size() - 3] = 3;  // the lower byte of the picture set's length
    EXPECT_EQ(ERROR_MALFORMED, parseRecord(data));
}

TEST_F(AvcRecord, MoreSetsThanThereAreFail) {
    Bytes data = record({4}, {2});
    data[12] = 2;  // picture sets
    EXPECT_EQ(ERROR_MALFORMED, parseRecord(data));
    data = record({4}, {});
    data[5] = 0xE2;
    EXPECT_EQ(ERROR_MALFORMED, parseRecord(data));
}

TEST_F(AvcRecord, FailureIsReportedOnce) {
    EXPECT_EQ(ERROR_MALFORMED, parseRecord(Bytes(6)));
    EXPECT_EQ(1u, mLog.lines().size());
    EXPECT_THAT(mLog, Logged(ANDROID_LOG_ERROR, "parseAVCCodecSpecificData(): error -3EF @line"));
}

TEST_F(AvcRecord, IsDescribedOnRequest) {
    gSwitches.extractLog = true;
    EXPECT_EQ(OK, parseRecord(record({4, 5}, {1, 2, 3})));
    gSwitches.extractLog = false;
    EXPECT_THAT(mLog, Logged(ANDROID_LOG_VERBOSE,
                             "parseAVCCodecSpecificData(): configurationVersion 1 profile 100 "
                             "level 41 lengthSize 3"));
    EXPECT_THAT(mLog,
                Logged(ANDROID_LOG_VERBOSE, "parseAVCCodecSpecificData(): numSeqParameterSets 2"));
    EXPECT_THAT(mLog,
                Logged(ANDROID_LOG_VERBOSE, "parseAVCCodecSpecificData(): numPicParameterSets 3"));
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
