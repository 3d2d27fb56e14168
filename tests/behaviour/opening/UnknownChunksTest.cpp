// SPDX-License-Identifier: Apache-2.0
//
// Unknown chunks at the top level of the first RIFF: how many end the walk, and when they do not.
// The index stands behind them and tells how far the walk came.

#include "tests/behaviour/opening/OpeningFixture.h"

namespace avitest {
namespace {

using ::testing::Contains;

constexpr char kStopInFirst[] = "parseFirstRIFF(): Unknown chunk num > 50, stop scaning!";

class UnknownChunks : public LoggedFixture {
  protected:
    bool reachesTheIndex(AviFile avi) {
        setProperty(kExtractLogProperty, "1");
        openFile(avi.build());
        countTracks();
        return mLog.count("found idx") != 0;
    }
    bool stops() const { return mLog.count(kStopInFirst) != 0; }
};

std::vector<Chunk> strangers(size_t count, const Chunk& stray = Chunk("STRY", Bytes(6))) {
    return std::vector<Chunk>(count, stray);
}

TEST_F(UnknownChunks, AreShownByTheVerboseLogAlone) {
    AviFile avi = videoFile();
    avi.segment().afterMovi = strangers(1);
    setProperty(kVerboseLogProperty, "1");
    openFile(avi.build());
    countTracks();
    EXPECT_THAT(log(), Contains(verbose("parseFirstRIFF(): unknown chunk " + idText("STRY"))));

    mLog.clear();
    setProperty(kVerboseLogProperty, "0");
    setProperty(kExtractLogProperty, "1");
    openFile(avi.build());
    countTracks();
    EXPECT_EQ(0u, mLog.count("unknown chunk"));
}

TEST_F(UnknownChunks, FiftyBehindMoviArePassed) {
    AviFile avi = videoFile();
    avi.segment().afterMovi = strangers(50);
    EXPECT_TRUE(reachesTheIndex(avi));
    EXPECT_FALSE(stops());
}

TEST_F(UnknownChunks, TheFiftyFirstBehindMoviEndsTheWalk) {
    AviFile avi = videoFile();
    avi.segment().afterMovi = strangers(51);
    EXPECT_FALSE(reachesTheIndex(avi));
    EXPECT_THAT(log(), Contains(warning(kStopInFirst)).Times(1));
}

TEST_F(UnknownChunks, WalkEndsAtTheOneThatIsTooMany) {
    AviFile avi = videoFile();
    avi.segment().afterMovi = strangers(60);
    avi.segment().afterMovi[50].marked("last");
    EXPECT_FALSE(reachesTheIndex(avi));
    avi.build();
    const auto last = static_cast<unsigned long long>(avi.place("last").headerOffset);
    EXPECT_THAT(log(), Contains(verbose(format("parseFirstRIFF() end @%llX(%llu)", last, last))));
}

TEST_F(UnknownChunks, TheOneThatEndsTheWalkIsTheLastOneShown) {
    AviFile avi = videoFile();
    avi.segment().afterMovi = strangers(60);
    setProperty(kVerboseLogProperty, "1");
    openFile(avi.build());
    countTracks();
    EXPECT_EQ(51u, mLog.count("unknown chunk"));
}

TEST_F(UnknownChunks, ThoseInFrontOfTheHeadersCount) {
    AviFile avi = videoFile();
    avi.segment().beforeHeaders = strangers(30);
    avi.segment().beforeMovi = strangers(10);
    avi.segment().afterMovi = strangers(11);
    EXPECT_FALSE(reachesTheIndex(avi));
    EXPECT_TRUE(stops());
}

TEST_F(UnknownChunks, FiftyInFrontOfTheHeadersAndOneBehindMoviEndTheWalk) {
    AviFile avi = videoFile();
    avi.segment().beforeHeaders = strangers(50);
    avi.segment().afterMovi = strangers(1);
    EXPECT_FALSE(reachesTheIndex(avi));
    EXPECT_TRUE(stops());
}

TEST_F(UnknownChunks, FiftyOneInFrontOfTheHeadersLiftTheLimit) {
    AviFile avi = videoFile();
    avi.segment().beforeHeaders = strangers(51);
    avi.segment().afterMovi = strangers(100);
    EXPECT_TRUE(reachesTheIndex(avi));
    EXPECT_FALSE(stops());
}

TEST_F(UnknownChunks, SixtyInFrontOfTheHeadersLiftTheLimit) {
    AviFile avi = videoFile();
    avi.segment().beforeHeaders = strangers(60);
    avi.segment().afterMovi = strangers(60);
    EXPECT_TRUE(reachesTheIndex(avi));
    EXPECT_EQ(1u, countTracks());
}

TEST_F(UnknownChunks, HeadersWithoutMoviAreNotEnoughToEndTheWalk) {
    AviFile avi = videoFile();
    avi.segment().beforeMovi = strangers(60);
    EXPECT_TRUE(reachesTheIndex(avi));
    EXPECT_FALSE(stops());
}

TEST_F(UnknownChunks, MoviWithoutHeadersIsNotEnoughToEndTheWalk) {
    AviFile avi = videoFile();
    avi.segment().afterMovi = strangers(60);
    avi.segment().edit = [](Chunk& riff) { riff.arrange({"movi", "STRY", "hdrl", "idx1"}); };
    EXPECT_TRUE(reachesTheIndex(avi));
    EXPECT_FALSE(stops());
}

TEST_F(UnknownChunks, JunkDoesNotCount) {
    AviFile avi = videoFile();
    avi.segment().afterMovi = strangers(100, Chunk("JUNK", Bytes(6)));
    EXPECT_TRUE(reachesTheIndex(avi));
}

TEST_F(UnknownChunks, UnknownListsDoNotCount) {
    AviFile avi = videoFile();
    avi.segment().afterMovi = strangers(100, Chunk::list("STRY"));
    EXPECT_TRUE(reachesTheIndex(avi));
    EXPECT_FALSE(stops());
}

TEST_F(UnknownChunks, MultipleIndexesDoNotCount) {
    AviFile avi = videoFile();
    avi.segment().index.copies = 60;
    EXPECT_TRUE(reachesTheIndex(avi));
    EXPECT_EQ(59u, mLog.count("skip multiple idx1!"));
    EXPECT_FALSE(stops());
}

}  // namespace
}  // namespace avitest
