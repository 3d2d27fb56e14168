// SPDX-License-Identifier: Apache-2.0
// The tool's own word on its commands and options. No state; any thread.
#pragma once

#include <set>
#include <string>
#include <vector>

namespace avitest {

using Names = std::set<std::string>;

// Runs a tool of this build, at this path and in this folder, and returns its standard output;
// throws when it does not exit with 0.
std::string outputOfTool(const std::string& path, const std::vector<std::string>& arguments,
                         const std::string& folder = ".");

// What --help of a command prints; of the tool itself for "".
std::string helpText(const std::string& command);

// The commands that --help lists.
Names commandNames();

// The long options that --help of a command lists, without the hyphens; of the tool itself for "".
Names optionNames(const std::string& command);

// The options of the tool and of all its commands.
Names allOptionNames();

// What group 1 of the regular expression matches anywhere in the text.
Names matchesIn(const std::string& text, const std::string& expression);

}  // namespace avitest
