// SPDX-License-Identifier: Apache-2.0
#include <gmock/gmock.h>

#include "tests/endtoend/avitool/ToolFixture.h"

namespace avitest {

using ::testing::HasSubstr;
using ::testing::StartsWith;

class InfoText : public ToolFixture {};

TEST_F(InfoText, BeginsWithTheFileAndTheExtractor) {
    const ToolRun run = tool({"info", write("clip.avi", smallFile().build())});
    EXPECT_EQ(run.status, 0) << run.err;
    EXPECT_EQ(run.err, "");
    EXPECT_THAT(squeezed(run.out), StartsWith("File clip.avi\n"
                                              "extractor AVIExtractor\n"
                                              "confidence 1.4\n"));
    EXPECT_THAT(squeezed(run.out), HasSubstr("mime string video/avi\n"));
}

TEST_F(InfoText, EachTrackFollowsABlankLineWithItsKeysAndCounts) {
    const ToolRun run = tool({"info", write("clip.avi", smallFile().build())});
    const std::string text = squeezed(run.out);
    const size_t video = text.find("\n\nTrack 0\n");
    const size_t audio = text.find("\n\nTrack 1\n");
    ASSERT_NE(video, std::string::npos) << text;
    ASSERT_NE(audio, std::string::npos) << text;
    const std::string videoText = text.substr(video, audio + 1 - video);
    EXPECT_THAT(videoText, HasSubstr("\nwidth int32 320\n"));
    EXPECT_THAT(videoText, HasSubstr("\nheight int32 240\n"));
    EXPECT_THAT(videoText, HasSubstr("\ndurationUs int64 120000 (0.120000 s)\n"));
    EXPECT_THAT(videoText, HasSubstr("\nsamples 3\nkey samples 2\nbytes 26\n"));
    const std::string audioText = text.substr(audio);
    EXPECT_THAT(audioText, HasSubstr("\nmime string audio/raw\n"));
    EXPECT_THAT(audioText, HasSubstr("\nsample-rate int32 48000\n"));
}

TEST_F(InfoText, ValuesStandBelowEachOther) {
    const ToolRun run = tool({"info", write("clip.avi", smallFile().build())});
    size_t entries = 0;
    for (const std::string& line : linesOf(run.out)) {
        const size_t type = line.find("  int32   ");
        if (type == std::string::npos) continue;
        EXPECT_EQ(type, 18u) << line;
        EXPECT_LE(line.size(), 100u) << line;
        ++entries;
    }
    EXPECT_GE(entries, 6u) << run.out;
}

TEST_F(InfoText, ShowsEveryTypeOfEntry) {
    const ToolRun run = failingTool("info", "k");
    EXPECT_EQ(run.status, 0) << run.err;
    const std::string text = squeezed(run.out);
    EXPECT_THAT(text, HasSubstr("\nan-int64 int64 -9223372036854775808\n"));
    EXPECT_THAT(text, HasSubstr("\na-float float 0.1\n"));
    EXPECT_THAT(text, HasSubstr("\na-double double 2.25\n"));
    EXPECT_THAT(text, HasSubstr("\na-size size_t 7\n"));
    EXPECT_THAT(text, HasSubstr("\na-rect Rect 1, -2, 3, 4\n"));
    EXPECT_THAT(text, HasSubstr("\ncsd-0 data 3 bytes 0001ab\n"));
    EXPECT_THAT(text, HasSubstr("\ncsd-1 data 0 bytes\n"));
}

TEST_F(InfoText, EscapesControlCharactersAndBytesThatAreNoUtf8) {
    const ToolRun run = failingTool("info", "k");
    EXPECT_THAT(squeezed(run.out), HasSubstr("\ntitle string caf\xC3\xA9 \\xff\\x0a\n"));
}

TEST_F(InfoText, ShortensALongBuffer) {
    const ToolRun run = failingTool("info", "k");
    std::string shown;
    for (int i = 0; i < 24; ++i)
        shown += "5a";
    EXPECT_THAT(squeezed(run.out), HasSubstr("\ncsd-2 data 100 bytes " + shown + "...\n"));
    for (const std::string& line : linesOf(run.out))
        EXPECT_LE(line.size(), 100u) << line;
}

TEST_F(InfoText, SeveralFilesFollowEachOtherAfterABlankLine) {
    const ToolRun run =
        tool({"info", write("a.avi", smallFile().build()), write("b.avi", smallFile().build())});
    EXPECT_EQ(run.status, 0) << run.err;
    EXPECT_THAT(run.out, StartsWith("File a.avi\n"));
    EXPECT_THAT(run.out, HasSubstr("\n\nFile b.avi\n"));
}

}  // namespace avitest
