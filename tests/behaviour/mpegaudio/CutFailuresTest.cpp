// SPDX-License-Identifier: Apache-2.0
//
// Frames that the file or the buffer group lets down: their status, their lines in the log, that no
// buffer is lost and that reading goes on.

#include "tests/behaviour/mpegaudio/MpegAudioFixture.h"

namespace avitest {
namespace {

using android::CMediaBuffer;
using android::CMediaTrack;
using Answer = RecordingGroup::Answer;

class CutFailures : public MpegAudioTest {
  protected:
    // The last of these chunks ends within a frame.
    const std::vector<Bytes> mCutOff = {joined(frames(2)), slice(frame(2), 0, 300)};
};

TEST_F(CutFailures, FrameThatTheStreamDoesNotCompleteFailsAndEndsIt) {
    openStream(mp3Bytes(), mCutOff);
    StartedTrack started(track(0));
    EXPECT_EQ(started.sample().bytes, frame(0));
    EXPECT_EQ(started.sample().bytes, frame(1));

    const LogCapture log;
    EXPECT_EQ(started.status(), AMEDIA_ERROR_UNKNOWN);
    EXPECT_THAT(log, Logged(ANDROID_LOG_ERROR, "readNextChunk(): error -3F3 @line"));
    EXPECT_THAT(log, Logged(ANDROID_LOG_ERROR, "[audio/mpeg][0][1/2] readNextChunk return -1011!"));
    EXPECT_THAT(log, Logged(ANDROID_LOG_ERROR, "[audio/mpeg][0][1/2] Unknown error(-2710) @L"));
    EXPECT_EQ(started.group().heldCount(), 0u);
    EXPECT_EQ(started.status(), AMEDIA_ERROR_END_OF_STREAM);
    EXPECT_EQ(started.status(), AMEDIA_ERROR_END_OF_STREAM);
}

TEST_F(CutFailures, FrameCutOffAtAnyByteFails) {
    const std::vector<Bytes> all = frames(3);
    for (size_t size = 5; size < kFrameSize; size += 37) {
        SCOPED_TRACE(size);
        openStream(mp3Bytes(), {joined({all[0], all[1]}), slice(all[2], 0, size)});
        const ReadRun run = readRun(0);
        EXPECT_EQ(run.status, AMEDIA_ERROR_UNKNOWN);
        EXPECT_EQ(run.samples.size(), 2u);
    }
}

TEST_F(CutFailures, FrameCutOffInTheRestOfAChunkFailsWithoutChunkInItsLine) {
    openStream(mp3Bytes(), {joined({frame(0), frame(1), slice(frame(2), 0, 300)})});
    const LogCapture log;
    EXPECT_EQ(readRun(0).status, AMEDIA_ERROR_UNKNOWN);
    EXPECT_THAT(log, Logged(ANDROID_LOG_ERROR, "[audio/mpeg][0] readNextChunk return -1011!"));
}

TEST_F(CutFailures, FrameCutOffInASourceWithoutSizeEndsTheStream) {
    AviFile avi = fileOf(mp3Bytes(), mCutOff);
    MemorySource memory(avi.build());
    FaultySource source(memory);
    openSource(source);
    ASSERT_EQ(countTracks(), 1u);
    source.failGetSize(-EIO);

    EXPECT_EQ(readAll(0).size(), 2u);
}

TEST_F(CutFailures, ReadErrorInASplitFrameLosesItsBeginning) {
    const std::vector<Bytes> all = frames(5);
    AviFile avi = fileOf(mp3Bytes(), {joined({all[0], all[1]}), slice(all[2], 0, 300),
                                      joined({slice(all[2], 300, kFrameSize), all[3]}), all[4]});
    MemorySource memory(avi.build());
    FaultySource source(memory);
    openSource(source);
    StartedTrack started(track(0));
    started.sample();
    started.sample();
    const auto begin = static_cast<off64_t>(avi.chunks(0)[2].place.dataOffset);
    source.inject(Fault::error(-EIO).onOffsets(begin, begin + 1));

    LogCapture log;
    EXPECT_EQ(started.status(), AMEDIA_ERROR_UNKNOWN);
    EXPECT_THAT(log, Logged(ANDROID_LOG_ERROR, "readNextChunk(): error -3EC @line"));
    EXPECT_THAT(log, Logged(ANDROID_LOG_ERROR, "[audio/mpeg][0][1/4] readNextChunk return -1004!"));
    source.clearFaults();
    // The chunk that failed is the next one still.
    EXPECT_EQ(started.sample().bytes, all[3]);
    EXPECT_EQ(started.sample().bytes, all[4]);
    EXPECT_EQ(started.status(), AMEDIA_ERROR_END_OF_STREAM);
}

TEST_F(CutFailures, ChunkThatIsReadShortInsideTheFileIsSkipped) {
    AviFile avi = fileOf(mp3Bytes(), frames(5));
    MemorySource memory(avi.build());
    FaultySource source(memory);
    openSource(source);
    StartedTrack started(track(0));
    const auto begin = static_cast<off64_t>(avi.chunks(0)[1].place.dataOffset);
    source.inject(Fault::shortRead(5).onOffsets(begin, begin + 1));
    EXPECT_EQ(started.sample().bytes, frame(0));

    const LogCapture log;
    EXPECT_EQ(started.status(), AMEDIA_ERROR_UNKNOWN);
    EXPECT_THAT(log, Logged(ANDROID_LOG_ERROR, "[audio/mpeg][0][1/5] Unknown error(-2710) @L"));
    EXPECT_EQ(started.sample().bytes, frame(2));
}

TEST_F(CutFailures, ChunkThatIsReadShortBehindAShortOneIsSkippedWithIt) {
    AviFile avi = fileOf(mp3Bytes(), {joined(frames(2)), noise(3), frame(2), frame(3)});
    MemorySource memory(avi.build());
    FaultySource source(memory);
    openSource(source);
    StartedTrack started(track(0));
    started.sample();
    started.sample();
    const auto begin = static_cast<off64_t>(avi.chunks(0)[2].place.dataOffset);
    source.inject(Fault::shortRead(5).onOffsets(begin, begin + 1));

    EXPECT_EQ(started.status(), AMEDIA_ERROR_UNKNOWN);
    EXPECT_EQ(started.group().heldCount(), 0u);
    EXPECT_EQ(started.sample().bytes, frame(3));
}

TEST_F(CutFailures, ChunkCutByTheEndOfTheFileEndsTheStream) {
    AviFile avi = fileOf(mp3Bytes(), frames(3));
    putIndexFirst(avi);
    Bytes file = avi.build();
    const ChunkPlace place = avi.chunks(0)[2].place;
    file.resize(place.dataOffset + place.dataSize - 1);
    openFile(file);
    const LogCapture log;
    EXPECT_EQ(readPayloads(0), frames(2));
    EXPECT_THAT(log, Logged(ANDROID_LOG_ERROR, "[audio/mpeg][0][2/3] end of stream @L"));
}

TEST_F(CutFailures, EndOfTheStreamIsTold) {
    openStream(mp3Bytes(), frames(2));
    const LogCapture log;
    EXPECT_EQ(readPayloads(0), frames(2));
    EXPECT_THAT(log, Logged(ANDROID_LOG_ERROR, "[audio/mpeg][0] end of stream @L"));
}

// One acquisition of a buffer that fails.
struct NoBuffer {
    const char* name;
    std::vector<Bytes> chunks;
    size_t acquisition;  // the number of the one that fails
    size_t framesBefore;
    std::string error;
    Bytes next;  // the frame that comes behind what is lost
};

class NoBufferFor : public CutFailures, public ::testing::WithParamInterface<NoBuffer> {};

TEST_P(NoBufferFor, ItIsUnknownAndLosesTheRestOfTheChunk) {
    const NoBuffer& row = GetParam();
    openStream(mp3Bytes(), row.chunks);
    for (const Answer answer : {Answer::kFailure, Answer::kNoMemory, Answer::kFailureWithBuffer}) {
        RecordingGroup group;
        group.answer(row.acquisition, answer);
        GroupReader reader(track(0), &group);
        for (size_t i = 0; i < row.framesBefore; ++i)
            EXPECT_EQ(reader.status(), AMEDIA_OK);
        const LogCapture log;
        EXPECT_EQ(reader.status(), AMEDIA_ERROR_UNKNOWN);
        EXPECT_EQ(group.heldCount(), 0u);
        EXPECT_THAT(log, Logged(ANDROID_LOG_ERROR, row.error));
        EXPECT_EQ(sampleOf(reader.read().buffer).bytes, row.next);
    }
}

INSTANTIATE_TEST_SUITE_P(
    Table, NoBufferFor,
    ::testing::Values(NoBuffer{"AChunk", frames(3), 0, 0, "read(): error -2710 @line", frame(1)},
                      NoBuffer{"AFrame",
                               {joined(frames(3)), frame(3), frame(4)},
                               1,
                               0,
                               "[audio/mpeg][0][0/3] Unknown error(-2710) @L",
                               frame(3)},
                      NoBuffer{"ASplitFrame", split(joined(frames(4)), {2 * kFrameSize, 300}),
                               4,  // a chunk, two frames, a chunk
                               2, "[audio/mpeg][0][1/3] Unknown error(-2710) @L", frame(3)}),
    [](const auto& param) { return std::string(param.param.name); });

TEST_F(CutFailures, NoBufferForAFrameOfASourceWithoutSizeEndsTheStream) {
    AviFile avi = fileOf(mp3Bytes(), frames(3));
    MemorySource memory(avi.build());
    FaultySource source(memory);
    openSource(source);
    ASSERT_EQ(countTracks(), 1u);
    source.failGetSize(-EIO);
    RecordingGroup group;
    group.answer(1, Answer::kFailure);
    GroupReader reader(track(0), &group);

    EXPECT_EQ(reader.status(), AMEDIA_ERROR_END_OF_STREAM);
}

// Time passes for a frame that was cut but found no buffer.
TEST_F(CutFailures, NoBufferForAFrameMovesTheRunningTime) {
    // Twice the usual byte rate: the running time leads.
    openStream(mp3Bytes(32000), {joined(frames(2)), frame(2), frame(3)});
    RecordingGroup group;
    group.answer(1, Answer::kFailure);
    GroupReader reader(track(0), &group);
    EXPECT_EQ(reader.status(), AMEDIA_ERROR_UNKNOWN);
    const ReadResult next = reader.read();
    ASSERT_EQ(next.status, AMEDIA_OK);
    EXPECT_EQ(sampleOf(next.buffer).timeUs, 2 * kMp3FrameUs);
}

TEST_F(CutFailures, SuccessWithoutBufferAborts) {
    openStream(mp3Bytes(), frames(3));
    const auto readWithout = [this](size_t call) {
        RecordingGroup group;
        group.answer(call, Answer::kNothing);
        const std::unique_ptr<Track> source = track(0);
        CMediaTrack* plain = source->plain();
        plain->start(plain->data, group.plain());
        CMediaBuffer* buffer = nullptr;
        plain->read(plain->data, &buffer, 0, 0);
    };
    EXPECT_DEATH(readWithout(0), checkFailed("mBuffer != NULL"));
    EXPECT_DEATH(readWithout(1), checkFailed("clone != NULL"));
}

TEST_F(CutFailures, EveryReadMayFailWithoutCrashOrLoss) {
    AviFile avi = fileOf(mp3Bytes(), split(joined(frames(8)), {900, 2, 300, 1000, 3}));
    MemorySource memory(avi.build());
    FaultySource source(memory);
    openSource(source);
    ASSERT_EQ(countTracks(), 1u);
    for (uint64_t call = 0; call < 10; ++call) {
        for (const Fault& fault : {Fault::shortRead(3), Fault::error(-EIO)}) {
            source.reset();
            source.clearFaults();
            source.inject(fault.onCall(call));
            StartedTrack started(track(0));
            size_t reads = 0;
            while (started.status() != AMEDIA_ERROR_END_OF_STREAM)
                ASSERT_LT(++reads, 30u);
            EXPECT_EQ(started.group().heldCount(), 0u);
        }
    }
}

TEST_F(CutFailures, EveryAcquisitionMayFailWithoutCrashOrLoss) {
    openStream(mp3Bytes(), split(joined(frames(8)), {900, 2, 300, 1000, 3}));
    for (size_t call = 0; call < 14; ++call) {
        for (const Answer answer : {Answer::kFailure, Answer::kFailureWithBuffer}) {
            RecordingGroup group;
            group.answer(call, answer);
            GroupReader reader(track(0), &group);
            size_t reads = 0;
            while (reader.status() != AMEDIA_ERROR_END_OF_STREAM)
                ASSERT_LT(++reads, 30u);
        }
    }
}

}  // namespace
}  // namespace avitest
