// SPDX-License-Identifier: Apache-2.0
//
// Bytes below '0' where a subtitle has its time made the time negative, which players take for
// none.

#include "tests/behaviour/reading/ReadingFixture.h"

namespace avitest {
namespace {

class SubtitleTimes : public ReadingTest {};

TEST_F(SubtitleTimes, AreNeverNegative) {
    const std::vector<std::string> texts = {"[00:00:0/.000", "[  :  :  .   ", "[-1:00:00.000",
                                            "[00:00:-2.000", "[00:00:00.0-5"};
    std::vector<Bytes> chunks;
    chunks.reserve(texts.size());
    for (const std::string& text : texts)
        chunks.push_back(bytesOf(text + " picture"));
    openStream(subtitleStream(), chunks);

    EXPECT_EQ(timesOf(readAll(0)), std::vector<int64_t>(chunks.size(), 0));
}

TEST_F(SubtitleTimes, FollowingOnesAreRight) {
    openStream(subtitleStream(),
               {bytesOf(std::string(20, ' ')), subtitleChunk("00:00:01.000", "00:00:02.000")});

    EXPECT_EQ(timesOf(readAll(0)), (std::vector<int64_t>{0, 1000000}));
}

}  // namespace
}  // namespace avitest
