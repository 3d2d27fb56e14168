// SPDX-License-Identifier: Apache-2.0
// bash with the completion loaded, asked what it offers for a line.
#include <gmock/gmock.h>

#include <filesystem>

#include "tests/endtoend/install/ToolHelp.h"
#include "tests/endtoend/media/Process.h"
#include "tests/support/TempDir.h"

namespace avitest {

namespace {

constexpr char kScript[] = R"(
source "$0"
COMP_WORDS=("$@")
COMP_CWORD=$(($# - 1))
_avitool
printf '%s\n' "${COMPREPLY[@]}"
)";

// What is offered for the last of the words, which are cut as bash does: "=" is a word by itself.
Names offered(const std::vector<std::string>& words) {
    std::vector<std::string> command = {
        AVI_BASH, "--norc", "-c", kScript, AVI_SOURCE_DIR "/tools/avitool/completions/avitool.bash",
        "avitool"};
    command.insert(command.end(), words.begin(), words.end());
    return matchesIn(outputOf(command), R"(([^\n]+)\n)");
}

Names withHyphens(const Names& names) {
    Names result;
    for (const std::string& name : names)
        result.insert("--" + name);
    return result;
}

const Names kLevels = {"verbose", "debug", "info", "warn", "error", "silent"};
const Names kModes = {"previous", "next", "closest-sync", "closest"};

}  // namespace

TEST(BashCompletion, OffersTheToolsCommands) {
    EXPECT_EQ(offered({""}), commandNames());
    EXPECT_EQ(offered({"sa"}), Names({"samples"}));
    EXPECT_EQ(offered({"x"}), Names());
}

TEST(BashCompletion, OffersTheOptionsOfTheTool) {
    EXPECT_EQ(offered({"--"}), withHyphens(optionNames("")));
    EXPECT_EQ(offered({"--v"}), Names({"--version"}));
}

TEST(BashCompletion, OffersTheOptionsOfEachCommand) {
    for (const std::string& command : commandNames())
        EXPECT_EQ(offered({command, "--"}), withHyphens(optionNames(command))) << command;
}

TEST(BashCompletion, KnowsTheCommandBehindOptionsAndBeforeFiles) {
    const Names options = withHyphens(optionNames("seek"));
    EXPECT_EQ(offered({"--log", "warn", "seek", "--"}), options);
    EXPECT_EQ(offered({"--log", "=", "warn", "seek", "--"}), options);
    EXPECT_EQ(offered({"--set", "vendor.ruvo.avi.verbose.log", "=", "1", "seek", "--"}), options);
    EXPECT_EQ(offered({"seek", "clip.avi", "--"}), options);
    EXPECT_EQ(offered({"--log", "warn", "se"}), Names({"seek"}));
}

TEST(BashCompletion, OffersTheValuesOfMode) {
    EXPECT_EQ(offered({"seek", "clip.avi", "--mode", ""}), kModes);
    EXPECT_EQ(offered({"seek", "clip.avi", "--mode", "="}), kModes);
    EXPECT_EQ(offered({"seek", "--mode", "=", "clo"}), Names({"closest-sync", "closest"}));
}

TEST(BashCompletion, OffersTheValuesOfLog) {
    EXPECT_EQ(offered({"--log", ""}), kLevels);
    EXPECT_EQ(offered({"info", "--log", "="}), kLevels);
    EXPECT_EQ(offered({"info", "clip.avi", "--log", "ver"}), Names({"verbose"}));
}

TEST(BashCompletion, OffersPropertiesAndTheirValues) {
    EXPECT_EQ(offered({"info", "--set", "vendor.ruvo.avi.d"}),
              Names({"vendor.ruvo.avi.disable.audio="}));
    EXPECT_EQ(offered({"info", "--set", ""}).size(), 3u);
    EXPECT_EQ(offered({"--set", "vendor.ruvo.avi.verbose.log", "="}), Names({"0", "1"}));
}

TEST(BashCompletion, OffersAviFilesAndFolders) {
    const TempDir folder;
    const std::string lower = folder.write("a clip.avi", "");
    const std::string upper = folder.write("CLIP.AVI", "");
    folder.write("clip.mkv", "");
    std::filesystem::create_directory(folder.path() / "more");
    const std::string prefix = folder.path().string() + "/";
    EXPECT_EQ(offered({"info", prefix}), Names({lower, upper, prefix + "more"}));
    EXPECT_EQ(offered({"samples", prefix + "C"}), Names({upper}));
}

TEST(BashCompletion, OffersFoldersToExtractInto) {
    const TempDir folder;
    folder.write("clip.avi", "");
    std::filesystem::create_directory(folder.path() / "streams");
    const std::string prefix = folder.path().string() + "/";
    EXPECT_EQ(offered({"extract", "clip.avi", "-o", prefix}), Names({prefix + "streams"}));
    EXPECT_EQ(offered({"extract", "clip.avi", "--output", prefix}), Names({prefix + "streams"}));
}

}  // namespace avitest
