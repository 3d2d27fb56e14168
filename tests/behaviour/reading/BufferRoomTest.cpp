// SPDX-License-Identifier: Apache-2.0
//
// How much of a buffer is written: what the track asked its group for, though buffers of the device
// report more, and no more than a smaller buffer has.

#include "tests/behaviour/reading/ReadingFixture.h"
#include "tests/behaviour/reading/RecordingGroup.h"

namespace avitest {
namespace {

class BufferRoom : public ReadingTest {
  protected:
    // Reads the file's first track to its end with buffers like the device's.
    std::vector<Bytes> readReportedBeyond(const Stream& stream, const std::vector<Bytes>& chunks) {
        openStream(stream, chunks);
        RecordingGroup group(0, kReportedBeyond);
        GroupReader reader(track(0), &group);
        std::vector<Bytes> samples;
        for (ReadResult result = reader.read(); result.buffer; result = reader.read())
            samples.push_back(result.buffer.bytes());
        EXPECT_TRUE(group.isUnwrittenBeyond());
        return samples;
    }
};

// Two units of one-byte prefixes need six bytes more than their chunk; four were asked for.
TEST_F(BufferRoom, OfConvertedAvcEndsWhereTheTrackAsked) {
    const Bytes first = patternBytes(30, 1);
    const Bytes second = patternBytes(20, 2);
    const Bytes chunk = ByteWriter().u8(30).bytes(first).u8(20).bytes(second).take();
    const Bytes startCode = {0, 0, 0, 1};
    const Bytes converted =
        ByteWriter().bytes(startCode).bytes(first).bytes(startCode).bytes(second).take();

    EXPECT_EQ(readReportedBeyond(lengthPrefixedStream(1), {chunk}),
              (std::vector<Bytes>{ByteWriter().bytes(converted).cut(chunk.size()).take()}));
}

TEST_F(BufferRoom, OfOtherSamplesIsEnough) {
    const Stream streams[] = {mjpegStream(), alawStream(), pcmStream(1, 8000, 8),
                              videoStream("WVC1", 320, 240, 25), lengthPrefixedStream(4)};
    for (const Stream& stream : streams)
        EXPECT_EQ(readReportedBeyond(stream, {patternBytes(300, 1), patternBytes(300, 2)}).size(),
                  2u);
}

TEST_F(BufferRoom, SmallerThanWiderSamplesCutsThem) {
    openStream(pcmStream(1, 8000, 8), {patternBytes(20)});
    RecordingGroup group(31);
    GroupReader reader(track(0), &group);
    const ReadResult result = reader.read();

    ASSERT_EQ(result.status, AMEDIA_OK);
    Bytes widened;
    for (const uint8_t byte : patternBytes(15)) {
        widened.push_back(0);
        widened.push_back(byte ^ 0x80);
    }
    EXPECT_EQ(result.buffer.bytes(), widened);
    EXPECT_EQ(result.buffer.base()[30], kUnwritten);
}

TEST_F(BufferRoom, SmallerThanAStartCodeFailsTheRead) {
    openStream(videoStream("WVC1", 320, 240, 25), {patternBytes(20)});
    for (const size_t size : {1u, 3u, 4u, 23u}) {
        SCOPED_TRACE(size);
        RecordingGroup group(size);
        GroupReader reader(track(0), &group);
        EXPECT_NE(reader.status(), AMEDIA_OK);
    }
}

}  // namespace
}  // namespace avitest
