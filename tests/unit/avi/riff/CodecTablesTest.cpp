// SPDX-License-Identifier: Apache-2.0

#include "avi/riff/CodecTables.h"

#include <map>
#include <set>
#include <string>

#include <gtest/gtest.h>

#include "tests/support/LogCapture.h"

namespace android {

using avitest::LogCapture;
using avitest::Logged;

namespace {

const std::map<std::string, std::string> kVideoMimes = {
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
    {"dxsa", "text/vobsub"},         {"dxsb", "text/vobsub"},
};

const std::map<uint32_t, std::string> kAudioMimes = {
    {0x0001, "audio/raw"},
    {0x0002, "audio/x-adpcm-ms"},
    {0x0006, "audio/g711-alaw"},
    {0x0007, "audio/g711-mlaw"},
    {0x0011, "audio/x-adpcm-dvi-ima"},
    {0x0050, "audio/mpeg"},
    {0x0055, "audio/mpeg"},
    {0x0057, "audio/3gpp"},
    {0x0058, "audio/amr-wb"},
    {0x00FF, "audio/mp4a-latm"},
    {0x0101, "audio/g711-mlaw"},
    {0x0102, "audio/g711-alaw"},
    {0x0160, "audio/x-ms-wma"},
    {0x0161, "audio/x-ms-wma"},
    {0x0162, "audio/x-ms-wmapro"},
    {0x2000, "audio/ac3"},
    {0x2001, "audio/vnd.dts"},
    {0x4143, "audio/mp4a-latm"},
    {0x566F, "audio/vorbis"},
    {0x674F, "audio/vorbis"},
    {0x6750, "audio/vorbis"},
    {0x6751, "audio/vorbis"},
    {0x676F, "audio/vorbis"},
    {0x6770, "audio/vorbis"},
    {0x6771, "audio/vorbis"},
    {0x706D, "audio/mp4a-latm"},
    {0x7A21, "audio/3gpp"},
    {0x7A22, "audio/3gpp"},
};

FourCC codeOf(const std::string& text) {
    return makeFourCC(static_cast<uint8_t>(text[0]), static_cast<uint8_t>(text[1]),
                      static_cast<uint8_t>(text[2]), static_cast<uint8_t>(text[3]));
}

// The code with the letters of the set bits in upper case.
std::string withCase(std::string code, unsigned bits) {
    for (unsigned i = 0; i < code.size(); ++i) {
        const bool letter = code[i] >= 'a' && code[i] <= 'z';
        if (letter && (bits >> i & 1) != 0) code[i] = static_cast<char>(code[i] - 'a' + 'A');
    }
    return code;
}

}  // namespace

TEST(VideoFourCCToMime, KnowsEveryCodeInEveryCase) {
    const LogCapture log;
    for (const auto& [code, mime] : kVideoMimes) {
        for (unsigned bits = 0; bits < 16; ++bits) {
            const std::string spelled = withCase(code, bits);
            EXPECT_EQ(mime, videoFourCCToMime(codeOf(spelled))) << spelled;
        }
    }
    EXPECT_EQ(0u, log.count("unknown fourcc"));
}

TEST(VideoFourCCToMime, KnowsNoNeighbourOfACode) {
    const LogCapture log;
    for (const auto& [code, mime] : kVideoMimes) {
        for (size_t at = 0; at < 4; ++at) {
            for (unsigned value = 0; value < 256; ++value) {
                std::string other = code;
                other[at] = static_cast<char>(value);
                std::string folded = other;
                for (char& c : folded)
                    c = c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c;
                const auto known = kVideoMimes.find(folded);
                ASSERT_EQ(known == kVideoMimes.end() ? "video/x-unknown" : known->second,
                          videoFourCCToMime(codeOf(other)))
                    << other;
            }
        }
    }
}

TEST(VideoFourCCToMime, UnknownCodeIsReportedAsItIs) {
    const LogCapture log;
    EXPECT_STREQ("video/x-unknown", videoFourCCToMime(fourcc("XviD")));
    EXPECT_THAT(log, Logged(ANDROID_LOG_WARN, "unknown fourcc 0x44697658:XviD"));
}

TEST(WaveFormatTagToMime, KnowsExactlyTheTagsOfTheTable) {
    const LogCapture log;
    for (uint32_t tag = 0; tag <= 0xFFFF; ++tag) {
        const auto known = kAudioMimes.find(tag);
        ASSERT_EQ(known == kAudioMimes.end() ? "audio/x-unknown" : known->second,
                  waveFormatTagToMime(static_cast<uint16_t>(tag)))
            << tag;
    }
    EXPECT_EQ(0x10000u - kAudioMimes.size(), log.count("unknown wave "));
}

TEST(WaveFormatTagToMime, UnknownTagIsReportedInHexadecimal) {
    const LogCapture log;
    EXPECT_STREQ("audio/x-unknown", waveFormatTagToMime(0xFFFE));
    EXPECT_THAT(log, Logged(ANDROID_LOG_WARN, "unknown wave fffe"));
}

TEST(NeedsCodecData, OnlySelfContainedCodecsDoNot) {
    const LogCapture log;
    const std::set<std::string> kSelfContained = {"col1", "flv1", "vp80", "ap41", "h263",
                                                  "s263", "vp6f", "mjpg", "navi"};
    for (const auto& [code, mime] : kVideoMimes) {
        for (const std::string& spelled : {code, withCase(code, 15), withCase(code, 5)})
            EXPECT_EQ(kSelfContained.count(code) == 0, needsCodecData(codeOf(spelled))) << spelled;
    }
    EXPECT_TRUE(needsCodecData(fourcc("XVID")));
}

TEST(NeedsCodecData, MotionJpegIsReported) {
    const LogCapture log;
    EXPECT_FALSE(needsCodecData(fourcc("MJPG")));
    EXPECT_THAT(log, Logged(ANDROID_LOG_WARN, "mjpeg fourcc 0x47504a4d:MJPG"));
}

TEST(NeedsCodecData, OthersAreNotReported) {
    const LogCapture log;
    needsCodecData(fourcc("H263"));
    needsCodecData(fourcc("MJPA"));
    EXPECT_TRUE(log.lines().empty());
}

}  // namespace android
