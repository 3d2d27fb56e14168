// SPDX-License-Identifier: Apache-2.0
//
// What is logged when audio follows video: the records with the extract log, the times with the
// verbose log.

#include "tests/behaviour/seeking/FollowingFixture.h"

namespace avitest {
namespace {

using testing::Contains;
using testing::Not;

class FollowingLog : public FollowingTest {
  protected:
    // The lines of a seek on a new track object.
    std::vector<LogLine> linesOf(size_t trackIndex, int64_t timeUs) {
        StartedTrack started(track(trackIndex));
        const LogCapture log;
        chunkAt(started, kPrevious, timeUs);
        return seekLines(log);
    }
    void openWith(const char* property) {
        setProperty(property, "1");
        AviFile avi = followingFile();
        open(avi);
    }
    static size_t countOf(const std::vector<LogLine>& lines, const std::string& text) {
        size_t count = 0;
        for (const LogLine& line : lines)
            count += line.text.find(text) != std::string::npos ? 1 : 0;
        return count;
    }
};

TEST_F(FollowingLog, VideoTellsItsLandingTime) {
    openWith(kVerboseLogProperty);
    EXPECT_THAT(linesOf(kVideo, kAskedUs),
                Contains(verbose("[video/mp4v-es][0][30/100][I] set seekTime @1.200s for audio "
                                 "track(s).@L#")));
}

TEST_F(FollowingLog, VideoTellsTheTypeOfTheLandingFrame) {
    setProperty(kVerboseLogProperty, "1");
    const std::pair<char, const char*> kRows[] = {{'P', "[P]"}, {'B', "[B]"}, {'S', "[N/A]"}};
    for (const auto& [kind, letter] : kRows) {
        SCOPED_TRACE(letter);
        // No frame is marked as key, so that the first one is landed on.
        std::vector<Bytes> frames(2, mpeg4Frame('P', 0));
        frames[0] = mpeg4Frame(kind == 'S' ? 'P' : kind, 0);
        if (kind == 'S') frames[0][4] = 0xD0;  // a sprite has no type
        AviFile avi;
        const size_t video = avi.addStream(mpeg4Stream());
        for (const Bytes& frame : frames)
            avi.addChunk(video, frame, kNoFlags);
        open(avi);
        EXPECT_EQ(countOf(linesOf(0, 0), "[video/mp4v-es][0][0/2]" + std::string(letter) +
                                             " set seekTime @0.000s for audio track(s).@L#"),
                  1u);
    }
}

TEST_F(FollowingLog, AudioTellsWhatItTakes) {
    openWith(kVerboseLogProperty);
    chunkAt(kVideo, kPrevious, kAskedUs);
    EXPECT_THAT(linesOf(kSecond, kAskedUs),
                Contains(verbose("[audio/g711-alaw][2] get Audio seekTime @1.200s @L#")));
}

TEST_F(FollowingLog, AudioTellsThatItForgets) {
    openWith(kVerboseLogProperty);
    chunkAt(kVideo, kPrevious, kAskedUs);
    const LogLine reset =
        verbose("[audio/g711-alaw][1][12/40] reset seekTime to -1 after seeking.@L#");
    EXPECT_THAT(linesOf(kFirst, kAskedUs), Contains(reset));
    // Also when there was nothing to forget.
    EXPECT_THAT(linesOf(kFirst, kLandedUs), Contains(reset));
}

TEST_F(FollowingLog, NothingIsTakenWithoutALanding) {
    openWith(kVerboseLogProperty);
    EXPECT_EQ(countOf(linesOf(kFirst, kAskedUs), "get Audio seekTime"), 0u);
    chunkAt(kVideo, kPrevious, kAskedUs);
    EXPECT_EQ(countOf(linesOf(kFirst, 0), "get Audio seekTime"), 0u);
}

TEST_F(FollowingLog, TimesHaveThreeDecimals) {
    openWith(kVerboseLogProperty);
    EXPECT_EQ(countOf(linesOf(kVideo, 100), "set seekTime @0.000s for"), 1u);
    AviFile avi;
    addFrames(avi, avi.addStream(mpeg4Stream(30000, 1001)), groups(10, 10));
    addAudio(avi, avi.addStream(alawStream()), std::vector<size_t>(40, 800));
    open(avi);
    // 40 frames: 1334666 us.
    EXPECT_EQ(countOf(linesOf(0, 1400000), "set seekTime @1.334s for"), 1u);
}

TEST_F(FollowingLog, TimesNeedTheVerboseLog) {
    openWith(kExtractLogProperty);
    std::vector<LogLine> lines = linesOf(kVideo, kAskedUs);
    EXPECT_EQ(countOf(lines, "set seekTime @"), 0u);
    lines = linesOf(kFirst, kAskedUs);
    EXPECT_EQ(countOf(lines, "get Audio seekTime"), 0u);
    EXPECT_EQ(countOf(lines, "reset seekTime"), 0u);
}

TEST_F(FollowingLog, RecordsAreSetOneByOne) {
    openWith(kExtractLogProperty);
    const std::vector<LogLine> lines = linesOf(kVideo, kAskedUs);
    EXPECT_THAT(lines, Contains(verbose("[video/mp4v-es][1] set seekTimeUs 1200000")));
    EXPECT_THAT(lines, Contains(verbose("[video/mp4v-es][2] set seekTimeUs 1200000")));
    EXPECT_EQ(countOf(lines, "set seekTimeUs"), 2u);
}

TEST_F(FollowingLog, RecordsAreSearchedInOrder) {
    openWith(kExtractLogProperty);
    chunkAt(kVideo, kPrevious, kAskedUs);
    const std::vector<LogLine> lines = linesOf(kSecond, kAskedUs);
    EXPECT_THAT(lines, Contains(verbose("[audio/g711-alaw][2] VS [1 seekTimeUs 1200000]")));
    EXPECT_THAT(lines, Contains(verbose("[audio/g711-alaw][2] VS [2 seekTimeUs 1200000]")));
    EXPECT_THAT(lines, Contains(verbose("[[audio/g711-alaw][2] seekTimeUs -1] VS [1]")));
    EXPECT_THAT(lines, Contains(verbose("[[audio/g711-alaw][2] seekTimeUs -1] VS [2]")));
    EXPECT_THAT(linesOf(kSecond, kAskedUs),
                Contains(verbose("[audio/g711-alaw][2] VS [2 seekTimeUs -1]")));
}

TEST_F(FollowingLog, RecordsNeedTheExtractLog) {
    openWith(kVerboseLogProperty);
    EXPECT_EQ(countOf(linesOf(kVideo, kAskedUs), "seekTimeUs"), 0u);
    EXPECT_EQ(countOf(linesOf(kFirst, kAskedUs), "seekTimeUs"), 0u);
}

TEST_F(FollowingLog, EveryAudioTrackHasARecord) {
    for (const size_t index : {kFirst, kSecond})
        EXPECT_EQ(countOf(linesOf(index, kAskedUs), "not found!"), 0u);
}

}  // namespace
}  // namespace avitest
