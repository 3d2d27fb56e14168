// SPDX-License-Identifier: Apache-2.0
//
// AMediaFormat: what getters and setters accept.

#include <string.h>

#include <string>
#include <utility>
#include <vector>

#include "tests/unit/platform/MediaFormatFixture.h"

namespace {

const char* const kNames[] = {"int32", "int64", "float",  "double",
                              "size",  "rect",  "string", "buffer"};

TEST_F(MediaFormat, Int32IsReadByItsOwnGetterOnly) {
    for (const char* name : kNames) {
        int32_t value = 55;
        const bool own = strcmp(name, "int32") == 0;
        EXPECT_EQ(own, AMediaFormat_getInt32(mFormat.get(), name, &value)) << name;
        EXPECT_EQ(own ? -7 : 55, value) << name;
    }
}

TEST_F(MediaFormat, Int64IsReadByItsOwnGetterOnly) {
    for (const char* name : kNames) {
        int64_t value = 55;
        const bool own = strcmp(name, "int64") == 0;
        EXPECT_EQ(own, AMediaFormat_getInt64(mFormat.get(), name, &value)) << name;
        EXPECT_EQ(own ? int64_t{1} << 40 : 55, value) << name;
    }
}

TEST_F(MediaFormat, FloatIsReadByItsOwnGetterOnly) {
    for (const char* name : kNames) {
        float value = 55;
        const bool own = strcmp(name, "float") == 0;
        EXPECT_EQ(own, AMediaFormat_getFloat(mFormat.get(), name, &value)) << name;
        EXPECT_EQ(own ? 1.5f : 55.0f, value) << name;
    }
}

TEST_F(MediaFormat, DoubleIsReadByItsOwnGetterOnly) {
    for (const char* name : kNames) {
        double value = 55;
        const bool own = strcmp(name, "double") == 0;
        EXPECT_EQ(own, AMediaFormat_getDouble(mFormat.get(), name, &value)) << name;
        EXPECT_EQ(own ? 2.25 : 55.0, value) << name;
    }
}

TEST_F(MediaFormat, SizeIsReadByItsOwnGetterOnly) {
    for (const char* name : kNames) {
        size_t value = 55;
        const bool own = strcmp(name, "size") == 0;
        EXPECT_EQ(own, AMediaFormat_getSize(mFormat.get(), name, &value)) << name;
        EXPECT_EQ(own ? 99u : 55u, value) << name;
    }
}

TEST_F(MediaFormat, RectIsReadByItsOwnGetterOnly) {
    for (const char* name : kNames) {
        std::vector<int32_t> sides = {5, 5, 5, 5};
        const bool own = strcmp(name, "rect") == 0;
        EXPECT_EQ(own, AMediaFormat_getRect(mFormat.get(), name, &sides[0], &sides[1], &sides[2],
                                            &sides[3]))
            << name;
        EXPECT_EQ(own ? (std::vector<int32_t>{1, 2, 3, 4}) : (std::vector<int32_t>{5, 5, 5, 5}),
                  sides)
            << name;
    }
}

TEST_F(MediaFormat, StringIsReadByItsOwnGetterOnly) {
    for (const char* name : kNames) {
        const char* value = "untouched";
        const bool own = strcmp(name, "string") == 0;
        EXPECT_EQ(own, AMediaFormat_getString(mFormat.get(), name, &value)) << name;
        EXPECT_STREQ(own ? "text" : "untouched", value) << name;
    }
}

TEST_F(MediaFormat, BufferIsReadByItsOwnGetterOnly) {
    for (const char* name : kNames) {
        void* data = this;
        size_t size = 55;
        const bool own = strcmp(name, "buffer") == 0;
        EXPECT_EQ(own, AMediaFormat_getBuffer(mFormat.get(), name, &data, &size)) << name;
        EXPECT_EQ(own ? 3u : 55u, size) << name;
        EXPECT_EQ(!own, data == this) << name;
    }
}

TEST_F(MediaFormat, MissingNameLeavesOutputUntouched) {
    int32_t value = 55;
    EXPECT_FALSE(AMediaFormat_getInt32(mFormat.get(), "absent", &value));
    EXPECT_EQ(55, value);
}

TEST_F(MediaFormat, GettersOfNullFormatOrNameAnswerFalse) {
    for (auto [format, name] :
         {std::make_pair<AMediaFormat*, const char*>(nullptr, "int32"),
          std::make_pair<AMediaFormat*, const char*>(mFormat.get(), nullptr)}) {
        int32_t i32 = 5;
        int64_t i64 = 5;
        float f = 5;
        double d = 5;
        size_t size = 5;
        const char* string = "5";
        void* data = this;
        EXPECT_FALSE(AMediaFormat_getInt32(format, name, &i32));
        EXPECT_FALSE(AMediaFormat_getInt64(format, name, &i64));
        EXPECT_FALSE(AMediaFormat_getFloat(format, name, &f));
        EXPECT_FALSE(AMediaFormat_getDouble(format, name, &d));
        EXPECT_FALSE(AMediaFormat_getSize(format, name, &size));
        EXPECT_FALSE(AMediaFormat_getRect(format, name, &i32, &i32, &i32, &i32));
        EXPECT_FALSE(AMediaFormat_getString(format, name, &string));
        EXPECT_FALSE(AMediaFormat_getBuffer(format, name, &data, &size));
        EXPECT_EQ(5, i32);
        EXPECT_EQ(5, i64);
        EXPECT_EQ(5u, size);
        EXPECT_STREQ("5", string);
        EXPECT_EQ(this, data);
    }
}

TEST_F(MediaFormat, SettersIgnoreNullArguments) {
    const std::string before = AMediaFormat_toString(mFormat.get());
    for (auto [format, name] :
         {std::make_pair<AMediaFormat*, const char*>(nullptr, "int32"),
          std::make_pair<AMediaFormat*, const char*>(mFormat.get(), nullptr)}) {
        AMediaFormat_setInt32(format, name, 1);
        AMediaFormat_setInt64(format, name, 1);
        AMediaFormat_setFloat(format, name, 1);
        AMediaFormat_setDouble(format, name, 1);
        AMediaFormat_setSize(format, name, 1);
        AMediaFormat_setRect(format, name, 1, 1, 1, 1);
        AMediaFormat_setString(format, name, "1");
        AMediaFormat_setBuffer(format, name, "1", 1);
    }
    AMediaFormat_setString(mFormat.get(), "string", nullptr);
    AMediaFormat_setBuffer(mFormat.get(), "int32", nullptr, 1);
    EXPECT_EQ(before, AMediaFormat_toString(mFormat.get()));
}

TEST_F(MediaFormat, SetterReplacesTheType) {
    AMediaFormat_setInt64(mFormat.get(), "int32", 8);
    int32_t i32 = 55;
    int64_t i64 = 0;
    EXPECT_FALSE(AMediaFormat_getInt32(mFormat.get(), "int32", &i32));
    EXPECT_TRUE(AMediaFormat_getInt64(mFormat.get(), "int32", &i64));
    EXPECT_EQ(8, i64);
}

TEST_F(MediaFormat, NamesAreComparedAsText) {
    char name[] = "int32";
    int32_t value = 0;
    EXPECT_TRUE(AMediaFormat_getInt32(mFormat.get(), name, &value));
    name[0] = 'I';
    EXPECT_FALSE(AMediaFormat_getInt32(mFormat.get(), name, &value));
}

}  // namespace
