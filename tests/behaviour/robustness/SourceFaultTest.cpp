// SPDX-License-Identifier: Apache-2.0
//
// Sources that fail or read short, at every call in turn, while a file is opened and while it is
// read: a smaller file or an error, never a wrong sample.

#include <algorithm>
#include <cerrno>

#include "service/FaultySource.h"
#include "service/MemorySource.h"
#include "tests/behaviour/robustness/Endurance.h"

namespace avitest {
namespace {

using android::service::Fault;
using android::service::FaultySource;
using android::service::MemorySource;

struct NamedFault {
    std::string name;
    Fault fault;
};

std::vector<NamedFault> faults() {
    return {
        {"an I/O error", Fault::error(-EIO)}, {"error -1", Fault::error(-1)},
        {"no bytes", Fault::shortRead(0)},    {"one byte", Fault::shortRead(1)},
        {"eight bytes", Fault::shortRead(8)}, {"eleven bytes", Fault::shortRead(11)},
    };
}

class SourceFault : public QuietTest, public ::testing::WithParamInterface<SmallFile> {
  protected:
    // How many reads opening and reading the whole file takes.
    uint64_t callsWhenSound() {
        FaultySource source(mMemory);
        EXPECT_TRUE(endures(source, size()));
        return source.callCount();
    }

    // Runs `check` on a source with each fault at each call: only there, or from there on.
    template <typename Check>
    void injectEverywhere(Check check) {
        const uint64_t calls = callsWhenSound();
        ASSERT_LT(20u, calls);
        for (const NamedFault& named : faults()) {
            for (uint64_t call = 0; call < calls; ++call) {
                for (const Fault& fault : {named.fault.onCall(call), named.fault.fromCall(call)}) {
                    FaultySource source(mMemory);
                    source.inject(fault);
                    const bool once = fault.firstCall == fault.lastCall;
                    ASSERT_TRUE(check(source)) << named.name << (once ? " at call " : " from call ")
                                               << call << " of " << calls;
                }
            }
        }
    }

    size_t size() const { return GetParam().bytes.size(); }

  private:
    MemorySource mMemory{GetParam().bytes.data(), GetParam().bytes.size()};
};

TEST_P(SourceFault, AtEveryCallComesToAnEnd) {
    injectEverywhere([this](FaultySource& source) { return endures(source, size()); });
}

class SourceFaultSamples : public SourceFault {};

TEST_P(SourceFaultSamples, AreWholeOrNoneAfterAFaultAtAnyCall) {
    const SmallFile file = withSamples(GetParam());
    injectEverywhere([&](FaultySource& source) { return isShorter(play(source, size()), file); });
}

TEST_P(SourceFault, AlwaysShortReadsComeToAnEnd) {
    for (size_t most = 0; most <= 64; ++most) {
        MemorySource memory(GetParam().bytes.data(), size());
        FaultySource source(memory);
        source.inject(Fault::shortRead(most));
        ASSERT_TRUE(endures(source, size())) << "at most " << most << " bytes a read";
    }
}

// Without its configuration record, which may be what cannot be read, length-prefixed AVC goes out
// as it is: its samples may differ.
std::vector<SmallFile> filesOfOneForm() {
    std::vector<SmallFile> files = smallFiles();
    files.erase(std::remove_if(files.begin(), files.end(),
                               [](const SmallFile& file) { return file.name == "AvcAndAdpcm"; }),
                files.end());
    return files;
}

INSTANTIATE_TEST_SUITE_P(Kinds, SourceFaultSamples, ::testing::ValuesIn(filesOfOneForm()),
                         kindName);
INSTANTIATE_TEST_SUITE_P(Kinds, SourceFault, ::testing::ValuesIn(smallFiles()), kindName);

}  // namespace
}  // namespace avitest
