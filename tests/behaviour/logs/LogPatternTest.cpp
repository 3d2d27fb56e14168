// SPDX-License-Identifier: Apache-2.0

#include <gtest/gtest.h>

#include "tests/behaviour/logs/LogPattern.h"

#include <gtest/gtest.h>

namespace avitest {
namespace {

struct PatternCase {
    const char* pattern;
    const char* line;
    bool matches;
};

TEST(LogPattern, MatchesWholeLines) {
    const PatternCase cases[] = {
        {"", "", true},
        {"", "a", false},
        {"a", "", false},
        {"Sniff +", "Sniff +", true},
        {"Sniff +", "Sniff ++", false},
        {"Sniff +", "sniff +", false},
        {"size # at #", "size 12 at -3", true},
        {"size #", "size ", false},
        {"size #", "size x", false},
        {"size #", "size -", false},
        {"*", "", true},
        {"a*", "a", true},
        {"*b", "aab", true},
        {"*b", "aba", false},
        {"a*c*e", "abcde", true},
        {"a*c*e", "abde", false},
        {"*@L#", "end of stream @L40", true},
        {"two\nlines*", "two\nlines\n", true},
    };
    for (const PatternCase& item : cases) {
        SCOPED_TRACE(item.pattern);
        EXPECT_EQ(item.matches, matchesPattern(item.pattern, item.line)) << item.line;
    }
}

TEST(LogPattern, ShapeIsThatOfTheConversions) {
    const PatternCase cases[] = {
        {"size %u", "size 7", true},
        {"size %lld", "size -7", true},
        {"size %zu.", "size 7", false},
        {"at %llX", "at 1A", true},
        {"at %llX", "at 1a", false},
        {"at 0x%08x", "at 0x0000001a", true},
        {"at 0x%08x", "at 0x0000001A", false},
        {"fps %f", "fps 29.970030", true},
        {"fps %f", "fps 29", false},
        {"fps %f", "fps .5", false},
        {"id %c%c", "id ab", true},
        {"id %c%c", "id a", false},
        {"%s(%.*s)", "name(text)", true},
        {"%02X %02X", "0A FF", true},
        {"%-22s%d", "Name:     7", true},
    };
    for (const PatternCase& item : cases) {
        SCOPED_TRACE(item.pattern);
        EXPECT_EQ(item.matches, matchesPattern(shapeOf(item.pattern, item.line), item.line))
            << item.line;
    }
}

TEST(LogPattern, ShapeHasTheFunctionOfTheExample) {
    const std::string shape = shapeOf("%s(): pos %X", "parseHDRL(): pos 1");
    EXPECT_TRUE(matchesPattern(shape, "parseHDRL(): pos 2F"));
    EXPECT_FALSE(matchesPattern(shape, "parseSTRL(): pos 2F"));
}

}  // namespace
}  // namespace avitest
