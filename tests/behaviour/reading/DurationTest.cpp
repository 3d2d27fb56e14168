// SPDX-License-Identifier: Apache-2.0
//
// Durations of tracks: each rule by itself, and the clamp of audio to the video.

#include <media/NdkMediaFormat.h>

#include <limits>

#include "tests/behaviour/reading/ReadingFixture.h"

namespace avitest {
namespace {

constexpr uint16_t kAmr = 0x57;  // a codec whose sample width may be anything

class Duration : public ReadingTest {
  protected:
    int64_t durationUs(size_t track) {
        return trackFormat(track).getInt64(AMEDIAFORMAT_KEY_DURATION).value_or(-12345);
    }

    // The duration of a file of this one stream, with one chunk that is indexed `entries` times.
    int64_t durationOf(const Stream& stream, size_t entries = 1) {
        AviFile avi = fileOf(stream, {patternBytes(40)});
        avi.segment().index.edit = [entries](std::vector<Idx1Entry>& index) {
            index.resize(entries, index.front());
        };
        openFile(avi.build());
        return durationUs(0);
    }

    // Audio of one chunk a frame, `ms` milliseconds long.
    static Stream audioOfMs(uint32_t ms) {
        Stream stream = alawStream();
        stream.header.sampleSize = 0;
        stream.header.rate = 1000;
        stream.header.length = ms;
        return stream;
    }

    static Stream videoOfFrames(uint32_t frames) {
        Stream stream = mjpegStream();
        stream.header.length = frames;
        return stream;
    }

    // Opens a file of these streams in this order, each with one chunk listed as often as needed.
    void openStreams(const std::vector<Stream>& streams, size_t videoEntries) {
        AviFile avi;
        for (const Stream& stream : streams)
            avi.addChunk(avi.addStream(stream), patternBytes(40));
        avi.segment().index.edit = [videoEntries](std::vector<Idx1Entry>& index) {
            Idx1Entry video = index.front();
            for (const Idx1Entry& entry : index) {
                if (entry.id.text().substr(2) == "dc") video = entry;
            }
            index.resize(index.size() + videoEntries - 1, video);
        };
        openFile(avi.build());
    }
};

TEST_F(Duration, VideoCountsNoMoreFramesThanIndexed) {
    Stream stream = mjpegStream();
    stream.header.length = 300;

    EXPECT_EQ(durationOf(stream, 250), 10000000);
}

TEST_F(Duration, VideoCountsNoMoreFramesThanItsHeader) {
    Stream stream = mjpegStream();
    stream.header.length = 200;

    EXPECT_EQ(durationOf(stream, 250), 8000000);
}

TEST_F(Duration, VideoIsWorkedOutInSinglePrecision) {
    struct Row {
        uint32_t rate, scale;
        size_t frames;
        int64_t us;
    };
    // Exactly: 8341666 us, 41750041 us, 428571 us.
    const Row rows[] = {
        {30000, 1001, 250, 8341666}, {24000, 1001, 1001, 41750040}, {7, 1, 3, 428571}};
    for (const Row& row : rows) {
        SCOPED_TRACE(row.rate);
        Stream stream = videoStream("MJPG", 320, 240, row.rate, row.scale);
        stream.header.length = static_cast<uint32_t>(row.frames);
        EXPECT_EQ(durationOf(stream, row.frames), row.us);
    }
}

TEST_F(Duration, VideoWithoutScaleHasNone) {
    EXPECT_EQ(durationOf(videoStream("MJPG", 320, 240, 25, 0)), 0);
}

TEST_F(Duration, SubtitlesHaveNone) {
    EXPECT_EQ(durationOf(subtitleStream()), 0);
}

TEST_F(Duration, ByteTimedAudioCountsTheBytesOfItsTable) {
    AviFile avi = fileOf(alawStream(), {patternBytes(40)});
    avi.stream(0).header.rate = 44100;
    avi.stream(0).header.length = 44100;
    avi.segment().index.edit = [](std::vector<Idx1Entry>& index) {
        index[0].length = 44100;
        index.resize(10, index[0]);
    };
    openFile(avi.build());

    EXPECT_EQ(durationUs(0), 10000000);
}

TEST_F(Duration, ByteTimedAudioCountsTheBytesOfItsHeaderWhenMore) {
    Stream stream = alawStream();
    stream.header.rate = 44100;
    stream.header.length = 441000;

    EXPECT_EQ(durationOf(stream), 10000000);
}

TEST_F(Duration, ByteTimedAudioUsesItsScale) {
    Stream stream = alawStream();
    stream.header.scale = 3;
    stream.header.rate = 8000;
    stream.header.length = 16001;

    EXPECT_EQ(durationOf(stream), 6000375);
}

// Sample size above 1: bytes by the byte rate.
TEST_F(Duration, AudioOfLargerSamplesUsesTheByteRate) {
    Stream stream = audioStream(kAmr, 1, 8000, 3000, 32, 16);
    stream.header.sampleSize = 32;
    stream.header.length = 1000;

    EXPECT_EQ(durationOf(stream), 10666666);
}

TEST_F(Duration, AudioOfLargerSamplesWithoutByteRateUsesItsWidth) {
    Stream stream = audioStream(kAmr, 1, 8000, 0, 32, 4);
    stream.header.rate = 1;
    stream.header.sampleSize = 32;
    stream.header.length = 1000;

    EXPECT_EQ(durationOf(stream), 8000000);  // 4000 bytes a second
}

TEST_F(Duration, AudioOfLargerSamplesWithoutRateAndWidthCountsOneByteASecond) {
    Stream stream = audioStream(kAmr, 1, 8000, 0, 32, 0);
    stream.header.rate = 1;
    stream.header.sampleSize = 32;
    stream.header.length = 1000;

    EXPECT_EQ(durationOf(stream), int64_t{32000} * 1000000);
}

TEST_F(Duration, AudioOfLargerSamplesWithoutSampleRateHasNone) {
    Stream stream = audioStream(kAmr, 1, 0, 0, 32, 8);
    stream.header.rate = 1;
    stream.header.sampleSize = 32;
    stream.header.length = 1000;

    EXPECT_EQ(durationOf(stream), 0);
}

TEST_F(Duration, AudioOfFramesUsesItsHeader) {
    Stream stream = frameAudioStream(kAmr, 1, 8000, 160);
    stream.header.length = 501;

    EXPECT_EQ(durationOf(stream), 10020000);
}

TEST_F(Duration, MidiCountsAsAudio) {
    Stream stream = audioOfMs(2500);
    stream.header.type = "midi";

    EXPECT_EQ(durationOf(stream), 2500000);
}

TEST_F(Duration, AbsurdHeadersSaturate) {
    Stream frames = alawStream();
    frames.header.sampleSize = 0;
    frames.header.scale = 0xFFFFFFFF;
    frames.header.rate = 1;
    frames.header.length = 0xFFFFFFFF;
    EXPECT_EQ(durationOf(frames), std::numeric_limits<int64_t>::max());

    Stream bytes = frames;
    bytes.header.sampleSize = 1;
    EXPECT_EQ(durationOf(bytes), std::numeric_limits<int64_t>::max());

    Stream samples = audioStream(kAmr, 1, 8000, 1, 32, 16);
    samples.header.sampleSize = 0xFFFFFFFF;
    samples.header.length = 0xFFFFFFFF;
    EXPECT_EQ(durationOf(samples), std::numeric_limits<int64_t>::max());
}

TEST_F(Duration, AudioMuchLongerThanVideoIsClamped) {
    LogCapture log;
    openStreams({videoOfFrames(250), audioOfMs(12000)}, 250);

    EXPECT_EQ(durationUs(1), 10000000);
    EXPECT_THAT(log, Logged(ANDROID_LOG_WARN,
                            "The audio duration(12000000us) is much bigger than the "
                            "video(10000000us)."));
}

TEST_F(Duration, AudioLittleLongerThanVideoIsKept) {
    struct Row {
        uint32_t audioMs;
        int64_t us;
    };
    const Row rows[] = {{10400, 10400000}, {10500, 10500000}, {10501, 10000000}, {9000, 9000000}};
    for (const Row& row : rows) {
        SCOPED_TRACE(row.audioMs);
        LogCapture log;
        openStreams({videoOfFrames(250), audioOfMs(row.audioMs)}, 250);

        EXPECT_EQ(durationUs(1), row.us);
        EXPECT_EQ(log.count("much bigger than the video"), row.us == 10000000 ? 1u : 0u);
    }
}

TEST_F(Duration, AudioStoredBeforeTheVideoIsClampedToo) {
    openStreams({audioOfMs(12000), videoOfFrames(250)}, 250);

    EXPECT_EQ(durationUs(0), 10000000);  // the video is put first
    EXPECT_EQ(durationUs(1), 10000000);
}

TEST_F(Duration, AudioWithoutVideoDurationIsKept) {
    Stream video = videoOfFrames(250);
    video.header.scale = 0;
    openStreams({video, audioOfMs(12000)}, 250);
    EXPECT_EQ(durationUs(1), 12000000);

    openStreams({subtitleStream(), audioOfMs(12000)}, 1);
    EXPECT_EQ(durationUs(1), 12000000);
}

// Of two video tracks only the second has more than one sample.
TEST_F(Duration, AudioIsClampedToTheVideoLastFinishedBeforeIt) {
    openStreams({videoOfFrames(250), audioOfMs(12000), videoOfFrames(250), audioOfMs(12000)}, 250);

    EXPECT_EQ(durationUs(0), 40000);
    EXPECT_EQ(durationUs(1), 40000);
    EXPECT_EQ(durationUs(2), 10000000);
    EXPECT_EQ(durationUs(3), 10000000);
}

TEST_F(Duration, StreamWithoutRatePublishesNothing) {
    for (Stream stream : {mjpegStream(), alawStream()}) {
        LogCapture log;
        stream.header.rate = 0;
        openStream(stream, {patternBytes(40)});

        const MediaFormat format = trackFormat(0);
        EXPECT_FALSE(format.contains(AMEDIAFORMAT_KEY_DURATION));
        EXPECT_FALSE(format.contains("av-bitrate"));
        EXPECT_EQ(format.getInt32(AMEDIAFORMAT_KEY_MAX_INPUT_SIZE), 40);
        EXPECT_THAT(log, Logged(ANDROID_LOG_ERROR, "updateSamples(): error -3EF @line"));
        EXPECT_EQ(timesOf(readAll(0)), std::vector<int64_t>{0});
    }
}

}  // namespace
}  // namespace avitest
