// SPDX-License-Identifier: Apache-2.0
//
// AVC samples with length prefixes come out with start codes.

#include "tests/behaviour/reading/ReadingFixture.h"
#include "tests/behaviour/reading/RecordingGroup.h"

namespace avitest {
namespace {

const Bytes kStartCode = {0, 0, 0, 1};

// A unit behind a prefix of `width` bytes.
Bytes prefixed(unsigned width, const Bytes& unit) {
    ByteWriter out;
    for (unsigned i = width; i > 0; --i)
        out.u8(static_cast<uint8_t>(uint64_t{unit.size()} >> (8 * (i - 1))));
    return out.bytes(unit).take();
}

class ReadAvc : public ReadingTest {
  protected:
    Sample read(unsigned width, const Bytes& chunk) {
        openStream(lengthPrefixedStream(width), {chunk});
        return StartedTrack(track(0)).sample();
    }

    // The first bytes of the buffer, of which the range may show fewer.
    Bytes memory(unsigned width, const Bytes& chunk, size_t length) {
        openStream(lengthPrefixedStream(width), {chunk});
        StartedTrack started(track(0));
        const ReadResult result = started.read();
        if (!result.buffer || result.buffer.size() < length) return {};
        return Bytes(result.buffer.base(), result.buffer.base() + length);
    }
};

TEST_F(ReadAvc, FourBytePrefixesBecomeStartCodes) {
    const Sample sample =
        read(4, {0x00, 0x00, 0x00, 0x02, 0xAA, 0xBB, 0x00, 0x00, 0x00, 0x01, 0xCC});

    EXPECT_EQ(sample.bytes,
              (Bytes{0x00, 0x00, 0x00, 0x01, 0xAA, 0xBB, 0x00, 0x00, 0x00, 0x01, 0xCC}));
}

// The length of the sample is that of its chunk, whatever the conversion adds.
TEST_F(ReadAvc, NarrowerPrefixesBecomeStartCodesAndKeepTheLengthOfTheChunk) {
    const Bytes unit = patternBytes(100);
    for (const unsigned width : {1u, 2u, 3u}) {
        SCOPED_TRACE(width);
        const Bytes chunk = prefixed(width, unit);
        const Bytes converted = kStartCode + unit;

        EXPECT_EQ(memory(width, chunk, converted.size()), converted);
        EXPECT_EQ(read(width, chunk).bytes, ByteWriter().bytes(converted).cut(chunk.size()).take());
    }
}

TEST_F(ReadAvc, WidePrefixesCountEveryByte) {
    const Bytes unit = patternBytes(70000);
    EXPECT_EQ(read(4, prefixed(4, unit)).bytes, kStartCode + unit);
    EXPECT_EQ(memory(3, prefixed(3, unit), 70004), kStartCode + unit);

    const Bytes small = patternBytes(300);
    EXPECT_EQ(memory(2, prefixed(2, small), 304), kStartCode + small);
}

TEST_F(ReadAvc, UnitOfLengthZeroIsSkipped) {
    const Bytes unit = {0x41, 0x9A, 0x01};
    const Bytes empty = prefixed(4, {});
    EXPECT_EQ(memory(4, empty + prefixed(4, unit), 7), kStartCode + unit);
    EXPECT_EQ(memory(4, prefixed(4, unit) + empty + prefixed(4, unit), 14),
              kStartCode + unit + kStartCode + unit);
}

TEST_F(ReadAvc, SampleOfEmptyUnitsKeepsItsLength) {
    EXPECT_EQ(read(4, Bytes(12)).bytes.size(), 12u);
    EXPECT_EQ(read(1, Bytes(5)).bytes.size(), 5u);
}

TEST_F(ReadAvc, RestShorterThanAPrefixIsDropped) {
    const Bytes unit = {0x41, 0x9A, 0x01};
    for (unsigned width = 2; width <= 4; ++width) {
        for (unsigned rest = 1; rest < width; ++rest) {
            SCOPED_TRACE(width * 10 + rest);
            LogCapture log;
            const Bytes chunk = prefixed(width, unit) + Bytes(rest, 0x77);
            EXPECT_EQ(memory(width, chunk, 7), kStartCode + unit);
            EXPECT_EQ(read(width, chunk).bytes.size(), chunk.size());
            EXPECT_EQ(log.count("MALFORMED!!!"), 0u);
        }
    }
}

// Not what the buffer held before.
TEST_F(ReadAvc, LengthThatTheUnitsDoNotFillIsZero) {
    const Bytes unit = {0x41, 0x9A, 0x01};
    const Bytes converted = kStartCode + unit;
    struct Row {
        unsigned width;
        Bytes chunk;
        Bytes expected;
    };
    const Row rows[] = {
        {4, prefixed(4, {}) + prefixed(4, unit) + prefixed(4, {}), converted + Bytes(8)},
        {4, prefixed(4, unit) + Bytes{7, 8, 9}, converted + Bytes(3)},
        {2, prefixed(2, unit) + Bytes(20), converted + Bytes(18)},
        {4, {1, 2, 3}, Bytes(3)},
        {1, Bytes(5), Bytes(5)},
    };
    for (const Row& row : rows) {
        SCOPED_TRACE(testing::PrintToString(row.chunk));
        openStream(lengthPrefixedStream(row.width), {row.chunk});
        RecordingGroup group;
        GroupReader reader(track(0), &group);
        EXPECT_EQ(sampleOf(reader.read().buffer).bytes, row.expected);
    }
}

TEST_F(ReadAvc, SampleShorterThanAPrefixIsHandedOut) {
    for (size_t size = 1; size < 4; ++size) {
        SCOPED_TRACE(size);
        EXPECT_EQ(read(4, Bytes(size, 0x01)).bytes.size(), size);
    }
}

TEST_F(ReadAvc, UnitLongerThanTheSampleIsCopiedAsFarAsItGoes) {
    LogCapture log;
    const Sample sample =
        read(4, {0x00, 0x00, 0x00, 0x01, 0xAA, 0x00, 0x00, 0x00, 0x09, 0xBB, 0xCC});

    EXPECT_EQ(sample.bytes,
              (Bytes{0x00, 0x00, 0x00, 0x01, 0xAA, 0x00, 0x00, 0x00, 0x01, 0xBB, 0xCC}));
    EXPECT_THAT(log, Logged(ANDROID_LOG_ERROR,
                            "[video/avc][0][0/1] 00 00 00 09 BB CC 00 00 NAL2 LenOff 9 Len 9/2/11 "
                            "MALFORMED!!!"));
}

TEST_F(ReadAvc, MalformedUnitIsLoggedWithTheBytesFromItsPrefix) {
    LogCapture log;
    read(2, {0x7F, 0xFF, 0x01, 0x02, 0x03, 0x04, 0x05, 0x06, 0x07, 0x08});

    EXPECT_THAT(log, Logged(ANDROID_LOG_ERROR,
                            "[video/avc][0][0/1] 7F FF 01 02 03 04 05 06 NAL1 LenOff 2 Len "
                            "32767/8/10 MALFORMED!!!"));
}

TEST_F(ReadAvc, MalformedUnitWithoutBytesIsAStartCode) {
    LogCapture log;
    EXPECT_EQ(read(4, {0x00, 0x00, 0x00, 0x05}).bytes, kStartCode);
    EXPECT_THAT(log, Logged(ANDROID_LOG_ERROR,
                            "00 00 00 05 00 00 00 00 NAL1 LenOff 4 Len 5/0/4 MALFORMED!!!"));
}

TEST_F(ReadAvc, LargestLengthIsMalformed) {
    LogCapture log;
    EXPECT_EQ(read(4, {0xFF, 0xFF, 0xFF, 0xFF, 0x41}).bytes, (Bytes{0, 0, 0, 1, 0x41}));
    EXPECT_THAT(log, Logged(ANDROID_LOG_ERROR, "Len 4294967295/1/5 MALFORMED!!!"));
}

TEST_F(ReadAvc, EmptyUnitsAreNotNumbered) {
    LogCapture log;
    read(4, prefixed(4, {}) + prefixed(4, {0x41}) + Bytes{0x00, 0x00, 0x00, 0x05, 0x01});

    EXPECT_THAT(log, Logged(ANDROID_LOG_ERROR, "NAL2 LenOff 13 Len 5/1/14 MALFORMED!!!"));
}

TEST_F(ReadAvc, WholeUnitsAreNotErrors) {
    LogCapture log;
    read(4, prefixed(4, patternBytes(50)) + prefixed(4, patternBytes(7)));

    EXPECT_EQ(log.count("MALFORMED"), 0u);
}

// Two units of one-byte prefixes need six bytes more than their chunk; the buffer has four.
TEST_F(ReadAvc, CopyStopsAtTheEndOfTheBuffer) {
    const Bytes first = patternBytes(30, 1);
    const Bytes second = patternBytes(20, 2);
    const Bytes chunk = prefixed(1, first) + prefixed(1, second);
    const Bytes converted = kStartCode + first + kStartCode + second;

    EXPECT_EQ(memory(1, chunk, chunk.size() + 4),
              ByteWriter().bytes(converted).cut(chunk.size() + 4).take());
    EXPECT_EQ(read(1, chunk).bytes.size(), chunk.size());
}

TEST_F(ReadAvc, StreamWithStartCodesIsLeftAlone) {
    const Bytes chunk = {0, 0, 0, 1, 0x65, 0x88, 0x84, 0x00};
    openStream(videoStream("H264", 320, 240, 25), {chunk});

    EXPECT_EQ(StartedTrack(track(0)).sample().bytes, chunk);
}

TEST_F(ReadAvc, StreamWithAWrongRecordIsLeftAlone) {
    Stream stream = lengthPrefixedStream(4);
    std::get<BitmapInfo>(stream.format).extra[0] = 2;  // not a version there is
    const Bytes chunk = prefixed(4, {0x65, 0x88, 0x84, 0x00});
    openStream(stream, {chunk});

    EXPECT_EQ(StartedTrack(track(0)).sample().bytes, chunk);
}

TEST_F(ReadAvc, SampleIsReadInOnePiece) {
    const Bytes chunk = prefixed(4, patternBytes(500)) + prefixed(4, patternBytes(400));
    AviFile avi = fileOf(lengthPrefixedStream(4), {chunk});
    MemorySource memory(avi.build());
    FaultySource source(memory);
    openSource(source);
    const std::unique_ptr<Track> reader = track(0);
    source.reset();
    readTrack(*reader);

    ASSERT_EQ(source.callCount(), 1u);
    EXPECT_EQ(source.calls()[0].size, chunk.size());
}

}  // namespace
}  // namespace avitest
