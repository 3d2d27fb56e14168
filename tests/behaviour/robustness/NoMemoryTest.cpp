// SPDX-License-Identifier: Apache-2.0
//
// No memory for what a file holds: the stream or the sample is lost, and nothing else.

#include "tests/behaviour/reading/ReadingFixture.h"
#include "tests/behaviour/robustness/AllocationWatch.h"

namespace avitest {
namespace {

constexpr size_t kOddSize = 54322;  // that nothing else has

class NoMemory : public ReadingTest {
  protected:
    void SetUp() override {
        if (!NoMemoryFor::isPossible()) GTEST_SKIP() << "the sanitizer's allocator cannot fail";
    }
};

TEST_F(NoMemory, ForExtraDataDropsTheStreamWithoutAFailureLine) {
    AviFile avi;
    Stream audio = alawStream();
    std::get<WaveFormat>(audio.format).extra = patternBytes(kOddSize);
    avi.addStream(audio);
    const size_t video = avi.addStream(mjpegStream());
    avi.addChunk(video, patternBytes(40));
    openFile(avi.build());
    const LogCapture log;
    const NoMemoryFor none(kOddSize);
    EXPECT_EQ(countTracks(), 1u);
    EXPECT_EQ(none.refusals(), 1u);
    EXPECT_EQ(log.count("parseSTRF(): error"), 0u);
    EXPECT_EQ(log.count("Something wrong, skip the track!"), 1u);
}

TEST_F(NoMemory, ForASampleToBeConvertedFailsItsRead) {
    const Bytes small = patternBytes(40);
    openStream(lengthPrefixedStream(4), {small, patternBytes(kOddSize), small});
    StartedTrack started(track(0));
    const LogCapture log;
    const NoMemoryFor none(kOddSize);
    EXPECT_EQ(started.status(), AMEDIA_OK);
    EXPECT_EQ(started.status(), AMEDIA_ERROR_UNKNOWN);
    EXPECT_EQ(none.refusals(), 1u);
    EXPECT_THAT(log, Logged(ANDROID_LOG_ERROR, "[video/avc][0][1/3] Unknown error(-2710) @L"));
    EXPECT_EQ(started.group().heldCount(), 0u);
    EXPECT_EQ(started.status(), AMEDIA_OK);
}

}  // namespace
}  // namespace avitest
