// SPDX-License-Identifier: Apache-2.0

#include <media/stagefright/foundation/MediaDefs.h>

namespace android {

const char* MEDIA_MIMETYPE_IMAGE_JPEG = "image/jpeg";
const char* MEDIA_MIMETYPE_IMAGE_ANDROID_HEIC = "image/vnd.android.heic";
const char* MEDIA_MIMETYPE_IMAGE_AVIF = "image/avif";

const char* MEDIA_MIMETYPE_VIDEO_VP8 = "video/x-vnd.on2.vp8";
const char* MEDIA_MIMETYPE_VIDEO_VP9 = "video/x-vnd.on2.vp9";
const char* MEDIA_MIMETYPE_VIDEO_AV1 = "video/av01";
const char* MEDIA_MIMETYPE_VIDEO_AVC = "video/avc";
const char* MEDIA_MIMETYPE_VIDEO_HEVC = "video/hevc";
const char* MEDIA_MIMETYPE_VIDEO_MPEG4 = "video/mp4v-es";
const char* MEDIA_MIMETYPE_VIDEO_H263 = "video/3gpp";
const char* MEDIA_MIMETYPE_VIDEO_MPEG2 = "video/mpeg2";
const char* MEDIA_MIMETYPE_VIDEO_RAW = "video/raw";
const char* MEDIA_MIMETYPE_VIDEO_MJPEG = "video/x-motion-jpeg";
const char* MEDIA_MIMETYPE_VIDEO_DOLBY_VISION = "video/dolby-vision";
const char* MEDIA_MIMETYPE_VIDEO_SCRAMBLED = "video/scrambled";

// The device's own decoders.
const char* MEDIA_MIMETYPE_VIDEO_WMV = "video/x-ms-wmv";
const char* MEDIA_MIMETYPE_VIDEO_VC1 = "video/wvc1";
const char* MEDIA_MIMETYPE_VIDEO_FLV = "video/x-flv";
const char* MEDIA_MIMETYPE_VIDEO_VP6 = "video/x-vnd.on2.vp6";
const char* MEDIA_MIMETYPE_AUDIO_WMAPRO = "audio/x-ms-wmapro";

const char* MEDIA_MIMETYPE_AUDIO_AMR_NB = "audio/3gpp";
const char* MEDIA_MIMETYPE_AUDIO_AMR_WB = "audio/amr-wb";
const char* MEDIA_MIMETYPE_AUDIO_MPEG = "audio/mpeg";
const char* MEDIA_MIMETYPE_AUDIO_MPEG_LAYER_I = "audio/mpeg-L1";
const char* MEDIA_MIMETYPE_AUDIO_MPEG_LAYER_II = "audio/mpeg-L2";
const char* MEDIA_MIMETYPE_AUDIO_MIDI = "audio/midi";
const char* MEDIA_MIMETYPE_AUDIO_AAC = "audio/mp4a-latm";
const char* MEDIA_MIMETYPE_AUDIO_AAC_ADTS = "audio/aac-adts";
const char* MEDIA_MIMETYPE_AUDIO_QCELP = "audio/qcelp";
const char* MEDIA_MIMETYPE_AUDIO_VORBIS = "audio/vorbis";
const char* MEDIA_MIMETYPE_AUDIO_OPUS = "audio/opus";
const char* MEDIA_MIMETYPE_AUDIO_G711_ALAW = "audio/g711-alaw";
const char* MEDIA_MIMETYPE_AUDIO_G711_MLAW = "audio/g711-mlaw";
const char* MEDIA_MIMETYPE_AUDIO_RAW = "audio/raw";
const char* MEDIA_MIMETYPE_AUDIO_FLAC = "audio/flac";
const char* MEDIA_MIMETYPE_AUDIO_MSGSM = "audio/gsm";
const char* MEDIA_MIMETYPE_AUDIO_AC3 = "audio/ac3";
const char* MEDIA_MIMETYPE_AUDIO_EAC3 = "audio/eac3";
const char* MEDIA_MIMETYPE_AUDIO_EAC3_JOC = "audio/eac3-joc";
const char* MEDIA_MIMETYPE_AUDIO_AC4 = "audio/ac4";
const char* MEDIA_MIMETYPE_AUDIO_ALAC = "audio/alac";
const char* MEDIA_MIMETYPE_AUDIO_WMA = "audio/x-ms-wma";
const char* MEDIA_MIMETYPE_AUDIO_MS_ADPCM = "audio/x-adpcm-ms";
const char* MEDIA_MIMETYPE_AUDIO_DVI_IMA_ADPCM = "audio/x-adpcm-dvi-ima";
const char* MEDIA_MIMETYPE_AUDIO_DTS = "audio/vnd.dts";
const char* MEDIA_MIMETYPE_AUDIO_DTS_HD = "audio/vnd.dts.hd";
const char* MEDIA_MIMETYPE_AUDIO_SCRAMBLED = "audio/scrambled";

const char* MEDIA_MIMETYPE_CONTAINER_MPEG4 = "video/mp4";
const char* MEDIA_MIMETYPE_CONTAINER_WAV = "audio/x-wav";
const char* MEDIA_MIMETYPE_CONTAINER_OGG = "application/ogg";
const char* MEDIA_MIMETYPE_CONTAINER_MATROSKA = "video/x-matroska";
const char* MEDIA_MIMETYPE_CONTAINER_MPEG2TS = "video/mp2ts";
const char* MEDIA_MIMETYPE_CONTAINER_MPEG2PS = "video/mp2p";
const char* MEDIA_MIMETYPE_CONTAINER_AVI = "video/avi";
const char* MEDIA_MIMETYPE_CONTAINER_HEIF = "image/heif";

const char* MEDIA_MIMETYPE_TEXT_3GPP = "text/3gpp-tt";
const char* MEDIA_MIMETYPE_TEXT_SUBRIP = "application/x-subrip";
const char* MEDIA_MIMETYPE_TEXT_VTT = "text/vtt";
const char* MEDIA_MIMETYPE_TEXT_CEA_608 = "text/cea-608";
const char* MEDIA_MIMETYPE_TEXT_CEA_708 = "text/cea-708";
const char* MEDIA_MIMETYPE_DATA_TIMED_ID3 = "application/x-id3v4";

}  // namespace android
