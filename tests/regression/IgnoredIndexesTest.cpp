// SPDX-License-Identifier: Apache-2.0
//
// Where OpenDML indexes list all chunks an idx1 is ignored. For each one every track was asked
// whether it has its index: 4 MB of both took a minute and a half.

#include <algorithm>
#include <ctime>

#include "tests/behaviour/seeking/SeekingFixture.h"

namespace avitest {
namespace {

constexpr size_t kIgnored = 200000;

// A track asked for each idx1 chunk takes as long as the chunk itself.
constexpr double kMostTimesAsLong = 5;
constexpr double kClockStepSeconds = 0.05;  // below which times are not compared

class IgnoredIndexes : public SeekingTest {
  protected:
    // The processor time that opening a file with so many tracks takes, all of them with an index
    // of their own.
    double secondsToOpen(size_t tracks) {
        AviFile avi;
        for (size_t i = 0; i < tracks; ++i) {
            avi.addStream(videoStream("MJPG", 2, 2, 25));
            avi.stream(i).edit = [](Chunk& strl) {
                strl.add(Chunk("indx", SuperIndex().toBytes()));
            };
        }
        avi.stream(0).openDml = OpenDml::kStandard;
        avi.stream(0).edit = nullptr;
        avi.addChunk(0, patternBytes(8));
        avi.segment().index.copies = 0;
        // To the builder all of them are the contents of the first. At the end of a file an empty
        // chunk counts as padding.
        ByteWriter empty;
        for (size_t i = 0; i < kIgnored; ++i)
            empty.fourcc("idx1").u32(0);
        avi.segment().afterMovi.push_back(Chunk("idx1", empty.take()).declare(0));
        openFile(avi.build());
        const std::clock_t begin = std::clock();
        EXPECT_EQ(tracks, countTracks());
        return static_cast<double>(std::clock() - begin) / CLOCKS_PER_SEC;
    }
};

TEST_F(IgnoredIndexes, DoNotAskEveryTrack) {
    const LogCapture log;
    const double few = secondsToOpen(1);
    const double many = secondsToOpen(2000);
    EXPECT_EQ(2u, log.count(std::to_string(kIgnored - 100) +
                            " more lines like \"%s(): we already have index"));
    EXPECT_GT(kMostTimesAsLong * std::max(few, kClockStepSeconds), many);
}

}  // namespace
}  // namespace avitest
