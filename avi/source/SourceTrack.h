// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <stdint.h>

#include <string>

#include "FileReader.h"
#include "Track.h"

namespace android {

// What a source knows of its track, copied once: a source built later may see another duration,
// this one does not change any more. Read-only afterwards, but for the key flags that seeks correct
// in the table.
struct SourceTrack {
    // `track` and `reader` belong to the extractor, which outlives its sources. A format without a
    // MIME type aborts.
    SourceTrack(Track* track, const FileReader& reader);

    const FileReader& reader;
    SampleTable& table;
    TrackInfo info;
    // Asking a format for a string writes to it, so the type is asked for before any other thread
    // can copy the format.
    std::string mime;
    int64_t durationUs = 0;
    int32_t bitRate = 0;  // in bits per second, 0 when unknown

    bool isVideo = false;
    bool isAudio = false;  // neither: a subtitle
    bool isRawPcm = false;
    bool isMpeg4 = false;
    bool isAvc = false;
    bool isHevc = false;
    bool isWvc1 = false;
};

}  // namespace android
