// SPDX-License-Identifier: Apache-2.0
//
// The end of the parse: which tracks are usable, and whether the file is.

#include "tests/behaviour/opening/OpeningFixture.h"

namespace avitest {
namespace {

using ::testing::Contains;
using ::testing::Not;

class Finish : public LoggedFixture {
  protected:
    std::optional<std::string> mime(size_t track) {
        return trackFormat(track).getString(AMEDIAFORMAT_KEY_MIME);
    }
};

Stream subtitleStream() {
    return videoStream("DXSB", 320, 64, 25);
}

// A stream of the kind without samples beside a good video stream.
AviFile withEmptyStream(Stream empty) {
    AviFile avi = videoFile();
    avi.addStream(std::move(empty));
    return avi;
}

TEST_F(Finish, GoodTrackIsLogged) {
    openFile(twoStreamFile().build());
    countTracks();
    const std::string name = "finishParse(video/x-motion-jpeg): ";
    EXPECT_THAT(log(), Contains(debug(name + "set kKeyMaxInputSize 30 sampleCount 3")));
    EXPECT_THAT(log(), Contains(debug(name + "finished samples 3 syncSamples 2")));
    EXPECT_EQ(0u, mLog.count("BAD TRACK!!!"));
}

TEST_F(Finish, AudioTrackIsLogged) {
    openFile(twoStreamFile().build());
    countTracks();
    EXPECT_THAT(log(),
                Contains(debug("finishParse(audio/raw): set kKeyMaxInputSize 48 sampleCount 2")));
    EXPECT_EQ(1u, mLog.count("finishParse(audio/raw): finished samples 2 syncSamples "));
}

TEST_F(Finish, RulerIsDrawnForEachTrackWhileTheExtractLogIsOn) {
    setProperty(kExtractLogProperty, "1");
    openFile(twoStreamFile().build());
    countTracks();
    EXPECT_THAT(log(), Contains(verbose("======================================")).Times(2));
}

TEST_F(Finish, RulerIsNotDrawnByTheVerboseLog) {
    setProperty(kVerboseLogProperty, "1");
    openFile(twoStreamFile().build());
    countTracks();
    EXPECT_EQ(0u, mLog.count("======================================"));
}

TEST_F(Finish, LargestSampleIsTheMaximumInputSize) {
    openFile(twoStreamFile().build());
    EXPECT_EQ(30, trackFormat(0).getInt32(AMEDIAFORMAT_KEY_MAX_INPUT_SIZE));
    EXPECT_EQ(48, trackFormat(1).getInt32(AMEDIAFORMAT_KEY_MAX_INPUT_SIZE));
}

TEST_F(Finish, VideoTrackWithoutSamplesStaysInTheListAsUnknown) {
    openFile(withEmptyStream(mjpegStream()).build());
    EXPECT_EQ(2u, countTracks());
    EXPECT_EQ("video/x-motion-jpeg", mime(0));
    EXPECT_EQ("video/x-unknown", mime(1));
}

TEST_F(Finish, AudioTrackWithoutSamplesStaysInTheListAsUnknown) {
    openFile(withEmptyStream(pcmStream(2, 8000, 16)).build());
    EXPECT_EQ(2u, countTracks());
    EXPECT_EQ("audio/x-unknown", mime(1));
}

TEST_F(Finish, SubtitleTrackWithoutSamplesIsAnUnknownVideo) {
    openFile(withEmptyStream(subtitleStream()).build());
    EXPECT_EQ(2u, countTracks());
    EXPECT_EQ("video/x-unknown", mime(1));
}

TEST_F(Finish, BadTrackIsLogged) {
    openFile(withEmptyStream(pcmStream(2, 8000, 16)).build());
    countTracks();
    const std::string name = "finishParse(audio/raw): ";
    EXPECT_THAT(log(), Contains(error(name + "The track doesn't have any samples!")));
    EXPECT_THAT(log(), Contains(warning(name + "BAD TRACK!!! Skip it.")));
    EXPECT_EQ(0u, mLog.count(name + "finished samples"));
}

TEST_F(Finish, BadTrackIsHandedOutButDoesNotStart) {
    openFile(withEmptyStream(mjpegStream()).build());
    const auto bad = track(1);
    ASSERT_NE(nullptr, bad);
    EXPECT_EQ("video/x-unknown", bad->getFormat().format.getString(AMEDIAFORMAT_KEY_MIME));
    EXPECT_EQ(AMEDIA_ERROR_MALFORMED, readTrack(*bad).status);
}

TEST_F(Finish, BadTrackKeepsItsMaximumInputSize) {
    openFile(withEmptyStream(mjpegStream()).build());
    EXPECT_EQ(0, trackFormat(1).getInt32(AMEDIAFORMAT_KEY_MAX_INPUT_SIZE));
}

TEST_F(Finish, BadVideoInFrontOfGoodAudioLeavesTheFileUsable) {
    AviFile avi;
    avi.addStream(mjpegStream());
    const size_t audio = avi.addStream(pcmStream(2, 8000, 16));
    avi.addChunk(audio, patternBytes(40));
    openFile(avi.build());
    EXPECT_EQ(2u, countTracks());
    EXPECT_EQ("video/x-unknown", mime(0));
    EXPECT_EQ("audio/raw", mime(1));
}

TEST_F(Finish, FileOfSubtitlesAloneIsUsable) {
    AviFile avi;
    const size_t subtitles = avi.addStream(subtitleStream());
    avi.addChunk(subtitles, patternBytes(40));
    openFile(avi.build());
    EXPECT_EQ(1u, countTracks());
}

TEST_F(Finish, FileWhereEveryTrackLacksSamplesIsUnsupported) {
    AviFile avi;
    avi.addStream(mjpegStream());
    avi.addStream(pcmStream(2, 8000, 16));
    openFile(avi.build());
    EXPECT_EQ(0u, countTracks());
    EXPECT_THAT(log(), Contains(error("parseFirstRIFF(): error -3F2 @line4276")));
    EXPECT_THAT(log(), Contains(error("readMetaData(): error(-1010) happens when parse file!")));
    EXPECT_THAT(log(), Contains(error("countTracks(): readMetaData() failed, err = -1010!")));
}

TEST_F(Finish, EveryTrackOfAnUnsupportedFileIsFinishedAllTheSame) {
    AviFile avi;
    avi.addStream(mjpegStream());
    avi.addStream(pcmStream(2, 8000, 16));
    openFile(avi.build());
    countTracks();
    EXPECT_EQ(2u, mLog.count("BAD TRACK!!! Skip it."));
}

TEST_F(Finish, FileWithoutStreamsIsUnsupported) {
    openFile(AviFile().build());
    EXPECT_EQ(0u, countTracks());
    EXPECT_THAT(log(), Contains(error("parseFirstRIFF(): error -3F2 @line4276")));
}

TEST_F(Finish, FileWithoutStreamsIsNotSaidToLackAnIndex) {
    AviFile avi;
    avi.segment().index.copies = 0;
    openFile(avi.build());
    countTracks();
    EXPECT_EQ(0u, mLog.count("The riff doesn't have index!"));
}

TEST_F(Finish, StreamWithoutAnyIndexIsSaidToLackOne) {
    AviFile avi = videoFile();
    avi.segment().index.copies = 0;
    openFile(avi.build());
    countTracks();
    EXPECT_THAT(log(), Contains(warning("parseFirstRIFF(): The riff doesn't have index!")));
}

TEST_F(Finish, IndexedFileIsNotSaidToLackAnIndex) {
    openFile(videoFile().build());
    countTracks();
    EXPECT_THAT(log(), Not(Contains(warning("parseFirstRIFF(): The riff doesn't have index!"))));
}

}  // namespace
}  // namespace avitest
