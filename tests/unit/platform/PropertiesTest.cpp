// SPDX-License-Identifier: Apache-2.0
//
// System properties. Each test has property names of its own: the store lasts as long as the
// process.

#include <cutils/properties.h>
#include <gtest/gtest.h>
#include <string.h>

#include <string>
#include <thread>
#include <vector>

namespace {

// What property_get leaves in a buffer of the documented size, and its answer.
struct Got {
    explicit Got(const char* key, const char* defaultValue) {
        memset(value, '#', sizeof(value));
        length = property_get(key, value, defaultValue);
    }

    char value[PROPERTY_VALUE_MAX];
    int length = -1;
};

const std::string kLongest(PROPERTY_VALUE_MAX - 1, 'v');

TEST(Properties, LimitsAreThePublicOnes) {
    EXPECT_EQ(32, PROPERTY_KEY_MAX);
    EXPECT_EQ(92, PROPERTY_VALUE_MAX);
}

TEST(Properties, UnsetGivesTheDefault) {
    Got got("test.unset", "fallback");
    EXPECT_STREQ("fallback", got.value);
    EXPECT_EQ(8, got.length);
}

TEST(Properties, UnsetWithNullDefaultGivesTheEmptyString) {
    Got got("test.unset", nullptr);
    EXPECT_STREQ("", got.value);
    EXPECT_EQ(0, got.length);
}

TEST(Properties, NullKeyGivesTheDefault) {
    Got got(nullptr, "fallback");
    EXPECT_STREQ("fallback", got.value);
}

TEST(Properties, SetValueIsPreferredToTheDefault) {
    EXPECT_EQ(0, property_set("test.set", "1"));
    Got got("test.set", "0");
    EXPECT_STREQ("1", got.value);
    EXPECT_EQ(1, got.length);
}

TEST(Properties, SetReplacesTheValue) {
    property_set("test.replaced", "long value");
    property_set("test.replaced", "v");
    Got got("test.replaced", nullptr);
    EXPECT_STREQ("v", got.value);
    EXPECT_EQ(1, got.length);
}

TEST(Properties, EmptyValueGivesTheDefault) {
    property_set("test.emptied", "1");
    EXPECT_EQ(0, property_set("test.emptied", ""));
    EXPECT_STREQ("0", Got("test.emptied", "0").value);
}

TEST(Properties, NullValueClears) {
    property_set("test.cleared", "1");
    EXPECT_EQ(0, property_set("test.cleared", nullptr));
    EXPECT_STREQ("0", Got("test.cleared", "0").value);
    EXPECT_STREQ("", Got("test.cleared", nullptr).value);
}

TEST(Properties, LongestValueIsKeptWhole) {
    EXPECT_EQ(0, property_set("test.longest", kLongest.c_str()));
    Got got("test.longest", "0");
    EXPECT_EQ(kLongest, got.value);
    EXPECT_EQ(91, got.length);
}

TEST(Properties, TooLongAValueIsRefusedAndChangesNothing) {
    property_set("test.refused", "before");
    EXPECT_GT(0, property_set("test.refused", (kLongest + "v").c_str()));
    EXPECT_STREQ("before", Got("test.refused", nullptr).value);
}

TEST(Properties, LongDefaultIsCut) {
    Got got("test.unset", (kLongest + "tail").c_str());
    EXPECT_EQ(kLongest, got.value);
    EXPECT_EQ(91, got.length);
}

TEST(Properties, KeysMayBeLong) {
    const std::string first = "vendor." + std::string(100, 'k') + ".first";
    const std::string second = "vendor." + std::string(100, 'k') + ".second";
    EXPECT_EQ(0, property_set(first.c_str(), "1"));
    EXPECT_STREQ("1", Got(first.c_str(), "0").value);
    EXPECT_STREQ("0", Got(second.c_str(), "0").value);
}

TEST(Properties, SetWithoutAKeyIsRefused) {
    EXPECT_GT(0, property_set(nullptr, "1"));
    EXPECT_GT(0, property_set("", "1"));
}

TEST(Properties, ThreadsSeeWholeValues) {
    const std::string ones(60, '1');
    const std::string twos(90, '2');
    property_set("test.shared", ones.c_str());
    std::vector<std::thread> writers;
    for (const std::string& value : {ones, twos}) {
        writers.emplace_back([value] {
            for (int i = 0; i < 2000; ++i)
                property_set("test.shared", value.c_str());
        });
    }
    for (int i = 0; i < 2000; ++i) {
        const std::string value = Got("test.shared", "0").value;
        EXPECT_TRUE(value == ones || value == twos) << value;
    }
    for (std::thread& writer : writers)
        writer.join();
}

}  // namespace
