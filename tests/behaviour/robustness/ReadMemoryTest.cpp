// SPDX-License-Identifier: Apache-2.0
//
// Reading asks for no memory for what the file does not hold.

#include "tests/behaviour/reading/ReadingFixture.h"
#include "tests/behaviour/robustness/AllocationWatch.h"

namespace avitest {
namespace {

constexpr uint32_t kLargeChunk = 30'000'000;
constexpr size_t kSmallChunk = 40;
constexpr size_t kAnyRead = 256 * 1024;  // its log included

class ReadMemory : public ReadingTest {
  protected:
    // Opens a file whose second of three chunks is, by the index, much longer than the file.
    void openWithLargeChunk(const Stream& stream) {
        const Bytes chunk = patternBytes(kSmallChunk);
        AviFile avi = fileOf(stream, {chunk, chunk, chunk});
        avi.segment().index.edit = [](std::vector<Idx1Entry>& index) {
            index[1].length = kLargeChunk;
        };
        openFile(avi.build());
    }
};

// Samples with length prefixes are converted from memory of their own.
TEST_F(ReadMemory, OfAChunkBeyondTheFileIsNone) {
    for (const unsigned prefixSize : {1u, 4u}) {
        SCOPED_TRACE(prefixSize);
        openWithLargeChunk(lengthPrefixedStream(prefixSize));
        StartedTrack started(track(0));
        const AllocationWatch watch;
        EXPECT_EQ(started.status(), AMEDIA_OK);
        EXPECT_EQ(started.status(), AMEDIA_ERROR_END_OF_STREAM);
        EXPECT_EQ(started.status(), AMEDIA_OK);
        EXPECT_GT(kAnyRead, watch.peak());
    }
}

}  // namespace
}  // namespace avitest
