// SPDX-License-Identifier: Apache-2.0
#include <gmock/gmock.h>

#include "tests/endtoend/avitool/ToolFixture.h"

namespace avitest {

using ::testing::HasSubstr;
using ::testing::MatchesRegex;
using ::testing::StartsWith;

struct WrongLine {
    const char* name;
    std::vector<std::string> arguments;
    const char* problem;  // what the first line on standard error holds
};

class WrongUse : public ToolFixture, public ::testing::WithParamInterface<WrongLine> {};

TEST_P(WrongUse, EndsWithTwoAndALineThatSaysWhy) {
    write("clip.avi", smallFile().build());
    const ToolRun run = tool(GetParam().arguments);
    EXPECT_EQ(run.status, 2);
    EXPECT_EQ(run.out, "");
    EXPECT_THAT(run.err, StartsWith("avitool: "));
    EXPECT_THAT(run.err, HasSubstr(GetParam().problem));
    EXPECT_THAT(run.err, HasSubstr("\nTry 'avitool --help'.\n"));
    EXPECT_EQ(linesOf(run.err).size(), 2u);
}

const WrongLine kWrongLines[] = {
    {"NoCommand", {}, "A command (info, samples, seek or extract) is required"},
    {"UnknownCommand", {"show"}, "not expected: show"},
    {"InfoWithoutFile", {"info"}, "FILE is required"},
    {"SamplesWithoutFile", {"samples"}, "FILE is required"},
    {"SamplesOfTwoFiles", {"samples", "clip.avi", "b.avi"}, "not expected: b.avi"},
    {"UnknownOption", {"info", "clip.avi", "--loud"}, "not expected: --loud"},
    {"UnknownOptionInBrackets", {"samples", "a", "[b]"}, "not expected: [b]"},
    {"InfoWithTrack", {"info", "clip.avi", "--track", "1"}, "--track"},
    {"TrackWithoutNumber", {"samples", "clip.avi", "--track"}, "--track"},
    {"TrackNoNumber", {"samples", "clip.avi", "--track", "one"}, "--track: 'one' is no number"},
    {"TrackHalfANumber", {"samples", "clip.avi", "--track", "1x"}, "'1x' is no number"},
    {"TrackNegative", {"samples", "clip.avi", "--track", "-1"}, "--track: '-1' is no number"},
    {"TrackEmpty", {"samples", "clip.avi", "--track", ""}, "--track: '' is no number"},
    {"LimitNegative", {"samples", "clip.avi", "--limit", "-1"}, "--limit: '-1' is no number"},
    {"LimitTooLarge", {"samples", "clip.avi", "--limit", "18446744073709551616"}, "is no number"},
    {"LimitFraction", {"samples", "clip.avi", "--limit", "1.5"}, "'1.5' is no number"},
    {"LogLevel", {"info", "clip.avi", "--log", "loud"}, "--log: 'loud' is no log level"},
    {"LogLevelEmpty", {"info", "clip.avi", "--log", ""}, "--log: '' is no log level"},
    {"PropertyUnknown", {"info", "clip.avi", "--set", "a.b=1"}, "'a.b' is no property"},
    {"PropertyLonger",
     {"info", "clip.avi", "--set", "vendor.ruvo.avi.extract.log.x=1"},
     "is no property"},
    {"PropertyWithoutValue",
     {"info", "clip.avi", "--set", "vendor.ruvo.avi.extract.log"},
     "is not PROPERTY=VALUE"},
    {"PropertyValueTooLong",
     {"info", "clip.avi", "--set", "vendor.ruvo.avi.extract.log=" + std::string(92, '1')},
     "is too long"},
};
INSTANTIATE_TEST_SUITE_P(Each, WrongUse, ::testing::ValuesIn(kWrongLines),
                         [](const auto& instance) { return instance.param.name; });

class Usage : public ToolFixture {};

TEST_F(Usage, HelpShowsCommandsExitStatusAndExamples) {
    const ToolRun run = tool({"--help"});
    EXPECT_EQ(run.status, 0);
    EXPECT_EQ(run.err, "");
    for (const char* text :
         {"info", "samples", "--set PROPERTY=VALUE", "--log LEVEL", "--plugin PATH",
          "Exit status:", "Examples:\n  avitool info clip.avi", "vendor.ruvo.avi.extract.log",
          "vendor.ruvo.avi.verbose.log", "vendor.ruvo.avi.disable.audio"}) {
        EXPECT_THAT(run.out, HasSubstr(text));
    }
    for (const std::string& line : linesOf(run.out))
        EXPECT_LE(line.size(), 100u) << line;
}

TEST_F(Usage, HelpOfACommandShowsItsOptions) {
    EXPECT_THAT(tool({"info", "--help"}).out, HasSubstr("--json"));
    const ToolRun run = tool({"samples", "--help"});
    EXPECT_EQ(run.status, 0);
    for (const char* text : {"--json", "--track N", "--limit N", "--log LEVEL"}) {
        EXPECT_THAT(run.out, HasSubstr(text));
    }
}

TEST_F(Usage, VersionIsOneLine) {
    const ToolRun run = tool({"--version"});
    EXPECT_EQ(run.status, 0);
    EXPECT_EQ(run.err, "");
    EXPECT_THAT(run.out, MatchesRegex("avitool [0-9.]+\n"));
}

TEST_F(Usage, TheLongestPropertyValueIsTaken) {
    const ToolRun run = tool({"info", write("clip.avi", smallFile().build()), "--set",
                              "vendor.ruvo.avi.extract.log=" + std::string(91, '1')});
    EXPECT_EQ(run.status, 0) << run.err;
}

}  // namespace avitest
