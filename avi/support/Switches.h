// SPDX-License-Identifier: Apache-2.0
//
// The process-wide switches. Every extractor sets them from the system properties when it is
// constructed, and any source reads them from its own thread: plain flags without ordering.
#pragma once

#include <atomic>

namespace android {

struct Switches {
    std::atomic<bool> extractLog{false};    // what the parsers find, field by field
    std::atomic<bool> verboseLog{false};    // one line a chunk
    std::atomic<bool> disableAudio{false};  // audio streams are dropped while parsing
};

extern Switches gSwitches;

inline bool extractLogEnabled() {
    return gSwitches.extractLog.load(std::memory_order_relaxed);
}

inline bool verboseLogEnabled() {
    return gSwitches.verboseLog.load(std::memory_order_relaxed);
}

inline bool audioDisabled() {
    return gSwitches.disableAudio.load(std::memory_order_relaxed);
}

// Sets all switches from the system properties; a property that is unset counts as "0".
void readSwitches();

}  // namespace android
