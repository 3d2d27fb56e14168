// SPDX-License-Identifier: Apache-2.0
#include "tests/endtoend/avitool/ToolFixture.h"

namespace avitest {

struct OddName {
    std::string name;
    std::string inText;
    std::string inJson;
};

// The name as it is, everywhere.
OddName plain(const std::string& name) {
    return {name, name, name};
}

class FileName : public ToolFixture, public ::testing::WithParamInterface<OddName> {};

TEST_P(FileName, IsShownInText) {
    const ToolRun run = tool({"info", "--", write(GetParam().name, smallFile().build())});
    EXPECT_EQ(run.status, 0) << run.err;
    EXPECT_EQ(linesOf(run.out).at(0), "File " + GetParam().inText);
}

TEST_P(FileName, IsInTheJsonOfInfo) {
    write(GetParam().name, smallFile().build());
    write("other.avi", smallFile().build());
    const ToolRun run = tool({"info", "--json", "other.avi", "--", GetParam().name});
    EXPECT_EQ(run.status, 0) << run.err;
    const Json json = parsed(run);
    ASSERT_EQ(json.size(), 2u);
    EXPECT_EQ(json[1]["file"], GetParam().inJson);
}

TEST_P(FileName, IsInTheJsonOfSamples) {
    write(GetParam().name, smallFile().build());
    const ToolRun run = tool({"samples", "--json", "--", GetParam().name});
    EXPECT_EQ(run.status, 0) << run.err;
    EXPECT_EQ(parsed(run)["file"], GetParam().inJson);
}

// Special to a shell, a parser of command lines, JSON or a terminal.
INSTANTIATE_TEST_SUITE_P(
    Each, FileName,
    ::testing::Values(plain("two words.avi"), plain("-x"), plain("--json"), plain("--help"),
                      plain("info"), plain("[a,b]"), plain("[]"), plain("{}"), plain("%%"),
                      plain("++"), plain("a=b"), plain("quote\"'"), plain("back\\slash"),
                      plain("Stra\xC3\x9F"
                            "e \xE2\x82\xAC \xF0\x9F\x8E\xAC.avi"),
                      OddName{"line\nfeed", "line\\x0afeed", "line\nfeed"},
                      OddName{"\x1B[31mred", "\\x1b[31mred", "\x1B[31mred"},
                      OddName{"\x01[a]", "\\x01[a]", "\x01[a]"},
                      OddName{"c1\xC2\x9B", "c1\\xc2\\x9b", "c1\xC2\x9B"},
                      OddName{"bad\xFF", "bad\\xff", "bad\xEF\xBF\xBD"},
                      OddName{"cut\xE2\x82", "cut\\xe2\\x82", "cut\xEF\xBF\xBD"}));

class FileNames : public ToolFixture {};

TEST_F(FileNames, NeedNoDoubleDashUnlessTheyBeginWithOne) {
    const std::vector<std::string> names = {"[a,b]", "{}", "++", "samples", "%%"};
    std::vector<std::string> arguments = {"info", "--json"};
    for (const std::string& name : names)
        arguments.push_back(write(name, smallFile().build()));
    const ToolRun run = tool(arguments);
    EXPECT_EQ(run.status, 0) << run.err;
    const Json json = parsed(run);
    ASSERT_EQ(json.size(), names.size());
    for (size_t i = 0; i < names.size(); ++i)
        EXPECT_EQ(json[i]["file"], names[i]);
}

TEST_F(FileNames, AnEmptyNameIsAFileThatIsNotThere) {
    const ToolRun run = tool({"info", ""});
    EXPECT_EQ(run.status, 1);
    EXPECT_EQ(run.err, "avitool: '': No such file or directory\n");
}

}  // namespace avitest
