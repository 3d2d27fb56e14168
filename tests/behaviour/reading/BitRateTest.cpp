// SPDX-License-Identifier: Apache-2.0
//
// Average bit rates: the keys they are published under, and the lines that finishing a track logs.

#include <media/NdkMediaFormat.h>

#include "tests/behaviour/reading/ReadingFixture.h"

namespace avitest {
namespace {

constexpr char kAverageBitRate[] = "av-bitrate";

class BitRate : public ReadingTest {
  protected:
    // Audio of 8 seconds with one chunk that its index calls `bytes` long: a byte in the table is a
    // bit a second.
    void openAudioOfBitRate(Stream stream, uint32_t bytes) {
        stream.header.sampleSize = 0;
        stream.header.scale = 1;
        stream.header.rate = 1;
        stream.header.length = 8;
        AviFile avi = fileOf(stream, {mChunk});
        avi.segment().index.edit = [bytes](std::vector<Idx1Entry>& index) {
            index[0].length = bytes;
        };
        openFile(avi.build());
    }

    Bytes mChunk = patternBytes(40);
};

TEST_F(BitRate, IsPublishedAndShownInTheLog) {
    struct Row {
        uint32_t bitRate;
        const char* text;
    };
    const Row rows[] = {{1000, "1000bps"},       {1024, "1024bps"},         {1025, "1.001Kbps"},
                        {128000, "125.000Kbps"}, {1048576, "1024.000Kbps"}, {1048577, "1.000Mbps"},
                        {2000000, "1.929Mbps"},  {2097151, "1.1023Mbps"}};
    for (const Row& row : rows) {
        SCOPED_TRACE(row.text);
        LogCapture log;
        openAudioOfBitRate(alawStream(), row.bitRate);

        EXPECT_EQ(trackFormat(0).getInt32(kAverageBitRate), static_cast<int32_t>(row.bitRate));
        EXPECT_THAT(log, Logged(ANDROID_LOG_DEBUG,
                                "[audio/g711-alaw] CBR Audio duration 8000000us avg bitRate " +
                                    std::to_string(row.bitRate) + "(" + row.text + ")"));
    }
}

TEST_F(BitRate, IsPublishedUnderTheCommonKeyForTheCodecsThatAskForIt) {
    struct Row {
        uint16_t formatTag;
        bool published;
    };
    const Row rows[] = {{0x00FF, true},  {0x2000, true},  {0x2001, true},
                        {0x0006, false}, {0x0057, false}, {0x0160, false}};
    for (const Row& row : rows) {
        SCOPED_TRACE(row.formatTag);
        Stream stream = alawStream();
        auto& format = std::get<WaveFormat>(stream.format);
        format.formatTag = row.formatTag;
        format.extra = {0x15, 0x88};  // an AAC configuration: LC, 8 kHz, mono
        openAudioOfBitRate(stream, 4000);

        EXPECT_EQ(trackFormat(0).getInt32(kAverageBitRate), 4000);
        EXPECT_EQ(trackFormat(0).getInt32(AMEDIAFORMAT_KEY_BIT_RATE),
                  row.published ? std::optional<int32_t>(4000) : std::nullopt);
    }
}

TEST_F(BitRate, OfZeroIsNotPublishedUnderTheCommonKey) {
    Stream stream = alawStream();
    std::get<WaveFormat>(stream.format).formatTag = 0x2000;
    stream.header.scale = 0;  // no duration, hence no rate
    stream.header.sampleSize = 0;
    openStream(stream, {mChunk});

    EXPECT_EQ(trackFormat(0).getInt32(kAverageBitRate), 0);
    EXPECT_FALSE(trackFormat(0).contains(AMEDIAFORMAT_KEY_BIT_RATE));
}

TEST_F(BitRate, CountsEveryByteOfTheTable) {
    Stream stream = mjpegStream();
    openStream(stream, {patternBytes(100), patternBytes(300), {}, patternBytes(600)});

    // 1000 bytes in 4 frames of 40 ms.
    EXPECT_EQ(trackFormat(0).getInt32(kAverageBitRate), 50000);
    EXPECT_EQ(trackFormat(0).getInt64(AMEDIAFORMAT_KEY_DURATION), 160000);
}

TEST_F(BitRate, OfSubtitlesIsZero) {
    LogCapture log;
    openStream(subtitleStream(), {subtitleChunk("00:00:01.000", "00:00:02.000")});

    EXPECT_EQ(trackFormat(0).getInt32(kAverageBitRate), 0);
    EXPECT_THAT(log,
                Logged(ANDROID_LOG_DEBUG, "[text/vobsub] Video duration 0us avg bitRate 0(0bps)"));
}

TEST_F(BitRate, OfVideoIsShownInTheLog) {
    LogCapture log;
    openStream(mjpegStream(), {patternBytes(500), patternBytes(500)});
    countTracks();

    EXPECT_THAT(log, Logged(ANDROID_LOG_DEBUG,
                            "[video/x-motion-jpeg] Video duration 80000us avg "
                            "bitRate 100000(97.672Kbps)"));
}

TEST_F(BitRate, FinishingLogsTheTableOfAnAudioTrack) {
    LogCapture log;
    Stream stream = alawStream();
    stream.header.length = 3;
    openStream(stream, {patternBytes(100), patternBytes(60)});
    countTracks();

    EXPECT_THAT(log, Logged(ANDROID_LOG_DEBUG,
                            "finishParse(audio/g711-alaw): set kKeyMaxInputSize "
                            "100 sampleCount 2"));
    EXPECT_THAT(log, Logged(ANDROID_LOG_DEBUG,
                            "finishParse(audio/g711-alaw): finished samples 2 syncSamples 2"));
    EXPECT_THAT(log,
                Logged(ANDROID_LOG_DEBUG, "[audio/g711-alaw] SCNT 2 TTSZ 160 BLKM false TTBLKS 0"));
    EXPECT_THAT(log, Logged(ANDROID_LOG_DEBUG,
                            "[audio/g711-alaw] S 1 R 8000 SSZ 1 BLKA 1 BPS 8 "
                            "SPS 8000 AVGBPS 8000"));
}

TEST_F(BitRate, FinishingShowsTheTotalOfByteTimedAudioOnly) {
    LogCapture log;
    openStream(pcmStream(2, 8000, 16), {patternBytes(100), patternBytes(60)});
    countTracks();
    EXPECT_THAT(log, Logged(ANDROID_LOG_DEBUG, "[audio/raw] SCNT 2 TTSZ 0 BLKM false TTBLKS 0"));

    log.clear();
    openStream(mjpegStream(), {patternBytes(100)});
    countTracks();
    EXPECT_THAT(
        log, Logged(ANDROID_LOG_DEBUG, "[video/x-motion-jpeg] SCNT 1 TTSZ 0 BLKM false TTBLKS 0"));
}

TEST_F(BitRate, FinishingSeparatesTracksInTheExtractLog) {
    for (const bool isOn : {false, true}) {
        SCOPED_TRACE(isOn);
        setProperty(kExtractLogProperty, isOn ? "1" : "0");
        LogCapture log;
        openStream(mjpegStream(), {patternBytes(100)});
        countTracks();

        EXPECT_EQ(log.contains(ANDROID_LOG_VERBOSE, "======================================"),
                  isOn);
    }
}

}  // namespace
}  // namespace avitest
