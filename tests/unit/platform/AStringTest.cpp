// SPDX-License-Identifier: Apache-2.0

#include <media/stagefright/foundation/AString.h>

#include <gtest/gtest.h>

#include <climits>
#include <cstdint>
#include <string>

namespace android {
namespace {

// What appending `value` to an empty text gives.
template <typename T>
std::string appended(T value) {
    AString text;
    text.append(value);
    return text.c_str();
}

TEST(AString, NewTextIsEmpty) {
    const AString text;
    EXPECT_TRUE(text.empty());
    EXPECT_EQ(text.size(), 0u);
    EXPECT_STREQ(text.c_str(), "");
}

TEST(AString, ConstructorsTakeTextOrPartOfIt) {
    EXPECT_STREQ(AString("video").c_str(), "video");
    EXPECT_STREQ(AString("video", 3).c_str(), "vid");
}

TEST(AString, SetToReplaces) {
    AString text("old text");
    text.setTo("new");
    EXPECT_STREQ(text.c_str(), "new");
    text.setTo("shorter", 5);
    EXPECT_STREQ(text.c_str(), "short");
    EXPECT_EQ(text.size(), 5u);
}

TEST(AString, ClearEmpties) {
    AString text("old");
    text.clear();
    EXPECT_TRUE(text.empty());
    EXPECT_STREQ(text.c_str(), "");
}

TEST(AString, AppendsTexts) {
    AString text("a");
    text.append("bc");
    text.append("def", 2);
    text.append(AString("gh"));
    text.append('!');
    EXPECT_STREQ(text.c_str(), "abcdegh!");
    EXPECT_EQ(text.size(), 8u);
}

TEST(AString, AppendsIntSigned) {
    EXPECT_EQ(appended(INT_MIN), "-2147483648");
    EXPECT_EQ(appended(INT_MAX), "2147483647");
}

TEST(AString, AppendsUnsignedWithoutSign) {
    EXPECT_EQ(appended(UINT_MAX), "4294967295");
}

TEST(AString, AppendsLongs) {
    EXPECT_EQ(appended(-5L), "-5");
    EXPECT_EQ(appended(5UL), "5");
}

TEST(AString, AppendsLongLongInFull) {
    EXPECT_EQ(appended(LLONG_MIN), "-9223372036854775808");
    EXPECT_EQ(appended(ULLONG_MAX), "18446744073709551615");
}

TEST(AString, AppendsSizesAndFixedWidthIntegers) {
    EXPECT_EQ(appended(size_t{7}), "7");
    EXPECT_EQ(appended(int64_t{-1099511627776}), "-1099511627776");
}

TEST(AString, AppendsFloatWithSixDecimals) {
    EXPECT_EQ(appended(1.5f), "1.500000");
    EXPECT_EQ(appended(29.97f), "29.969999");
}

TEST(AString, AppendsDoubleWithSixDecimals) {
    EXPECT_EQ(appended(-2.25), "-2.250000");
    EXPECT_EQ(appended(29.97), "29.970000");
    EXPECT_EQ(appended(1e15), "1000000000000000.000000");
}

TEST(AString, AppendedNumbersFollowTheText) {
    AString text("rate ");
    text.append(128);
    text.append("kbps");
    EXPECT_STREQ(text.c_str(), "rate 128kbps");
}

TEST(AString, EqualityComparesBytes) {
    EXPECT_TRUE(AString("abc") == AString("abc"));
    EXPECT_TRUE(AString("abc") == "abc");
    EXPECT_FALSE(AString("abc") == AString("ABC"));
    EXPECT_FALSE(AString("abc") == AString("ab"));
    EXPECT_TRUE(AString("abc") != AString("abd"));
}

TEST(AString, StartsWithAWholePrefixOnly) {
    const AString text("video/avc");
    EXPECT_TRUE(text.startsWith("video/"));
    EXPECT_TRUE(text.startsWith(""));
    EXPECT_TRUE(text.startsWith("video/avc"));
    EXPECT_FALSE(text.startsWith("Video/"));
    EXPECT_FALSE(text.startsWith("video/avc1"));
}

TEST(AString, EndsWithAWholeSuffixOnly) {
    const AString text("video/avc");
    EXPECT_TRUE(text.endsWith("/avc"));
    EXPECT_TRUE(text.endsWith(""));
    EXPECT_FALSE(text.endsWith("/hevc"));
    EXPECT_FALSE(text.endsWith("a video/avc"));
}

TEST(AString, PrintfGivesAnyLength) {
    EXPECT_TRUE(AStringPrintf("%03d.%s", 7, "x") == "007.x");
    EXPECT_EQ(AStringPrintf("%5000d", 1).size(), 5000u);
}

}  // namespace
}  // namespace android
