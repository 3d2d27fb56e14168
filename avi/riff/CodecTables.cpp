// SPDX-License-Identifier: Apache-2.0
#include "riff/CodecTables.h"

#include <media/stagefright/foundation/MediaDefs.h>

#include "support/Log.h"
#include "support/Mime.h"

namespace android {

namespace {

// The platform's MIME types are variables of a library, so the tables hold their addresses.
struct FourCCRow {
    FourCC code;  // in lower case
    const char* const* mime;
};

constexpr const char* kVobSub = kMimeSubtitle;

constexpr FourCCRow kVideoCodecs[] = {
    {fourcc("avc1"), &MEDIA_MIMETYPE_VIDEO_AVC},
    {fourcc("h264"), &MEDIA_MIMETYPE_VIDEO_AVC},
    {fourcc("vssh"), &MEDIA_MIMETYPE_VIDEO_AVC},
    {fourcc("hvc1"), &MEDIA_MIMETYPE_VIDEO_HEVC},
    {fourcc("hev1"), &MEDIA_MIMETYPE_VIDEO_HEVC},
    {fourcc("hevc"), &MEDIA_MIMETYPE_VIDEO_HEVC},
    {fourcc("mp4v"), &MEDIA_MIMETYPE_VIDEO_MPEG4},
    {fourcc("mp4s"), &MEDIA_MIMETYPE_VIDEO_MPEG4},
    {fourcc("m4s2"), &MEDIA_MIMETYPE_VIDEO_MPEG4},
    {fourcc("fmp4"), &MEDIA_MIMETYPE_VIDEO_MPEG4},
    {fourcc("3iv2"), &MEDIA_MIMETYPE_VIDEO_MPEG4},
    {fourcc("ap41"), &MEDIA_MIMETYPE_VIDEO_MPEG4},
    {fourcc("col1"), &MEDIA_MIMETYPE_VIDEO_MPEG4},
    {fourcc("navi"), &MEDIA_MIMETYPE_VIDEO_MPEG4},
    {fourcc("fvfw"), &MEDIA_MIMETYPE_VIDEO_MPEG4},
    // MPEG-2 decoders play MPEG-1 too, and the platform has no type for it.
    {fourcc("mpg1"), &MEDIA_MIMETYPE_VIDEO_MPEG2},
    {fourcc("mpg2"), &MEDIA_MIMETYPE_VIDEO_MPEG2},
    {fourcc("mpeg"), &MEDIA_MIMETYPE_VIDEO_MPEG2},
    {fourcc("mpgv"), &MEDIA_MIMETYPE_VIDEO_MPEG2},
    {fourcc("h263"), &MEDIA_MIMETYPE_VIDEO_H263},
    {fourcc("s263"), &MEDIA_MIMETYPE_VIDEO_H263},
    {fourcc("wmv3"), &MEDIA_MIMETYPE_VIDEO_WMV},
    {fourcc("wvc1"), &MEDIA_MIMETYPE_VIDEO_VC1},
    {fourcc("flv1"), &MEDIA_MIMETYPE_VIDEO_FLV},
    {fourcc("vp6f"), &MEDIA_MIMETYPE_VIDEO_VP6},
    {fourcc("vp80"), &MEDIA_MIMETYPE_VIDEO_VP8},
    {fourcc("mjpg"), &MEDIA_MIMETYPE_VIDEO_MJPEG},
    // Some writers store audio in streams that they declare as video.
    {fourcc("mp4a"), &MEDIA_MIMETYPE_AUDIO_AAC},
    {fourcc("samr"), &MEDIA_MIMETYPE_AUDIO_AMR_NB},
    {fourcc("sawb"), &MEDIA_MIMETYPE_AUDIO_AMR_WB},
    {fourcc("dxsa"), &kVobSub},
    {fourcc("dxsb"), &kVobSub},
};

struct FormatTagRow {
    uint16_t tag;
    const char* const* mime;
};

constexpr FormatTagRow kAudioCodecs[] = {
    {0x0001, &MEDIA_MIMETYPE_AUDIO_RAW},           {0x0002, &MEDIA_MIMETYPE_AUDIO_MS_ADPCM},
    {0x0006, &MEDIA_MIMETYPE_AUDIO_G711_ALAW},     {0x0007, &MEDIA_MIMETYPE_AUDIO_G711_MLAW},
    {0x0011, &MEDIA_MIMETYPE_AUDIO_DVI_IMA_ADPCM}, {0x0050, &MEDIA_MIMETYPE_AUDIO_MPEG},
    {0x0055, &MEDIA_MIMETYPE_AUDIO_MPEG},          {0x0057, &MEDIA_MIMETYPE_AUDIO_AMR_NB},
    {0x0058, &MEDIA_MIMETYPE_AUDIO_AMR_WB},        {0x00FF, &MEDIA_MIMETYPE_AUDIO_AAC},
    {0x0101, &MEDIA_MIMETYPE_AUDIO_G711_MLAW},     {0x0102, &MEDIA_MIMETYPE_AUDIO_G711_ALAW},
    {0x0160, &MEDIA_MIMETYPE_AUDIO_WMA},           {0x0161, &MEDIA_MIMETYPE_AUDIO_WMA},
    {0x0162, &MEDIA_MIMETYPE_AUDIO_WMAPRO},        {0x2000, &MEDIA_MIMETYPE_AUDIO_AC3},
    {0x2001, &MEDIA_MIMETYPE_AUDIO_DTS},           {0x4143, &MEDIA_MIMETYPE_AUDIO_AAC},
    {0x566F, &MEDIA_MIMETYPE_AUDIO_VORBIS},        {0x674F, &MEDIA_MIMETYPE_AUDIO_VORBIS},
    {0x6750, &MEDIA_MIMETYPE_AUDIO_VORBIS},        {0x6751, &MEDIA_MIMETYPE_AUDIO_VORBIS},
    {0x676F, &MEDIA_MIMETYPE_AUDIO_VORBIS},        {0x6770, &MEDIA_MIMETYPE_AUDIO_VORBIS},
    {0x6771, &MEDIA_MIMETYPE_AUDIO_VORBIS},        {0x706D, &MEDIA_MIMETYPE_AUDIO_AAC},
    {0x7A21, &MEDIA_MIMETYPE_AUDIO_AMR_NB},        {0x7A22, &MEDIA_MIMETYPE_AUDIO_AMR_NB},
};

constexpr FourCC kSelfContainedCodecs[] = {
    fourcc("col1"), fourcc("flv1"), fourcc("vp80"), fourcc("ap41"), fourcc("h263"),
    fourcc("s263"), fourcc("vp6f"), fourcc("mjpg"), fourcc("navi"),
};

}  // namespace

const char* videoFourCCToMime(FourCC compression) {
    AVI_LOGV("BFourCC2MIME fourcc 0x%08x:%c%c%c%c", FOURCC_ARGS(compression));
    const FourCC folded = toLower(compression);
    for (const FourCCRow& row : kVideoCodecs) {
        if (row.code == folded) return *row.mime;
    }
    AVI_LOGW("unknown fourcc 0x%08x:%c%c%c%c", FOURCC_ARGS(compression));
    return MEDIA_MIMETYPE_AVI_VIDEO_UNKNOWN;
}

const char* waveFormatTagToMime(uint16_t formatTag) {
    for (const FormatTagRow& row : kAudioCodecs) {
        if (row.tag == formatTag) return *row.mime;
    }
    AVI_LOGW("unknown wave %x", formatTag);
    return kMimeAudioUnknown;
}

bool needsCodecData(FourCC compression) {
    const FourCC folded = toLower(compression);
    if (folded == fourcc("mjpg")) {
        AVI_LOGW("mjpeg fourcc 0x%08x:%c%c%c%c", FOURCC_ARGS(compression));
    }
    for (const FourCC code : kSelfContainedCodecs) {
        if (code == folded) return false;
    }
    return true;
}

}  // namespace android
