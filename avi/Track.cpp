// SPDX-License-Identifier: Apache-2.0
#include "Track.h"

#include "support/Check.h"

namespace android {

const char* const AMEDIAFORMAT_KEY_AVI_AV_BIT_RATE = "av-bitrate";

const char* trackMime(const Track& track) {
    const char* mime = nullptr;
    AVI_CHECK_TEXT(AMediaFormat_getString(track.meta.get(), AMEDIAFORMAT_KEY_MIME, &mime),
                   "AMediaFormat_getString(track->meta, AMEDIAFORMAT_KEY_MIME, &mime)");
    return mime;
}

}  // namespace android
