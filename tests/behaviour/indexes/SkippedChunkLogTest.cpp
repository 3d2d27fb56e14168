// SPDX-License-Identifier: Apache-2.0
//
// How often chunks that a scan skips are logged: the first five of the process, then every tenth.

#include <cstdlib>

#include "tests/behaviour/indexes/IndexesFixture.h"

namespace avitest {
namespace {

using ::testing::ExitedWithCode;

constexpr char kSkip[] = "parseDataChunk(): Skip chunk at pos ";

class SkippedChunkLog : public IndexesFixture {
  protected:
    // A file whose scan skips so many chunks.
    static AviFile fileSkipping(size_t count) {
        AviFile avi = unindexedFile(1);
        for (size_t i = 0; i < count; ++i)
            avi.addLooseChunk(Chunk("JUNK", Bytes(4)));
        return avi;
    }

    void scan(size_t count) {
        openFile(fileSkipping(count).build());
        countTracks();
    }
};

// A process of its own counts from the beginning.
using SkippedChunkLogDeathTest = SkippedChunkLog;

TEST_F(SkippedChunkLogDeathTest, FirstFiveAreLoggedThenEveryTenth) {
    EXPECT_EXIT(
        {
            scan(5);
            const size_t five = mLog.count(kSkip);
            scan(5);  // 5 to 9
            const size_t ten = mLog.count(kSkip);
            scan(1);  // 10
            const size_t eleven = mLog.count(kSkip);
            scan(10);  // 11 to 20
            const size_t twentyOne = mLog.count(kSkip);
            std::_Exit(five == 5 && ten == 5 && eleven == 6 && twentyOne == 7 ? 0 : 1);
        },
        ExitedWithCode(0), "");
}

TEST_F(SkippedChunkLog, EveryTenthIsLoggedAcrossFiles) {
    scan(20);  // past the first five, whatever was scanned before
    mLog.clear();
    for (size_t i = 0; i < 5; ++i)
        scan(10);
    EXPECT_EQ(5u, mLog.count(kSkip));
}

TEST_F(SkippedChunkLog, LineTellsPlaceAndId) {
    scan(20);
    mLog.clear();
    AviFile avi = fileSkipping(10);
    openFile(avi.build());
    countTracks();
    std::vector<std::string> possible;
    for (const MoviChunk& chunk : avi.allChunks()) {
        possible.push_back(std::string(kSkip) + format("%llx ", number(chunk.place.dataOffset)) +
                           idText("JUNK"));
    }
    ASSERT_EQ(1u, mLog.count(kSkip));
    for (const LogLine& line : log()) {
        if (line.text.find(kSkip) != 0) continue;
        EXPECT_THAT(possible, ::testing::Contains(line.text));
    }
}

}  // namespace
}  // namespace avitest
