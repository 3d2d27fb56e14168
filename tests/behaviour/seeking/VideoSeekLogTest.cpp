// SPDX-License-Identifier: Apache-2.0
//
// What a seek on a video track logs.

#include "tests/behaviour/seeking/SeekingFixture.h"

namespace avitest {
namespace {

using testing::Contains;
using testing::ElementsAre;
using testing::Not;

class VideoSeekLog : public SeekingTest {
  protected:
    // The lines of one seek on a new track object, without those of starting it.
    std::vector<LogLine> linesOf(uint32_t mode, int64_t timeUs) {
        StartedTrack video(track(0));
        const LogCapture log;
        chunkAt(video, mode, timeUs);
        return seekLines(log);
    }
    std::vector<std::string> landingTexts(uint32_t mode, int64_t timeUs) {
        return textsOf(linesOf(mode, timeUs));
    }
    void openTrusted() {
        AviFile avi = videoFile(groups(4, 50));
        open(avi);
    }
    void openUntrusted(const std::string& kinds) {
        AviFile avi = videoFile(kinds);
        dropIndex(avi);
        open(avi);
    }
    // The line before a backward walk's result.
    static std::string calculated(int index, int64_t timeUs) {
        return format("[video/mp4v-es] Calculated sample index %d @seekTime%lldus", index,
                      static_cast<long long>(timeUs));
    }
    static std::string landed(int index, int count, int64_t timeUs) {
        return format("[video/mp4v-es] seekTo sync index %d/%d nearby seekTime %lldus", index,
                      count, static_cast<long long>(timeUs));
    }
};

TEST_F(VideoSeekLog, BackwardWalkOfATrustedIndex) {
    openTrusted();
    for (const uint32_t mode : {kPrevious, kClosestSync, kClosest}) {
        SCOPED_TRACE(mode);
        EXPECT_THAT(
            landingTexts(mode, 3100000),
            ElementsAre(calculated(77, 3100000),
                        "[video/mp4v-es] seek mBrokenIndex:0 -- isSyncSample:1, index: 50 @L#",
                        landed(50, 200, 3100000)));
    }
}

// Whole frames become a float of 24 bits; the half is added in double precision.
TEST_F(VideoSeekLog, FrameNumbersHaveThePrecisionOfAFloat) {
    openTrusted();
    const std::pair<int64_t, int> kRows[] = {
        {8388609, 8388609}, {16777215, 16777215}, {16777217, 16777216}, {16777219, 16777220}};
    for (const auto& [frames, index] : kRows) {
        for (const int64_t timeUs : {frames * kFrameUs, (frames + 1) * kFrameUs - 1})
            EXPECT_THAT(landingTexts(kPrevious, timeUs), Contains(calculated(index, timeUs)));
    }
}

TEST_F(VideoSeekLog, ForwardWalkOfATrustedIndex) {
    openTrusted();
    EXPECT_THAT(landingTexts(kNext, 3100000),
                ElementsAre(calculated(77, 3100000),
                            "[video/mp4v-es] seek mBrokenIndex:0 -- isSyncSample:1, index:100 @L#",
                            landed(100, 200, 3100000)));
}

TEST_F(VideoSeekLog, CalculatedIndexIsADebugLine) {
    openTrusted();
    EXPECT_THAT(linesOf(kPrevious, 3100000), Contains(debug(calculated(77, 3100000))));
}

TEST_F(VideoSeekLog, NoLineNeedsASwitch) {
    openTrusted();
    const std::vector<std::string> without = landingTexts(kNext, 3100000);
    setProperty(kExtractLogProperty, "1");
    setProperty(kVerboseLogProperty, "1");
    openTrusted();
    const std::vector<std::string> with = landingTexts(kNext, 3100000);
    ASSERT_EQ(without.size(), 3u);
    for (const std::string& text : without)
        EXPECT_THAT(with, Contains(text));
}

TEST_F(VideoSeekLog, NegativeTimesAreLoggedAsZero) {
    openTrusted();
    EXPECT_THAT(landingTexts(kPrevious, -100000),
                ElementsAre(calculated(0, 0),
                            "[video/mp4v-es] seek mBrokenIndex:0 -- isSyncSample:1, index: 0 @L#",
                            landed(0, 200, 0)));
}

TEST_F(VideoSeekLog, CalculatedIndexIsLoggedUnbounded) {
    openTrusted();
    EXPECT_THAT(landingTexts(kPrevious, 40000000),
                ElementsAre(calculated(1000, 40000000),
                            "[video/mp4v-es] seek mBrokenIndex:0 -- isSyncSample:1, index: 150 @L#",
                            landed(150, 200, 40000000)));
    EXPECT_THAT(landingTexts(kNext, INT64_MAX), Contains(calculated(INT32_MAX, INT64_MAX)));
}

TEST_F(VideoSeekLog, ReachingTheEndIsAnError) {
    openTrusted();
    EXPECT_THAT(linesOf(kNext, 170 * kFrameUs),
                ElementsAre(debug(calculated(170, 170 * kFrameUs)),
                            error("getSampleIndexBySeekTime(): error -3F3 @line#"),
                            error("[video/mp4v-es][0] end of stream @L#")));
}

TEST_F(VideoSeekLog, BeyondTheEndIsAnError) {
    openTrusted();
    const std::vector<LogLine> lines = linesOf(kNext, 200 * kFrameUs);
    EXPECT_THAT(lines, Contains(debug(calculated(200, 200 * kFrameUs))));
    EXPECT_EQ(lines.back(), error("[video/mp4v-es][0] end of stream @L#"));
}

TEST_F(VideoSeekLog, NoKeyFrameBeforeIsAWarning) {
    AviFile avi = videoFile("PPPIPP");
    open(avi);
    const std::vector<LogLine> lines = linesOf(kPrevious, 2 * kFrameUs);
    EXPECT_THAT(lines, Contains(warning("[video/mp4v-es] found no prev sync frame")));
    EXPECT_EQ(lines.back().text, landed(0, 6, 2 * kFrameUs));
}

TEST_F(VideoSeekLog, KeyFrameFoundByItsData) {
    openUntrusted("IPPIPP");
    EXPECT_THAT(landingTexts(kPrevious, 5 * kFrameUs),
                ElementsAre(calculated(5, 5 * kFrameUs), "[video/mp4v-es] seek sync index: 3 @L#",
                            landed(3, 6, 5 * kFrameUs)));
    openUntrusted("IPPIPP");
    EXPECT_THAT(landingTexts(kNext, 1 * kFrameUs),
                ElementsAre(calculated(1, kFrameUs), "[video/mp4v-es] seek sync index: 3 @L#",
                            landed(3, 6, kFrameUs)));
}

TEST_F(VideoSeekLog, ConfirmedKeyFrame) {
    openUntrusted("IPPIPP");
    landingTexts(kPrevious, 5 * kFrameUs);
    EXPECT_THAT(
        landingTexts(kPrevious, 5 * kFrameUs),
        ElementsAre(calculated(5, 5 * kFrameUs),
                    "[video/mp4v-es] seek mBrokenIndex:1 -- isSyncSample:-127, index: 3 @L#",
                    landed(3, 6, 5 * kFrameUs)));
    EXPECT_THAT(landingTexts(kNext, kFrameUs),
                Contains("[video/mp4v-es] seek mBrokenIndex:1 -- isSyncSample:-127, index:3 @L#"));
}

TEST_F(VideoSeekLog, NothingFoundByItsData) {
    openUntrusted("PPP");
    EXPECT_THAT(landingTexts(kPrevious, 2 * kFrameUs),
                ElementsAre(calculated(2, 2 * kFrameUs), "[video/mp4v-es] found no prev sync frame",
                            landed(0, 3, 2 * kFrameUs)));
    openUntrusted("PPP");
    EXPECT_THAT(linesOf(kNext, 0),
                Contains(error("getSampleIndexBySeekTime(): error -3F3 @line#")));
}

TEST_F(VideoSeekLog, FrameChecksAreLoggedWithTheVerboseLog) {
    setProperty(kVerboseLogProperty, "1");
    openUntrusted("IPPBIPP");
    const std::vector<LogLine> lines = linesOf(kNext, kFrameUs);
    std::vector<std::string> checks;
    for (const LogLine& line : lines) {
        const bool isCheck = line.text.find("isSyncFrame") == 0 || line.text.find("fixSync") == 0;
        if (!isCheck) continue;
        EXPECT_EQ(line.priority, ANDROID_LOG_VERBOSE);
        checks.push_back(line.text);
    }
    EXPECT_THAT(checks,
                ElementsAre("isSyncFrame type 2", "isSyncFrame type 2", "isSyncFrame type 3",
                            "isSyncFrame type 1", "fixSyncSample at 4"));
}

TEST_F(VideoSeekLog, FrameChecksNeedTheVerboseLog) {
    setProperty(kExtractLogProperty, "1");
    openUntrusted("IPPIPP");
    const std::vector<LogLine> lines = linesOf(kNext, kFrameUs);
    EXPECT_THAT(lines, Not(Contains(verbose("isSyncFrame type 1"))));
    EXPECT_THAT(lines, Not(Contains(verbose("fixSyncSample at 3"))));
}

TEST_F(VideoSeekLog, UnreadableCandidateIsNotTyped) {
    setProperty(kVerboseLogProperty, "1");
    AviFile avi = videoFile("IPI");
    dropIndex(avi);
    open(avi);
    const auto at = static_cast<off64_t>(avi.chunks(0)[2].place.dataOffset);
    source().inject(Fault::shortRead(5).onOffsets(at, at + 1));
    const std::vector<LogLine> lines = linesOf(kNext, 2 * kFrameUs);
    EXPECT_THAT(lines, Not(Contains(verbose("isSyncFrame type 1"))));
    EXPECT_THAT(lines, Not(Contains(verbose("fixSyncSample at 2"))));
}

}  // namespace
}  // namespace avitest
