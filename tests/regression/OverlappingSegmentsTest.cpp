// SPDX-License-Identifier: Apache-2.0
//
// The movi list, or the index, of a further segment may claim all that follows, further segments
// included. Each of them read the rest of the file again: half of a file of 1 MB ten times.

#include <algorithm>

#include "tests/behaviour/budgets/HostileFiles.h"
#include "tests/support/LoggedFixture.h"

namespace avitest {
namespace {

constexpr size_t kFileSize = 1 << 20;

// The further segments four times, the walk that lists them and the scan of the first one.
constexpr uint64_t kMostTimesRead = 6;

class OverlappingSegments : public LoggedFixture {
  protected:
    void expectFewBytes(const std::string& name) {
        const std::vector<HostileFile> all = hostileSegments();
        const auto found = std::find_if(
            all.begin(), all.end(), [&name](const HostileFile& file) { return file.name == name; });
        ASSERT_NE(all.end(), found);
        android::service::FaultySource& source = openCounted(found->make(kFileSize));
        EXPECT_EQ(1u, countTracks());
        EXPECT_GT(kMostTimesRead * kFileSize, source.byteCount());
        EXPECT_LT(3 * kFileSize, source.byteCount());  // they do overlap
    }
};

TEST_F(OverlappingSegments, AreScannedAFewTimes) {
    expectFewBytes("ScannedRiffs");
}

TEST_F(OverlappingSegments, HaveTheirIndexesReadAFewTimes) {
    expectFewBytes("IndexedRiffs");
}

}  // namespace
}  // namespace avitest
