// SPDX-License-Identifier: Apache-2.0
// The command line as values. Nothing here touches files, the plug-in or the outputs.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include <android/log.h>

namespace avitool {

enum class Command { kInfo, kSamples };

struct Options {
    Command command = Command::kInfo;
    std::vector<std::string> files;  // at least one; exactly one for samples
    bool json = false;
    std::optional<uint64_t> track;                                // unset: all
    std::optional<uint64_t> limit;                                // samples a track; unset: all
    std::vector<std::pair<std::string, std::string>> properties;  // name and value
    int logPriority = ANDROID_LOG_SILENT;
    std::optional<std::string> plugin;  // unset: the one that belongs to the tool
};

/** What the command line asks for: exactly one of the three is set. */
struct ParsedLine {
    std::optional<Options> options;
    std::string help;   // to print on standard output
    std::string error;  // wrong use: to print on standard error, with its line ends
};

/** Never throws for a wrong line. One thread. */
ParsedLine parseLine(int argc, const char* const* argv);

}  // namespace avitool
