// SPDX-License-Identifier: Apache-2.0
// A standard output that takes nothing.
#include <gmock/gmock.h>

#include "tests/endtoend/avitool/ToolFixture.h"

namespace avitest {

using ::testing::StartsWith;

class StandardOutput : public ToolFixture,
                       public ::testing::WithParamInterface<std::vector<std::string>> {
  protected:
    ToolRun runTo(Output output) {
        write("clip.avi", smallFile().build());
        return tool(GetParam(), output);
    }
};

TEST_P(StandardOutput, WithoutRoomIsToldWithItsReason) {
    const ToolRun run = runTo(Output::kFull);
    EXPECT_EQ(run.status, 1);
    EXPECT_EQ(run.err, "avitool: cannot write to standard output: No space left on device\n");
}

TEST_P(StandardOutput, WhoseReaderHasGoneEndsQuietly) {
    const ToolRun run = runTo(Output::kReaderGone);
    EXPECT_EQ(run.status, 0);
    EXPECT_EQ(run.err, "");
}

TEST_P(StandardOutput, ThatIsClosedIsToldWithItsReason) {
    const ToolRun run = runTo(Output::kClosed);
    EXPECT_EQ(run.status, 1);
    EXPECT_EQ(run.err, "avitool: cannot write to standard output: Bad file descriptor\n");
}

INSTANTIATE_TEST_SUITE_P(
    Each, StandardOutput,
    ::testing::Values(std::vector<std::string>{"info", "clip.avi"},
                      std::vector<std::string>{"info", "clip.avi", "--json"},
                      std::vector<std::string>{"samples", "clip.avi"},
                      std::vector<std::string>{"samples", "clip.avi", "--json"},
                      std::vector<std::string>{"--help"}, std::vector<std::string>{"--version"}));

class StandardOutputInside : public ToolFixture {};

// More than the buffers in between hold, so that a write in the middle of a track fails.
TEST_F(StandardOutputInside, AReaderThatGoesInTheMiddleOfATrackEndsQuietly) {
    AviFile avi;
    avi.addStream(videoStream("MJPG", 320, 240, 25));
    for (int i = 0; i < 3000; ++i)
        avi.addChunk(0, bytesOf("frame"));
    const ToolRun run = tool({"samples", write("long.avi", avi.build())}, Output::kReaderGone);
    EXPECT_EQ(run.status, 0);
    EXPECT_EQ(run.err, "");
}

TEST_F(StandardOutputInside, AReaderThatHasGoneDoesNotHideAnEarlierFailure) {
    write("clip.avi", smallFile().build());
    const ToolRun run = tool({"info", "missing.avi", "clip.avi"}, Output::kReaderGone);
    EXPECT_EQ(run.status, 1);
    EXPECT_THAT(run.err, StartsWith("avitool: missing.avi: "));
}

}  // namespace avitest
