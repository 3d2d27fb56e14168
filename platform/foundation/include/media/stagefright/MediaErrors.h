// SPDX-License-Identifier: Apache-2.0
//
// Status values of the media framework, an extension of status_t's own (utils/Errors.h). They cross
// the border between the plug-in and the framework as numbers, so the values may never change.
#pragma once

#include <utils/Errors.h>

namespace android {

enum {
    MEDIA_ERROR_BASE = -1000,

    ERROR_ALREADY_CONNECTED = MEDIA_ERROR_BASE,
    ERROR_NOT_CONNECTED = MEDIA_ERROR_BASE - 1,
    ERROR_UNKNOWN_HOST = MEDIA_ERROR_BASE - 2,
    ERROR_CANNOT_CONNECT = MEDIA_ERROR_BASE - 3,
    ERROR_IO = MEDIA_ERROR_BASE - 4,
    ERROR_CONNECTION_LOST = MEDIA_ERROR_BASE - 5,
    // MEDIA_ERROR_BASE - 6 is not in use.
    ERROR_MALFORMED = MEDIA_ERROR_BASE - 7,
    ERROR_OUT_OF_RANGE = MEDIA_ERROR_BASE - 8,
    ERROR_BUFFER_TOO_SMALL = MEDIA_ERROR_BASE - 9,
    ERROR_UNSUPPORTED = MEDIA_ERROR_BASE - 10,
    ERROR_END_OF_STREAM = MEDIA_ERROR_BASE - 11,

    // Not errors: a reader answers these when it has news instead of data.
    INFO_FORMAT_CHANGED = MEDIA_ERROR_BASE - 12,
    INFO_DISCONTINUITY = MEDIA_ERROR_BASE - 13,
    INFO_OUTPUT_BUFFERS_CHANGED = MEDIA_ERROR_BASE - 14,
};

}  // namespace android
