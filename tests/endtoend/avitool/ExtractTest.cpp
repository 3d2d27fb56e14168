// SPDX-License-Identifier: Apache-2.0
// `avitool extract`: names, what is printed, and what may be overwritten.
#include <gmock/gmock.h>

#include <filesystem>

#include "tests/endtoend/avitool/ExtractFixture.h"

namespace avitest {

namespace fs = std::filesystem;

using ::testing::HasSubstr;

class Extract : public ExtractFixture {
  protected:
    std::string clip() { return write("clip.avi", mAvi.build()); }
    Bytes chunk(size_t stream, size_t number) { return mAvi.chunks(stream).at(number).data(); }

    AviFile mAvi = smallFile();
};

const std::vector<std::string> kFilesOfClip = {"clip.0.csv", "clip.0.mjpeg", "clip.1.csv",
                                               "clip.1.wav"};

TEST_F(Extract, EachTrackBecomesAStreamAndAListNamedAfterTheFile) {
    const ToolRun run = tool({"extract", clip(), "-o", "out"});
    EXPECT_EQ(run.status, 0);
    EXPECT_EQ(run.err, "");
    EXPECT_EQ(filesIn("out"), kFilesOfClip);
    EXPECT_EQ(textIn("out/clip.0.mjpeg"), "first framesecondthird one");
}

TEST_F(Extract, ListHasALineASample) {
    tool({"extract", clip(), "-o", "out"});
    EXPECT_EQ(textIn("out/clip.0.csv"),
              "index,time_us,sync,size,offset\n"
              "0,0,1,11,0\n"
              "1,40000,0,6,11\n"
              "2,80000,1,9,17\n");
}

TEST_F(Extract, OffsetsAreBehindAHeader) {
    tool({"extract", clip(), "-o", "out"});
    EXPECT_EQ(textIn("out/clip.1.csv"),
              "index,time_us,sync,size,offset\n"
              "0,0,1,1920,44\n"
              "1,10000,1,960,1964\n");
    EXPECT_EQ(textIn("out/clip.1.wav").substr(44),
              std::string(1920, '\x11') + std::string(960, '\x22'));
}

TEST_F(Extract, ASampleWithoutATimeHasNoneInTheList) {
    failingTool("extract", "t", {"-o", "out"});
    EXPECT_THAT(textIn("out/failing.0.csv"), HasSubstr("\n0,,1,3,0\n"));
}

TEST_F(Extract, UnknownTypesAreTheSamplesAlone) {
    EXPECT_EQ(failingTool("extract", "g", {"-o", "out"}).status, 0);
    EXPECT_EQ(textIn("out/failing.0.bin"), "000111");
}

TEST_F(Extract, TextHasALineAFile) {
    const ToolRun run = tool({"extract", clip(), "-o", "out"});
    EXPECT_EQ(run.out,
              "out/clip.0.mjpeg: track 0, video/x-motion-jpeg, 26 bytes\n"
              "out/clip.0.csv: track 0, list of 3 samples\n"
              "out/clip.1.wav: track 1, audio/raw, 2924 bytes\n"
              "out/clip.1.csv: track 1, list of 2 samples\n");
}

TEST_F(Extract, JsonListsWhatWasWritten) {
    const ToolRun run = tool({"extract", clip(), "-o", "out", "--json"});
    EXPECT_EQ(run.status, 0) << run.err;
    const Json json = parsed(run);
    EXPECT_EQ(json["file"], "clip.avi");
    ASSERT_EQ(json["tracks"].size(), 2u);
    EXPECT_EQ(json["tracks"][1], Json({{"index", 1},
                                       {"mime", "audio/raw"},
                                       {"path", "out/clip.1.wav"},
                                       {"csv", "out/clip.1.csv"},
                                       {"samples", 2},
                                       {"bytes", 2924}}));
    EXPECT_FALSE(json.contains("error"));
}

TEST_F(Extract, TrackChoosesOneByItsIndex) {
    const ToolRun run = tool({"extract", clip(), "-o", "out", "--track", "1"});
    EXPECT_EQ(run.status, 0) << run.err;
    EXPECT_EQ(filesIn("out"), (std::vector<std::string>{"clip.1.csv", "clip.1.wav"}));
}

TEST_F(Extract, TrackBeyondTheLastIsAProblemAndMakesNothing) {
    const ToolRun run = tool({"extract", clip(), "-o", "out", "--track", "2"});
    EXPECT_EQ(run.status, 1);
    EXPECT_EQ(run.out, "");
    EXPECT_EQ(run.err, "avitool: clip.avi: has no track 2: it has 2 tracks, counted from 0\n");
    EXPECT_FALSE(fs::exists(pathOf("out")));
}

TEST_F(Extract, AFileThatIsNoAviMakesNothing) {
    const ToolRun run = tool({"extract", write("text.avi", "hello, hello"), "--output", "out"});
    EXPECT_EQ(run.status, 1);
    EXPECT_EQ(run.err, "avitool: text.avi: not claimed as AVI (confidence 0)\n");
    EXPECT_FALSE(fs::exists(pathOf("out")));
}

TEST_F(Extract, JsonOfAFileThatIsNoAviHasTheReason) {
    const ToolRun run = tool({"extract", write("text.avi", "hello, hello"), "-o", "out", "--json"});
    EXPECT_EQ(run.status, 1);
    const Json json = parsed(run);
    EXPECT_EQ(json["tracks"], Json::array());
    EXPECT_EQ(json["error"], "not claimed as AVI (confidence 0)");
}

TEST_F(Extract, FoldersAreMadeWithTheirParents) {
    const ToolRun run = tool({"extract", clip(), "-o", "a/b/c"});
    EXPECT_EQ(run.status, 0) << run.err;
    EXPECT_EQ(filesIn("a/b/c"), kFilesOfClip);
}

TEST_F(Extract, AFolderThatExistsIsWrittenInto) {
    fs::create_directory(pathOf("out"));
    write("out/other", "kept");
    EXPECT_EQ(tool({"extract", clip(), "-o", "out/"}).status, 0);
    EXPECT_EQ(filesIn("out").size(), 5u);
    EXPECT_EQ(textIn("out/other"), "kept");
}

TEST_F(Extract, NamesOfTheFileMayBeOdd) {
    for (const std::string name : {"no_extension", "two.dots.avi", ".avi", "[a,b] +.avi", "-x"}) {
        SCOPED_TRACE(name);
        write(name, mAvi.build());
        const ToolRun run = tool({"extract", "-o", "[out]", "--track", "0", "--force", "--", name});
        EXPECT_EQ(run.status, 0) << run.err;
        const std::string stem = fs::path(name).stem();
        EXPECT_TRUE(fs::exists(pathOf("[out]/" + stem + ".0.mjpeg")));
    }
}

TEST_F(Extract, ExistingFilesAreAllNamedAndNothingIsWritten) {
    fs::create_directory(pathOf("out"));
    write("out/clip.0.mjpeg", "mine");
    write("out/clip.1.csv", "mine too");
    const ToolRun run = tool({"extract", clip(), "-o", "out"});
    EXPECT_EQ(run.status, 1);
    EXPECT_EQ(run.out, "");
    EXPECT_EQ(run.err,
              "avitool: clip.avi: not extracted, because --force is needed to overwrite "
              "out/clip.0.mjpeg, out/clip.1.csv\n");
    EXPECT_EQ(filesIn("out").size(), 2u);
    EXPECT_EQ(textIn("out/clip.0.mjpeg"), "mine");
}

TEST_F(Extract, AnExistingFileOfAnotherTrackIsNotInTheWay) {
    fs::create_directory(pathOf("out"));
    write("out/clip.0.mjpeg", "mine");
    EXPECT_EQ(tool({"extract", clip(), "-o", "out", "--track", "1"}).status, 0);
    EXPECT_EQ(textIn("out/clip.0.mjpeg"), "mine");
}

TEST_F(Extract, ALinkThatLeadsNowhereCountsAsAFile) {
    fs::create_directory(pathOf("out"));
    fs::create_symlink("nowhere", pathOf("out/clip.0.csv"));
    const ToolRun run = tool({"extract", clip(), "-o", "out"});
    EXPECT_EQ(run.status, 1);
    EXPECT_THAT(run.err, HasSubstr("out/clip.0.csv"));
}

TEST_F(Extract, ForceOverwrites) {
    fs::create_directory(pathOf("out"));
    write("out/clip.0.mjpeg", std::string(1000, 'x'));
    const ToolRun run = tool({"extract", clip(), "-o", "out", "--force"});
    EXPECT_EQ(run.status, 0) << run.err;
    EXPECT_EQ(filesIn("out"), kFilesOfClip);
    EXPECT_EQ(textIn("out/clip.0.mjpeg"), "first framesecondthird one");
}

TEST_F(Extract, HelpTellsItsOptionsAndFormats) {
    const ToolRun run = tool({"extract", "--help"});
    EXPECT_EQ(run.status, 0);
    for (const char* text : {"-o,--output DIR", "--track N", "--force", "--json", ".h264", ".wav",
                             "index, time_us, sync", "4 GiB"}) {
        EXPECT_THAT(run.out, HasSubstr(text));
    }
    for (const std::string& line : linesOf(run.out))
        EXPECT_LE(line.size(), 100u) << line;
}

struct WrongExtract {
    const char* name;
    std::vector<std::string> arguments;
    const char* problem;
};

class WrongExtractUse : public ExtractFixture,
                        public ::testing::WithParamInterface<WrongExtract> {};

TEST_P(WrongExtractUse, EndsWithTwo) {
    write("clip.avi", smallFile().build());
    const ToolRun run = tool(GetParam().arguments);
    EXPECT_EQ(run.status, 2);
    EXPECT_EQ(run.out, "");
    EXPECT_THAT(run.err, HasSubstr(GetParam().problem));
    EXPECT_EQ(linesOf(run.err).size(), 2u);
}

const WrongExtract kWrongExtracts[] = {
    {"WithoutFolder", {"extract", "clip.avi"}, "--output is required"},
    {"WithoutFile", {"extract", "-o", "out"}, "FILE is required"},
    {"OfTwoFiles", {"extract", "clip.avi", "b.avi", "-o", "out"}, "not expected: b.avi"},
    {"IntoNoFolder", {"extract", "clip.avi", "-o", ""}, "--output: '' is no folder"},
    {"FolderLeftOut", {"extract", "clip.avi", "-o"}, "--output"},
    {"TrackNoNumber", {"extract", "clip.avi", "-o", "out", "--track", "one"}, "'one' is no number"},
    {"WithLimit", {"extract", "clip.avi", "-o", "out", "--limit", "1"}, "--limit"},
};
INSTANTIATE_TEST_SUITE_P(Each, WrongExtractUse, ::testing::ValuesIn(kWrongExtracts),
                         [](const auto& instance) { return instance.param.name; });

}  // namespace avitest
