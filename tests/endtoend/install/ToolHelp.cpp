// SPDX-License-Identifier: Apache-2.0
#include "tests/endtoend/install/ToolHelp.h"

#include <regex>
#include <sstream>

#include "tests/endtoend/media/Process.h"

namespace avitest {

std::string outputOfTool(const std::string& path, const std::vector<std::string>& arguments,
                         const std::string& folder) {
    std::vector<std::string> command = {"/usr/bin/env", "-C", folder};  // it finds the emulator too
    std::istringstream emulator(AVI_EMULATOR);
    for (std::string part; std::getline(emulator, part, '|');)
        command.push_back(part);
    command.push_back(path);
    command.insert(command.end(), arguments.begin(), arguments.end());
    return outputOf(command);
}

std::string helpText(const std::string& command) {
    if (command.empty()) return outputOfTool(AVITOOL, {"--help"});
    return outputOfTool(AVITOOL, {command, "--help"});
}

Names commandNames() {
    const std::string help = helpText("");
    const size_t begin = help.find("\nSubcommands:\n");
    if (begin == std::string::npos) return {};
    const size_t end = help.find("\n\n", begin);
    return matchesIn(help.substr(begin, end - begin), R"(\n  ([a-z][a-z-]*))");
}

Names optionNames(const std::string& command) {
    return matchesIn(helpText(command), R"(\n  (?:-[a-z],)?--([a-z][a-z-]*))");
}

Names allOptionNames() {
    Names all = optionNames("");
    for (const std::string& command : commandNames())
        all.merge(optionNames(command));
    return all;
}

Names matchesIn(const std::string& text, const std::string& expression) {
    const std::regex regex(expression);
    Names names;
    for (std::sregex_iterator match(text.begin(), text.end(), regex), end; match != end; ++match)
        names.insert((*match)[1]);
    return names;
}

}  // namespace avitest
