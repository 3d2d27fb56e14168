// SPDX-License-Identifier: Apache-2.0
//
// What the parse of a file yields: filled by the parsers, owned by the extractor.
// Threading: as its tracks'.
#pragma once

#include "TrackList.h"
#include "support/MediaFormat.h"

namespace android {

struct AviFile {
    MediaFormatPtr meta{AMediaFormat_new()};  // the file's own format
    TrackList tracks;
    Vector<sp<RuvoAVISeekTime>> audioSeekTimes;  // one record an audio track
};

}  // namespace android
