// SPDX-License-Identifier: Apache-2.0

#include <media/NdkMediaFormatRuvo.h>

const char* AMEDIAFORMAT_KEY_AUDIO_FORMAT = "audio-format";
const char* AMEDIAFORMAT_KEY_AUDIO_PROFILE = "audio-profile";
const char* AMEDIAFORMAT_KEY_BLOCKALIGN = "blockalign";
const char* AMEDIAFORMAT_KEY_HAS_UNSUPPORT_VIDEO = "has-unsupport-video";
