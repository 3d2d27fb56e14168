// SPDX-License-Identifier: Apache-2.0

#include "tests/support/Properties.h"

#include <array>

#include <cutils/properties.h>
#include <gtest/gtest.h>

namespace avitest {

ScopedProperty::ScopedProperty(const std::string& name, const std::string& value) : mName(name) {
    std::array<char, PROPERTY_VALUE_MAX> former{};
    property_get(name.c_str(), former.data(), "");
    mFormerValue = former.data();
    EXPECT_EQ(0, property_set(name.c_str(), value.c_str())) << name;
}

ScopedProperty::~ScopedProperty() {
    EXPECT_EQ(0, property_set(mName.c_str(), mFormerValue.c_str())) << mName;
}

}  // namespace avitest
