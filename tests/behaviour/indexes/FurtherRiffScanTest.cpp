// SPDX-License-Identifier: Apache-2.0
//
// Further RIFFs and the indexes of a file: when they are read, and the scan of those without one.

#include "tests/behaviour/indexes/IndexesFixture.h"

namespace avitest {
namespace {

using ::testing::Contains;

class FurtherRiffScan : public IndexesFixture {
  protected:
    // The warning of a scan of a further RIFF.
    static std::string announced() {
        return "parseMoreRIFF(): This riff doesn't have index. May take a long time to parse "
               "'movi' chunk!@L4376";
    }
};

// Two video frames in the first RIFF and two in a second one, which has no index.
AviFile unindexedSecondRiff() {
    AviFile avi = twoSegmentFile();
    avi.segment(1).index.copies = 0;
    return avi;
}

TEST_F(FurtherRiffScan, RiffWithoutAnIndexIsScanned) {
    AviFile avi = unindexedSecondRiff();
    openFile(avi.build());
    EXPECT_EQ(avi.payloads(0), readPayloads(0));
    EXPECT_THAT(log(), Contains(warning(announced())).Times(1));
    EXPECT_FALSE(scanned());
}

TEST_F(FurtherRiffScan, FoundSamplesAreKeyFrames) {
    AviFile avi = unindexedSecondRiff();
    avi.addChunk(0, patternBytes(20, 3), kNoFlags);
    openFile(avi.build());
    EXPECT_EQ(std::vector<bool>(5, true), syncFlags(0));
}

TEST_F(FurtherRiffScan, NoRiffHasAnIndex) {
    AviFile avi = unindexedSecondRiff();
    avi.segment(0).index.copies = 0;
    openFile(avi.build());
    EXPECT_EQ(avi.payloads(0), readPayloads(0));
    EXPECT_TRUE(scanned());
    EXPECT_THAT(log(), Contains(warning(announced())).Times(1));
}

TEST_F(FurtherRiffScan, OnlyTheFirstRiffHasNoIndex) {
    AviFile avi = twoSegmentFile();
    avi.segment(0).index.copies = 0;
    openFile(avi.build());
    EXPECT_EQ(avi.payloads(0), readPayloads(0));
    EXPECT_TRUE(scanned());
    EXPECT_EQ(0u, mLog.count("This riff doesn't have index."));
}

TEST_F(FurtherRiffScan, CountsAreLoggedBeforeTheRiffIsRead) {
    openFile(unindexedSecondRiff().build());
    countTracks();
    EXPECT_THAT(log(), Contains(Text("parseFirstRIFF(): Video track indexed frames 2 VS total "
                                     "frames 4")));
    EXPECT_THAT(log(), Contains(Text("parseFirstRIFF(): Not all frames have been indexed. Need "
                                     "parse more riff(s).")));
}

TEST_F(FurtherRiffScan, FramesOfAnOpenDmlIndexCount) {
    AviFile avi = unindexedSecondRiff();
    avi.segment(0).index.copies = 0;
    avi.stream(0).openDml = OpenDml::kSuper;
    openFile(avi.build());
    EXPECT_EQ(avi.payloads(0), readPayloads(0));
    EXPECT_EQ(1u, mLog.count("All frames have been indexed. No need to parse other riff(s)."));
    EXPECT_EQ(0u, mLog.count("This riff doesn't have index."));
}

// The scan of a further RIFF cannot add to a table that came from OpenDML indexes, complete or not.
TEST_F(FurtherRiffScan, IndexedTrackThatFallsShortGetsNothingFromAScan) {
    AviFile avi = unindexedSecondRiff();
    avi.segment(0).index.copies = 0;
    avi.stream(0).openDml = OpenDml::kSuper;
    avi.stream(0).header.length = 6;
    openFile(avi.build());
    EXPECT_EQ(avi.payloads(0), readPayloads(0));
    EXPECT_THAT(log(), Contains(Text("parseFirstRIFF(): Video track indexed frames 4 VS total "
                                     "frames 6")));
    EXPECT_THAT(log(), Contains(warning(announced())).Times(1));
}

TEST_F(FurtherRiffScan, AudioNeverKeepsFurtherRiffsFromBeingRead) {
    AviFile avi;
    avi.addStream(pcmStream(1, 8000, 16));
    avi.addChunk(0, patternBytes(40, 1));
    avi.addSegment().riffSize = kBeyondTheFile;
    avi.addChunk(0, patternBytes(44, 2));
    openFile(avi.build());
    EXPECT_EQ(avi.payloads(0), readPayloads(0));
    EXPECT_EQ(1u, mLog.count("Not all frames have been indexed."));
}

TEST_F(FurtherRiffScan, CompleteVideoLeavesTheRestOfTheAudioUnread) {
    AviFile avi;
    avi.addStream(mjpegStream());
    avi.addStream(pcmStream(1, 8000, 16));
    avi.addChunk(0, patternBytes(20, 1));
    avi.addChunk(1, patternBytes(40, 1));
    avi.addSegment().riffSize = kBeyondTheFile;
    avi.addChunk(1, patternBytes(44, 2));
    openFile(avi.build());
    EXPECT_EQ(1u, readPayloads(1).size());
    EXPECT_EQ(1u, mLog.count("All frames have been indexed."));
}

TEST_F(FurtherRiffScan, LimitsStartAnewInEveryRiff) {
    AviFile avi = videoFile(1);
    avi.segment(0).index.copies = 0;
    for (uint32_t segment = 0; segment < 2; ++segment) {
        for (size_t i = 0; i < 99; ++i)
            avi.addLooseChunk(Chunk("JUNK", Bytes(2)));
        for (size_t i = 0; i < 999; ++i)
            avi.addLooseChunk(Chunk(uint32_t{0}));
        avi.addChunk(0, patternBytes(40, segment));
        if (segment == 0) avi.addSegment().riffSize = kBeyondTheFile;
    }
    openFile(avi.build());
    EXPECT_EQ(avi.payloads(0), readPayloads(0));
    EXPECT_EQ(0u, mLog.count("Unknown chunk num > 100"));
}

TEST_F(FurtherRiffScan, EmptyMoviOfAFurtherRiffAddsNothing) {
    AviFile avi = videoFile(2);
    avi.stream(0).header.length = 9;
    avi.addSegment().riffSize = kBeyondTheFile;
    openFile(avi.build());
    EXPECT_EQ(2u, readPayloads(0).size());
    EXPECT_THAT(log(), Contains(warning(announced())).Times(1));
}

}  // namespace
}  // namespace avitest
