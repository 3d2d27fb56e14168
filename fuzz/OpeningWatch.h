// SPDX-License-Identifier: Apache-2.0
//
// Measures what opening a file costs, and compares it with fuzz/Budgets.h. One thread.
#pragma once

#include <cstdint>

#include "service/DataSource.h"
#include "tests/behaviour/robustness/AllocationWatch.h"

namespace avifuzz {

// Counts what is asked of another source, which must outlive it.
class MeasuredSource : public android::service::DataSource {
  public:
    explicit MeasuredSource(android::service::DataSource& source) : mSource(source) {}

    uint64_t calls() const { return mReads + mSizeCalls; }
    /** Those that ask for bytes. */
    uint64_t reads() const { return mReads; }
    /** Bytes that were delivered. */
    uint64_t bytes() const { return mBytes; }

    ssize_t readAt(off64_t offset, void* data, size_t size) override;
    android::status_t getSize(off64_t* size) override;

  private:
    android::service::DataSource& mSource;
    uint64_t mReads = 0;
    uint64_t mSizeCalls = 0;
    uint64_t mBytes = 0;
};

class OpeningWatch {
  public:
    /** Measures from now on; `source` must outlive the watch. */
    explicit OpeningWatch(const MeasuredSource& source);

    /**
     * Ends the process when more was used than opening a file of `fileSize` bytes may cost. Log
     * lines count where the switches of the log are off. AVI_FUZZ_BUDGETS=0 in the environment
     * turns this off.
     */
    void check(uint64_t fileSize, bool logIsOff) const;

  private:
    const MeasuredSource& mSource;
    uint64_t mCallsBefore;
    uint64_t mBytesBefore;
    uint64_t mLinesBefore;
    avitest::AllocationWatch mMemory;
};

}  // namespace avifuzz
