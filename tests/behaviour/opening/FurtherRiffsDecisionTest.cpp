// SPDX-License-Identifier: Apache-2.0
//
// Whether the RIFFs behind the first one are read.

#include "tests/behaviour/opening/FurtherRiffs.h"

namespace avitest {
namespace {

using android::service::FaultySource;
using ::testing::Contains;

constexpr char kEnough[] =
    "parseFirstRIFF(): All frames have been indexed. No need to parse other riff(s).";
constexpr char kNotEnough[] =
    "parseFirstRIFF(): Not all frames have been indexed. Need parse more riff(s).";

class FurtherRiffsDecision : public LoggedFixture {
  protected:
    // Opens and parses the file; how many reads touched the second RIFF or what lies behind it.
    size_t readsOfSecondRiff(AviFile avi) {
        const Bytes file = avi.build();
        const auto second = static_cast<off64_t>(avi.place("riff1").headerOffset);
        FaultySource& source = openCounted(file);
        countTracks();
        size_t count = 0;
        for (const FaultySource::Call& call : source.calls())
            count += call.offset >= second ? 1 : 0;
        return count;
    }
};

TEST_F(FurtherRiffsDecision, IsNotTakenForASingleRiff) {
    openFile(videoFile().build());
    EXPECT_EQ(1u, countTracks());
    EXPECT_EQ(0u, mLog.count("riff(s)"));
}

TEST_F(FurtherRiffsDecision, CompleteVideoLeavesThemAlone) {
    AviFile avi = twoSegmentFile();
    avi.stream(0).header.length = 2;        // as many as the first index lists
    EXPECT_EQ(1u, readsOfSecondRiff(avi));  // while the segments are listed
    EXPECT_EQ(1u, mLog.count(kEnough));
    EXPECT_EQ(0u, mLog.count(kNotEnough));
    EXPECT_EQ(0u, mLog.count("VS total frames"));
    EXPECT_EQ(2u, readPayloads(0).size());
}

TEST_F(FurtherRiffsDecision, MoreFramesThanAnnouncedAreComplete) {
    AviFile avi = twoSegmentFile();
    avi.stream(0).header.length = 1;
    EXPECT_EQ(1u, readsOfSecondRiff(avi));
    EXPECT_EQ(1u, mLog.count(kEnough));
}

TEST_F(FurtherRiffsDecision, VideoShortOfFramesNeedsThem) {
    AviFile avi = twoSegmentFile();
    EXPECT_LT(1u, readsOfSecondRiff(avi));
    EXPECT_EQ(1u, mLog.count(kNotEnough));
    EXPECT_EQ(0u, mLog.count(kEnough));
    EXPECT_THAT(
        log(), Contains(debug("parseFirstRIFF(): Video track indexed frames 2 VS total frames 4")));
    EXPECT_EQ(avi.payloads(0), readPayloads(0));
}

TEST_F(FurtherRiffsDecision, VideoShortByOneFrameNeedsThem) {
    AviFile avi = twoSegmentFile();
    avi.stream(0).header.length = 3;
    EXPECT_LT(1u, readsOfSecondRiff(avi));
    EXPECT_EQ(1u, mLog.count(kNotEnough));
}

TEST_F(FurtherRiffsDecision, AudioAloneAlwaysNeedsThem) {
    AviFile avi;
    const size_t audio = avi.addStream(pcmStream(2, 8000, 16));
    avi.stream(audio).header.length = 1;
    avi.addChunk(audio, patternBytes(40));
    avi.addSegment().riffSize = kBeyondTheFile;
    avi.segment(1).index.copies = 1;
    avi.addChunk(audio, patternBytes(44, 1));
    EXPECT_LT(1u, readsOfSecondRiff(avi));
    EXPECT_EQ(1u, mLog.count(kNotEnough));
    EXPECT_EQ(0u, mLog.count("VS total frames"));
    EXPECT_EQ(avi.payloads(audio), readPayloads(0));
}

TEST_F(FurtherRiffsDecision, IncompleteAudioBesideCompleteVideoDoesNotCount) {
    AviFile avi = twoSegmentFile();
    avi.stream(0).header.length = 2;
    avi.addStream(pcmStream(2, 8000, 16));
    avi.stream(1).header.length = 1000;
    EXPECT_EQ(1u, readsOfSecondRiff(avi));
    EXPECT_EQ(1u, mLog.count(kEnough));
}

// Two video streams; the second RIFF only matters by being there.
AviFile twoVideos(uint32_t firstLength, uint32_t secondLength) {
    AviFile avi = twoSegmentFile(std::nullopt);
    avi.addStream(mjpegStream());
    avi.stream(0).header.length = firstLength;
    avi.stream(1).header.length = secondLength;
    MoviChunk& chunk = avi.addChunk(1, patternBytes(28, 5));
    chunk.segment = 0;
    return avi;
}

TEST_F(FurtherRiffsDecision, SecondVideoThatIsCompleteSuffices) {
    readsOfSecondRiff(twoVideos(10, 1));
    EXPECT_THAT(
        log(),
        Contains(debug("parseFirstRIFF(): Video track indexed frames 2 VS total frames 10")));
    EXPECT_EQ(1u, mLog.count(kEnough));
    EXPECT_EQ(0u, mLog.count(kNotEnough));
}

TEST_F(FurtherRiffsDecision, SearchEndsAtTheFirstCompleteVideo) {
    readsOfSecondRiff(twoVideos(2, 10));
    EXPECT_EQ(0u, mLog.count("VS total frames"));
    EXPECT_EQ(1u, mLog.count(kEnough));
}

TEST_F(FurtherRiffsDecision, NoCompleteVideoNeedsThem) {
    readsOfSecondRiff(twoVideos(10, 10));
    EXPECT_EQ(2u, mLog.count("VS total frames 10"));
    EXPECT_EQ(1u, mLog.count(kNotEnough));
}

TEST_F(FurtherRiffsDecision, AllOfThemAreReadInFileOrder) {
    AviFile avi = twoSegmentFile();
    avi.addSegment().riffSize = kBeyondTheFile;
    avi.segment(2).index.copies = 1;
    avi.addChunk(0, patternBytes(40, 9));
    // The second one must end where the third begins, or the list of segments misses it.
    avi.segment(1).riffSize.reset();
    setProperty(kExtractLogProperty, "1");
    openFile(avi.build());
    EXPECT_EQ(1u, countTracks());
    std::vector<std::string> ends;
    for (const LogLine& line : log()) {
        if (line.text.find("parseMoreRIFF() end") == 0) ends.push_back(line.text);
    }
    const auto second = number(avi.place("riff1").headerOffset + 12);
    EXPECT_EQ((std::vector<std::string>{
                  format("parseMoreRIFF() end @%llX(%llu)", second, second),
                  format("parseMoreRIFF() end @%zX(%zu)", avi.build().size(), avi.build().size())}),
              ends);
    // Of the second only its place is looked at: its walk ends below its beginning.
    EXPECT_EQ(3u, readPayloads(0).size());
}

}  // namespace
}  // namespace avitest
