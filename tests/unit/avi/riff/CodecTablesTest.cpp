// SPDX-License-Identifier: Apache-2.0

#include "avi/riff/CodecTables.h"

#include <map>
#include <set>
#include <string>

#include <gtest/gtest.h>

#include "tests/support/CodecTable.h"
#include "tests/support/LogCapture.h"

namespace android {

using avitest::LogCapture;
using avitest::Logged;

namespace {

std::map<std::string, std::string> videoMimes() {
    std::map<std::string, std::string> mimes = {{"dxsa", "text/vobsub"}, {"dxsb", "text/vobsub"}};
    for (const auto& row : avitest::kVideoCodecs)
        mimes[row.code] = row.mime;
    return mimes;
}

std::map<uint32_t, std::string> audioMimes() {
    std::map<uint32_t, std::string> mimes;
    for (const auto& row : avitest::kAudioCodecs)
        mimes[row.tag] = row.mime;
    return mimes;
}

const std::map<std::string, std::string> kVideoMimes = videoMimes();
const std::map<uint32_t, std::string> kAudioMimes = audioMimes();

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
