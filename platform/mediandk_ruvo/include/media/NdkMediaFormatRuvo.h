// SPDX-License-Identifier: Apache-2.0
//
// Format keys that the device adds to those of the public NDK. Usable from C and C++.

#pragma once

#include <media/NdkMediaFormat.h>

#ifdef __cplusplus
extern "C" {
#endif
#pragma GCC visibility push(default)

/// int32: the generation of Windows Media Audio that an audio track holds, 1 to 3.
extern const char* AMEDIAFORMAT_KEY_AUDIO_FORMAT;
/// int32: the decoder profile that goes with the generation.
extern const char* AMEDIAFORMAT_KEY_AUDIO_PROFILE;
/// int32: bytes of one indivisible block of an audio track.
extern const char* AMEDIAFORMAT_KEY_BLOCKALIGN;
/// int32: not 0 when the file holds a video stream that the device cannot play.
extern const char* AMEDIAFORMAT_KEY_HAS_UNSUPPORT_VIDEO;

#pragma GCC visibility pop
#ifdef __cplusplus
}  // extern "C"
#endif
