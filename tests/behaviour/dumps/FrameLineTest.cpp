// SPDX-License-Identifier: Apache-2.0
//
// The line with the bytes of a sample as it was loaded: whole, its ends, or the times of a
// subtitle.

#include "tests/behaviour/dumps/DumpsFixture.h"

namespace avitest {
namespace {

using ::testing::IsEmpty;
using ::testing::SizeIs;

class FrameLine : public DumpsTest {
  protected:
    // The line about the only sample of a stream: the first one that comes.
    std::string lineOf(const Stream& stream, const Bytes& chunk) {
        openStream(stream, {chunk});
        readAll(0);
        const std::vector<std::string> lines = debugLinesWith("][0][0/1]");
        return lines.empty() ? "" : lines[0];
    }
};

// A description is the same whatever the codec: generic video has no codes of its own.
TEST_F(FrameLine, UpTo32BytesAreShownWhole) {
    for (const size_t size : {5, 24, 25, 31, 32}) {
        SCOPED_TRACE(size);
        const Bytes chunk = joined({{0xC0, 0x01, 0x02, 0x03, 0x00}, patternBytes(size - 5)});
        EXPECT_EQ("[video/x-motion-jpeg][0][0/1][I] " + hexText(chunk) + "(c0010203",
                  lineOf(mjpegStream(), chunk));
    }
}

TEST_F(FrameLine, OfMoreTheFirstAndTheLast16AreShownWithoutDescription) {
    for (const size_t size : {33, 34, 1000}) {
        SCOPED_TRACE(size);
        const Bytes chunk = joined({{0, 0, 1, 0xB6, 0x10}, patternBytes(size - 5)});
        EXPECT_EQ("[video/mp4v-es][0][0/1][I] " + hexText(slice(chunk, 0, 16)) + "..." +
                      hexText(slice(chunk, size - 16, size)) + format("(SZ: %zu)", size),
                  lineOf(videoStream("FMP4", 320, 240, 25), chunk));
    }
}

TEST_F(FrameLine, ShorterThanAStartCodeIsShownAllTheSame) {
    for (size_t size = 1; size < 4; ++size) {
        SCOPED_TRACE(size);
        const Bytes chunk(size, 0xAB);
        EXPECT_EQ(0u, lineOf(mjpegStream(), chunk)
                          .find("[video/x-motion-jpeg][0][0/1][N/A] " + hexText(chunk) + "("));
    }
}

TEST_F(FrameLine, OfASubtitleTheTimesAreShownAlsoAsText) {
    const Bytes chunk = subtitleChunk("00:01:02.345", "00:01:04.000");
    const Bytes times = slice(chunk, 0, 27);
    EXPECT_EQ("[text/vobsub][0][0/1] " + hexText(times) + "(5b30303a[00:01:02.345-00:01:04.000]",
              lineOf(subtitleStream(), chunk));
}

TEST_F(FrameLine, LengthOfASubtitleDoesNotMatter) {
    const std::string times = "[00:01:02.345-00:01:04.000]";
    for (const size_t size : {0, 5, 6, 1000}) {
        SCOPED_TRACE(size);
        EXPECT_EQ("[text/vobsub][0][0/1] " + hexText(bytesOf(times)) + "(5b30303a" + times,
                  lineOf(subtitleStream(), joined({bytesOf(times), patternBytes(size)})));
    }
}

// Only what there is of it is shown.
TEST_F(FrameLine, ShortSubtitleIsShownAsFarAsItGoes) {
    EXPECT_EQ("[text/vobsub][0][0/1] 5B 30 30 3A 30 31(5b30303a[00:01",
              lineOf(subtitleStream(), bytesOf("[00:01")));
}

TEST_F(FrameLine, SoundIsShownAsWell) {
    EXPECT_EQ("[audio/g711-alaw][0][0/1] 01 02 03 04 05(01020304",
              lineOf(alawStream(), {1, 2, 3, 4, 5}));
}

TEST_F(FrameLine, SamplesAreShownBeforeTheyAreConverted) {
    EXPECT_EQ("[audio/raw][0][0/1] 01 02 03 04(01020304",
              lineOf(pcmStream(1, 8000, 32), {1, 2, 3, 4}));
}

TEST_F(FrameLine, Vc1IsShownWithItsStartCode) {
    EXPECT_EQ(
        0u, lineOf(videoStream("WVC1", 320, 240, 25), {0xC5, 1, 2}).find("[video/wvc1][0][0/1]["));
    EXPECT_THAT(debugLinesWith("] 00 00 01 0D C5 01 02(0000010d"), SizeIs(1));
}

TEST_F(FrameLine, ThereIsNoneForAvcAndHevc) {
    for (const ChunkId code : {ChunkId("H264"), ChunkId("HEVC")}) {
        openStream(videoStream(code, 320, 240, 25), {{0, 0, 1, 0xB6, 0x10, 7, 8}});
        readAll(0);
        EXPECT_THAT(debugLinesWith("00 00 01 B6 10 07 08("), SizeIs(1));  // the dump
        EXPECT_THAT(debugLinesWith("VOP"), IsEmpty());
    }
}

// The rest of a chunk is no chunk: only the first frame's read has a line.
TEST_F(FrameLine, ThereIsOneAChunkOfMpegAudio) {
    openStream(mp3Bytes(), {joined(frames(3))});
    readAll(0);
    EXPECT_THAT(debugLinesWith("(SZ: 1251)"), SizeIs(1));
    EXPECT_THAT(debugLinesWith("(SZ: "), SizeIs(1));
}

}  // namespace
}  // namespace avitest
