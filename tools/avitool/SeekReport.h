// SPDX-License-Identifier: Apache-2.0
// Where a seek in an opened file lands, track by track. Plain values and the function that gathers
// them. One thread.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "tools/avitool/OpenedFile.h"
#include "tools/avitool/Options.h"
#include "tools/avitool/Report.h"

namespace avitool {

/** The first read of a track after a seek: a sample, the end of the stream, or a failure. */
struct Landing {
    size_t track = 0;
    std::string mime;
    std::optional<SampleReport> sample;
    std::optional<int64_t> targetUs;      // the frame to show, where the sample only leads up to it
    std::optional<int64_t> differenceUs;  // to the video's landing; of audio tracks after a video
    bool endOfStream = false;
    uint64_t reads = 0;  // of the file, from the seek to the sample
    std::optional<Failure> failure;
};

struct SeekReport {
    std::string path;
    int64_t atUs = 0;
    SeekMode mode = SeekMode::kPreviousSync;
    std::optional<std::string> error;  // why there is no landing
    std::vector<Landing> landings;     // in the order of the seeks
};

/**
 * Starts the first video track and all audio tracks, and seeks in them as a player does: all to the
 * same time, the video first, since the audio follows it. Tracks without a format come last, with
 * their failure. Throws FileError when there is no track of these kinds.
 */
std::vector<Landing> seekTracks(const OpenedFile& file, int64_t atUs, SeekMode mode);

}  // namespace avitool
