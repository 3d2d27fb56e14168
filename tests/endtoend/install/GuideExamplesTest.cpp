// SPDX-License-Identifier: Apache-2.0
// The examples of docs/avitool.md on the clip of samples/, run again.
#include <gmock/gmock.h>

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <sstream>

#include "tests/endtoend/install/ToolHelp.h"
#include "tests/support/TempDir.h"

namespace avitest {

namespace {

constexpr char kIndent[] = "    ";
constexpr char kPrompt[] = "    $ ";
constexpr char kTool[] = "avitool ";

struct Example {
    std::string command;
    std::string output;
};

bool beginsWith(const std::string& text, const std::string& beginning) {
    return text.compare(0, beginning.size(), beginning) == 0;
}

// All examples: a line behind a prompt, and what is indented below it.
std::vector<Example> examplesOfGuide() {
    std::ifstream guide(AVI_SOURCE_DIR "/docs/avitool.md");
    std::vector<Example> examples;
    bool inside = false;
    for (std::string line; std::getline(guide, line);) {
        if (beginsWith(line, kPrompt)) {
            examples.push_back({line.substr(sizeof(kPrompt) - 1), ""});
            inside = true;
        } else if (line.empty() || beginsWith(line, kIndent)) {
            const size_t indent = std::min(sizeof(kIndent) - 1, line.size());
            if (inside) examples.back().output += line.substr(indent) + "\n";
        } else {
            inside = false;
        }
    }
    return examples;
}

// Whether the tool alone makes the whole output, on the clip as it is.
bool isPlain(const Example& example) {
    const bool toShell = example.command.find_first_of("|>") != std::string::npos;
    return beginsWith(example.command, kTool) && !toShell &&
           example.command.find(" clip.avi") != std::string::npos &&
           !beginsWith(example.output, "avitool: ");  // a complaint
}

std::string run(const std::string& command, const std::string& folder) {
    std::istringstream words(command.substr(sizeof(kTool) - 1));
    std::vector<std::string> arguments;
    for (std::string word; words >> word;)
        arguments.push_back(word);
    return outputOfTool(AVITOOL, arguments, folder);
}

std::string withoutBlankEnd(const std::string& text) {
    return text.substr(0, text.find_last_not_of('\n') + 1);
}

}  // namespace

TEST(GuideExamples, OnTheClipPrintWhatTheGuideShows) {
    const TempDir folder;
    std::filesystem::copy_file(AVI_SOURCE_DIR "/samples/clip.avi", folder.file("clip.avi"));
    Names commands;
    for (const Example& example : examplesOfGuide()) {
        if (!isPlain(example)) continue;
        SCOPED_TRACE(example.command);
        commands.merge(matchesIn(example.command, "^avitool ([a-z]+)"));
        const std::string shown = withoutBlankEnd(example.output);
        const std::string printed = withoutBlankEnd(run(example.command, folder.path()));
        constexpr char kOmitted[] = "...\n";
        if (beginsWith(shown, kOmitted)) {
            EXPECT_THAT(printed, ::testing::HasSubstr(shown.substr(sizeof(kOmitted) - 1)));
        } else {
            EXPECT_EQ(printed, shown);
        }
    }
    EXPECT_EQ(commands, commandNames());
}

}  // namespace avitest
