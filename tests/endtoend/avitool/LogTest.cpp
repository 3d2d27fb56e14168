// SPDX-License-Identifier: Apache-2.0
// --set, --log and --plugin.
#include <gmock/gmock.h>

#include <filesystem>

#include "tests/endtoend/avitool/ToolFixture.h"

namespace avitest {

using ::testing::HasSubstr;
using ::testing::Not;
using ::testing::StartsWith;

class Log : public ToolFixture {
  protected:
    ToolRun infoWith(std::vector<std::string> options) {
        options.insert(options.begin(), {"info", write("clip.avi", smallFile().build())});
        return tool(options);
    }
};

constexpr char kVerboseLine[] = "V RuvoAVIExtractor: ==== aviMainHeader ====\n";
constexpr char kDebugLine[] = "D RuvoAVIExtractor: readMetaData(): mFileSize: ";
constexpr char kWarnLine[] = "W RuvoAVIExtractor: parseSTRL(): new track.\n";

TEST_F(Log, IsSilentUnlessAskedFor) {
    EXPECT_EQ(infoWith({}).err, "");
    EXPECT_EQ(infoWith({"--log", "silent"}).err, "");
}

TEST_F(Log, DebugShowsDebugLinesAndAbove) {
    const ToolRun run = infoWith({"--log", "debug", "--set", "vendor.ruvo.avi.extract.log=1"});
    EXPECT_EQ(run.status, 0);
    EXPECT_THAT(run.err, HasSubstr(kDebugLine));
    EXPECT_THAT(run.err, HasSubstr(kWarnLine));
    EXPECT_THAT(run.err, Not(HasSubstr("V RuvoAVIExtractor: ")));
}

TEST_F(Log, WarnHidesDebugLines) {
    const ToolRun run = infoWith({"--log=warn"});
    EXPECT_THAT(run.err, HasSubstr(kWarnLine));
    EXPECT_THAT(run.err, Not(HasSubstr(kDebugLine)));
}

TEST_F(Log, InfoIsBetweenDebugAndWarn) {
    const ToolRun run = infoWith({"--log", "info"});
    EXPECT_THAT(run.err, HasSubstr(kWarnLine));
    EXPECT_THAT(run.err, Not(HasSubstr(kDebugLine)));
}

TEST_F(Log, ErrorHidesWarnings) {
    write("text", "hello, hello");
    EXPECT_THAT(infoWith({"--log", "error"}).err, Not(HasSubstr(kWarnLine)));
    const Bytes whole = smallFile().build();
    write("cut.avi", Bytes(whole.begin(), whole.begin() + 100));
    EXPECT_THAT(tool({"info", "cut.avi", "--log", "error"}).err,
                StartsWith("E RuvoAVIExtractor: "));
}

TEST_F(Log, LeavesStandardOutputAlone) {
    EXPECT_EQ(infoWith({"--log", "verbose"}).out, infoWith({}).out);
}

TEST_F(Log, OptionsMayStandBeforeTheCommand) {
    const ToolRun run = tool({"--log", "debug", "info", write("clip.avi", smallFile().build())});
    EXPECT_EQ(run.status, 0);
    EXPECT_THAT(run.err, HasSubstr(kDebugLine));
}

TEST_F(Log, AMessageOfSeveralLinesKeepsThem) {
    AviFile avi = smallFile();
    avi.stream(kVideo).properties = VideoProperties();
    const ToolRun run = tool({"info", write("vprp.avi", avi.build()), "--log", "verbose", "--set",
                              "vendor.ruvo.avi.extract.log=1"});
    size_t dumpLines = 0;
    for (const std::string& line : linesOf(run.err)) {
        EXPECT_THAT(line, HasSubstr(" RuvoAVIExtractor: "));
        if (line.find("00 00 00 00 ") != std::string::npos) ++dumpLines;
    }
    EXPECT_GE(dumpLines, 2u) << run.err;
}

using Property = Log;

TEST_F(Property, ExtractLogSwitchesVerboseLinesOn) {
    EXPECT_THAT(infoWith({"--log", "verbose", "--set", "vendor.ruvo.avi.extract.log=0"}).err,
                Not(HasSubstr(kVerboseLine)));
    EXPECT_THAT(infoWith({"--log", "verbose", "--set", "vendor.ruvo.avi.extract.log=1"}).err,
                HasSubstr(kVerboseLine));
}

TEST_F(Property, VerboseLogSwitchesChunkLinesOn) {
    const std::string without = infoWith({"--log", "verbose"}).err;
    const std::string with =
        infoWith({"--log", "verbose", "--set", "vendor.ruvo.avi.verbose.log=1"}).err;
    EXPECT_GT(linesOf(with).size(), linesOf(without).size());
}

TEST_F(Property, DisableAudioDropsAudioTracks) {
    const Json json = parsed(infoWith({"--json", "--set", "vendor.ruvo.avi.disable.audio=1"}));
    ASSERT_EQ(json.at(0).at("tracks").size(), 1u);
    EXPECT_EQ(json[0]["tracks"][0]["format"]["mime"]["value"], "video/x-motion-jpeg");
}

TEST_F(Property, MayBeSetMoreThanOnce) {
    const ToolRun run =
        infoWith({"--json", "--log", "verbose", "--set", "vendor.ruvo.avi.disable.audio=1", "--set",
                  "vendor.ruvo.avi.extract.log=1"});
    EXPECT_EQ(parsed(run).at(0).at("tracks").size(), 1u);
    EXPECT_THAT(run.err, HasSubstr(kVerboseLine));
}

TEST_F(Property, TheLastValueHolds) {
    const ToolRun run = infoWith({"--json", "--set", "vendor.ruvo.avi.disable.audio=1", "--set",
                                  "vendor.ruvo.avi.disable.audio=0"});
    EXPECT_EQ(parsed(run).at(0).at("tracks").size(), 2u);
}

using PlugIn = Log;

TEST_F(PlugIn, ThatIsNotThereIsWrongUse) {
    const ToolRun run = infoWith({"--plugin", "/nowhere/libaviextractor.so"});
    EXPECT_EQ(run.status, 2);
    EXPECT_EQ(run.out, "");
    EXPECT_THAT(run.err, StartsWith("avitool: /nowhere/libaviextractor.so: cannot be loaded: "));
    EXPECT_EQ(linesOf(run.err).size(), 1u);
}

TEST_F(PlugIn, ThatIsNoLibraryIsWrongUse) {
    const ToolRun run = infoWith({"--plugin", write("noextractor.so", "no library")});
    EXPECT_EQ(run.status, 2);
    EXPECT_THAT(run.err, StartsWith("avitool: noextractor.so: cannot be loaded: "));
}

TEST_F(PlugIn, WithAnotherNameIsWrongUse) {
    const ToolRun run = infoWith({"--plugin", ""});
    EXPECT_EQ(run.status, 2);
    EXPECT_EQ(run.err, "avitool: : file name does not end in extractor.so\n");
}

TEST_F(PlugIn, NamedIsTheOneThatIsUsed) {
    const Json json = parsed(failingTool("info", "g", {"--json"}));
    EXPECT_EQ(json.at(0).at("extractor"), "FailingExtractor");
    EXPECT_EQ(json.at(0).at("confidence"), 0.1);
}

}  // namespace avitest
