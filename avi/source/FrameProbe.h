// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <stddef.h>
#include <stdint.h>

#include <optional>

#include "source/FrameType.h"
#include "source/SourceTrack.h"

namespace android {

// The type of a frame of the track, by its codec's rules.
FrameType getFrameType(const SourceTrack& track, const uint8_t* data, size_t size);

// How much of a frame is examined for its type before it is read.
constexpr size_t kProbedBytes = 256;

// The type of frame i by its first bytes as they lie in the file; none when they cannot be read.
// REQUIRES: i < table size.
std::optional<FrameType> probeFrame(const SourceTrack& track, size_t i);

}  // namespace android
