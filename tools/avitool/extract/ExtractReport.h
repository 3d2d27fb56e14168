// SPDX-License-Identifier: Apache-2.0
// What `avitool extract` wrote, and how it is printed. Plain values; one thread.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "tools/avitool/Console.h"
#include "tools/avitool/Report.h"

namespace avitool {

/** The two files of a track. */
struct ExtractedFiles {
    std::string stream;  // path
    std::string list;    // path of the samples' list
    uint64_t bytes = 0;  // of the stream's file
};

struct ExtractedTrack {
    TrackReport track;                    // of what was read, `samples` and the failures
    std::optional<ExtractedFiles> files;  // none: nothing could be read
};

struct ExtractReport {
    std::string path;
    std::vector<ExtractedTrack> tracks;  // those that were done
    std::optional<std::string> error;    // why there are no more
};

/** For people: a line a file that was written. Throws OutputError. */
void printExtractText(const ExtractReport& report, Console& console);
/** One object with a list of the tracks. Throws OutputError. */
void printExtractJson(const ExtractReport& report, Console& console);

}  // namespace avitool
