// SPDX-License-Identifier: Apache-2.0

#include "avi/codec/Esds.h"

#include <vector>

#include <gtest/gtest.h>

#include "tests/unit/avi/ExactBytes.h"

namespace android {
namespace {

std::vector<uint8_t> esds(const std::vector<uint8_t>& info, DescriptorLength form) {
    const ExactBytes exact(info);
    const sp<ABuffer> buffer = makeEsds(exact.data(), exact.size(), form);
    return {buffer->data(), buffer->data() + buffer->size()};
}

// A two-byte length at `i`.
size_t lengthAt(const std::vector<uint8_t>& bytes, size_t i) {
    EXPECT_EQ(bytes[i] & 0x80, 0x80);
    EXPECT_EQ(bytes[i + 1] & 0x80, 0);
    return static_cast<size_t>((bytes[i] & 0x7F) << 7 | bytes[i + 1]);
}

}  // namespace

TEST(Esds, OneByteLengthsCountWhatFollowsThem) {
    EXPECT_EQ(esds({0x12, 0x10}, DescriptorLength::kOneByte),
              (std::vector<uint8_t>{0x03, 0x16, 0, 0, 0, 0x04, 0x11, 0x40, 0,    0,    0,   0, 0,
                                    0,    0,    0, 0, 0, 0,    0,    0x05, 0x02, 0x12, 0x10}));
}

TEST(Esds, TwoByteLengthsCountWhatFollowsThem) {
    EXPECT_EQ(
        esds({0xAB}, DescriptorLength::kTwoBytes),
        (std::vector<uint8_t>{0x03, 0x80, 0x17, 0, 0, 0, 0x04, 0x80, 0x11, 0x40, 0,    0,   0, 0,
                              0,    0,    0,    0, 0, 0, 0,    0,    0x05, 0x80, 0x01, 0xAB}));
}

TEST(Esds, TwoByteLengthsReach16383) {
    for (const size_t size : {1u, 105u, 106u, 127u, 128u, 1000u, 16361u}) {
        SCOPED_TRACE(size);
        const std::vector<uint8_t> info(size, 0x5C);
        const std::vector<uint8_t> bytes = esds(info, DescriptorLength::kTwoBytes);
        ASSERT_EQ(bytes.size(), size + 25);
        EXPECT_EQ(lengthAt(bytes, 1), size + 22);
        EXPECT_EQ(lengthAt(bytes, 7), size + 16);
        EXPECT_EQ(lengthAt(bytes, 23), size);
        EXPECT_EQ(std::vector<uint8_t>(bytes.begin() + 25, bytes.end()), info);
    }
}

TEST(Esds, LargerLengthsLoseTheirUpperBits) {
    const size_t size = 16384 + 5;
    const std::vector<uint8_t> bytes =
        esds(std::vector<uint8_t>(size, 1), DescriptorLength::kTwoBytes);
    ASSERT_EQ(bytes.size(), size + 25);
    EXPECT_EQ(lengthAt(bytes, 1), 27u);
    EXPECT_EQ(lengthAt(bytes, 7), 21u);
    EXPECT_EQ(lengthAt(bytes, 23), 5u);
}

TEST(Esds, EmptyInformationIsADescriptorAllTheSame) {
    const sp<ABuffer> buffer = makeEsds(nullptr, 0, DescriptorLength::kTwoBytes);
    EXPECT_EQ(buffer->size(), 25u);
    EXPECT_EQ(buffer->data()[24], 0);
}

}  // namespace android
