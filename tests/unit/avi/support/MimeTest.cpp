// SPDX-License-Identifier: Apache-2.0

#include "avi/support/Mime.h"

#include <gtest/gtest.h>

namespace android {
namespace {

TEST(Mime, IsComparedWithoutRegardToCase) {
    EXPECT_TRUE(isMime("audio/raw", "audio/raw"));
    EXPECT_TRUE(isMime("AUDIO/Raw", "audio/rAW"));
}

TEST(Mime, IsComparedAsAWhole) {
    EXPECT_FALSE(isMime("audio/raw", "audio/ra"));
    EXPECT_FALSE(isMime("audio/raw", "audio/raw2"));
    EXPECT_FALSE(isMime("audio/raw", "video/raw"));
    EXPECT_FALSE(isMime("", "audio/raw"));
}

TEST(Mime, UnknownTracksKeepTheirKind) {
    EXPECT_STREQ("video/x-unknown", MEDIA_MIMETYPE_AVI_VIDEO_UNKNOWN);
    EXPECT_STREQ("audio/x-unknown", kMimeAudioUnknown);
}

}  // namespace
}  // namespace android
