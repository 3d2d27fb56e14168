// SPDX-License-Identifier: Apache-2.0
//
// A hostile file four times as large takes about four times as long. Processor time is compared,
// the least of several runs: what is done a read, a call or a line is counted by the other tests,
// and what is left are loops over memory, which nothing else shows.

#include <algorithm>
#include <limits>
#include <string>

#include "tests/behaviour/budgets/BudgetSizes.h"
#include "tests/behaviour/budgets/Costs.h"

namespace avitest {
namespace {

constexpr double kMostTimesAsLong = 5;
constexpr int kMostRuns = 60;  // on a machine that has other work to do
// Shorter times say more about the machine than about the file.
constexpr double kLeastSeconds = 0.004;

class GrowthBudget : public ::testing::TestWithParam<HostileFile> {};

TEST_P(GrowthBudget, FourTimesTheSizeTakesFourTimesAsLong) {
    const Bytes small = GetParam().make(kMegabyte);
    const Bytes large = GetParam().make(4 * kMegabyte);
    double least = std::numeric_limits<double>::max();
    double leastOfLarge = least;
    double ratio = least;
    for (int run = 0; run < kMostRuns && ratio >= kMostTimesAsLong; ++run) {
        least = std::min(least, secondsToPlay(small));
        leastOfLarge = std::min(leastOfLarge, secondsToPlay(large));
        ratio = leastOfLarge / std::max(least, kLeastSeconds);
    }
    RecordProperty("seconds", std::to_string(leastOfLarge));
    RecordProperty("ratio", std::to_string(ratio));
    EXPECT_GT(kMostTimesAsLong, ratio) << least << " and " << leastOfLarge << " seconds";
}

std::string nameOf(const ::testing::TestParamInfo<HostileFile>& info) {
    return info.param.name;
}

INSTANTIATE_TEST_SUITE_P(Files, GrowthBudget, ::testing::ValuesIn(hostileFiles()), nameOf);

}  // namespace
}  // namespace avitest
