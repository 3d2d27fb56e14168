// SPDX-License-Identifier: Apache-2.0
//
// Tests of every hostile file in several sizes.

#pragma once

#include <gtest/gtest.h>

#include <string>
#include <tuple>
#include <vector>

#include "tests/behaviour/budgets/HostileFiles.h"
#include "tests/support/SlowBuild.h"

namespace avitest {

constexpr size_t kQuarterMegabyte = 1 << 18;
constexpr size_t kMegabyte = 1 << 20;

class SizedHostileFile : public ::testing::TestWithParam<std::tuple<HostileFile, size_t>> {
  public:
    static std::string nameOf(const ::testing::TestParamInfo<ParamType>& info) {
        return std::get<0>(info.param).name + std::to_string(std::get<1>(info.param) >> 10) + "K";
    }

  protected:
    static Bytes file() {
        const auto& [hostile, size] = GetParam();
        return hostile.make(size);
    }
};

inline auto smallSizes() {
    return ::testing::Combine(::testing::ValuesIn(hostileFiles()),
                              ::testing::Values(kQuarterMegabyte, kMegabyte));
}

// Where it takes ten times as long the largest ones are left out.
inline auto everySize() {
    std::vector<size_t> sizes = {kQuarterMegabyte, kMegabyte, 4 * kMegabyte};
    if (!kSlowBuild) sizes.push_back(10 * kMegabyte);
    return ::testing::Combine(::testing::ValuesIn(hostileFiles()), ::testing::ValuesIn(sizes));
}

}  // namespace avitest
