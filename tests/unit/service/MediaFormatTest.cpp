// SPDX-License-Identifier: Apache-2.0
#include "service/MediaFormat.h"

#include <gtest/gtest.h>

#include <utility>

namespace android::service {
namespace {

using Bytes = std::vector<uint8_t>;

// A format with one entry of every type, in the order of the alternatives of FormatEntry::Value.
MediaFormat everyType() {
    MediaFormat format;
    AMediaFormat_setInt32(format.get(), "a", -1);
    AMediaFormat_setInt64(format.get(), "b", int64_t{1} << 40);
    AMediaFormat_setFloat(format.get(), "c", 1.5f);
    AMediaFormat_setDouble(format.get(), "d", 2.25);
    AMediaFormat_setSize(format.get(), "e", 7);
    AMediaFormat_setRect(format.get(), "f", 1, 2, 3, 4);
    AMediaFormat_setString(format.get(), "g", "text");
    AMediaFormat_setBuffer(format.get(), "h", "\x01\x02", 2);
    return format;
}

TEST(MediaFormat, NewOneIsEmpty) {
    MediaFormat format;
    EXPECT_NE(nullptr, format.get());
    EXPECT_TRUE(format.entries().empty());
    EXPECT_EQ("}", format.toString());
}

TEST(MediaFormat, GettersReturnValuesOfTheirType) {
    const MediaFormat format = everyType();
    EXPECT_EQ(-1, format.getInt32("a"));
    EXPECT_EQ(int64_t{1} << 40, format.getInt64("b"));
    EXPECT_EQ(1.5f, format.getFloat("c"));
    EXPECT_EQ(2.25, format.getDouble("d"));
    EXPECT_EQ(7u, format.getSize("e"));
    EXPECT_EQ((FormatRect{1, 2, 3, 4}), format.getRect("f"));
    EXPECT_EQ("text", format.getString("g"));
    EXPECT_EQ((Bytes{1, 2}), format.getBuffer("h"));
}

TEST(MediaFormat, GettersOfAnotherTypeFindNothing) {
    const MediaFormat format = everyType();
    EXPECT_EQ(std::nullopt, format.getInt32("b"));
    EXPECT_EQ(std::nullopt, format.getInt64("a"));
    EXPECT_EQ(std::nullopt, format.getFloat("d"));
    EXPECT_EQ(std::nullopt, format.getDouble("c"));
    EXPECT_EQ(std::nullopt, format.getSize("b"));
    EXPECT_EQ(std::nullopt, format.getRect("a"));
    EXPECT_EQ(std::nullopt, format.getString("h"));
    EXPECT_EQ(std::nullopt, format.getBuffer("g"));
}

TEST(MediaFormat, ContainsFindsEveryType) {
    const MediaFormat format = everyType();
    for (const char* name : {"a", "b", "c", "d", "e", "f", "g", "h"}) {
        EXPECT_TRUE(format.contains(name)) << name;
    }
    EXPECT_FALSE(format.contains("i"));
}

TEST(MediaFormat, StringIsACopy) {
    MediaFormat format;
    AMediaFormat_setString(format.get(), "g", "before");
    const std::optional<std::string> text = format.getString("g");
    AMediaFormat_setString(format.get(), "g", "after");
    EXPECT_EQ("after", format.getString("g"));
    EXPECT_EQ("before", text);
}

TEST(MediaFormat, EmptyBufferIsABuffer) {
    MediaFormat format;
    AMediaFormat_setBuffer(format.get(), "h", "", 0);
    EXPECT_EQ(Bytes(), format.getBuffer("h"));
}

TEST(MediaFormat, EntriesKeepTheFormatsOrder) {
    MediaFormat format;
    AMediaFormat_setInt32(format.get(), "z", 1);
    AMediaFormat_setInt32(format.get(), "a", 2);
    AMediaFormat_setInt64(format.get(), "z", 3);
    const std::vector<FormatEntry> entries = format.entries();
    ASSERT_EQ(2u, entries.size());
    EXPECT_EQ("z", entries[0].name);
    EXPECT_EQ(FormatEntry::Value(int64_t{3}), entries[0].value);
    EXPECT_EQ("a", entries[1].name);
    EXPECT_EQ(FormatEntry::Value(int32_t{2}), entries[1].value);
}

TEST(MediaFormat, EntriesCarryEveryTypeAndItsName) {
    const std::vector<FormatEntry> entries = everyType().entries();
    ASSERT_EQ(8u, entries.size());
    const char* names[] = {"int32", "int64", "float", "double", "size_t", "Rect", "string", "data"};
    for (size_t i = 0; i < entries.size(); ++i) {
        EXPECT_EQ(i, entries[i].value.index());
        EXPECT_STREQ(names[i], entries[i].typeName());
    }
    EXPECT_EQ(int64_t{1} << 40, std::get<int64_t>(entries[1].value));
    EXPECT_EQ((FormatRect{1, 2, 3, 4}), std::get<FormatRect>(entries[5].value));
    EXPECT_EQ("text", std::get<std::string>(entries[6].value));
    EXPECT_EQ((Bytes{1, 2}), std::get<Bytes>(entries[7].value));
}

TEST(MediaFormat, StringThatLooksLikeEntriesIsOneEntry) {
    MediaFormat format;
    AMediaFormat_setString(format.get(), "title", "x), b: int32(1), c: data}");
    AMediaFormat_setInt32(format.get(), "b", 2);
    const std::vector<FormatEntry> entries = format.entries();
    ASSERT_EQ(2u, entries.size());
    EXPECT_EQ("x), b: int32(1), c: data}", std::get<std::string>(entries[0].value));
    EXPECT_EQ(2, std::get<int32_t>(entries[1].value));
}

TEST(MediaFormat, EmptyStringIsAnEntry) {
    MediaFormat format;
    AMediaFormat_setString(format.get(), "title", "");
    AMediaFormat_setInt32(format.get(), "b", 2);
    EXPECT_EQ(2u, format.entries().size());
}

TEST(MediaFormat, NameWithAColonIsOneName) {
    MediaFormat format;
    AMediaFormat_setInt32(format.get(), "a: b", 2);
    AMediaFormat_setInt32(format.get(), "a: int32(1), b", 3);
    const std::vector<FormatEntry> entries = format.entries();
    ASSERT_EQ(2u, entries.size());
    EXPECT_EQ("a: b", entries[0].name);
    EXPECT_EQ("a: int32(1), b", entries[1].name);
}

TEST(MediaFormat, CopyHasTheEntriesOfItsTime) {
    MediaFormat format = everyType();
    const MediaFormat copy = MediaFormat::copyOf(format);
    AMediaFormat_clear(format.get());
    EXPECT_EQ(8u, copy.entries().size());
    EXPECT_TRUE(format.entries().empty());
}

TEST(MediaFormat, CopyOfNullIsEmpty) {
    EXPECT_TRUE(MediaFormat::copyOf(FormatView(nullptr)).entries().empty());
}

TEST(MediaFormat, MoveTakesTheFormat) {
    MediaFormat first = everyType();
    AMediaFormat* plain = first.get();
    MediaFormat second = std::move(first);
    EXPECT_EQ(plain, second.get());
    EXPECT_EQ(nullptr, first.get());  // NOLINT: what is left behind is what is tested
    MediaFormat third;
    third = std::move(second);
    EXPECT_EQ(plain, third.get());
}

TEST(MediaFormat, AdoptedFormatIsTheSame) {
    AMediaFormat* plain = AMediaFormat_new();
    EXPECT_EQ(plain, MediaFormat::adopt(plain).get());
}

TEST(FormatView, NullFindsNothing) {
    const FormatView view(nullptr);
    EXPECT_FALSE(view.contains("a"));
    EXPECT_EQ("", view.toString());
    EXPECT_TRUE(view.entries().empty());
}

TEST(FormatView, SeesLaterChanges) {
    MediaFormat format;
    const FormatView view = format;
    AMediaFormat_setInt32(format.get(), "a", 1);
    EXPECT_EQ(1, view.getInt32("a"));
}

}  // namespace
}  // namespace android::service
