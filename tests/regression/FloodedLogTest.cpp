// SPDX-License-Identifier: Apache-2.0
//
// A file could have a warning printed for every few of its bytes: all kinds of them are limited,
// and what is not printed is counted.

#include "tests/support/AviBuilder.h"
#include "tests/support/LoggedFixture.h"

namespace avitest {
namespace {

class FloodedLog : public LoggedFixture {
  protected:
    // A file with so many INFO tags that nobody knows.
    void openWithTags(size_t tags) {
        AviFile avi;
        avi.addStream(videoStream("MJPG", 2, 2, 25));
        avi.addChunk(0, patternBytes(8), kKey);
        Chunk info = Chunk::list("INFO");
        for (size_t i = 0; i < tags; ++i)
            info.add(Chunk("ISFT", {}));
        avi.segment().beforeMovi.push_back(info);
        openFile(avi.build());
        countTracks();
    }
    size_t warnings() const { return mLog.count("parseINFO(): unknown meta key 0x54465349:ISFT"); }
    size_t summaries() const { return mLog.count("more lines like"); }
};

TEST_F(FloodedLog, AHundredWarningsOfAKindArePrinted) {
    openWithTags(100);
    EXPECT_EQ(100u, warnings());
    EXPECT_EQ(0u, summaries());
}

TEST_F(FloodedLog, TheRestIsCounted) {
    openWithTags(5000);
    EXPECT_EQ(100u, warnings());
    EXPECT_EQ(1u, mLog.count("4900 more lines like \"parseINFO(): unknown meta key "
                             "0x%08x:%c%c%c%c\" are not printed"));
}

TEST_F(FloodedLog, EveryFileHasItsOwnHundred) {
    openWithTags(101);
    openWithTags(101);
    EXPECT_EQ(200u, warnings());
    EXPECT_EQ(2u, summaries());
}

}  // namespace
}  // namespace avitest
