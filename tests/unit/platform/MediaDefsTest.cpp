// SPDX-License-Identifier: Apache-2.0

#include <media/stagefright/foundation/MediaDefs.h>

#include <gtest/gtest.h>

namespace android {
namespace {

TEST(MediaDefs, VideoTypes) {
    EXPECT_STREQ(MEDIA_MIMETYPE_VIDEO_AVC, "video/avc");
    EXPECT_STREQ(MEDIA_MIMETYPE_VIDEO_HEVC, "video/hevc");
    EXPECT_STREQ(MEDIA_MIMETYPE_VIDEO_MPEG4, "video/mp4v-es");
    EXPECT_STREQ(MEDIA_MIMETYPE_VIDEO_H263, "video/3gpp");
    EXPECT_STREQ(MEDIA_MIMETYPE_VIDEO_MPEG2, "video/mpeg2");
    EXPECT_STREQ(MEDIA_MIMETYPE_VIDEO_VP8, "video/x-vnd.on2.vp8");
    EXPECT_STREQ(MEDIA_MIMETYPE_VIDEO_MJPEG, "video/x-motion-jpeg");
}

TEST(MediaDefs, AudioTypes) {
    EXPECT_STREQ(MEDIA_MIMETYPE_AUDIO_AAC, "audio/mp4a-latm");
    EXPECT_STREQ(MEDIA_MIMETYPE_AUDIO_AMR_NB, "audio/3gpp");
    EXPECT_STREQ(MEDIA_MIMETYPE_AUDIO_AMR_WB, "audio/amr-wb");
    EXPECT_STREQ(MEDIA_MIMETYPE_AUDIO_RAW, "audio/raw");
    EXPECT_STREQ(MEDIA_MIMETYPE_AUDIO_G711_ALAW, "audio/g711-alaw");
    EXPECT_STREQ(MEDIA_MIMETYPE_AUDIO_G711_MLAW, "audio/g711-mlaw");
    EXPECT_STREQ(MEDIA_MIMETYPE_AUDIO_AC3, "audio/ac3");
    EXPECT_STREQ(MEDIA_MIMETYPE_AUDIO_VORBIS, "audio/vorbis");
    EXPECT_STREQ(MEDIA_MIMETYPE_AUDIO_WMA, "audio/x-ms-wma");
    EXPECT_STREQ(MEDIA_MIMETYPE_AUDIO_MS_ADPCM, "audio/x-adpcm-ms");
    EXPECT_STREQ(MEDIA_MIMETYPE_AUDIO_DVI_IMA_ADPCM, "audio/x-adpcm-dvi-ima");
    EXPECT_STREQ(MEDIA_MIMETYPE_AUDIO_DTS, "audio/vnd.dts");
}

TEST(MediaDefs, MpegAudioLayersHaveTheirOwnTypes) {
    EXPECT_STREQ(MEDIA_MIMETYPE_AUDIO_MPEG, "audio/mpeg");
    EXPECT_STREQ(MEDIA_MIMETYPE_AUDIO_MPEG_LAYER_I, "audio/mpeg-L1");
    EXPECT_STREQ(MEDIA_MIMETYPE_AUDIO_MPEG_LAYER_II, "audio/mpeg-L2");
}

TEST(MediaDefs, AviContainer) {
    EXPECT_STREQ(MEDIA_MIMETYPE_CONTAINER_AVI, "video/avi");
}

TEST(MediaDefs, TypesOfTheDevicesOwnDecoders) {
    EXPECT_STREQ(MEDIA_MIMETYPE_VIDEO_WMV, "video/x-ms-wmv");
    EXPECT_STREQ(MEDIA_MIMETYPE_VIDEO_VC1, "video/wvc1");
    EXPECT_STREQ(MEDIA_MIMETYPE_VIDEO_FLV, "video/x-flv");
    EXPECT_STREQ(MEDIA_MIMETYPE_VIDEO_VP6, "video/x-vnd.on2.vp6");
    EXPECT_STREQ(MEDIA_MIMETYPE_AUDIO_WMAPRO, "audio/x-ms-wmapro");
}

}  // namespace
}  // namespace android
