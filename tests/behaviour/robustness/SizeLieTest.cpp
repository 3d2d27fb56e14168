// SPDX-License-Identifier: Apache-2.0
//
// Sources that do not tell their size, or tell a wrong one: network streams do.

#include <cerrno>
#include <cstdint>
#include <limits>

#include "service/FaultySource.h"
#include "service/MemorySource.h"
#include "tests/behaviour/robustness/Endurance.h"

namespace avitest {
namespace {

using android::service::FaultySource;
using android::service::MemorySource;

// Gives the bytes of a file but another size.
class LyingSource : public MemorySource {
  public:
    LyingSource(const Bytes& file, off64_t size)
        : MemorySource(file.data(), file.size()), mSize(size) {}

    android::status_t getSize(off64_t* size) override {
        *size = mSize;
        return android::OK;
    }

  private:
    off64_t mSize;
};

class SizeLie : public QuietTest, public ::testing::WithParamInterface<SmallFile> {
  protected:
    void expectEnd(off64_t told) {
        LyingSource source(file().bytes, told);
        EXPECT_TRUE(endures(source, file().bytes.size())) << "told " << told << " bytes";
        EXPECT_TRUE(isShorter(play(source, file().bytes.size()), file()))
            << "told " << told << " bytes";
    }

    const SmallFile& file() const { return mFile; }
    off64_t trueSize() const { return static_cast<off64_t>(GetParam().bytes.size()); }

  private:
    const SmallFile mFile = withSamples(GetParam());
};

TEST_P(SizeLie, FailingGetSizeComesToAnEnd) {
    MemorySource memory(file().bytes.data(), file().bytes.size());
    for (const android::status_t status : {INT32_MIN, -EIO, -1}) {
        FaultySource source(memory);
        source.failGetSize(status);
        EXPECT_TRUE(endures(source, file().bytes.size())) << "status " << status;
    }
}

TEST_P(SizeLie, NegativeSizeComesToAnEnd) {
    for (const off64_t told : {off64_t{-1}, -trueSize(), std::numeric_limits<off64_t>::min()})
        expectEnd(told);
}

TEST_P(SizeLie, EverySmallerSizeComesToAnEnd) {
    for (off64_t told = 0; told < trueSize(); ++told)
        expectEnd(told);
}

TEST_P(SizeLie, LargerSizeComesToAnEnd) {
    constexpr off64_t k4GiB = off64_t{1} << 32;
    for (const off64_t more : {off64_t{1}, off64_t{7}, off64_t{8}, off64_t{11}, off64_t{12},
                               off64_t{13}, trueSize(), k4GiB - trueSize(), k4GiB})
        expectEnd(trueSize() + more);
    expectEnd(std::numeric_limits<off64_t>::max());
}

INSTANTIATE_TEST_SUITE_P(Kinds, SizeLie, ::testing::ValuesIn(smallFiles()), kindName);

}  // namespace
}  // namespace avitest
