// SPDX-License-Identifier: Apache-2.0
// How `avitool samples` shows a file, sample by sample while it is read. The console is borrowed.
// Calls come in the order begin, (beginTrack, sample..., endTrack)..., finish. One thread.
#pragma once

#include <memory>
#include <string>

#include "tools/avitool/Console.h"
#include "tools/avitool/Report.h"

namespace avitool {

class SamplePrinter {
  public:
    SamplePrinter() = default;
    SamplePrinter(const SamplePrinter&) = delete;
    SamplePrinter& operator=(const SamplePrinter&) = delete;
    virtual ~SamplePrinter() = default;

    // Each throws OutputError.
    virtual void begin(const std::string& path) = 0;
    virtual void beginTrack(const TrackReport& track) = 0;
    virtual void sample(const TrackReport& track, const SampleReport& sample) = 0;
    /** `track.read` is now complete. */
    virtual void endTrack(const TrackReport& track) = 0;
    /** The file's end; `error` when it, or the rest of it, could not be shown. */
    virtual void finish(const std::optional<std::string>& error) = 0;
};

/** For people: a line a sample. */
std::unique_ptr<SamplePrinter> makeTextSamples(Console& console);
/** One object, written as the samples come: memory does not grow with the file. */
std::unique_ptr<SamplePrinter> makeJsonSamples(Console& console);

}  // namespace avitool
