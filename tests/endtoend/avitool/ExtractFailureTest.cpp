// SPDX-License-Identifier: Apache-2.0
// `avitool extract` where tracks cannot be read or files cannot be written: each problem is told in
// one line, and no file is left that is not whole.
#include <gmock/gmock.h>
#include <sys/resource.h>
#include <sys/stat.h>
#include <unistd.h>

#include <filesystem>
#include <stdexcept>

#include "tests/endtoend/avitool/ExtractFixture.h"

namespace avitest {

namespace fs = std::filesystem;

using ::testing::HasSubstr;
using ::testing::IsEmpty;
using ::testing::StartsWith;
using Names = std::vector<std::string>;

// While it lives, programs that are started cannot make longer files: a disk that gets full.
class SmallDisk {
  public:
    explicit SmallDisk(rlim_t bytes) {
        if (getrlimit(RLIMIT_FSIZE, &mBefore) != 0) throw std::runtime_error("no limit");
        rlimit limit = mBefore;
        limit.rlim_cur = bytes;
        if (setrlimit(RLIMIT_FSIZE, &limit) != 0) throw std::runtime_error("no limit");
    }
    SmallDisk(const SmallDisk&) = delete;
    SmallDisk& operator=(const SmallDisk&) = delete;
    ~SmallDisk() { setrlimit(RLIMIT_FSIZE, &mBefore); }

  private:
    rlimit mBefore{};
};

class ExtractFailure : public ExtractFixture {
  protected:
    // A small first track and a second one of two megabytes.
    std::string largeClip() {
        AviFile avi;
        avi.addStream(videoStream("MJPG", 320, 240, 25));
        avi.addStream(pcmStream(2, 48000, 16));
        avi.addChunk(0, bytesOf("frame"), kKey);
        for (uint32_t i = 0; i < 32; ++i)
            avi.addChunk(1, patternBytes(65536, i));
        return write("clip.avi", avi.build());
    }
    void makeFolder(const std::string& name) { fs::create_directory(pathOf(name)); }
};

constexpr rlim_t kOneMegabyte = 1 << 20;

TEST_F(ExtractFailure, AFullDiskLeavesWhatWasWholeBefore) {
    const std::string clip = largeClip();
    ToolRun run;
    {
        const SmallDisk disk(kOneMegabyte);
        run = tool({"extract", clip, "-o", "out"});
    }
    EXPECT_EQ(run.status, 1);
    EXPECT_EQ(run.err, "avitool: out/clip.1.wav: cannot be written: File too large\n");
    EXPECT_EQ(filesIn("out"), (Names{"clip.0.csv", "clip.0.mjpeg"}));
    EXPECT_EQ(linesOf(run.out).size(), 2u);
}

TEST_F(ExtractFailure, AFullDiskKeepsTheFileThatWasToBeOverwritten) {
    const std::string clip = largeClip();
    makeFolder("out");
    write("out/clip.1.wav", "mine");
    {
        const SmallDisk disk(kOneMegabyte);
        EXPECT_EQ(tool({"extract", clip, "-o", "out", "--force", "--track", "1"}).status, 1);
    }
    EXPECT_EQ(filesIn("out"), Names{"clip.1.wav"});
    EXPECT_EQ(textIn("out/clip.1.wav"), "mine");
}

// The list is small enough to be in a buffer until it is closed.
TEST_F(ExtractFailure, ADiskThatGetsFullAtTheVeryEndLeavesNothing) {
    const std::string clip = largeClip();
    ToolRun run;
    {
        const SmallDisk disk(10);
        run = tool({"extract", clip, "-o", "out", "--track", "0"}, Output::kReaderGone);
    }
    EXPECT_EQ(run.status, 1);
    EXPECT_THAT(filesIn("out"), IsEmpty());
}

TEST_F(ExtractFailure, AFullDiskIsInTheJsonBesideWhatWasWritten) {
    const std::string clip = largeClip();
    Json json;
    {
        const SmallDisk disk(kOneMegabyte);
        json = parsed(tool({"extract", clip, "-o", "out", "--json"}));
    }
    ASSERT_EQ(json["tracks"].size(), 1u);
    EXPECT_EQ(json["tracks"][0]["path"], "out/clip.0.mjpeg");
    EXPECT_EQ(json["error"], "out/clip.1.wav: cannot be written: File too large");
}

TEST_F(ExtractFailure, AFolderThatMayNotBeWrittenIntoIsToldOnce) {
    makeFolder("out");
    ASSERT_EQ(chmod(pathOf("out").c_str(), 0555), 0);
    if (access(pathOf("out").c_str(), W_OK) == 0) GTEST_SKIP() << "this user may write anywhere";
    const ToolRun run = tool({"extract", largeClip(), "-o", "out"});
    EXPECT_EQ(run.status, 1);
    EXPECT_EQ(run.err, "avitool: out: cannot be written into: Permission denied\n");
}

// Nobody may make files there, not even root.
TEST_F(ExtractFailure, AFolderThatTakesNoFilesIsToldOnce) {
    const ToolRun run = tool({"extract", largeClip(), "-o", "/proc/self/fdinfo"});
    EXPECT_EQ(run.status, 1);
    EXPECT_THAT(run.err, StartsWith("avitool: /proc/self/fdinfo: cannot be written into: "));
    EXPECT_EQ(linesOf(run.err).size(), 1u);
}

TEST_F(ExtractFailure, AFolderThatIsAFileIsTold) {
    write("out", "a file");
    for (const std::string folder : {"out", "out/below"}) {
        SCOPED_TRACE(folder);
        const ToolRun run = tool({"extract", largeClip(), "-o", folder});
        EXPECT_EQ(run.status, 1);
        EXPECT_EQ(run.err, "avitool: " + folder + ": cannot be made: Not a directory\n");
        EXPECT_EQ(textIn("out"), "a file");
    }
}

TEST_F(ExtractFailure, AFolderInThePlaceOfAListLeavesNoStream) {
    makeFolder("out");
    makeFolder("out/clip.0.csv");
    const ToolRun run = tool({"extract", largeClip(), "-o", "out", "--track", "0", "--force"});
    EXPECT_EQ(run.status, 1);
    EXPECT_EQ(run.err, "avitool: out/clip.0.csv: cannot be written: Is a directory\n");
    EXPECT_EQ(filesIn("out"), Names{"clip.0.csv"});
}

TEST_F(ExtractFailure, ANameThatIsTooLongIsTold) {
    const std::string name(255, 'n');
    write(name, "TESTg");
    const ToolRun run = tool({"extract", name, "-o", "out", "--plugin", FAILING_PLUGIN});
    EXPECT_EQ(run.status, 1);
    EXPECT_EQ(run.err, "avitool: out/" + name + ".0.bin: cannot be written: File name too long\n");
    EXPECT_THAT(filesIn("out"), IsEmpty());
}

TEST_F(ExtractFailure, WhatCouldBeReadOfATrackIsKeptAndTheOthersAreWhole) {
    const ToolRun run = failingTool("extract", "grg", {"-o", "out"});
    EXPECT_EQ(run.status, 1);
    EXPECT_EQ(run.err,
              "avitool: failing: track 1: read fails after 2 samples: AMEDIA_ERROR_IO (-10007)\n");
    EXPECT_EQ(filesIn("out").size(), 6u);
    EXPECT_EQ(textIn("out/failing.1.bin"), "000111");
    EXPECT_EQ(linesOf(textIn("out/failing.1.csv")).size(), 3u);
    EXPECT_EQ(textIn("out/failing.2.bin"), "000111");
}

TEST_F(ExtractFailure, ATrackThatDoesNotStartHasNoFiles) {
    for (const char kind : {'s', 'n'}) {
        SCOPED_TRACE(kind);
        const ToolRun run = failingTool("extract", std::string("g") + kind + "g",
                                        {"-o", std::string("out") + kind});
        EXPECT_EQ(run.status, 1);
        EXPECT_THAT(run.err, StartsWith("avitool: failing: track 1: "));
        EXPECT_EQ(filesIn(std::string("out") + kind),
                  (Names{"failing.0.bin", "failing.0.csv", "failing.2.bin", "failing.2.csv"}));
    }
}

TEST_F(ExtractFailure, ATrackWithoutAFormatIsItsSamplesAlone) {
    const ToolRun run = failingTool("extract", "f", {"-o", "out"});
    EXPECT_EQ(run.status, 1);
    EXPECT_THAT(run.err, HasSubstr("track 0: has no format: AMEDIA_ERROR_MALFORMED"));
    EXPECT_EQ(textIn("out/failing.0.bin"), "000111");
}

TEST_F(ExtractFailure, FailuresAreInTheJsonOfTheirTracks) {
    const Json json = parsed(failingTool("extract", "rsg", {"-o", "out", "--json"}));
    ASSERT_EQ(json["tracks"].size(), 3u);
    EXPECT_EQ(json["tracks"][0]["samples"], 2);
    EXPECT_EQ(json["tracks"][0]["path"], "out/failing.0.bin");
    EXPECT_EQ(json["tracks"][0]["error"]["status"], "AMEDIA_ERROR_IO");
    EXPECT_TRUE(json["tracks"][1]["path"].is_null());
    EXPECT_TRUE(json["tracks"][1]["csv"].is_null());
    EXPECT_EQ(json["tracks"][1]["error"]["what"], "cannot be started");
    EXPECT_FALSE(json["tracks"][2].contains("error"));
}

TEST_F(ExtractFailure, AFailedAssertionOfThePlugInLeavesNoTemporaryFile) {
    const ToolRun run = failingTool("extract", "ga", {"-o", "out"});
    EXPECT_EQ(run.status, 1);
    EXPECT_THAT(run.err, HasSubstr("the plug-in aborts the extractor service"));
    EXPECT_EQ(filesIn("out"), (Names{"failing.0.bin", "failing.0.csv"}));
}

TEST_F(ExtractFailure, StandardOutputThatTakesNothingIsToldAndTheFilesAreThere) {
    const std::string clip = largeClip();
    const ToolRun full = tool({"extract", clip, "-o", "full"}, Output::kFull);
    EXPECT_EQ(full.status, 1);
    EXPECT_EQ(full.err, "avitool: cannot write to standard output: No space left on device\n");
    EXPECT_EQ(filesIn("full").size(), 4u);
    const ToolRun gone = tool({"extract", clip, "-o", "gone", "--json"}, Output::kReaderGone);
    EXPECT_EQ(gone.status, 0);
    EXPECT_EQ(filesIn("gone").size(), 4u);
}

// A bit of a cut file's last chunk is missing: the track ends before it, as on the box.
TEST_F(ExtractFailure, ACutFileGivesTheSamplesThatAreWhole) {
    AviFile avi;
    avi.addStream(videoStream("MJPG", 320, 240, 25));
    avi.addChunk(0, bytesOf("whole"));
    avi.addChunk(0, bytesOf("cut short")).indexLength = 100000;
    const ToolRun run = tool({"extract", write("cut.avi", avi.build()), "-o", "out"});
    EXPECT_EQ(run.status, 0) << run.err;
    EXPECT_EQ(textIn("out/cut.0.mjpeg"), "whole");
}

}  // namespace avitest
