// SPDX-License-Identifier: Apache-2.0
// A bar on standard error for work that takes a while. Shown only on a terminal and not before a
// second has passed; it is gone when the object is. One thread.
#pragma once

#include <chrono>
#include <cstddef>
#include <cstdint>
#include <string>

namespace avitool {

class Progress {
  public:
    /** `wanted` false: never shown. */
    explicit Progress(bool wanted);
    Progress(const Progress&) = delete;
    Progress& operator=(const Progress&) = delete;
    ~Progress() { clear(); }

    /** The track that is worked on, and its duration in microseconds; 0 if it is not known. */
    void beginTrack(size_t track, int64_t durationUs);
    /** Work has come to this time of the track, or to so many bytes. */
    void update(int64_t timeUs, uint64_t bytes);
    /** Takes the bar away. */
    void clear();

  private:
    using Clock = std::chrono::steady_clock;

    void show(const std::string& line);

    const bool mShown;
    Clock::time_point mNext;  // when it is drawn again
    size_t mTrack = 0;
    int64_t mDurationUs = 0;
    size_t mWidth = 0;  // of the line that is on the screen
};

}  // namespace avitool
