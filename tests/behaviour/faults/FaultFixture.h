// SPDX-License-Identifier: Apache-2.0
//
// What the tests of this folder share: a file of some form behind a source that has one fault.
// One thread.

#pragma once

#include <cerrno>
#include <memory>
#include <vector>

#include "tests/behaviour/faults/FormFiles.h"
#include "tests/behaviour/faults/Outcomes.h"
#include "tests/behaviour/reading/ReadingFixture.h"
#include "tests/behaviour/robustness/Endurance.h"

namespace avitest {

using android::service::Extractor;

// Bits of a byte that garbage inverts: a few, half of them, all. None turns the configuration of
// raw AAC into one that is asserted against, which has tests of its own (AacBadIndexDeathTest).
constexpr uint8_t kMasks[] = {0x21, 0x5A, 0xFF};

// Reads that do not give all their bytes.
inline std::vector<Fault> missingBytes() {
    return {Fault::error(-EIO), Fault::shortBy(1)};
}

// Reads that give other bytes.
inline std::vector<Fault> wrongBytes() {
    std::vector<Fault> faults;
    for (const uint8_t mask : kMasks)
        faults.push_back(Fault::garbled(mask));
    return faults;
}

inline std::vector<Fault> allFaults() {
    std::vector<Fault> faults = missingBytes();
    for (const Fault& fault : wrongBytes())
        faults.push_back(fault);
    return faults;
}

class FormTest : public QuietTest, public ::testing::WithParamInterface<FormFile> {
  protected:
    FormTest() : mMemory(GetParam().bytes.data(), GetParam().bytes.size()) {}

    // The file opened through source(), which then counts from 0.
    std::unique_ptr<Extractor> open() {
        mSource.clearFaults();
        std::unique_ptr<Extractor> extractor = Extractor::open(pluginUnderTest(), mSource);
        EXPECT_LT(0u, extractor->countTracks());
        mSource.reset();
        return extractor;
    }
    // From now on `fault` strikes at the call-th read.
    void strike(const Fault& fault, uint64_t call) {
        mSource.clearFaults();
        mSource.reset();
        mSource.inject(fault.onCall(call));
    }

    FaultySource& source() { return mSource; }

  private:
    MemorySource mMemory;
    FaultySource mSource{mMemory};
};

}  // namespace avitest
