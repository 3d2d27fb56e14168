// SPDX-License-Identifier: Apache-2.0
//
// The MIME types that streams are known by: of video by its compression, of audio by its format
// tag. What is not here is unknown. Plain constants.

#pragma once

#include <cstdint>

namespace avitest {

struct VideoCodecRow {
    const char* code;  // in lower case
    const char* mime;
};

struct AudioCodecRow {
    uint16_t tag;
    const char* mime;
};

// The subtitle codes, dxsa and dxsb, do not make video tracks and are not among them.
inline constexpr VideoCodecRow kVideoCodecs[] = {
    {"avc1", "video/avc"},           {"h264", "video/avc"},
    {"vssh", "video/avc"},           {"hvc1", "video/hevc"},
    {"hev1", "video/hevc"},          {"hevc", "video/hevc"},
    {"mp4v", "video/mp4v-es"},       {"mp4s", "video/mp4v-es"},
    {"m4s2", "video/mp4v-es"},       {"fmp4", "video/mp4v-es"},
    {"3iv2", "video/mp4v-es"},       {"ap41", "video/mp4v-es"},
    {"col1", "video/mp4v-es"},       {"navi", "video/mp4v-es"},
    {"fvfw", "video/mp4v-es"},       {"mpg1", "video/mpeg2"},
    {"mpg2", "video/mpeg2"},         {"mpeg", "video/mpeg2"},
    {"mpgv", "video/mpeg2"},         {"h263", "video/3gpp"},
    {"s263", "video/3gpp"},          {"wmv3", "video/x-ms-wmv"},
    {"wvc1", "video/wvc1"},          {"flv1", "video/x-flv"},
    {"vp6f", "video/x-vnd.on2.vp6"}, {"vp80", "video/x-vnd.on2.vp8"},
    {"mjpg", "video/x-motion-jpeg"}, {"mp4a", "audio/mp4a-latm"},
    {"samr", "audio/3gpp"},          {"sawb", "audio/amr-wb"},
};

inline constexpr AudioCodecRow kAudioCodecs[] = {
    {0x0001, "audio/raw"},
    {0x0002, "audio/x-adpcm-ms"},
    {0x0006, "audio/g711-alaw"},
    {0x0102, "audio/g711-alaw"},
    {0x0007, "audio/g711-mlaw"},
    {0x0101, "audio/g711-mlaw"},
    {0x0011, "audio/x-adpcm-dvi-ima"},
    {0x0050, "audio/mpeg"},
    {0x0055, "audio/mpeg"},
    {0x0057, "audio/3gpp"},
    {0x0058, "audio/amr-wb"},
    {0x00FF, "audio/mp4a-latm"},
    {0x4143, "audio/mp4a-latm"},
    {0x706D, "audio/mp4a-latm"},
    {0x0160, "audio/x-ms-wma"},
    {0x0161, "audio/x-ms-wma"},
    {0x0162, "audio/x-ms-wmapro"},
    {0x2000, "audio/ac3"},
    {0x2001, "audio/vnd.dts"},
    {0x566F, "audio/vorbis"},
    {0x674F, "audio/vorbis"},
    {0x6750, "audio/vorbis"},
    {0x6751, "audio/vorbis"},
    {0x676F, "audio/vorbis"},
    {0x6770, "audio/vorbis"},
    {0x6771, "audio/vorbis"},
    {0x7A21, "audio/3gpp"},
    {0x7A22, "audio/3gpp"},
};

}  // namespace avitest
