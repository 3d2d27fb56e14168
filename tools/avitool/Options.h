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

enum class Command { kInfo, kSamples, kSeek, kExtract };

/** How a seek chooses the frame it lands on; the values are those of a read's options. */
enum class SeekMode : uint32_t { kPreviousSync = 0, kNextSync = 1, kClosestSync = 2, kClosest = 3 };

struct Options {
    Command command = Command::kInfo;
    std::vector<std::string> files;  // at least one; exactly one but for info
    bool json = false;
    std::optional<uint64_t> track;                                // unset: all
    std::optional<uint64_t> limit;                                // samples a track; unset: all
    int64_t seekUs = 0;                                           // of seek, not negative
    SeekMode seekMode = SeekMode::kPreviousSync;                  // of seek
    std::string output;                                           // folder of extract
    bool force = false;                                           // of extract: overwrite files
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

/** The mode as it is written on the command line. */
const char* modeName(SeekMode mode);

}  // namespace avitool
