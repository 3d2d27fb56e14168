// SPDX-License-Identifier: Apache-2.0
//
// That the instruments of this folder see what they are there to see.

#include <memory>
#include <set>

#include "service/MediaFormat.h"
#include "service/MemorySource.h"
#include "tests/behaviour/robustness/AllocationWatch.h"
#include "tests/behaviour/robustness/Endurance.h"
#include "tests/behaviour/robustness/HeaderFields.h"

namespace avitest {
namespace {

constexpr size_t kWatchedBytes = 1024 * 1024;

// Takes memory and gives it back; the write keeps the compiler from leaving both out.
void takeForAMoment(size_t bytes) {
    Bytes memory(bytes);
    volatile uint8_t* first = memory.data();
    *first = 1;
}

TEST(AllocationWatch, CountsMemoryOfSharedLibraries) {
    const Bytes data(kWatchedBytes, 1);
    const android::service::MediaFormat format;
    const AllocationWatch watch;
    AMediaFormat_setBuffer(format.get(), "data", data.data(), data.size());  // which copies
    EXPECT_LE(kWatchedBytes, watch.largest());
    EXPECT_LE(kWatchedBytes, watch.peak());
}

TEST(AllocationWatch, CountsWhatIsHeldAtOneTime) {
    const AllocationWatch watch;
    for (int i = 0; i < 8; ++i)
        takeForAMoment(kWatchedBytes / 4);
    EXPECT_GT(kWatchedBytes, watch.peak());
    EXPECT_LE(kWatchedBytes / 4, watch.peak());
}

TEST(AllocationWatch, ForgetsWhatCameBefore) {
    takeForAMoment(kWatchedBytes);
    const AllocationWatch watch;
    EXPECT_GT(kWatchedBytes, watch.largest());
    EXPECT_GT(kWatchedBytes, watch.peak());
}

TEST(WatchedSource, GivesErrorsWhenTheBudgetIsUsedUp) {
    const Bytes data(4);
    android::service::MemorySource memory(data.data(), data.size());
    WatchedSource source(memory, 2);
    Bytes out(4);
    EXPECT_EQ(4, source.readAt(0, out.data(), out.size()));
    EXPECT_EQ(4, source.readAt(0, out.data(), out.size()));
    EXPECT_FALSE(source.exhausted());
    EXPECT_GT(0, source.readAt(0, out.data(), out.size()));
    EXPECT_TRUE(source.exhausted());
}

TEST(SmallFiles, PlayersSeeTheirSamples) {
    for (const SmallFile& file : smallFiles()) {
        SCOPED_TRACE(file.name);
        android::service::MemorySource source(file.bytes.data(), file.bytes.size());
        if (!file.samples.empty()) {
            EXPECT_TRUE(isShorter(play(source, file.bytes.size()), file));
        }
        EXPECT_EQ(2u, play(source, file.bytes.size()).size());
    }
}

TEST(SmallFiles, OtherSamplesAreNotTheirs) {
    SmallFile file = plainFile();
    android::service::MemorySource source(file.bytes.data(), file.bytes.size());
    const std::vector<ReadRun> runs = play(source, file.bytes.size());
    file.samples[0][1][0] ^= 1;
    EXPECT_FALSE(isShorter(runs, file));
}

TEST(HeaderFields, HaveAllKindsOfHeaders) {
    std::set<std::string> names;
    for (const HeaderField& field : headerFields(plainFile().bytes))
        names.insert(field.name);
    for (const char* name : {"RIFF[0] size", "LIST[0] type", "avih[0] + 52", "strh[1] + 54",
                             "strf[0] + 36", "strf[1] + 14", "strn[0] size", "vprp[0] + 64",
                             "00dc[3] size", "01wb[3] id", "idx1[0] size", "idx1[0] + 124"})
        EXPECT_EQ(1u, names.count(name)) << name;
}

}  // namespace
}  // namespace avitest
