// SPDX-License-Identifier: Apache-2.0
// How much of a file may be written without --force. A damaged index can list one chunk thousands
// of times: a small download would fill the disk. One thread.
#pragma once

#include <fmt/format.h>

#include <algorithm>
#include <cstdint>
#include <limits>

#include "tools/avitool/OpenedFile.h"

namespace avitool {

class WriteLimit {
  public:
    static WriteLimit none() { return WriteLimit(std::numeric_limits<uint64_t>::max()); }
    /** For a file of so many bytes: 16 times that, which no conversion comes near to, but at least
     * 64 KiB, since lists of samples and headers are longer than a file of nothing else. */
    static WriteLimit of(uint64_t fileSize) {
        constexpr uint64_t kMinBytes = 65536;
        const bool huge = fileSize > std::numeric_limits<uint64_t>::max() / kTimes;
        return huge ? none() : WriteLimit(std::max(fileSize * kTimes, kMinBytes));
    }

    /** To be called before `bytes` are written. Throws FileError when they are too many. */
    void spend(uint64_t bytes) {
        if (bytes > mLeft) {
            throw FileError(
                fmt::format("not extracted further, because --force is needed to write "
                            "more than {} bytes, {} times the size of the file",
                            mLimit, kTimes));
        }
        mLeft -= bytes;
    }

  private:
    static constexpr uint64_t kTimes = 16;
    explicit WriteLimit(uint64_t limit) : mLimit(limit), mLeft(limit) {}

    uint64_t mLimit;
    uint64_t mLeft;
};

}  // namespace avitool
