// SPDX-License-Identifier: Apache-2.0
//
// Files that end early, at every byte: what is left of them plays, or they are refused.

#include "service/MemorySource.h"
#include "tests/behaviour/robustness/Endurance.h"
#include "tests/support/LogCapture.h"

namespace avitest {
namespace {

using android::service::MemorySource;

class Truncation : public QuietTest, public ::testing::WithParamInterface<SmallFile> {};

TEST_P(Truncation, AtEveryByteComesToAnEnd) {
    const Bytes& file = GetParam().bytes;
    for (size_t length = 0; length <= file.size(); ++length) {
        // A copy of exactly this length: a look behind it is a fault that sanitizers see.
        const Bytes cut(file.begin(), file.begin() + static_cast<ptrdiff_t>(length));
        ASSERT_TRUE(endures(cut)) << "cut to " << length << " bytes";
    }
}

TEST_P(Truncation, AtEveryByteLeavesWholeSamplesOrNone) {
    const SmallFile file = withSamples(GetParam());
    for (size_t length = 0; length <= file.bytes.size(); ++length) {
        MemorySource source(file.bytes.data(), length);
        ASSERT_TRUE(isShorter(play(source, length), file)) << "cut to " << length << " bytes";
    }
}

TEST_P(Truncation, NowhereGivesEverySample) {
    const SmallFile& file = GetParam();
    MemorySource source(file.bytes.data(), file.bytes.size());
    const std::vector<ReadRun> runs = play(source, file.bytes.size());
    ASSERT_EQ(2u, runs.size());
    for (const ReadRun& run : runs) {
        EXPECT_EQ(4u, run.samples.size());
        EXPECT_EQ(AMEDIA_ERROR_END_OF_STREAM, run.status);
    }
}

TEST_P(Truncation, AtEveryByteWithAllLogsOnComesToAnEnd) {
    const ScopedProperty extractLog(kExtractLogProperty, "1");
    const ScopedProperty verboseLog(kVerboseLogProperty, "1");
    const Bytes& file = GetParam().bytes;
    for (size_t length = 0; length <= file.size(); ++length) {
        const LogCapture log;
        const Bytes cut(file.begin(), file.begin() + static_cast<ptrdiff_t>(length));
        ASSERT_TRUE(endures(cut)) << "cut to " << length << " bytes";
    }
}

INSTANTIATE_TEST_SUITE_P(Kinds, Truncation, ::testing::ValuesIn(smallFiles()), kindName);

}  // namespace
}  // namespace avitest
