// SPDX-License-Identifier: Apache-2.0
//
// A file of video and two audio streams, in which it shows where audio goes after a video seek: at
// 25 frames a second and with a key frame every 10, video asked for 1300 ms lands at 1200 ms, and
// audio in chunks of 100 or 50 ms has different chunks for these times. One thread.

#pragma once

#include "tests/behaviour/seeking/SeekingFixture.h"

namespace avitest {

constexpr int64_t kAskedUs = 1300000;
constexpr int64_t kLandedUs = 1200000;

class FollowingTest : public SeekingTest {
  protected:
    static constexpr size_t kVideo = 0;
    static constexpr size_t kFirst = 1;   // 40 chunks of 100 ms
    static constexpr size_t kSecond = 2;  // 80 chunks of 50 ms
    static constexpr int kFirstAsked = 13;
    static constexpr int kFirstLanded = 12;
    static constexpr int kSecondAsked = 26;
    static constexpr int kSecondLanded = 24;

    static AviFile followingFile(const std::string& kinds = groups(10, 10)) {
        AviFile avi;
        addFrames(avi, avi.addStream(mpeg4Stream()), kinds);
        addAudio(avi, avi.addStream(alawStream()), std::vector<size_t>(40, 800));
        addAudio(avi, avi.addStream(alawStream()), std::vector<size_t>(80, 400));
        return avi;
    }
    void SetUp() override {
        AviFile avi = followingFile();
        open(avi);
        ASSERT_EQ(countTracks(), 3u);
    }
};

}  // namespace avitest
