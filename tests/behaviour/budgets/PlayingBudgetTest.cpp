// SPDX-License-Identifier: Apache-2.0
//
// What reading a hostile file and seeking in it costs is in proportion to what is handed out and to
// the tables.

#include <string>

#include "fuzz/Budgets.h"
#include "tests/behaviour/budgets/BudgetSizes.h"
#include "tests/behaviour/budgets/Costs.h"

namespace avitest {
namespace {

class PlayingBudget : public SizedHostileFile {
  protected:
    static void expectAtMost(uint64_t bytes, uint64_t reads, const PlayingCost& cost) {
        RecordProperty("bytes", std::to_string(cost.sourceBytes));
        RecordProperty("mostBytes", std::to_string(bytes));
        RecordProperty("reads", std::to_string(cost.sourceReads));
        RecordProperty("mostReads", std::to_string(reads));
        EXPECT_GE(bytes, cost.sourceBytes);
        EXPECT_GE(reads, cost.sourceReads);
    }
};

TEST_P(PlayingBudget, HoldsForReadingThrough) {
    const PlayingCost cost = costOfReading(file());
    const uint64_t last = cost.tracks * cost.largestBytes;
    expectAtMost(avifuzz::maxBytesReading(cost.sampleBytes, cost.entries, last),
                 avifuzz::maxReadsReading(cost.reads, cost.entries), cost);
}

TEST_P(PlayingBudget, HoldsForSeeking) {
    const PlayingCost cost = costOfSeeking(file());
    expectAtMost(avifuzz::maxBytesSeeking(cost.reads, cost.largestBytes, cost.entries),
                 avifuzz::maxReadsSeeking(cost.reads, cost.entries), cost);
}

INSTANTIATE_TEST_SUITE_P(Files, PlayingBudget, smallSizes(), SizedHostileFile::nameOf);

}  // namespace
}  // namespace avitest
