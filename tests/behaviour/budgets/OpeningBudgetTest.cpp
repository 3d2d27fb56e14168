// SPDX-License-Identifier: Apache-2.0
//
// What opening a hostile file costs is in proportion to its size. What was measured stands in the
// XML output of the program.

#include "fuzz/Budgets.h"
#include "tests/behaviour/budgets/BudgetSizes.h"
#include "tests/behaviour/budgets/Costs.h"

namespace avitest {
namespace {

class OpeningBudget : public SizedHostileFile {};

TEST_P(OpeningBudget, HoldsForBytesCallsLinesAndMemory) {
    const Bytes bytes = file();
    const OpeningCost cost = costOfOpening(bytes);
    RecordProperty("fileBytes", std::to_string(bytes.size()));
    RecordProperty("bytes", std::to_string(cost.bytes));
    RecordProperty("calls", std::to_string(cost.calls));
    RecordProperty("lines", std::to_string(cost.lines));
    RecordProperty("memory", std::to_string(cost.memory));
    EXPECT_LT(0u, cost.tracks);  // what is refused is not looked at
    EXPECT_GE(avifuzz::maxBytesRead(bytes.size()), cost.bytes);
    EXPECT_GE(avifuzz::maxSourceCalls(bytes.size()), cost.calls);
    EXPECT_GE(avifuzz::maxLogLines(bytes.size()), cost.lines);
    EXPECT_GE(avifuzz::maxMemory(bytes.size()), cost.memory);
}

INSTANTIATE_TEST_SUITE_P(Files, OpeningBudget, everySize(), SizedHostileFile::nameOf);

}  // namespace
}  // namespace avitest
