// SPDX-License-Identifier: Apache-2.0
//
// Tracks that have no samples: they stay in the list, so that numbers do not shift, under a type
// that nothing plays.

#include <media/NdkMediaFormat.h>

#include "tests/behaviour/reading/ReadingFixture.h"

namespace avitest {
namespace {

class BadTracks : public ReadingTest {
  protected:
    // A good video track and `other` without a chunk.
    void openWithEmpty(Stream other) {
        AviFile avi;
        const size_t video = avi.addStream(mjpegStream());
        avi.addStream(std::move(other));
        avi.addChunk(video, patternBytes(40));
        openFile(avi.build());
    }

    // A good video track and an audio track that has nothing to read but can be started: without
    // idx1 in the first segment the largest sample is the one of the header.
    void openWithEmptyTable() {
        AviFile avi;
        const size_t video = avi.addStream(mjpegStream());
        Stream audio = alawStream();
        audio.header.sampleSize = 4;
        avi.addStream(audio);
        avi.stream(video).header.length = 100;
        avi.segment().index.copies = 0;
        Segment& segment = avi.addSegment();
        segment.index.copies = 1;
        segment.riffSize = 0x10000000;
        avi.addChunk(video, patternBytes(40));
        openFile(avi.build());
        ASSERT_EQ(countTracks(), 2u);
    }

    std::string mime(size_t track) {
        return trackFormat(track).getString(AMEDIAFORMAT_KEY_MIME).value_or("none");
    }
};

TEST_F(BadTracks, EmptyAudioTrackGetsTheUnknownAudioType) {
    LogCapture log;
    openWithEmpty(alawStream());

    ASSERT_EQ(countTracks(), 2u);
    EXPECT_EQ(mime(0), "video/x-motion-jpeg");
    EXPECT_EQ(mime(1), "audio/x-unknown");
    EXPECT_THAT(log, Logged(ANDROID_LOG_ERROR,
                            "finishParse(audio/g711-alaw): The track doesn't "
                            "have any samples!"));
    EXPECT_EQ(log.count("finishParse(audio/g711-alaw): BAD TRACK!!! Skip it."), 1u);
    EXPECT_EQ(log.count("BAD TRACK!!!"), 1u);
}

TEST_F(BadTracks, EmptyVideoTrackGetsTheUnknownVideoType) {
    openWithEmpty(mjpegStream());

    ASSERT_EQ(countTracks(), 2u);
    EXPECT_EQ(mime(1), "video/x-unknown");
}

TEST_F(BadTracks, EmptySubtitleTrackGetsTheUnknownVideoType) {
    openWithEmpty(subtitleStream());

    ASSERT_EQ(countTracks(), 2u);
    EXPECT_EQ(mime(1), "video/x-unknown");
}

TEST_F(BadTracks, EmptyTrackIsNotFinished) {
    LogCapture log;
    openWithEmpty(alawStream());

    const MediaFormat format = trackFormat(1);
    EXPECT_EQ(format.getInt32(AMEDIAFORMAT_KEY_MAX_INPUT_SIZE), 0);
    EXPECT_FALSE(format.contains(AMEDIAFORMAT_KEY_DURATION));
    EXPECT_FALSE(format.contains("av-bitrate"));
    EXPECT_EQ(log.count("finished samples"), 1u);
}

TEST_F(BadTracks, EmptyTrackDoesNotStart) {
    LogCapture log;
    openWithEmpty(alawStream());

    EXPECT_EQ(readRun(1).status, AMEDIA_ERROR_MALFORMED);
    EXPECT_THAT(log, Logged(ANDROID_LOG_ERROR, "start(): error -2711 @line"));
}

TEST_F(BadTracks, EmptyVideoTrackDoesNotClampAudio) {
    AviFile avi;
    avi.addStream(mjpegStream());
    avi.stream(0).header.length = 25;
    const size_t audio = avi.addStream(alawStream());
    avi.stream(audio).header.length = 80000;
    avi.addChunk(audio, patternBytes(40));
    openFile(avi.build());

    ASSERT_EQ(countTracks(), 2u);
    EXPECT_EQ(trackFormat(1).getInt64(AMEDIAFORMAT_KEY_DURATION), 10000000);
}

TEST_F(BadTracks, FileOfEmptyTracksFails) {
    LogCapture log;
    AviFile avi;
    avi.addStream(mjpegStream());
    avi.addStream(alawStream());
    openFile(avi.build());

    EXPECT_EQ(countTracks(), 0u);
    EXPECT_EQ(log.count("BAD TRACK!!! Skip it."), 2u);
    EXPECT_THAT(log, Logged(ANDROID_LOG_ERROR, "parseFirstRIFF(): error -3F2 @line"));
}

TEST_F(BadTracks, SubtitlesAloneMakeAFile) {
    openStream(subtitleStream(), {subtitleChunk("00:00:01.000", "00:00:02.000")});

    EXPECT_EQ(countTracks(), 1u);
    EXPECT_EQ(mime(0), "text/vobsub");
}

TEST_F(BadTracks, EmptyTableEndsAtOnce) {
    openWithEmptyTable();
    LogCapture log;
    StartedTrack started(track(1));
    EXPECT_EQ(started.status(), AMEDIA_ERROR_END_OF_STREAM);
    EXPECT_THAT(log, Logged(ANDROID_LOG_ERROR, "[audio/x-unknown][1] end of stream @L"));
}

// Its records are not asked for the time of a seek.
TEST_F(BadTracks, EmptyTableEndsBeforeASeek) {
    setProperty(kExtractLogProperty, "1");
    setProperty(kVerboseLogProperty, "1");
    openWithEmptyTable();
    StartedTrack video(track(0));
    StartedTrack audio(track(1));
    EXPECT_EQ(video.track().read(android::SEEK, 0).status, AMEDIA_OK);
    for (const int64_t timeUs : {0, 1, 5000000}) {
        const LogCapture log;
        EXPECT_EQ(audio.track().read(android::SEEK, timeUs).status, AMEDIA_ERROR_END_OF_STREAM);
        ASSERT_EQ(log.lines().size(), 1u);
        EXPECT_THAT(log, Logged(ANDROID_LOG_ERROR, "[audio/x-unknown][1] end of stream @L"));
    }
}

}  // namespace
}  // namespace avitest
