// SPDX-License-Identifier: Apache-2.0
//
// Chunks of whole frames: what is a frame in each version and layer, what lies between frames, and
// what a frame comes with.

#include <media/NdkMediaFormat.h>

#include "tests/behaviour/mpegaudio/MpegAudioFixture.h"

namespace avitest {
namespace {

class FrameCutting : public MpegAudioTest {};

TEST_F(FrameCutting, OneFrameAChunkComesAsItIs) {
    EXPECT_EQ(framesOf(mp3Frames(), frames(5)), frames(5));
    EXPECT_EQ(framesOf(mp3Bytes(), frames(5)), frames(5));
}

TEST_F(FrameCutting, SeveralFramesOfAChunkComeOneByOne) {
    EXPECT_EQ(framesOf(mp3Bytes(), {joined(frames(7))}), frames(7));
}

TEST_F(FrameCutting, FramesOfAChunkAndOfTheNextComeInOrder) {
    const std::vector<Bytes> all = frames(6);
    const std::vector<Bytes> chunks = {joined({all[0], all[1], all[2]}), all[3],
                                       joined({all[4], all[5]})};
    EXPECT_EQ(framesOf(mp3Bytes(), chunks), all);
    EXPECT_EQ(framesOf(mp3Frames(), chunks), all);
}

TEST_F(FrameCutting, SizeFollowsEachFramesOwnHeader) {
    const std::vector<Bytes> all = {
        frameOf(0xFFFB9000, 417, 1), frameOf(0xFFFB9200, 418, 2),   // 128 kbit/s, padding
        frameOf(0xFFFB1000, 104, 3), frameOf(0xFFFBE000, 1044, 4),  // 32 and 320 kbit/s
        frameOf(0xFFFBA2C0, 523, 5), frameOf(0xFFFA5064, 208, 6)};  // mono; checksum
    EXPECT_EQ(framesOf(mp3Bytes(), {joined(all)}), all);
}

TEST_F(FrameCutting, EveryVersionAndLayerButOneIsCut) {
    struct Row {
        const char* name;
        uint32_t header;
        size_t size;
        const char* mime;
    };
    const Row rows[] = {
        {"MPEG-1 Layer III, 44100 Hz, 128", 0xFFFB9000, 417, "audio/mpeg"},
        {"MPEG-1 Layer III, 48000 Hz, 128", 0xFFFB9400, 384, "audio/mpeg"},
        {"MPEG-1 Layer III, 32000 Hz, 128", 0xFFFB9800, 576, "audio/mpeg"},
        {"MPEG-1 Layer II, 44100 Hz, 192", 0xFFFDA000, 626, "audio/mpeg-L2"},
        {"MPEG-1 Layer II, 44100 Hz, 192, padding", 0xFFFDA200, 627, "audio/mpeg-L2"},
        {"MPEG-1 Layer II, 48000 Hz, 384", 0xFFFDE400, 1152, "audio/mpeg-L2"},
        {"MPEG-1 Layer I, 32000 Hz, 32", 0xFFFF1800, 48, "audio/mpeg-L1"},
        {"MPEG-1 Layer I, 44100 Hz, 32", 0xFFFF1000, 32, "audio/mpeg-L1"},
        {"MPEG-1 Layer I, 44100 Hz, 32, padding", 0xFFFF1200, 36, "audio/mpeg-L1"},
        {"MPEG-1 Layer I, 44100 Hz, 448", 0xFFFFE000, 484, "audio/mpeg-L1"},
        {"MPEG-2 Layer II, 22050 Hz, 64", 0xFFF58000, 417, "audio/mpeg-L2"},
        {"MPEG-2 Layer I, 24000 Hz, 32", 0xFFF71400, 64, "audio/mpeg-L1"},
        {"MPEG-2.5 Layer III, 11025 Hz, 32", 0xFFE34000, 208, "audio/mpeg"},
        {"MPEG-2.5 Layer III, 8000 Hz, 8", 0xFFE31800, 72, "audio/mpeg"},
        {"MPEG-2.5 Layer II, 12000 Hz, 64", 0xFFE58400, 768, "audio/mpeg-L2"},
    };
    for (const Row& row : rows) {
        SCOPED_TRACE(row.name);
        std::vector<Bytes> all;
        for (uint32_t i = 0; i < 4; ++i)
            all.push_back(frameOf(row.header, row.size, i));
        // The second chunk splits a frame, too.
        const std::vector<Bytes> chunks = split(joined(all), {2 * row.size, row.size / 3});
        EXPECT_EQ(framesOf(mp3Bytes(), chunks), all);
        EXPECT_EQ(trackFormat(0).getString(AMEDIAFORMAT_KEY_MIME), row.mime);
    }
}

// Its size cannot be told from the header.
TEST_F(FrameCutting, Mpeg2LayerThreeComesChunkByChunk) {
    const std::vector<Bytes> chunks = {
        joined({frameOf(0xFFF38000, 208, 1), frameOf(0xFFF38000, 209, 2)}),
        frameOf(0xFFF38200, 209, 3), frameOf(0xFFF38000, 100, 4)};
    LogCapture log;
    EXPECT_EQ(framesOf(mp3Bytes(8000), chunks), chunks);
    EXPECT_EQ(log.count("bad MP3 frame"), 0u);
}

TEST_F(FrameCutting, Mpeg2LayerThreeIsTimedByItsChunksAndIsSync) {
    const std::vector<Bytes> chunks = {frameOf(0xFFF38000, 208, 1), frameOf(0xFFF38000, 209, 2),
                                       frameOf(0xFFF38000, 208, 3)};
    openStream(mp3Bytes(8000), chunks);
    const std::vector<Sample> samples = readAll(0);
    EXPECT_EQ(timesOf(samples), (std::vector<int64_t>{0, 26000, 52125}));
    for (const Sample& sample : samples)
        EXPECT_TRUE(sample.sync);
}

TEST_F(FrameCutting, BytesInFrontOfAFrameAreLeftOut) {
    const std::vector<Bytes> all = frames(4);
    const Bytes chunk = joined({noise(7), all[0], all[1], noise(20), all[2], noise(3), all[3]});
    EXPECT_EQ(framesOf(mp3Bytes(), {chunk}), all);
}

// As compressed data may have: sync bits of another version, layer or sampling rate.
TEST_F(FrameCutting, HeadersOfOtherStreamsAreNoFrames) {
    for (const uint32_t other : {0xFFF39000u, 0xFFE39000u, 0xFFFD9000u, 0xFFFF9000u, 0xFFFB9400u,
                                 0xFFFB9800u, 0xFFFB9C00u, 0xFFEB9000u}) {
        SCOPED_TRACE(other);
        const std::vector<Bytes> all = frames(3);
        const Bytes chunk = joined({all[0], all[1], headerBytes(other), noise(9), all[2]});
        EXPECT_EQ(framesOf(mp3Bytes(), {chunk}), all);
    }
}

TEST_F(FrameCutting, EveryFrameIsSyncAndHasNoTarget) {
    openStream(mp3Bytes(), {joined(frames(3)), frame(9)});
    for (const Sample& sample : readAll(0)) {
        EXPECT_TRUE(sample.sync);
        EXPECT_FALSE(sample.targetTimeUs.has_value());
    }
}

TEST_F(FrameCutting, ClosestSeekGivesNoTargetEither) {
    openStream(mp3Bytes(), frames(8));
    const std::vector<Sample> samples =
        readFrom(0, {android::SEEK | android::SEEK_CLOSEST, 100000}, 2);
    ASSERT_EQ(samples.size(), 2u);
    EXPECT_FALSE(samples[0].targetTimeUs.has_value());
}

// What the last user of a buffer left there must not come out with the next frame.
TEST_F(FrameCutting, OldMetaDataOfBuffersIsGone) {
    openStream(mp3Bytes(), {joined(frames(30))});
    StartedTrack started(track(0));
    for (int i = 0; i < 30; ++i) {
        const ReadResult result = started.read();
        ASSERT_EQ(result.status, AMEDIA_OK);
        EXPECT_FALSE(sampleOf(result.buffer).targetTimeUs.has_value());
        AMediaFormat_setInt64(result.buffer.get()->meta_data(result.buffer.get()->handle),
                              AMEDIAFORMAT_KEY_TARGET_TIME, 5);
    }
}

TEST_F(FrameCutting, RangesBeginAtTheStartOfTheBuffer) {
    const std::vector<Bytes> all = frames(4);
    openStream(mp3Bytes(), split(joined({noise(11), joined(all)}), {11 + 2 * kFrameSize + 50}));
    StartedTrack started(track(0));
    for (int i = 0; i < 4; ++i) {
        const ReadResult result = started.read();
        ASSERT_EQ(result.status, AMEDIA_OK);
        EXPECT_EQ(result.buffer.rangeOffset(), 0u);
        EXPECT_EQ(result.buffer.rangeLength(), kFrameSize);
    }
}

TEST_F(FrameCutting, TracksWithoutAHeaderAreNotCut) {
    AviFile avi;
    avi.addChunk(avi.addStream(mjpegStream()), patternBytes(100));
    const size_t audio = avi.addStream(mp3Bytes());
    avi.addChunk(audio, noise(900, 1));
    avi.addChunk(audio, noise(3, 2));
    openFile(avi.build());
    EXPECT_EQ(trackFormat(1).getString(AMEDIAFORMAT_KEY_MIME), "audio/x-unknown");
    EXPECT_EQ(readPayloads(1), (std::vector<Bytes>{noise(900, 1), noise(3, 2)}));
}

}  // namespace
}  // namespace avitest
