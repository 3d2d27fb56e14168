// SPDX-License-Identifier: Apache-2.0

#include "tests/support/Properties.h"

#include <cutils/properties.h>
#include <gtest/gtest.h>

namespace avitest {
namespace {

std::string valueOf(const char* name) {
    char value[PROPERTY_VALUE_MAX] = {};
    property_get(name, value, "unset");
    return value;
}

TEST(ScopedProperty, ValueHoldsForTheLifeOfTheObject) {
    {
        const ScopedProperty property(kExtractLogProperty, "1");
        EXPECT_EQ("1", valueOf(kExtractLogProperty));
        EXPECT_EQ("unset", valueOf(kVerboseLogProperty));
    }
    EXPECT_EQ("unset", valueOf(kExtractLogProperty));
}

TEST(ScopedProperty, FormerValueComesBack) {
    const ScopedProperty outer(kDisableAudioProperty, "1");
    {
        const ScopedProperty inner(kDisableAudioProperty, "0");
        EXPECT_EQ("0", valueOf(kDisableAudioProperty));
    }
    EXPECT_EQ("1", valueOf(kDisableAudioProperty));
}

}  // namespace
}  // namespace avitest
