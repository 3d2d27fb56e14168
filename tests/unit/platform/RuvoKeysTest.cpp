// SPDX-License-Identifier: Apache-2.0
//
// The device's own format keys.

#include <gtest/gtest.h>
#include <media/NdkMediaFormatRuvo.h>

namespace {

TEST(RuvoKeys, HaveTheirStrings) {
    EXPECT_STREQ("audio-format", AMEDIAFORMAT_KEY_AUDIO_FORMAT);
    EXPECT_STREQ("audio-profile", AMEDIAFORMAT_KEY_AUDIO_PROFILE);
    EXPECT_STREQ("blockalign", AMEDIAFORMAT_KEY_BLOCKALIGN);
    EXPECT_STREQ("has-unsupport-video", AMEDIAFORMAT_KEY_HAS_UNSUPPORT_VIDEO);
}

TEST(RuvoKeys, NameSeparateEntries) {
    AMediaFormat* format = AMediaFormat_new();
    AMediaFormat_setInt32(format, AMEDIAFORMAT_KEY_AUDIO_FORMAT, 1);
    AMediaFormat_setInt32(format, AMEDIAFORMAT_KEY_AUDIO_PROFILE, 2);
    AMediaFormat_setInt32(format, AMEDIAFORMAT_KEY_BLOCKALIGN, 3);
    AMediaFormat_setInt32(format, AMEDIAFORMAT_KEY_HAS_UNSUPPORT_VIDEO, 4);
    EXPECT_STREQ(
        "audio-format: int32(1), audio-profile: int32(2), blockalign: int32(3), "
        "has-unsupport-video: int32(4)}",
        AMediaFormat_toString(format));
    AMediaFormat_delete(format);
}

}  // namespace
