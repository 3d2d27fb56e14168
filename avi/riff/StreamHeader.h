// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <media/NdkMediaFormat.h>
#include <stdint.h>
#include <utils/Errors.h>

#include "FileReader.h"
#include "Track.h"

namespace android {

// Of the main header, in pixels; 0 for one that a writer left out.
struct FrameSize {
    uint32_t width = 0;
    uint32_t height = 0;
};

// Reads a stream header: the kind of the stream, its time base and its length. A video track gets
// its frame rate and display size, and `fileMeta` its duration. ERROR_MALFORMED for a chunk that is
// too short, ERROR_IO.
status_t parseSTRH(FileReader& reader, int64_t start, int64_t end, const FrameSize& frameSize,
                   AMediaFormat* fileMeta, Track* track);

}  // namespace android
