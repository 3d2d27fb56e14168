// SPDX-License-Identifier: Apache-2.0
//
// VC-1 frames get the start code that decoders look for, unless they have one.

#include "tests/behaviour/reading/ReadingFixture.h"

namespace avitest {
namespace {

class ReadVc1 : public ReadingTest {
  protected:
    static Stream vc1Stream() { return videoStream("WVC1", 320, 240, 25); }

    // A frame of this beginning, listed with these flags.
    Sample read(const Bytes& chunk, uint32_t flags) {
        AviFile avi;
        avi.addChunk(avi.addStream(vc1Stream()), chunk, flags);
        openFile(avi.build());
        return StartedTrack(track(0)).sample();
    }
};

TEST_F(ReadVc1, FrameWithStartCodeIsLeftAlone) {
    const Bytes frame = {0, 0, 1, 0x0D, 0xC5, 0x55, 0x66};
    const Sample sample = read(frame, kNoFlags);

    EXPECT_EQ(sample.bytes, frame);
    EXPECT_TRUE(sample.sync);
}

TEST_F(ReadVc1, FrameWithoutStartCodeGetsOne) {
    const Sample sample = read({0x85, 0x11, 0x22, 0x33, 0x44, 0x55}, kKey);

    EXPECT_EQ(sample.bytes, (Bytes{0, 0, 1, 0x0D, 0x85, 0x11, 0x22, 0x33, 0x44, 0x55}));
    EXPECT_FALSE(sample.sync);
}

TEST_F(ReadVc1, FourStartCodesCount) {
    for (int last = 0; last < 256; ++last) {
        SCOPED_TRACE(last);
        const Bytes chunk = {0, 0, 1, static_cast<uint8_t>(last), 0xC0, 0x00};
        const bool isStartCode = last >= 0x0C && last <= 0x0F;
        const Sample sample = read(chunk, kNoFlags);

        EXPECT_EQ(sample.bytes.size(), isStartCode ? 6u : 10u);
        EXPECT_EQ(sample.sync, isStartCode);
    }
}

TEST_F(ReadVc1, StartCodeOfOtherBytesIsNone) {
    for (const Bytes& chunk : {Bytes{1, 0, 1, 0x0D, 0xC0}, Bytes{0, 1, 1, 0x0D, 0xC0},
                               Bytes{0, 0, 0, 0x0D, 0xC0}, Bytes{0, 0, 0, 1, 0x0D}}) {
        const Sample sample = read(chunk, kKey);
        EXPECT_EQ(sample.bytes.size(), 9u);
        EXPECT_FALSE(sample.sync);
    }
}

// The upper three bits of the frame header, not the index, tell key frames.
TEST_F(ReadVc1, KeyFramesAreToldByTheFrameHeader) {
    for (int header = 0; header < 256; ++header) {
        SCOPED_TRACE(header);
        const auto byte = static_cast<uint8_t>(header);
        const bool isKey = header >= 0xC0 && header <= 0xDF;
        for (const uint32_t flags : {kNoFlags, kKey}) {
            EXPECT_EQ(read({0, 0, 1, 0x0D, byte, 0x01}, flags).sync, isKey);
            EXPECT_EQ(read({byte, 1, 2, 3, 4, 5}, flags).sync, isKey);
        }
    }
}

TEST_F(ReadVc1, FrameShorterThanAStartCodeGetsOne) {
    for (size_t size = 1; size < 5; ++size) {
        SCOPED_TRACE(size);
        const Sample sample = read(Bytes(size, 0xC1), kNoFlags);
        EXPECT_EQ(sample.bytes.size(), 4 + size);
        EXPECT_TRUE(sample.sync);
    }
}

// The type goes by the fifth byte of what is handed out: behind an inserted start code that is the
// frame's first.
TEST_F(ReadVc1, FrameIsTypedWithItsStartCode) {
    struct Row {
        Bytes chunk;
        const char* type;
    };
    const Row rows[] = {
        {{0x82, 0, 0, 0, 0x00, 0}, "P"}, {{0x80, 0, 0, 0, 0x02, 0}, "I"}, {{0x82}, "P"},
        {{0, 0, 1, 0x0D, 0x82, 0}, "P"}, {{0, 0, 1, 0x0D, 0x80, 2}, "I"}, {{0, 0, 1, 0x0D}, "N/A"}};
    for (const Row& row : rows) {
        SCOPED_TRACE(testing::PrintToString(row.chunk));
        const LogCapture log;
        read(row.chunk, kKey);
        EXPECT_EQ(log.count("[video/wvc1][0][0/1][" + std::string(row.type) + "] DTS/OFF/"), 1u);
    }
}

TEST_F(ReadVc1, BytesBehindTheFrameAreNotLookedAt) {
    AviFile avi;
    avi.addChunk(avi.addStream(vc1Stream()), {0, 0, 1, 0x0D}, kKey);
    avi.addLooseChunk(Chunk(uint32_t{0xC0C0C0C0}, patternBytes(10)));
    openFile(avi.build());

    EXPECT_FALSE(StartedTrack(track(0)).sample().sync);
}

TEST_F(ReadVc1, LargestFrameFitsWithItsStartCode) {
    const Bytes frame(5000, 0xC1);
    const Sample sample = read(frame, kKey);

    EXPECT_EQ(sample.bytes, ByteWriter().bytes(Bytes{0, 0, 1, 0x0D}).bytes(frame).take());
}

TEST_F(ReadVc1, FrameAtTheEndOfTheFileIsRead) {
    AviFile avi = fileOf(vc1Stream(), {Bytes(20, 0xC1), {0xC1, 0x02}});
    putIndexFirst(avi);
    openFile(avi.build());

    const std::vector<Sample> samples = readAll(0);
    ASSERT_EQ(samples.size(), 2u);
    EXPECT_EQ(samples[1].bytes, (Bytes{0, 0, 1, 0x0D, 0xC1, 0x02}));
    EXPECT_TRUE(samples[1].sync);
}

// The tag is compared in its own case; the other Windows Media codecs need no start codes.
TEST_F(ReadVc1, OtherTagsAreLeftAlone) {
    for (const char* tag : {"wvc1", "WMV3"}) {
        SCOPED_TRACE(tag);
        AviFile avi;
        avi.addChunk(avi.addStream(videoStream(ChunkId::of(tag), 320, 240, 25)),
                     {0xC5, 0x11, 0x22, 0x33, 0x44}, kNoFlags);
        openFile(avi.build());

        const Sample sample = StartedTrack(track(0)).sample();
        EXPECT_EQ(sample.bytes, (Bytes{0xC5, 0x11, 0x22, 0x33, 0x44}));
        EXPECT_FALSE(sample.sync);
    }
}

}  // namespace
}  // namespace avitest
