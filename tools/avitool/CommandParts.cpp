// SPDX-License-Identifier: Apache-2.0
#include "tools/avitool/CommandParts.h"

#include <fmt/format.h>

namespace avitool {

std::vector<std::string> problemsOf(const TrackReport& track) {
    std::vector<std::string> problems;
    for (const auto& failure : {track.formatFailure, track.read.failure}) {
        if (!failure) continue;
        problems.push_back(fmt::format("track {}: {}", track.index, toText(*failure)));
    }
    return problems;
}

void complainAbout(const std::string& path, const TrackReport& track, Console& console) {
    for (const std::string& problem : problemsOf(track))
        console.complain(path, problem);
}

TrackRange wantedTracks(const OpenedFile& file, const Options& options) {
    const size_t count = file.extractor().countTracks();
    if (!options.track) return {0, count};
    if (*options.track < count) return {*options.track, *options.track + 1};
    throw FileError(fmt::format("has no track {}: it has {} track{}, counted from 0",
                                *options.track, count, count == 1 ? "" : "s"));
}

}  // namespace avitool
