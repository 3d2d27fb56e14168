// SPDX-License-Identifier: Apache-2.0
//
// Reads that the file or the buffer group lets down: their status, their line in the log, and that
// no buffer is lost.

#include <optional>

#include "tests/behaviour/reading/ReadingFixture.h"
#include "tests/behaviour/reading/RecordingGroup.h"

namespace avitest {
namespace {

using android::CMediaBuffer;
using android::CMediaTrack;

// A source that gives its size as a test wants.
class SourceOfAnySize : public MemorySource {
  public:
    using MemorySource::MemorySource;
    // What getSize() stores and returns from now on.
    void setSize(off64_t size, android::status_t status) {
        mSize = size;
        mStatus = status;
    }
    android::status_t getSize(off64_t* size) override {
        if (!mSize) return MemorySource::getSize(size);
        *size = *mSize;
        return mStatus;
    }

  private:
    std::optional<off64_t> mSize;
    android::status_t mStatus = android::OK;
};

class ReadFailures : public ReadingTest {
  protected:
    const std::vector<Bytes> mChunks = {patternBytes(300, 1), patternBytes(310, 2),
                                        patternBytes(320, 3)};

    // Reads once with a group that gives `answer` at acquisition `call`.
    media_status_t readOnce(size_t call, RecordingGroup::Answer answer) {
        RecordingGroup group;
        group.answer(call, answer);
        const std::unique_ptr<Track> source = track(0);
        CMediaTrack* plain = source->plain();
        EXPECT_EQ(plain->start(plain->data, group.plain()), AMEDIA_OK);
        CMediaBuffer* buffer = nullptr;
        const media_status_t status = plain->read(plain->data, &buffer, 0, 0);
        EXPECT_EQ(buffer, nullptr);
        EXPECT_EQ(group.heldCount(), 0u);
        EXPECT_EQ(source->stop(), AMEDIA_OK);
        return status;
    }
};

// Audio: nothing else is read at the chunk's place. Length-prefixed and VC-1 video take other ways.
TEST_F(ReadFailures, ShortReadInsideTheFileIsUnknownAndSkipsTheChunk) {
    struct Row {
        Stream stream;
        const char* prefix;
    };
    const Row rows[] = {{alawStream(), "[audio/g711-alaw][0][1/3]"},
                        {mjpegStream(), "[video/x-motion-jpeg][0][1/3]"},
                        {lengthPrefixedStream(4), "[video/avc][0][1/3]"},
                        {videoStream("WVC1", 320, 240, 25), "[video/wvc1][0][1/3]"}};
    for (const Row& row : rows) {
        SCOPED_TRACE(row.prefix);
        AviFile avi = fileOf(row.stream, mChunks);
        MemorySource memory(avi.build());
        FaultySource source(memory);
        const ChunkPlace place = avi.chunks(0)[1].place;
        // The last bytes only, which no probe of a frame's beginning asks for.
        const auto end = static_cast<off64_t>(place.dataOffset + place.dataSize);
        source.inject(Fault::shortRead(309).onOffsets(end - 10, end));
        openSource(source);
        StartedTrack started(track(0));
        ASSERT_EQ(started.status(), AMEDIA_OK);

        LogCapture log;
        EXPECT_EQ(started.status(), AMEDIA_ERROR_UNKNOWN);
        EXPECT_THAT(
            log, Logged(ANDROID_LOG_ERROR, std::string(row.prefix) + " Unknown error(-2710) @L"));
        EXPECT_EQ(started.group().heldCount(), 0u);
        EXPECT_EQ(started.status(), AMEDIA_OK);
        EXPECT_EQ(started.status(), AMEDIA_ERROR_END_OF_STREAM);
    }
}

TEST_F(ReadFailures, ReadErrorIsAnsweredLikeAShortRead) {
    AviFile avi = fileOf(alawStream(), mChunks);
    MemorySource memory(avi.build());
    FaultySource source(memory);
    openSource(source);
    StartedTrack started(track(0));
    source.inject(Fault::error(-EIO));

    EXPECT_EQ(started.status(), AMEDIA_ERROR_UNKNOWN);
}

TEST_F(ReadFailures, ChunkCutByTheEndOfTheFileEndsTheStream) {
    for (const Stream& stream : {alawStream(), mjpegStream(), lengthPrefixedStream(4)}) {
        AviFile avi = fileOf(stream, mChunks);
        putIndexFirst(avi);
        Bytes file = avi.build();
        const ChunkPlace place = avi.chunks(0)[1].place;
        file.resize(place.dataOffset + place.dataSize - 1);
        openFile(file);
        StartedTrack started(track(0));
        ASSERT_EQ(started.status(), AMEDIA_OK);

        LogCapture log;
        EXPECT_EQ(started.status(), AMEDIA_ERROR_END_OF_STREAM);
        EXPECT_EQ(log.count("[0][1/2] end of stream @L"), 1u);
    }
}

TEST_F(ReadFailures, ChunkThatEndsWithTheFileIsWhole) {
    // A unit of one byte behind a length prefix that looks like its start code.
    const Bytes chunk = ByteWriter().u32(0x01000000).bytes(patternBytes(1)).take();
    for (const Stream& stream : {alawStream(), lengthPrefixedStream(4)}) {
        AviFile avi = fileOf(stream, {chunk, chunk, chunk});
        putIndexFirst(avi);
        Bytes file = avi.build();
        const ChunkPlace place = avi.chunks(0)[1].place;
        file.resize(place.dataOffset + place.dataSize);
        openFile(file);

        EXPECT_EQ(readPayloads(0), (std::vector<Bytes>{chunk, chunk}));
    }
}

TEST_F(ReadFailures, ShortReadOfTheLastBytesOfTheFileEndsTheStream) {
    AviFile avi = fileOf(alawStream(), mChunks);
    putIndexFirst(avi);
    Bytes file = avi.build();
    const ChunkPlace place = avi.chunks(0)[2].place;
    file.resize(place.dataOffset + place.dataSize);
    MemorySource memory(std::move(file));
    FaultySource source(memory);
    const auto begin = static_cast<off64_t>(place.dataOffset);
    openSource(source);
    StartedTrack started(track(0));
    source.inject(Fault::shortRead(5).onOffsets(begin, begin + 1));

    EXPECT_EQ(started.status(), AMEDIA_OK);
    EXPECT_EQ(started.status(), AMEDIA_OK);
    EXPECT_EQ(started.status(), AMEDIA_ERROR_END_OF_STREAM);
}

TEST_F(ReadFailures, ChunkLongerThanTheRestOfTheFileEndsTheStreamAndReadingGoesOn) {
    for (const Stream& stream : {alawStream(), mjpegStream(), lengthPrefixedStream(2)}) {
        AviFile avi = fileOf(stream, mChunks);
        avi.segment().index.edit = [](std::vector<Idx1Entry>& index) { index[1].length = 50000; };
        openFile(avi.build());
        StartedTrack started(track(0));
        EXPECT_EQ(started.status(), AMEDIA_OK);
        EXPECT_EQ(started.status(), AMEDIA_ERROR_END_OF_STREAM);
        EXPECT_EQ(started.group().heldCount(), 0u);
        EXPECT_EQ(started.status(), AMEDIA_OK);
    }
}

TEST_F(ReadFailures, ShortReadOfASourceWithoutSizeEndsTheStream) {
    AviFile avi = fileOf(alawStream(), mChunks);
    MemorySource memory(avi.build());
    FaultySource source(memory);
    openSource(source);
    StartedTrack started(track(0));
    source.failGetSize(-EIO);
    source.inject(Fault::shortRead(5));

    EXPECT_EQ(started.status(), AMEDIA_ERROR_END_OF_STREAM);
}

// A size that is stored along with a failure is none.
TEST_F(ReadFailures, AcquisitionForWiderSamplesThatFailsGoesByTheSizeOfTheSource) {
    struct Row {
        off64_t size;
        android::status_t status;
        media_status_t expected;
    };
    const Row rows[] = {{1, android::OK, AMEDIA_ERROR_UNKNOWN},
                        {0, android::OK, AMEDIA_ERROR_END_OF_STREAM},
                        {-1, android::OK, AMEDIA_ERROR_END_OF_STREAM},
                        {100000, android::UNKNOWN_ERROR, AMEDIA_ERROR_END_OF_STREAM}};
    AviFile avi = fileOf(pcmStream(1, 8000, 8), mChunks);
    for (const Row& row : rows) {
        SCOPED_TRACE(row.size);
        SourceOfAnySize source(avi.build());
        openSource(source);
        ASSERT_EQ(countTracks(), 1u);
        source.setSize(row.size, row.status);
        EXPECT_EQ(readOnce(1, RecordingGroup::Answer::kFailure), row.expected);
    }
}

TEST_F(ReadFailures, FileOfASizeThatComesWithAFailureIsNotParsed) {
    const Bytes file = fileOf(alawStream(), mChunks).build();
    for (const android::status_t status : {android::OK, android::UNKNOWN_ERROR}) {
        SourceOfAnySize source(file);
        source.setSize(static_cast<off64_t>(file.size()), status);
        openSource(source);
        EXPECT_EQ(countTracks(), status == android::OK ? 1u : 0u);
    }
}

TEST_F(ReadFailures, SourceWithoutSizeIsReadAllTheSame) {
    for (const Stream& stream : {alawStream(), lengthPrefixedStream(4)}) {
        AviFile avi = fileOf(stream, mChunks);
        MemorySource memory(avi.build());
        FaultySource source(memory);
        openSource(source);
        ASSERT_EQ(countTracks(), 1u);
        source.failGetSize(-EIO);

        EXPECT_EQ(readAll(0).size(), 3u);
    }
}

TEST_F(ReadFailures, AcquisitionThatFailsIsUnknown) {
    using Answer = RecordingGroup::Answer;
    openStream(alawStream(), mChunks);
    for (const Answer answer : {Answer::kFailure, Answer::kNoMemory, Answer::kFailureWithBuffer}) {
        LogCapture log;
        EXPECT_EQ(readOnce(0, answer), AMEDIA_ERROR_UNKNOWN);
        EXPECT_THAT(log, Logged(ANDROID_LOG_ERROR, "read(): error -2710 @line"));
    }
}

TEST_F(ReadFailures, AcquisitionForWiderSamplesThatFailsIsUnknown) {
    using Answer = RecordingGroup::Answer;
    openStream(pcmStream(1, 8000, 8), mChunks);
    for (const Answer answer : {Answer::kFailure, Answer::kNoMemory, Answer::kFailureWithBuffer}) {
        LogCapture log;
        EXPECT_EQ(readOnce(1, answer), AMEDIA_ERROR_UNKNOWN);
        EXPECT_THAT(log, Logged(ANDROID_LOG_ERROR, "[audio/raw][0][0/3] Unknown error(-2710) @L"));
    }
}

TEST_F(ReadFailures, AcquisitionForWiderSamplesOfASourceWithoutSizeEndsTheStream) {
    AviFile avi = fileOf(pcmStream(1, 8000, 8), mChunks);
    MemorySource memory(avi.build());
    FaultySource source(memory);
    openSource(source);
    ASSERT_EQ(countTracks(), 1u);
    source.failGetSize(-EIO);

    EXPECT_EQ(readOnce(1, RecordingGroup::Answer::kFailure), AMEDIA_ERROR_END_OF_STREAM);
}

TEST_F(ReadFailures, EveryReadMayFailWithoutCrashOrLoss) {
    for (const Stream& stream : {alawStream(), mjpegStream(), lengthPrefixedStream(4),
                                 videoStream("WVC1", 320, 240, 25), pcmStream(1, 8000, 24)}) {
        AviFile avi = fileOf(stream, mChunks);
        MemorySource memory(avi.build());
        FaultySource source(memory);
        openSource(source);
        ASSERT_EQ(countTracks(), 1u);
        for (uint64_t call = 0; call < 12; ++call) {
            source.reset();
            source.clearFaults();
            source.inject(Fault::shortRead(3).onCall(call));
            StartedTrack started(track(0));
            for (int reads = 0; reads < 4; ++reads)
                started.status();
            EXPECT_EQ(started.group().heldCount(), 0u);
        }
    }
}

}  // namespace
}  // namespace avitest
