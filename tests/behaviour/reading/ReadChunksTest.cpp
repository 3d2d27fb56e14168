// SPDX-License-Identifier: Apache-2.0
//
// Which chunk a read hands out, and what it costs: the common path without any conversion.

#include "tests/behaviour/reading/ReadingFixture.h"
#include "tests/behaviour/reading/RecordingGroup.h"

namespace avitest {
namespace {

class ReadChunks : public ReadingTest {
  protected:
    // Reads the whole track and returns the reads of the file that it took.
    std::vector<FaultySource::Call> callsOfReading(AviFile& avi) {
        MemorySource memory(avi.build());
        FaultySource source(memory);
        openSource(source);
        const std::unique_ptr<Track> reader = track(0);
        source.reset();
        readTrack(*reader);
        return source.calls();
    }
};

TEST_F(ReadChunks, EmptyVideoChunksAreSkippedButTakeTime) {
    openStream(mjpegStream(), {patternBytes(100, 1), {}, patternBytes(50, 2)});
    StartedTrack started(track(0));

    const Sample first = started.sample();
    EXPECT_EQ(first.bytes, patternBytes(100, 1));
    EXPECT_EQ(first.timeUs, 0);
    const Sample second = started.sample();
    EXPECT_EQ(second.bytes, patternBytes(50, 2));
    EXPECT_EQ(second.timeUs, 80000);
    EXPECT_EQ(started.status(), AMEDIA_ERROR_END_OF_STREAM);
}

TEST_F(ReadChunks, EmptyVideoChunksAtTheEndEndTheStream) {
    openStream(mjpegStream(), {patternBytes(100), {}, {}});
    LogCapture log;
    StartedTrack started(track(0));
    EXPECT_EQ(started.sample().bytes, patternBytes(100));

    EXPECT_EQ(started.status(), AMEDIA_ERROR_END_OF_STREAM);
    EXPECT_THAT(log, Logged(ANDROID_LOG_ERROR, "[video/x-motion-jpeg][0] end of stream @L"));
}

TEST_F(ReadChunks, EndOfStreamIsAnsweredEveryTime) {
    openStream(alawStream(), {patternBytes(100)});
    LogCapture log;
    StartedTrack started(track(0));
    EXPECT_EQ(started.sample().bytes, patternBytes(100));

    for (size_t i = 1; i <= 3; ++i) {
        EXPECT_EQ(started.status(), AMEDIA_ERROR_END_OF_STREAM);
        EXPECT_EQ(log.count("[audio/g711-alaw][0] end of stream @L"), i);
    }
    EXPECT_EQ(started.group().heldCount(), 0u);
}

TEST_F(ReadChunks, LinesNameTheStreamByItsNumber) {
    AviFile avi;
    const size_t audio = avi.addStream(alawStream());
    const size_t video = avi.addStream(mjpegStream());
    avi.addChunk(audio, patternBytes(30));
    avi.addChunk(video, patternBytes(40));
    openFile(avi.build());
    LogCapture log;
    readAll(0);
    readAll(1);

    EXPECT_EQ(log.count("[video/x-motion-jpeg][1] end of stream @L"), 1u);
    EXPECT_EQ(log.count("[audio/g711-alaw][0] end of stream @L"), 1u);
}

TEST_F(ReadChunks, FailedReadLeavesNoBuffer) {
    openStream(alawStream(), {patternBytes(100)});
    StartedTrack started(track(0));
    started.sample();

    const ReadResult result = started.read();
    EXPECT_EQ(result.status, AMEDIA_ERROR_END_OF_STREAM);
    EXPECT_FALSE(result.buffer);
}

TEST_F(ReadChunks, TwoBuffersMayBeHeldWhileReadingOn) {
    const std::vector<Bytes> chunks = {patternBytes(10, 1), patternBytes(10, 2),
                                       patternBytes(10, 3)};
    openStream(alawStream(), chunks);
    StartedTrack started(track(0));
    std::vector<ReadResult> held;
    for (size_t i = 0; i < chunks.size(); ++i)
        held.push_back(started.read());

    for (size_t i = 0; i < chunks.size(); ++i)
        EXPECT_EQ(held[i].buffer.bytes(), chunks[i]);
}

TEST_F(ReadChunks, SampleBeginsAtTheStartOfItsBuffer) {
    openStream(mjpegStream(), {patternBytes(100)});
    StartedTrack started(track(0));
    const ReadResult result = started.read();

    EXPECT_EQ(result.buffer.rangeOffset(), 0u);
    EXPECT_EQ(result.buffer.rangeLength(), 100u);
}

TEST_F(ReadChunks, AudioChunkIsReadOnceAndWhole) {
    AviFile avi = fileOf(alawStream(), {patternBytes(1000), patternBytes(2001)});
    const std::vector<FaultySource::Call> calls = callsOfReading(avi);

    ASSERT_EQ(calls.size(), 2u);
    for (size_t i = 0; i < 2; ++i) {
        const ChunkPlace place = avi.chunks(0)[i].place;
        EXPECT_EQ(static_cast<uint64_t>(calls[i].offset), place.dataOffset);
        EXPECT_EQ(calls[i].size, place.dataSize);
    }
}

TEST_F(ReadChunks, PcmIsReadOnceAndWhole) {
    for (const uint16_t bits : {8, 16, 24, 32}) {
        SCOPED_TRACE(bits);
        AviFile avi = fileOf(pcmStream(1, 8000, bits), {patternBytes(1200), patternBytes(2400)});
        EXPECT_EQ(callsOfReading(avi).size(), 2u);
    }
}

TEST_F(ReadChunks, VideoFrameIsReadOnceAndWhole) {
    AviFile avi = fileOf(mjpegStream(), {patternBytes(1000), patternBytes(2000), patternBytes(90)});
    std::vector<std::pair<size_t, uint64_t>> reads;
    for (const FaultySource::Call& call : callsOfReading(avi))
        reads.emplace_back(call.size, call.offset);

    const auto at = [&avi](size_t i) { return avi.chunks(0)[i].place.dataOffset; };
    EXPECT_EQ(reads, (std::vector<std::pair<size_t, uint64_t>>{
                         {1000, at(0)}, {2000, at(1)}, {90, at(2)}}));
}

TEST_F(ReadChunks, EveryReadTakesOneBufferFromTheGroup) {
    openStream(mjpegStream(), {patternBytes(100), patternBytes(200)});
    RecordingGroup group;
    const std::unique_ptr<Track> source = track(0);
    android::CMediaTrack* plain = source->plain();
    ASSERT_EQ(plain->start(plain->data, group.plain()), AMEDIA_OK);
    for (size_t i = 1; i <= 2; ++i) {
        android::CMediaBuffer* buffer = nullptr;
        ASSERT_EQ(plain->read(plain->data, &buffer, 0, 0), AMEDIA_OK);
        buffer->release(buffer->handle);
        EXPECT_EQ(group.acquireCount(), i);
    }
    EXPECT_EQ(source->stop(), AMEDIA_OK);
}

TEST_F(ReadChunks, BufferSmallerThanItsChunkIsNotOverrun) {
    openStream(mjpegStream(), {patternBytes(100)});
    RecordingGroup group(99);
    const std::unique_ptr<Track> source = track(0);
    android::CMediaTrack* plain = source->plain();
    ASSERT_EQ(plain->start(plain->data, group.plain()), AMEDIA_OK);
    android::CMediaBuffer* buffer = nullptr;

    EXPECT_NE(plain->read(plain->data, &buffer, 0, 0), AMEDIA_OK);
    EXPECT_EQ(group.heldCount(), 0u);
    EXPECT_EQ(source->stop(), AMEDIA_OK);
}

}  // namespace
}  // namespace avitest
