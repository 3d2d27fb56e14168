// SPDX-License-Identifier: Apache-2.0
//
// The line about a buffer that goes out: its track, its bytes, its time and size.

#include <algorithm>
#include <regex>

#include "tests/behaviour/dumps/DumpsFixture.h"

namespace avitest {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;

class DataDump : public DumpsTest {
  protected:
    // The dump of a video stream's only chunk.
    std::string dumpOf(const Bytes& chunk) {
        const std::vector<std::string> lines = dumpsOf(mjpegStream(), {chunk});
        EXPECT_EQ(1u, lines.size());
        return lines.empty() ? "" : lines[0];
    }
};

TEST_F(DataDump, NamesTheKindOfItsTrack) {
    const Bytes two = {0xAB, 0x0C};
    EXPECT_EQ(0u, dumpOf(two).find("[video/x-motion-jpeg][0][V][0] AB 0C(PTS "));
    EXPECT_EQ(0u, dumpsOf(alawStream(), {two}).at(0).find("[audio/g711-alaw][0][A][0] AB 0C(PTS "));
    EXPECT_EQ(0u, dumpsOf(subtitleStream(), {two}).at(0).find("[text/vobsub][0][S][0] AB 0C(PTS "));
}

TEST_F(DataDump, NamesStreamAndSample) {
    AviFile avi;
    avi.addStream(mjpegStream());
    const size_t audio = avi.addStream(alawStream());
    avi.addChunk(0, patternBytes(30));
    avi.addChunk(audio, {1, 2});
    avi.addChunk(audio, {3});
    openFileQuietly(avi);
    readAll(1);
    ASSERT_EQ(2u, dumps().size());
    EXPECT_EQ("[audio/g711-alaw][1][A][0] 01 02(PTS 0(0.000s) SZ 2", withoutTimes(dumps()[0]));
    EXPECT_EQ("[audio/g711-alaw][1][A][1] 03(PTS 250(0.000s) SZ 1", withoutTimes(dumps()[1]));
}

TEST_F(DataDump, UpTo24BytesAreShownWhole) {
    for (const size_t size : {1, 2, 8, 16, 23, 24}) {
        SCOPED_TRACE(size);
        const Bytes chunk = patternBytes(size);
        EXPECT_EQ("[video/x-motion-jpeg][0][V][0] " + hexText(chunk) +
                      format("(PTS 0(0.000s) SZ %zu", size),
                  withoutTimes(dumpOf(chunk)));
    }
}

TEST_F(DataDump, OfMoreTheFirst16AndTheLast8AreShown) {
    for (const size_t size : {25, 26, 1000}) {
        SCOPED_TRACE(size);
        const Bytes chunk = patternBytes(size);
        EXPECT_EQ("[video/x-motion-jpeg][0][V][0] " + hexText(slice(chunk, 0, 16)) + "..." +
                      hexText(slice(chunk, size - 8, size)) + format("(PTS 0(0.000s) SZ %zu", size),
                  withoutTimes(dumpOf(chunk)));
    }
}

TEST_F(DataDump, ShowsWhatGoesOutNotWhatTheFileHas) {
    // 8-bit samples become 16-bit ones.
    const std::vector<std::string> lines = dumpsOf(pcmStream(1, 8000, 8), {{0x00, 0x80, 0xFF}});
    EXPECT_EQ(0u, lines.at(0).find("[audio/raw][0][A][0] 00 80 00 00 00 7F(PTS 0(0.000s) SZ 6 "));
}

// A 24-bit sample of which the file has one byte becomes nothing.
TEST_F(DataDump, EmptyBuffersAreNotDumpedAndDoNotCount) {
    std::vector<Bytes> chunks(8, Bytes(1));
    const std::vector<Bytes> whole = chunksOf(12, 30);
    chunks.insert(chunks.end(), whole.begin(), whole.end());
    dumpsOf(pcmStream(1, 8000, 24), chunks);
    EXPECT_THAT(dumpedIndices(), ElementsAre(8, 9, 10, 11, 12, 15, 16, 17, 18, 19));
}

TEST_F(DataDump, TimeIsShownInMicrosecondsAndInSeconds) {
    openStream(subtitleStream(), {subtitleChunk("00:01:02.345", "00:01:03.000"),
                                  subtitleChunk("00:00:00.007", "00:01:03.000"),
                                  subtitleChunk("99:59:59.999", "99:59:59.999")});
    readAll(0);
    ASSERT_EQ(3u, dumps().size());
    EXPECT_EQ(0u, informationOf(dumps()[0]).find("PTS 62345000(62.345s) SZ 37 TimeConsumed "));
    EXPECT_EQ(0u, informationOf(dumps()[1]).find("PTS 7000(0.007s) SZ 37 TimeConsumed "));
    EXPECT_EQ(0u,
              informationOf(dumps()[2]).find("PTS 359999999000(359999.999s) SZ 37 TimeConsumed "));
}

TEST_F(DataDump, InformationIsWhole) {
    static const std::string kSpeed = "\\d+(bps|\\.\\d{3,4}[KM]bps)";
    static const std::regex kInformation(
        "PTS 40000\\(0\\.040s\\) SZ 30 TimeConsumed (\\d+)us"
        "( IOSpeed " +
        kSpeed + "/" + kSpeed + "/" + kSpeed + ")?");
    openSlow(mjpegStream(), chunksOf(2));
    readAll(0);
    ASSERT_EQ(2u, dumps().size());
    std::smatch match;
    const std::string information = informationOf(dumps()[1]);
    ASSERT_TRUE(std::regex_match(information, match, kInformation)) << information;
    EXPECT_GE(std::stoll(match[1]), 2000);
    EXPECT_TRUE(match[2].matched);
}

// Of a sample with length prefixes, what was read is dumped as well as what it becomes.
TEST_F(DataDump, LengthPrefixedSampleIsDumpedTwice) {
    const Bytes chunk = {0, 0, 0, 2, 0x41, 0x9A, 0, 0, 0, 1, 0x06};
    const std::vector<std::string> lines = dumpsOf(lengthPrefixedStream(4), {chunk});
    ASSERT_EQ(2u, lines.size());
    EXPECT_EQ("[video/avc][0][V][0] 00 00 00 02 41 9A 00 00 00 01 06()", lines[0]);
    EXPECT_EQ("[video/avc][0][V][0] 00 00 00 01 41 9A 00 00 00 01 06(PTS 0(0.000s) SZ 11",
              withoutTimes(lines[1]));
}

TEST_F(DataDump, LongPrefixedSampleIsCutAsWell) {
    const Bytes unit = patternBytes(40);
    const Bytes chunk = joined({{0, 0, 0, 40}, unit});
    const std::vector<std::string> lines = dumpsOf(lengthPrefixedStream(4), {chunk});
    EXPECT_EQ("[video/avc][0][V][0] " + hexText(slice(chunk, 0, 16)) + "..." +
                  hexText(slice(chunk, 36, 44)) + "()",
              lines.at(0));
}

TEST_F(DataDump, AvcWithStartCodesIsDumpedOnce) {
    const Bytes chunk = {0, 0, 0, 1, 0x41, 0x9A, 0x01};
    EXPECT_EQ(1u, dumpsOf(videoStream("H264", 320, 240, 25), {chunk}).size());
}

// Every frame that is cut out of a chunk is a buffer of its own.
TEST_F(DataDump, FramesOfMpegAudioAreDumpedOneByOne) {
    const std::vector<Bytes> all = frames(3);
    const std::vector<std::string> lines = dumpsOf(mp3Bytes(), {joined(all)});
    ASSERT_EQ(3u, lines.size());
    for (size_t i = 0; i < 3; ++i) {
        EXPECT_EQ(0u, lines[i].find("[audio/mpeg][0][A][0] " + hexText(slice(all[i], 0, 16)) +
                                    "..." + hexText(slice(all[i], 409, 417)) + "(PTS "));
        EXPECT_NE(std::string::npos, lines[i].find(" SZ 417 "));
    }
}

TEST_F(DataDump, FailedReadsAreNotDumped) {
    AviFile avi = fileOf(mjpegStream(), chunksOf(3));
    FaultySource& source = openCounted(avi.build());
    countTracks();
    const auto begin = static_cast<off64_t>(avi.chunks(0)[1].place.dataOffset);
    source.inject(Fault::shortRead(5).onOffsets(begin, begin + 30));
    mLog.clear();
    StartedTrack started(track(0));
    EXPECT_EQ(AMEDIA_OK, started.status());
    EXPECT_EQ(AMEDIA_ERROR_UNKNOWN, started.status());
    EXPECT_EQ(AMEDIA_OK, started.status());
    EXPECT_THAT(dumpedIndices(), ElementsAre(0, 2));
}

TEST_F(DataDump, SeekingAloneDumpsNothing) {
    openStream(mjpegStream(), chunksOf(3));
    StartedTrack started(track(0));
    EXPECT_THAT(dumps(), IsEmpty());
}

}  // namespace
}  // namespace avitest
