// SPDX-License-Identifier: Apache-2.0
// What is written about the tool's options, against what the tool says of them itself.
#include <gmock/gmock.h>

#include <fstream>
#include <iterator>

#include "tests/endtoend/install/ToolHelp.h"

namespace avitest {

namespace {

struct Paper {
    const char* name;
    const char* file;        // below the root of the sources
    const char* expression;  // group 1 is an option that the text names
};

constexpr char kPlain[] = R"((?:^|[^-\w])--([a-z][a-z-]*))";
const Paper kPapers[] = {
    {"Manual", "tools/avitool/avitool.1", R"(Fl -([a-z][a-z-]*))"},
    {"Guide", "docs/avitool.md", kPlain},
    {"Bash", "tools/avitool/completions/avitool.bash", kPlain},
    {"Zsh", "tools/avitool/completions/_avitool", kPlain},
    {"Fish", "tools/avitool/completions/avitool.fish",
     R"(\ncomplete -c avitool [^\n]*-l ([a-z][a-z-]*))"},
};

std::string textOf(const std::string& file) {
    std::ifstream in(AVI_SOURCE_DIR "/" + file);
    return std::string(std::istreambuf_iterator<char>(in), {});
}

class OptionsListed : public ::testing::TestWithParam<Paper> {
  protected:
    Names listed() const { return matchesIn(textOf(GetParam().file), GetParam().expression); }
};

TEST_P(OptionsListed, AreAllThatTheToolHasAndNoOthers) {
    EXPECT_EQ(listed(), allOptionNames());
}
INSTANTIATE_TEST_SUITE_P(Each, OptionsListed, ::testing::ValuesIn(kPapers),
                         [](const auto& instance) { return instance.param.name; });

TEST(ToolHelp, ListsCommandsAndOptions) {
    EXPECT_THAT(commandNames(), ::testing::IsSupersetOf({"info", "samples", "seek"}));
    EXPECT_THAT(optionNames(""), ::testing::IsSupersetOf({"help", "version", "set", "log"}));
    EXPECT_THAT(optionNames("seek"), ::testing::IsSupersetOf({"help", "json", "at", "mode"}));
}

// The examples at the end of the help are written by hand.
TEST(ToolHelp, NamesNoOptionThatTheToolLacks) {
    const Names known = allOptionNames();
    for (const std::string& option : matchesIn(helpText(""), kPlain))
        EXPECT_EQ(known.count(option), 1u) << option;
}

TEST(ToolHelp, ItsPropertiesAreInEveryPaper) {
    const Names properties = matchesIn(helpText(""), R"(\n  vendor\.ruvo\.avi\.([a-z.]+) )");
    EXPECT_EQ(properties.size(), 3u);
    for (const Paper& paper : kPapers) {
        for (const std::string& property : properties)
            EXPECT_THAT(textOf(paper.file), ::testing::HasSubstr(property)) << paper.name;
    }
}

}  // namespace
}  // namespace avitest
