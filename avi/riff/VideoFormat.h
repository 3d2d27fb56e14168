// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "AviFile.h"
#include "FileReader.h"
#include "riff/StreamFormat.h"

namespace android {

// True for the bitmap header of a subtitle stream: subtitles are stored as a video stream of their
// own compression.
bool isSubtitleFormat(const StreamFormat& format);

// Identifies the codec of a video or subtitle stream by its bitmap header, fills the track's format
// and publishes configuration that stands after the header.
void applyBitmapInfo(FileReader& reader, const StreamFormat& format, AMediaFormat* fileMeta,
                     Track* track);

}  // namespace android
