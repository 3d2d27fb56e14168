// SPDX-License-Identifier: Apache-2.0
//
// Times of audio chunks: by bytes where the stream counts them, else by the share of the duration.

#include "tests/behaviour/reading/ReadingFixture.h"
#include "tests/behaviour/reading/RecordingGroup.h"

namespace avitest {
namespace {

class AudioTimes : public ReadingTest {
  protected:
    std::vector<int64_t> timesWith(const Stream& stream, const std::vector<size_t>& sizes) {
        std::vector<Bytes> chunks;
        for (const size_t size : sizes)
            chunks.push_back(patternBytes(size));
        openStream(stream, chunks);
        return timesOf(readAll(0));
    }
};

TEST_F(AudioTimes, ByteTimedAudioCountsBytes) {
    EXPECT_EQ(timesWith(alawStream(), {4000, 1, 8000, 10}),
              (std::vector<int64_t>{0, 500000, 500125, 1500125}));
}

TEST_F(AudioTimes, SampleSizeDividesTheBytes) {
    Stream stream = alawStream();
    stream.header.scale = 7;
    stream.header.rate = 3000;
    stream.header.sampleSize = 13;

    // (bytes * 1000000 * 7 / 3000) / 13, each quotient cut.
    EXPECT_EQ(timesWith(stream, {100, 101, 50}), (std::vector<int64_t>{0, 17948, 36076}));
}

TEST_F(AudioTimes, WithoutSampleSizeChunksShareTheDuration) {
    Stream stream = frameAudioStream(0x57, 1, 8000, 160);
    stream.header.length = 50;  // one second

    EXPECT_EQ(timesWith(stream, {20, 300, 7}), (std::vector<int64_t>{0, 333333, 666666}));
}

// Also those of raw AAC, though each of its chunks is a frame of the stream's own rate.
TEST_F(AudioTimes, WithoutSampleSizeChunksOfRawAacShareTheDuration) {
    Stream stream = frameAudioStream(0xFF, 2, 8000, 1024);
    stream.header.scale = 1;
    stream.header.rate = 4;
    stream.header.length = 12;  // three seconds
    EXPECT_EQ(timesWith(stream, {371, 380, 300}), (std::vector<int64_t>{0, 1000000, 2000000}));
    EXPECT_EQ(timesWith(stream, {371, 371, 371}), (std::vector<int64_t>{0, 1000000, 2000000}));
}

TEST_F(AudioTimes, WithoutSampleSizeTheClampedDurationIsShared) {
    AviFile avi;
    const size_t video = avi.addStream(mjpegStream());
    Stream stream = frameAudioStream(0x57, 1, 8000, 160);
    stream.header.length = 500;  // ten seconds
    const size_t audio = avi.addStream(stream);
    avi.addChunk(video, patternBytes(50));
    for (int i = 0; i < 4; ++i)
        avi.addChunk(audio, patternBytes(20));
    openFile(avi.build());

    EXPECT_EQ(timesOf(readAll(1)), (std::vector<int64_t>{0, 10000, 20000, 30000}));
}

TEST_F(AudioTimes, WithoutRateTimesAreZero) {
    for (const uint32_t sampleSize : {0u, 1u, 4u}) {
        SCOPED_TRACE(sampleSize);
        Stream stream = alawStream();
        stream.header.rate = 0;
        stream.header.sampleSize = sampleSize;
        EXPECT_EQ(timesWith(stream, {40, 40}), (std::vector<int64_t>{0, 0}));
    }
}

TEST_F(AudioTimes, WithoutScaleTimesAreZero) {
    Stream stream = alawStream();
    stream.header.scale = 0;
    EXPECT_EQ(timesWith(stream, {40, 40}), (std::vector<int64_t>{0, 0}));
}

TEST_F(AudioTimes, MidiIsTimedAsAudio) {
    Stream stream = alawStream();
    stream.header.type = "midi";
    EXPECT_EQ(timesWith(stream, {8000, 40}), (std::vector<int64_t>{0, 1000000}));
}

// Chunks of 64 MiB by their index, none of which the file holds, then a small one.
struct LargeChunks {
    const char* name;
    size_t count;
    int64_t timeUs;  // of the small chunk
};

class TimesBehindLargeChunks : public AudioTimes,
                               public ::testing::WithParamInterface<LargeChunks> {};

TEST_P(TimesBehindLargeChunks, CountBytesIn32Bits) {
    const size_t count = GetParam().count;
    AviFile avi = fileOf(alawStream(), {patternBytes(10)});
    avi.segment().index.edit = [count](std::vector<Idx1Entry>& index) {
        Idx1Entry large = index[0];
        large.length = 64 * 1024 * 1024;
        index.insert(index.begin(), count, large);
    };
    openFile(avi.build());

    RecordingGroup group(64);
    const std::unique_ptr<Track> source = track(0);
    android::CMediaTrack* plain = source->plain();
    ASSERT_EQ(plain->start(plain->data, group.plain()), AMEDIA_OK);
    android::CMediaBuffer* buffer = nullptr;
    for (size_t i = 0; i < count; ++i)
        EXPECT_EQ(plain->read(plain->data, &buffer, 0, 0), AMEDIA_ERROR_END_OF_STREAM);
    ASSERT_EQ(plain->read(plain->data, &buffer, 0, 0), AMEDIA_OK);

    EXPECT_EQ(sampleOf(android::service::BufferHandle(buffer)).timeUs, GetParam().timeUs);
    EXPECT_EQ(source->stop(), AMEDIA_OK);
}

// The bytes before a chunk count as a signed number of 32 bits. At 65 chunks the running total has
// gone once around: 64 MiB of 8000 bytes a second are before the small one.
INSTANTIATE_TEST_SUITE_P(Table, TimesBehindLargeChunks,
                         ::testing::Values(LargeChunks{"Above2GiB", 40, 0},
                                           LargeChunks{"Above4GiB", 65, 8388608000}),
                         [](const auto& param) { return std::string(param.param.name); });

}  // namespace
}  // namespace avitest
