// SPDX-License-Identifier: Apache-2.0

#define LOG_TAG "ADebugTest"

#include <media/stagefright/foundation/ADebug.h>

#include <cstdint>

#include "tests/unit/platform/AbortTest.h"

namespace android {
namespace {

class ADebugDeathTest : public testing::Test {};

TEST(ADebug, HoldingChecksDoNothing) {
    CHECK(true);
    CHECK_EQ(1, 1);
    CHECK_NE(1, 2);
    CHECK_LE(2, 2);
    CHECK_LT(1, 2);
    CHECK_GE(2, 2);
    CHECK_GT(2, 1);
}

TEST(ADebug, OperandsAreEvaluatedOnce) {
    int calls = 0;
    CHECK_EQ(++calls, 1);
    CHECK(++calls == 2);
    EXPECT_EQ(calls, 2);
}

TEST(ADebug, ChecksAreSingleStatements) {
    bool reached = false;
    if (reached)
        CHECK(false);
    else
        reached = true;
    EXPECT_TRUE(reached);
}

TEST_F(ADebugDeathTest, CheckPrintsPlaceAndCondition) {
    const int x = 1;
    EXPECT_ABORT(CHECK(x + 4 <= 2), "ADebugTest\\.cpp:[0-9]+ CHECK\\(x \\+ 4 <= 2\\) failed\\.");
}

TEST_F(ADebugDeathTest, CheckPrintsPercentSignsAsTheyAre) {
    const int x = 1;
    EXPECT_ABORT(CHECK(x % 10 == 2), "CHECK\\(x % 10 == 2\\) failed\\.");
}

TEST_F(ADebugDeathTest, CheckEqPrintsBothOperandsAndValues) {
    const int x = 1;
    const int y = 2;
    EXPECT_ABORT(CHECK_EQ(x, y), "ADebugTest\\.cpp:[0-9]+ CHECK_EQ\\( x,y\\) failed: 1 vs\\. 2");
}

TEST_F(ADebugDeathTest, CheckNeAbortsOnEquals) {
    EXPECT_ABORT(CHECK_NE(3, 3), "CHECK_NE\\( 3,3\\) failed: 3 vs\\. 3");
}

TEST_F(ADebugDeathTest, CheckLeAbortsAbove) {
    EXPECT_ABORT(CHECK_LE(4, 3), "CHECK_LE\\( 4,3\\) failed: 4 vs\\. 3");
}

TEST_F(ADebugDeathTest, CheckLtAbortsOnEquals) {
    EXPECT_ABORT(CHECK_LT(3, 3), "CHECK_LT\\( 3,3\\) failed: 3 vs\\. 3");
}

TEST_F(ADebugDeathTest, CheckGeAbortsBelow) {
    EXPECT_ABORT(CHECK_GE(2, 3), "CHECK_GE\\( 2,3\\) failed: 2 vs\\. 3");
}

TEST_F(ADebugDeathTest, CheckGtAbortsOnEquals) {
    EXPECT_ABORT(CHECK_GT(3, 3), "CHECK_GT\\( 3,3\\) failed: 3 vs\\. 3");
}

TEST_F(ADebugDeathTest, SixtyFourBitValuesArePrintedInFull) {
    const int64_t x = -5000000000;
    const uint64_t y = UINT64_MAX;
    EXPECT_ABORT(CHECK_EQ(x, int64_t{0}), "failed: -5000000000 vs\\. 0");
    EXPECT_ABORT(CHECK_EQ(y, 0u), "failed: 18446744073709551615 vs\\. 0");
}

TEST_F(ADebugDeathTest, MessageBearsTheFilesTag) {
    EXPECT_ABORT(CHECK(false), "ADebugTest.*ADebugTest\\.cpp:[0-9]+ CHECK\\(false\\) failed\\.");
}

TEST_F(ADebugDeathTest, TrespassPrintsPlace) {
    EXPECT_ABORT(TRESPASS(), "ADebugTest\\.cpp:[0-9]+ Should not be here\\.");
}

}  // namespace
}  // namespace android
