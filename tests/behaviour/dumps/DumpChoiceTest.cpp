// SPDX-License-Identifier: Apache-2.0
//
// Which buffers the log tells of: the first five and those of the last samples, unless everything
// is asked for.

#include "tests/behaviour/dumps/DumpsFixture.h"

namespace avitest {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;

class DumpChoice : public DumpsTest {
  protected:
    // Reads `count` samples and answers which of them were dumped.
    std::vector<size_t> dumpedOf(StartedTrack& started, size_t count) {
        mLog.clear();
        for (size_t i = 0; i < count; ++i)
            started.sample();
        return dumpedIndices();
    }
    // 25 frames a second.
    static int64_t timeOf(size_t frame) { return static_cast<int64_t>(frame) * 40000; }
};

TEST_F(DumpChoice, FirstFiveAndLastFiveOfALongTrack) {
    EXPECT_EQ(numbersWithout(20, 5, 15), indicesOf(20));
}

TEST_F(DumpChoice, FirstAndLastMeetInTracksOfTen) {
    EXPECT_EQ(numbersWithout(12, 5, 7), indicesOf(12));
    EXPECT_EQ(numbersWithout(11, 5, 6), indicesOf(11));
    EXPECT_EQ(numbersWithout(10, 0, 0), indicesOf(10));
    EXPECT_EQ(numbersWithout(6, 0, 0), indicesOf(6));
    EXPECT_EQ(numbersWithout(5, 0, 0), indicesOf(5));
    EXPECT_EQ(numbersWithout(1, 0, 0), indicesOf(1));
}

TEST_F(DumpChoice, ExtractLogDoesNotChangeIt) {
    setProperty(kExtractLogProperty, "1");
    EXPECT_EQ(numbersWithout(20, 5, 15), indicesOf(20));
}

TEST_F(DumpChoice, VerboseLogDumpsAll) {
    setProperty(kVerboseLogProperty, "1");
    EXPECT_EQ(numbersWithout(20, 0, 0), indicesOf(20));
}

TEST_F(DumpChoice, SwitchIsLookedAtForEachBuffer) {
    openStream(mjpegStream(), chunksOf(20));
    StartedTrack started(track(0));
    EXPECT_THAT(dumpedOf(started, 8), ElementsAre(0, 1, 2, 3, 4));
    // The construction of any extractor reads the switches.
    const ScopedProperty on(kVerboseLogProperty, "1");
    MemorySource other(fileOf(mjpegStream(), chunksOf(1)).build());
    android::service::Extractor::open(pluginUnderTest(), other);
    EXPECT_THAT(dumpedOf(started, 2), ElementsAre(8, 9));
}

TEST_F(DumpChoice, SeekStartsTheCountAgain) {
    openStream(mjpegStream(), chunksOf(40));
    StartedTrack started(track(0));
    EXPECT_THAT(dumpedOf(started, 8), ElementsAre(0, 1, 2, 3, 4));
    mLog.clear();
    started.track().read(android::SEEK, timeOf(20));
    for (size_t i = 0; i < 9; ++i)
        started.sample();
    EXPECT_THAT(dumpedIndices(), ElementsAre(20, 21, 22, 23, 24));
}

TEST_F(DumpChoice, NewTrackObjectStartsTheCountAgain) {
    openStream(mjpegStream(), chunksOf(20));
    for (int i = 0; i < 2; ++i) {
        StartedTrack started(track(0));
        EXPECT_THAT(dumpedOf(started, 8), ElementsAre(0, 1, 2, 3, 4));
    }
}

TEST_F(DumpChoice, StopDoesNotStartTheCountAgain) {
    openStream(mjpegStream(), chunksOf(20));
    BufferGroup group;
    const std::unique_ptr<Track> source = track(0);
    for (const size_t expected : {3, 2, 0}) {
        SCOPED_TRACE(expected);
        ASSERT_EQ(AMEDIA_OK, source->start(group));
        mLog.clear();
        for (int i = 0; i < 3; ++i)
            source->read();
        EXPECT_EQ(expected, dumps().size());
        ASSERT_EQ(AMEDIA_OK, source->stop());
    }
}

// More buffers than chunks: each chunk holds four frames.
TEST_F(DumpChoice, TrackOfFewerThanFiveEntriesHasNoLastOnes) {
    for (const size_t chunks : {1, 2, 3, 4}) {
        SCOPED_TRACE(chunks);
        const std::vector<Bytes> data(chunks, joined(frames(4)));
        openStream(mp3Bytes(), data);
        EXPECT_EQ(4 * chunks, readAll(0).size());
        EXPECT_EQ(std::min<size_t>(4 * chunks, 5), dumps().size());
    }
}

TEST_F(DumpChoice, TrackOfFiveEntriesHasLastOnesOnly) {
    openStream(mp3Bytes(), std::vector<Bytes>(5, joined(frames(4))));
    EXPECT_EQ(20u, readAll(0).size());
    EXPECT_EQ(20u, dumps().size());
}

TEST_F(DumpChoice, BuffersAreCountedNotChunks) {
    openStream(mp3Bytes(), std::vector<Bytes>(8, joined(frames(4))));
    readAll(0);
    // Five frames of two chunks; then all of the last five chunks.
    std::vector<size_t> expected = {0, 0, 0, 0, 1};
    for (size_t chunk = 3; chunk < 8; ++chunk)
        expected.insert(expected.end(), 4, chunk);
    EXPECT_EQ(expected, dumpedIndices());
}

// Two dumps a sample: the fifth is that of the third sample as it was read.
TEST_F(DumpChoice, LengthPrefixedSamplesCountTwice) {
    std::vector<Bytes> chunks;
    for (uint8_t i = 0; i < 20; ++i)
        chunks.push_back({0, 0, 0, 2, 0x41, i});
    dumpsOf(lengthPrefixedStream(4), chunks);
    EXPECT_THAT(dumpedIndices(),
                ElementsAre(0, 0, 1, 1, 2, 15, 15, 16, 16, 17, 17, 18, 18, 19, 19));
}

// Nothing at all is said of a buffer in between: not even what is told of chunks and frames.
TEST_F(DumpChoice, InBetweenNothingIsLogged) {
    const Bytes avc = {0, 0, 0, 2, 0x41, 0x9A};
    const struct {
        Stream stream;
        Bytes chunk;
    } rows[] = {{mjpegStream(), patternBytes(30)},
                {alawStream(), patternBytes(30)},
                {subtitleStream(), subtitleChunk("00:00:01.000", "00:00:02.000")},
                {lengthPrefixedStream(4), avc},
                {mp3Bytes(), frame()}};
    for (const auto& row : rows) {
        openStream(row.stream, std::vector<Bytes>(20, row.chunk));
        StartedTrack started(track(0));
        dumpedOf(started, 5);
        EXPECT_NE(0u, mLog.lines().size());
        mLog.clear();
        dumpedOf(started, 10);
        EXPECT_THAT(mLog.lines(), IsEmpty());
        mLog.clear();
        started.sample();
        EXPECT_NE(0u, mLog.lines().size());
    }
}

// A frame that goes on in the next chunk, and chunks too short to be cut, are told of at the
// beginning only.
TEST_F(DumpChoice, InBetweenNothingIsLoggedOfFramesThatWereSplit) {
    const Bytes even = frameOf(kHeader | kPaddingBit, 418);
    const struct {
        const char* told;
        Bytes frame;
        std::vector<size_t> chunks;  // again and again
    } rows[] = {{"Read remained", frame(), {kFrameSize - 2}},
                {"Only 0 bytes left", frame(), {300, 117}},
                {"chunk consumed with whole size", even, {209}}};
    for (const auto& row : rows) {
        SCOPED_TRACE(row.told);
        const Bytes all = joined(std::vector<Bytes>(60, row.frame));
        std::vector<size_t> sizes = {2 * row.frame.size()};
        for (size_t i = 0, end = sizes[0]; end < all.size(); end += sizes.back())
            sizes.push_back(row.chunks[i++ % row.chunks.size()]);
        openStream(mp3Bytes(), split(all, sizes));
        StartedTrack started(track(0));
        dumpedOf(started, 5);
        EXPECT_NE(0u, mLog.count(row.told));
        dumpedOf(started, 40);
        EXPECT_THAT(mLog.lines(), IsEmpty());
    }
}

}  // namespace
}  // namespace avitest
