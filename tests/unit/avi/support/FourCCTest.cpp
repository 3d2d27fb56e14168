// SPDX-License-Identifier: Apache-2.0

#include "avi/support/FourCC.h"

#include <cstdio>

#include <gtest/gtest.h>

namespace android {
namespace {

TEST(FourCC, TextIsALittleEndianWord) {
    EXPECT_EQ(0x46464952u, toWord(fourcc("RIFF")));
    EXPECT_EQ(0x5453494cu, toWord(fourcc("LIST")));
}

TEST(FourCC, IsUsableAsACaseLabel) {
    switch (makeFourCC('s', 't', 'r', 'f')) {
        case fourcc("strf"):
            break;
        default:
            ADD_FAILURE() << "no case taken";
    }
}

TEST(FourCC, BytesAboveAsciiAreNotSignExtended) {
    EXPECT_EQ(0xFF000080u, toWord(makeFourCC(0x80, 0, 0, 0xFF)));
    EXPECT_EQ(0xFF8080FEu, toWord(fourcc("\xfe\x80\x80\xff")));
}

TEST(FourCC, CharactersAreInFileOrder) {
    const FourCC code = fourcc("abcd");
    EXPECT_EQ('a', charAt(code, 0));
    EXPECT_EQ('b', charAt(code, 1));
    EXPECT_EQ('c', charAt(code, 2));
    EXPECT_EQ('d', charAt(code, 3));
}

TEST(FourCC, ToLowerFoldsLettersAlone) {
    EXPECT_EQ(fourcc("h264"), toLower(fourcc("H264")));
    EXPECT_EQ(fourcc("azaz"), toLower(fourcc("AZaz")));
    EXPECT_EQ(fourcc("@[`{"), toLower(fourcc("@[`{")));
    EXPECT_EQ(fourcc("\xC1\xDA\x01\x7f"), toLower(fourcc("\xC1\xDA\x01\x7f")));
}

TEST(FourCC, TextEndsWithAZero) {
    EXPECT_STREQ("vids", FourCCText(fourcc("vids")).text);
    EXPECT_STREQ("", FourCCText(FourCC{}).text);
}

TEST(FourCC, ArgumentsAreTheWordAndItsFourCharacters) {
    char text[32];
    std::snprintf(text, sizeof(text), "0x%08x:%c%c%c%c", FOURCC_ARGS(fourcc("JUNK")));
    EXPECT_STREQ("0x4b4e554a:JUNK", text);
}

}  // namespace
}  // namespace android
