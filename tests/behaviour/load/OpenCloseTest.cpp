// SPDX-License-Identifier: Apache-2.0
//
// Extractors that are opened and closed again and again leave nothing behind.

#include <unistd.h>

#include <fstream>

#include "service/MemorySource.h"
#include "tests/behaviour/faults/Outcomes.h"
#include "tests/behaviour/robustness/AllocationWatch.h"
#include "tests/behaviour/robustness/Endurance.h"
#include "tests/support/AviBuilder.h"

namespace avitest {
namespace {

using android::service::Extractor;
using android::service::MemorySource;

#ifdef AVI_SLOW_PROGRAM
constexpr bool kIsSlow = true;
#else
constexpr bool kIsSlow = false;
#endif
constexpr int kOpens = kIsSlow ? 10'000 : 100'000;
constexpr int kWarmUp = 1000;
constexpr int64_t kGrowthOfThePages = 1024 * 1024;

// Bytes of the process that are in memory.
int64_t residentBytes() {
    int64_t size = 0;
    int64_t resident = 0;
    std::ifstream("/proc/self/statm") >> size >> resident;
    EXPECT_LT(0, resident);
    return resident * sysconf(_SC_PAGESIZE);
}

class OpenClose : public QuietTest {
  protected:
    OpenClose() {
        AviFile avi;
        const size_t video = avi.addStream(mjpegStream());
        avi.addChunk(video, patternBytes(40));
        mFile = avi.build();
    }
    // Opens, asks, reads a sample and closes.
    void playOften(int times) {
        MemorySource source(mFile.data(), mFile.size());
        for (int i = 0; i < times; ++i) {
            const auto extractor = Extractor::open(pluginUnderTest(), source);
            ASSERT_EQ(1u, extractor->countTracks());
            ASSERT_EQ(AMEDIA_OK, extractor->trackMetaData(0).status);
            ASSERT_EQ(1u, readTrack(*extractor->track(0), {}, 1).samples.size());
        }
    }

  private:
    Bytes mFile;
};

TEST_F(OpenClose, ManyTimesHoldsNoMemory) {
    playOften(kWarmUp);
    const AllocationWatch watch;
    const int64_t before = residentBytes();
    playOften(kOpens);
    EXPECT_EQ(0, watch.held());
    // The allocator of a sanitizer keeps what was freed for a while.
    if (!kIsSlow) {
        EXPECT_GT(kGrowthOfThePages, residentBytes() - before);
    }
}

}  // namespace
}  // namespace avitest
