// SPDX-License-Identifier: Apache-2.0
// What the commands have in common: which tracks they work on, and what they do about problems of
// the file. One thread.
#pragma once

#include <new>
#include <optional>
#include <string>
#include <vector>

#include "tools/avitool/Console.h"
#include "tools/avitool/OpenedFile.h"
#include "tools/avitool/Options.h"
#include "tools/avitool/Report.h"

namespace avitool {

/** A line for each failure of the track. */
std::vector<std::string> problemsOf(const TrackReport& track);

/** Reports each failure of the track in a line. Throws OutputError. */
void complainAbout(const std::string& path, const TrackReport& track, Console& console);

/** Tracks from `first` to before `end`. */
struct TrackRange {
    size_t first = 0;
    size_t end = 0;
};

/** The tracks that --track selects, or all. Throws FileError when there is no such track. */
TrackRange wantedTracks(const OpenedFile& file, const Options& options);

/** Runs `work` and returns what went wrong with the file in it, if anything. Throws OutputError. */
template <typename Work>
std::optional<std::string> problemOf(const Work& work) {
    try {
        work();
    } catch (const OutputError&) {
        throw;  // no fault of the file
    } catch (const std::bad_alloc&) {
        return "not enough memory";
    } catch (const std::exception& error) {
        return error.what();
    }
    return std::nullopt;
}

}  // namespace avitool
