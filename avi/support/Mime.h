// SPDX-License-Identifier: Apache-2.0
//
// MIME types of tracks: the platform's constants, and the names for what has none.
#pragma once

#include <strings.h>

namespace android {

constexpr char MEDIA_MIMETYPE_AVI_VIDEO_UNKNOWN[] = "video/x-unknown";
constexpr char kMimeAudioUnknown[] = "audio/x-unknown";
constexpr char kMimeSubtitle[] = "text/vobsub";
constexpr char kMimeUndecided[] = "application/octet-stream";

// MIME types are compared without regard to case.
inline bool isMime(const char* mime, const char* other) {
    return strcasecmp(mime, other) == 0;
}

}  // namespace android
