// SPDX-License-Identifier: Apache-2.0
//
// The ways in which a read fails. Each logs the failure with the line it was found in and is the
// status of the read.
#pragma once

#include <media/MediaExtractorPluginHelper.h>

#include "source/LogPrefix.h"

namespace android {

media_status_t endOfStream(const LogPrefix& prefix, int line);
media_status_t unknownError(const LogPrefix& prefix, int line);

// The chunk's data could not be had. One that the file does not hold ends the stream: the rest of
// the file is missing.
media_status_t shortRead(const SourceTrack& track, const Chunk& chunk, int line);

// No second buffer, or no data for it: what was loaded of the chunk is lost.
media_status_t bufferFailure(const SourceTrack& track, const Chunk& chunk, int line);

}  // namespace android
