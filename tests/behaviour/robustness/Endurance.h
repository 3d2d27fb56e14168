// SPDX-License-Identifier: Apache-2.0
//
// Drives the plug-in through a whole file as a player does, and watches that it comes to an end:
//
//     EXPECT_TRUE(endures(file));
//
// What a file of so many bytes may cost is counted in reads of the source and of the tracks, not in
// time, so that the same limits hold under a sanitizer and an emulator. One thread.

#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "service/DataSource.h"
#include "tests/behaviour/robustness/SmallFiles.h"
#include "tests/support/ExtractorFixture.h"

namespace avitest {

// A source that counts, and that gives nothing but errors once `budget` reads are used up, so that
// a loop over the file fails a test instead of going on.
class WatchedSource : public android::service::DataSource {
  public:
    WatchedSource(android::service::DataSource& source, uint64_t budget)
        : mSource(source), mBudget(budget) {}

    ssize_t readAt(off64_t offset, void* data, size_t size) override;
    android::status_t getSize(off64_t* size) override { return mSource.getSize(size); }

    uint64_t reads() const { return mReads; }
    bool exhausted() const { return mReads > mBudget; }

  private:
    android::service::DataSource& mSource;
    uint64_t mBudget;
    uint64_t mReads = 0;
};

// The most samples that a table over `bytes` bytes can have: each has a header of 8 bytes.
size_t mostSamples(size_t bytes);
// The most reads of the source that opening and reading a file of `bytes` bytes may take.
uint64_t mostReads(size_t bytes);

// Whether reads of a track reach END_OF_STREAM, through errors if there are any, within
// `samples` + 1 calls. A track that does not start has nothing to read.
::testing::AssertionResult readsEnd(android::service::Track& track, size_t samples);

// Whether opening a source of `bytes` bytes, asking everything about it and reading all its tracks
// comes to an end within the limits above. A file that is refused does.
::testing::AssertionResult endures(android::service::DataSource& source, size_t bytes);
::testing::AssertionResult endures(const Bytes& file);

// What players get from a damaged file: all that the tracks give until their first error or end. No
// tracks when the file is refused.
std::vector<ReadRun> play(android::service::DataSource& source, size_t bytes);

// The file with its samples filled in: where reading converts the chunks, those that players get
// from the undamaged file.
SmallFile withSamples(SmallFile file);

// Whether each track's samples are the first ones of one of the file's streams, whole, in order.
::testing::AssertionResult isShorter(const std::vector<ReadRun>& runs, const SmallFile& file);

// Names the tests of a suite over smallFiles().
std::string kindName(const ::testing::TestParamInfo<SmallFile>& info);

// Keeps the plug-in's log lines away from the test's output: damaged files make thousands.
class QuietTest : public ::testing::Test {
  protected:
    QuietTest();
    ~QuietTest() override;

  private:
    int mFormerPriority;
};

}  // namespace avitest
