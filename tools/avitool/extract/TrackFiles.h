// SPDX-License-Identifier: Apache-2.0
// The two files of a track: its stream, and a list of the samples in it as comma-separated values.
// Both get their names in publish(), or neither. One thread.
#pragma once

#include <cstdint>
#include <filesystem>
#include <stdexcept>

#include "service/BufferHandle.h"
#include "tools/avitool/extract/PartialFile.h"
#include "tools/avitool/extract/StreamForm.h"

namespace avitool {

/** A sample that the track's form has no place for; what() says which, for people. */
class SampleError : public std::runtime_error {
  public:
    using std::runtime_error::runtime_error;
};

class TrackFiles {
  public:
    /** `form` is borrowed. Throws WriteError. */
    TrackFiles(const StreamForm& form, const std::filesystem::path& stream,
               const std::filesystem::path& list);

    /** Appends a sample. Throws WriteError, or SampleError with the files as they were before. */
    void add(const android::service::BufferHandle& buffer);
    /** Completes both files and gives them their names. Throws WriteError. */
    void publish();

    uint64_t sampleCount() const { return mSamples; }
    /** Bytes of the stream's file, headers included. */
    uint64_t streamSize() const { return mStream.size(); }

  private:
    void begin(const uint8_t* sample, size_t size);

    const StreamForm& mForm;
    PartialFile mStream;
    PartialFile mList;
    bool mBegun = false;
    uint64_t mSamples = 0;
    uint64_t mSampleBytes = 0;
};

}  // namespace avitool
