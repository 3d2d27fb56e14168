// SPDX-License-Identifier: Apache-2.0
// Files of which nothing can be shown: one line each, exit status 1, and the other files are shown.
#include <gmock/gmock.h>
#include <sys/stat.h>
#include <unistd.h>

#include <filesystem>

#include "tests/endtoend/avitool/ToolFixture.h"

namespace avitest {

using ::testing::HasSubstr;
using ::testing::StartsWith;

class RefusedFile : public ToolFixture, public ::testing::WithParamInterface<const char*> {
  protected:
    void expectRefused(const std::string& file, const std::string& reason) {
        const ToolRun run = tool({GetParam(), file});
        EXPECT_EQ(run.status, 1);
        EXPECT_EQ(run.out, "");
        EXPECT_EQ(run.err, "avitool: " + file + ": " + reason + "\n");
    }
};

INSTANTIATE_TEST_SUITE_P(Each, RefusedFile, ::testing::Values("info", "samples"),
                         [](const auto& instance) { return std::string(instance.param); });

TEST_P(RefusedFile, MissingFile) {
    expectRefused("missing.avi", "No such file or directory");
}

TEST_P(RefusedFile, EmptyFile) {
    expectRefused(write("empty.avi", ""), "is empty");
}

TEST_P(RefusedFile, Folder) {
    std::filesystem::create_directory(pathOf("folder"));
    expectRefused("folder", "is a directory");
}

TEST_P(RefusedFile, PipeThatNobodyWritesTo) {
    ASSERT_EQ(mkfifo(pathOf("fifo").c_str(), 0600), 0);
    expectRefused("fifo", "is not a regular file");
}

TEST_P(RefusedFile, Device) {
    expectRefused("/dev/null", "is not a regular file");
}

TEST_P(RefusedFile, FileThatMayNotBeRead) {
    const std::string file = write("secret.avi", smallFile().build());
    ASSERT_EQ(chmod(pathOf(file).c_str(), 0), 0);
    if (access(pathOf(file).c_str(), R_OK) == 0) GTEST_SKIP() << "this user may read every file";
    expectRefused(file, "Permission denied");
}

TEST_P(RefusedFile, FileThatIsNoAvi) {
    expectRefused(write("text.avi", "hello, hello, hello"), "not claimed as AVI (confidence 0)");
}

TEST_P(RefusedFile, FileShorterThanAnyHeader) {
    expectRefused(write("short.avi", "RIFF"), "not claimed as AVI (confidence 0)");
}

TEST_P(RefusedFile, FileThatFailsToParseWithThePlugInsOwnReason) {
    const Bytes whole = smallFile().build();
    const std::string file = write("cut.avi", Bytes(whole.begin(), whole.begin() + 100));
    const ToolRun run = tool({GetParam(), file});
    EXPECT_EQ(run.status, 1);
    EXPECT_EQ(run.out, "");
    EXPECT_EQ(run.err,
              "avitool: cut.avi: cannot be parsed: AMEDIA_ERROR_UNKNOWN (-10000) [parseSTRL(): "
              "error -3EC @line2034; readMetaData(): error(-1004) happens when parse file!]\n");
}

TEST_P(RefusedFile, FileWithoutAnySamples) {
    AviFile avi;
    avi.addStream(videoStream("MJPG", 320, 240, 25));
    const ToolRun run = tool({GetParam(), write("bare.avi", avi.build())});
    EXPECT_EQ(run.status, 1);
    EXPECT_THAT(run.err, StartsWith("avitool: bare.avi: cannot be parsed: "));
    EXPECT_THAT(run.err, HasSubstr("The track doesn't have any samples!; "));
}

TEST_P(RefusedFile, NameOfSeveralLinesIsToldInOne) {
    const ToolRun run = tool({GetParam(), "no\nsuch\x1B"});
    EXPECT_EQ(run.status, 1);
    EXPECT_EQ(run.err, "avitool: no\\x0asuch\\x1b: No such file or directory\n");
}

class SeveralFiles : public ToolFixture {};

TEST_F(SeveralFiles, AFailureEndsWithOneButTheOthersAreShown) {
    const ToolRun run = tool({"info", write("a.avi", smallFile().build()), "missing.avi",
                              write("b.avi", smallFile().build())});
    EXPECT_EQ(run.status, 1);
    EXPECT_EQ(run.err, "avitool: missing.avi: No such file or directory\n");
    EXPECT_THAT(run.out, StartsWith("File a.avi\n"));
    EXPECT_NE(run.out.find("\nFile b.avi\n"), std::string::npos) << run.out;
}

TEST_F(SeveralFiles, SamplesJsonOfAFileThatFailsIsAnObjectWithTheReason) {
    const ToolRun run = tool({"samples", "--json", "missing.avi"});
    EXPECT_EQ(run.status, 1);
    EXPECT_EQ(parsed(run), Json({{"file", "missing.avi"},
                                 {"tracks", Json::array()},
                                 {"error", "No such file or directory"}}));
}

}  // namespace avitest
