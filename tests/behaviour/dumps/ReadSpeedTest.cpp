// SPDX-License-Identifier: Apache-2.0
//
// How fast samples were read, as a dump tells it: the speed of this read, that of all reads, and
// the bit rate of the track.

#include <regex>

#include "tests/behaviour/dumps/DumpsFixture.h"

namespace avitest {
namespace {

// What a dump says of its read.
struct ReadInformation {
    int64_t size = 0;
    int64_t elapsedUs = 0;
    std::string speed;
    std::string average;
    std::string bitRate;
};

class ReadSpeed : public DumpsTest {
  protected:
    static ReadInformation parse(const std::string& dump) {
        static const std::regex kPattern(
            "PTS \\d+\\(.*s\\) SZ (\\d+) TimeConsumed (\\d+)us IOSpeed (.*)/(.*)/(.*)");
        std::smatch match;
        const std::string text = informationOf(dump);
        if (!std::regex_match(text, match, kPattern)) {
            ADD_FAILURE() << text;
            return {};
        }
        return {std::stoll(match[1]), std::stoll(match[2]), match[3], match[4], match[5]};
    }

    // The dumps of a track that is read slowly to its end, after a seek if one is asked for.
    std::vector<ReadInformation> readSlowly(const SeekRequest& seek = {}) {
        mLog.clear();
        const std::unique_ptr<Track> source = track(0);
        readTrack(*source, seek);
        std::vector<ReadInformation> result;
        for (const std::string& dump : dumps())
            result.push_back(parse(dump));
        return result;
    }

    // The bit rate that the dump of the first sample shows.
    std::string bitRateOf(const Stream& stream, const Bytes& chunk) {
        openSlow(stream, {chunk});
        const std::vector<ReadInformation> reads = readSlowly();
        return reads.size() == 1 ? reads[0].bitRate : "";
    }

    // One chunk of 8 seconds: a byte is a bit a second.
    static Stream slowAudio() {
        Stream stream = alawStream();
        stream.header.sampleSize = 0;
        stream.header.rate = 1;
        stream.header.length = 8;
        return stream;
    }
};

// `bytes` read in `us` microseconds.
std::string speedText(int64_t bytes, int64_t us) {
    if (us == 0) return "no time";
    const int64_t rate = bytes * 8 * 1000000 / us;
    if (rate > 1048576) {
        return format("%lld.%03lldMbps", static_cast<long long>(rate >> 20),
                      static_cast<long long>((rate >> 10) % 1024));
    }
    if (rate < 1025) return format("%lldbps", static_cast<long long>(rate));
    return format("%lld.%03lldKbps", static_cast<long long>(rate >> 10),
                  static_cast<long long>(rate % 1024));
}

TEST_F(ReadSpeed, IsSizeByTime) {
    openSlow(mjpegStream(), {patternBytes(1), patternBytes(300), patternBytes(50000)});
    for (const ReadInformation& read : readSlowly()) {
        EXPECT_GE(read.elapsedUs, 2000);
        EXPECT_EQ(speedText(read.size, read.elapsedUs), read.speed);
    }
}

TEST_F(ReadSpeed, AverageIsThatOfAllReads) {
    openSlow(mjpegStream(), {patternBytes(1), patternBytes(300), patternBytes(50000)});
    const std::vector<ReadInformation> reads = readSlowly();
    ASSERT_EQ(3u, reads.size());
    int64_t bytes = 0;
    int64_t us = 0;
    for (const ReadInformation& read : reads) {
        bytes += read.size;
        us += read.elapsedUs;
        EXPECT_EQ(speedText(bytes, us), read.average);
    }
}

TEST_F(ReadSpeed, SeekStartsTheAverageAgain) {
    openSlow(mjpegStream(), {patternBytes(20000), patternBytes(10), patternBytes(300)});
    StartedTrack started(track(0));
    started.sample();
    mLog.clear();
    started.track().read(android::SEEK, 40000);
    ASSERT_EQ(1u, dumps().size());
    const ReadInformation read = parse(dumps()[0]);
    EXPECT_EQ(10, read.size);
    EXPECT_EQ(read.speed, read.average);
}

// A sample that is dumped twice is read once.
TEST_F(ReadSpeed, LengthPrefixedSamplesCountOnce) {
    openSlow(lengthPrefixedStream(4), {{0, 0, 0, 2, 0x41, 0x9A}});
    mLog.clear();
    readAll(0);
    ASSERT_EQ(2u, dumps().size());
    const ReadInformation read = parse(dumps()[1]);
    EXPECT_EQ(read.speed, read.average);
    EXPECT_EQ(speedText(6, read.elapsedUs), read.speed);
}

TEST_F(ReadSpeed, BitRateIsTheAverageOfTheTrack) {
    struct Row {
        size_t bitRate;
        const char* text;
    };
    const Row rows[] = {{1, "1bps"},
                        {1000, "1000bps"},
                        {1024, "1024bps"},
                        {1025, "1.001Kbps"},
                        {2047, "1.1023Kbps"},
                        {2048, "2.000Kbps"},
                        {1048575, "1023.1023Kbps"},
                        {1048576, "1024.000Kbps"},
                        {1048577, "1.000Mbps"},
                        {1049601, "1.001Mbps"},
                        {1536000, "1.476Mbps"}};
    for (const Row& row : rows) {
        SCOPED_TRACE(row.bitRate);
        EXPECT_EQ(row.text, bitRateOf(slowAudio(), patternBytes(row.bitRate)));
        EXPECT_EQ(static_cast<int32_t>(row.bitRate), trackFormat(0).getInt32("av-bitrate"));
    }
}

// A stream without a rate has no average; that of its format is shown instead.
TEST_F(ReadSpeed, BitRateOfTheFormatStandsInForTheAverage) {
    constexpr uint16_t kAac = 0xFF;
    Stream stream = frameAudioStream(kAac, 2, 44100, 1024, 4000);
    std::get<WaveFormat>(stream.format).extra = {0x12, 0x10};
    stream.header.rate = 0;
    EXPECT_EQ("31.256Kbps", bitRateOf(stream, patternBytes(40)));
    EXPECT_EQ(std::nullopt, trackFormat(0).getInt32("av-bitrate"));
    EXPECT_EQ(32000, trackFormat(0).getInt32(AMEDIAFORMAT_KEY_BIT_RATE));
}

TEST_F(ReadSpeed, BitRateIs0WhereTheFormatHasNone) {
    Stream stream = alawStream();
    stream.header.rate = 0;
    EXPECT_EQ("0bps", bitRateOf(stream, patternBytes(40)));
    EXPECT_EQ(std::nullopt, trackFormat(0).getInt32("av-bitrate"));
    EXPECT_EQ(std::nullopt, trackFormat(0).getInt32(AMEDIAFORMAT_KEY_BIT_RATE));
}

// Frames that are cut from one chunk share the beginning of its read.
TEST_F(ReadSpeed, FramesOfAChunkAreTimedFromItsRead) {
    openSlow(mp3Bytes(), {joined(frames(3))});
    const std::vector<ReadInformation> reads = readSlowly();
    ASSERT_EQ(3u, reads.size());
    EXPECT_GE(reads[0].elapsedUs, 2000);
    EXPECT_GE(reads[1].elapsedUs, reads[0].elapsedUs);
    EXPECT_GE(reads[2].elapsedUs, reads[1].elapsedUs);
}

}  // namespace
}  // namespace avitest
