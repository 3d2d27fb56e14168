// SPDX-License-Identifier: Apache-2.0

#include <media/stagefright/MediaErrors.h>
#include <media/stagefright/foundation/ByteUtils.h>

#include <gtest/gtest.h>

namespace android {
namespace {

// The highest bits set, so that a sign extension would show; read at an odd address.
constexpr uint8_t kBytes[] = {0x00, 0xf1, 0xe2, 0xd3, 0xc4, 0xb5, 0xa6, 0x97, 0x88};

TEST(ByteUtils, U16IsBigEndian) {
    EXPECT_EQ(U16_AT(kBytes + 1), 0xf1e2u);
}

TEST(ByteUtils, U32IsBigEndian) {
    EXPECT_EQ(U32_AT(kBytes + 1), 0xf1e2d3c4u);
}

TEST(ByteUtils, U64IsBigEndian) {
    EXPECT_EQ(U64_AT(kBytes + 1), 0xf1e2d3c4b5a69788u);
}

TEST(ByteUtils, FourccHasItsFirstCharacterOnTop) {
    static_assert(FOURCC('R', 'I', 'F', 'F') == 0x52494646u);
    EXPECT_EQ(FOURCC(0xff, 0, 0, 0xfe), 0xff0000feu);
}

TEST(ByteUtils, FourccOfTextEqualsFourccOfCharacters) {
    static_assert(FOURCC("avc1") == FOURCC('a', 'v', 'c', '1'));
    EXPECT_EQ(FOURCC("\xff 00"), FOURCC(0xff, ' ', '0', '0'));
}

// They are handed over as numbers, to code that was built apart from this.
TEST(MediaErrors, ValuesAreThoseOfTheFramework) {
    EXPECT_EQ(MEDIA_ERROR_BASE, -1000);
    EXPECT_EQ(ERROR_ALREADY_CONNECTED, -1000);
    EXPECT_EQ(ERROR_NOT_CONNECTED, -1001);
    EXPECT_EQ(ERROR_UNKNOWN_HOST, -1002);
    EXPECT_EQ(ERROR_CANNOT_CONNECT, -1003);
    EXPECT_EQ(ERROR_IO, -1004);
    EXPECT_EQ(ERROR_CONNECTION_LOST, -1005);
    EXPECT_EQ(ERROR_MALFORMED, -1007);
    EXPECT_EQ(ERROR_OUT_OF_RANGE, -1008);
    EXPECT_EQ(ERROR_BUFFER_TOO_SMALL, -1009);
    EXPECT_EQ(ERROR_UNSUPPORTED, -1010);
    EXPECT_EQ(ERROR_END_OF_STREAM, -1011);
    EXPECT_EQ(INFO_FORMAT_CHANGED, -1012);
    EXPECT_EQ(INFO_DISCONTINUITY, -1013);
    EXPECT_EQ(INFO_OUTPUT_BUFFERS_CHANGED, -1014);
}

}  // namespace
}  // namespace android
