// SPDX-License-Identifier: Apache-2.0
//
// AMediaFormat: how long what it hands out lives, copying, clearing and the limit on entries.

#include <string.h>

#include <string>

#include "tests/unit/platform/MediaFormatFixture.h"

namespace {

constexpr size_t kMaxEntries = 256;

class MediaFormatDeathTest : public ::testing::Test {
  protected:
    static void fill(AMediaFormat* format) {
        for (size_t i = 0; i < kMaxEntries; ++i) {
            AMediaFormat_setInt32(format, ("key" + std::to_string(i)).c_str(), 1);
        }
    }

    Format mFormat{AMediaFormat_new()};
};

TEST_F(MediaFormat, SetStringCopies) {
    char text[] = "one";
    AMediaFormat_setString(mFormat.get(), "string", text);
    text[0] = 'X';
    const char* value = nullptr;
    ASSERT_TRUE(AMediaFormat_getString(mFormat.get(), "string", &value));
    EXPECT_STREQ("one", value);
}

TEST_F(MediaFormat, StringPointerOutlivesReplacementOfTheValue) {
    const char* value = nullptr;
    ASSERT_TRUE(AMediaFormat_getString(mFormat.get(), "string", &value));
    AMediaFormat_setString(mFormat.get(), "string", "another, and longer than before");
    EXPECT_STREQ("text", value);
}

TEST_F(MediaFormat, StringPointerOutlivesChangeOfTheType) {
    const char* value = nullptr;
    ASSERT_TRUE(AMediaFormat_getString(mFormat.get(), "string", &value));
    AMediaFormat_setInt32(mFormat.get(), "string", 1);
    const char* second = "untouched";
    EXPECT_FALSE(AMediaFormat_getString(mFormat.get(), "string", &second));
    EXPECT_STREQ("text", value);
    EXPECT_STREQ("untouched", second);
}

TEST_F(MediaFormat, StringPointerOutlivesGetStringOfOtherNames) {
    const char* value = nullptr;
    ASSERT_TRUE(AMediaFormat_getString(mFormat.get(), "string", &value));
    for (int i = 0; i < 100; ++i) {
        const std::string name = "other" + std::to_string(i);
        AMediaFormat_setString(mFormat.get(), name.c_str(), "x");
        const char* other = nullptr;
        ASSERT_TRUE(AMediaFormat_getString(mFormat.get(), name.c_str(), &other));
    }
    EXPECT_STREQ("text", value);
}

TEST_F(MediaFormat, StringPointerOutlivesClearAndCopy) {
    const char* value = nullptr;
    ASSERT_TRUE(AMediaFormat_getString(mFormat.get(), "string", &value));
    AMediaFormat_clear(mFormat.get());
    EXPECT_STREQ("text", value);
    Format other(AMediaFormat_new());
    AMediaFormat_copy(mFormat.get(), other.get());
    EXPECT_STREQ("text", value);
}

TEST_F(MediaFormat, GetStringAnswersTheNewestValue) {
    const char* value = nullptr;
    ASSERT_TRUE(AMediaFormat_getString(mFormat.get(), "string", &value));
    AMediaFormat_setString(mFormat.get(), "string", "newer");
    ASSERT_TRUE(AMediaFormat_getString(mFormat.get(), "string", &value));
    EXPECT_STREQ("newer", value);
}

TEST_F(MediaFormat, SetBufferCopies) {
    char bytes[] = {1, 2, 3};
    AMediaFormat_setBuffer(mFormat.get(), "buffer", bytes, sizeof(bytes));
    bytes[0] = 9;
    void* data = nullptr;
    size_t size = 0;
    ASSERT_TRUE(AMediaFormat_getBuffer(mFormat.get(), "buffer", &data, &size));
    ASSERT_EQ(3u, size);
    EXPECT_EQ(0, memcmp("\1\2\3", data, 3));
}

TEST_F(MediaFormat, BufferMayBeEmpty) {
    for (const char* bytes : {"x", static_cast<const char*>(nullptr)}) {
        AMediaFormat_setBuffer(mFormat.get(), "buffer", bytes, 0);
        void* data = nullptr;
        size_t size = 55;
        EXPECT_TRUE(AMediaFormat_getBuffer(mFormat.get(), "buffer", &data, &size));
        EXPECT_EQ(0u, size);
    }
}

TEST_F(MediaFormat, GetBufferPointsAtLiveData) {
    void* data = nullptr;
    size_t size = 0;
    ASSERT_TRUE(AMediaFormat_getBuffer(mFormat.get(), "buffer", &data, &size));
    static_cast<char*>(data)[0] = 'X';
    void* again = nullptr;
    ASSERT_TRUE(AMediaFormat_getBuffer(mFormat.get(), "buffer", &again, &size));
    EXPECT_EQ(data, again);
    EXPECT_EQ(0, memcmp("Xbc", again, 3));
}

TEST_F(MediaFormat, CopyClearsTheTargetFirst) {
    Format target(AMediaFormat_new());
    AMediaFormat_setInt32(target.get(), "stale", 1);
    EXPECT_EQ(AMEDIA_OK, AMediaFormat_copy(target.get(), mFormat.get()));
    int32_t value = 0;
    EXPECT_FALSE(AMediaFormat_getInt32(target.get(), "stale", &value));
    EXPECT_EQ(std::string(AMediaFormat_toString(mFormat.get())),
              AMediaFormat_toString(target.get()));
}

TEST_F(MediaFormat, CopyIsIndependentOfItsOrigin) {
    Format target(AMediaFormat_new());
    ASSERT_EQ(AMEDIA_OK, AMediaFormat_copy(target.get(), mFormat.get()));
    AMediaFormat_setInt32(mFormat.get(), "int32", 1000);
    AMediaFormat_setString(mFormat.get(), "string", "changed");
    AMediaFormat_setBuffer(mFormat.get(), "buffer", "changed", 7);
    int32_t value = 0;
    EXPECT_TRUE(AMediaFormat_getInt32(target.get(), "int32", &value));
    EXPECT_EQ(-7, value);
    const char* text = nullptr;
    EXPECT_TRUE(AMediaFormat_getString(target.get(), "string", &text));
    EXPECT_STREQ("text", text);
    void* data = nullptr;
    size_t size = 0;
    EXPECT_TRUE(AMediaFormat_getBuffer(target.get(), "buffer", &data, &size));
    EXPECT_EQ(3u, size);
}

TEST_F(MediaFormat, CopySharesBuffers) {
    Format target(AMediaFormat_new());
    ASSERT_EQ(AMEDIA_OK, AMediaFormat_copy(target.get(), mFormat.get()));
    void* source = nullptr;
    void* copy = nullptr;
    size_t size = 0;
    ASSERT_TRUE(AMediaFormat_getBuffer(mFormat.get(), "buffer", &source, &size));
    ASSERT_TRUE(AMediaFormat_getBuffer(target.get(), "buffer", &copy, &size));
    EXPECT_EQ(source, copy);
    mFormat.reset();
    EXPECT_EQ(0, memcmp("abc", copy, 3)) << "the copy keeps the bytes alive";
}

TEST_F(MediaFormat, CopyOfNullIsAnInvalidParameter) {
    EXPECT_EQ(-10004, AMediaFormat_copy(nullptr, mFormat.get()));
    EXPECT_EQ(-10004, AMediaFormat_copy(nullptr, nullptr));
    const std::string before = AMediaFormat_toString(mFormat.get());
    EXPECT_EQ(-10004, AMediaFormat_copy(mFormat.get(), nullptr));
    EXPECT_EQ(before, AMediaFormat_toString(mFormat.get())) << "a failed copy clears nothing";
}

TEST_F(MediaFormat, CopyOntoItselfEmpties) {
    EXPECT_EQ(AMEDIA_OK, AMediaFormat_copy(mFormat.get(), mFormat.get()));
    EXPECT_STREQ("}", AMediaFormat_toString(mFormat.get()));
}

TEST_F(MediaFormat, ClearRemovesEveryEntry) {
    AMediaFormat_clear(mFormat.get());
    EXPECT_STREQ("}", AMediaFormat_toString(mFormat.get()));
    AMediaFormat_setInt32(mFormat.get(), "again", 1);
    EXPECT_STREQ("again: int32(1)}", AMediaFormat_toString(mFormat.get()));
}

TEST(MediaFormatObject, DeleteOfNullIsAllowed) {
    EXPECT_EQ(AMEDIA_OK, AMediaFormat_delete(nullptr));
}

TEST(MediaFormatObject, DeleteAnswersOk) {
    EXPECT_EQ(AMEDIA_OK, AMediaFormat_delete(AMediaFormat_new()));
}

TEST_F(MediaFormatDeathTest, ClearOfNullCrashes) {
    EXPECT_DEATH(AMediaFormat_clear(nullptr), "");
}

TEST_F(MediaFormatDeathTest, ToStringOfNullCrashes) {
    EXPECT_DEATH(AMediaFormat_toString(nullptr), "");
}

TEST_F(MediaFormatDeathTest, A257thNameIsAFatalAssertion) {
    fill(mFormat.get());
    EXPECT_DEATH(AMediaFormat_setInt32(mFormat.get(), "one too many", 1), "one too many");
}

TEST_F(MediaFormatDeathTest, ChangingAnEntryOfAFullFormatIsAllowed) {
    fill(mFormat.get());
    AMediaFormat_setString(mFormat.get(), "key255", "changed");
    const char* value = nullptr;
    EXPECT_TRUE(AMediaFormat_getString(mFormat.get(), "key255", &value));
    EXPECT_STREQ("changed", value);
}

TEST_F(MediaFormatDeathTest, AClearedFormatHasRoomAgain) {
    fill(mFormat.get());
    AMediaFormat_clear(mFormat.get());
    fill(mFormat.get());
    int32_t value = 0;
    EXPECT_TRUE(AMediaFormat_getInt32(mFormat.get(), "key255", &value));
}

}  // namespace
