// SPDX-License-Identifier: Apache-2.0
//
// Reading and seeking: what a source says of the samples it hands out.

#include <chrono>

#include "tests/behaviour/codecs/MpegAudioBytes.h"
#include "tests/behaviour/logs/Files.h"
#include "tests/behaviour/logs/Scenarios.h"
#include "tests/behaviour/reading/ReadingFixture.h"
#include "tests/behaviour/reading/RecordingGroup.h"

namespace avitest {

using android::CMediaBuffer;
using android::CMediaTrack;
using android::service::Extractor;

namespace {

constexpr uint32_t kSeek = android::CMediaTrackReadOptions::SEEK;
constexpr uint32_t kPrevious = kSeek | android::SEEK_PREVIOUS_SYNC;
constexpr uint32_t kNext = kSeek | android::SEEK_NEXT_SYNC;
constexpr uint32_t kClosest = kSeek | android::SEEK_CLOSEST;
constexpr int64_t kFar = 10000000;  // behind the end of every file here

constexpr size_t kFrames = 30;

// A picture of MPEG-4 video.
Bytes vop(char kind, size_t size = 20) {
    const uint8_t type = kind == 'I' ? 0x10 : kind == 'P' ? 0x50 : 0x90;
    return Bytes{0, 0, 1, 0xB6, type} + Bytes(size - 5, 0x33);
}

// MPEG-4 pictures, every tenth a key frame, and PCM.
AviFile pictures() {
    AviFile avi;
    avi.addStream(videoStream("FMP4", 320, 240, 25));
    avi.addStream(pcmStream());
    for (size_t i = 0; i < kFrames; ++i) {
        const bool isKey = i % 10 == 0;
        avi.addChunk(0, vop(isKey ? 'I' : 'P', i == 12 ? 60 : 20), isKey ? kKey : kNoFlags);
        avi.addChunk(1, patternBytes(1280, static_cast<uint32_t>(i)));
    }
    return avi;
}

// Frames of MPEG audio, cut into chunks without regard to them.
Play mpegAudioChunks(const std::vector<Bytes>& chunks) {
    return {fileWith(audioStream(0x55, 2, 44100, 16000, 1), chunks).build()};
}

Bytes piece(const Bytes& bytes, size_t begin, size_t end) {
    return Bytes(bytes.begin() + static_cast<ptrdiff_t>(begin),
                 bytes.begin() + static_cast<ptrdiff_t>(end));
}

void readOnce(Extractor& extractor, RecordingGroup& group) {
    const std::unique_ptr<Track> track = extractor.track(0);
    CMediaTrack* plain = track->plain();
    plain->start(plain->data, group.plain());
    CMediaBuffer* buffer = nullptr;
    plain->read(plain->data, &buffer, 0, 0);
    plain->stop(plain->data);
}

void readWithAnswer(Extractor& extractor, size_t call, RecordingGroup::Answer answer) {
    RecordingGroup group;
    group.answer(call, answer);
    readOnce(extractor, group);
}

Play pcm8(void (*also)(Extractor&)) {
    return {fileWith(pcmStream(1, 8000, 8), {patternBytes(30)}).build(), {}, {}, also};
}

}  // namespace

Play picturesAndSeeks() {
    return {pictures().build(),
            {},
            {{0, {kPrevious, 620000}},
             {1, {kPrevious, 620000}},
             {0, {kNext, 620000}},
             {0, {kClosest, 620000}},
             {0, {kNext, kFar}}}};
}

Play picturesWithoutIndex() {
    AviFile avi = pictures();
    avi.segment().index.copies = 0;
    return {avi.build(),
            {},
            {{0, {kPrevious, 620000}}, {0, {kNext, 620000}}, {0, {kPrevious, 620000}}}};
}

Play picturesWithoutKeys() {
    AviFile avi =
        fileWith(videoStream("FMP4", 320, 240, 25), std::vector<Bytes>(kFrames, vop('P')));
    avi.segment().index.edit = [](std::vector<Idx1Entry>& entries) { entries[0].flags = 0; };
    return {avi.build(), {}, {{0, {kPrevious, 620000}}}};
}

Play audioSeeks() {
    AviFile avi = pictures();
    avi.addStream(audioOfTag(0x2000));
    for (uint32_t i = 0; i < kFrames; ++i)
        avi.addChunk(2, Bytes{0x0B, 0x77} + patternBytes(60, i));
    return {avi.build(),
            {},
            {{1, {kPrevious, 500000}}, {2, {kPrevious, 400000}}, {1, {kPrevious, kFar}}}};
}

Play subtitles() {
    AviFile avi;
    avi.addStream(videoStream("DXSB", 320, 240, 25));
    avi.addChunk(0, bytesOf("[00:00:01.000-00:00:02.500] a picture"));
    return {avi.build()};
}

Play mpeg4Headers() {
    const Bytes sequence = {0, 0, 1, 0xB0, 0xF5, 0, 0, 1, 0xB5, 0x09};
    const Bytes group = {0, 0, 1, 0xB3, 0, 0x10, 7};
    return {fileWith(videoStream("FMP4", 320, 240, 25), {sequence, group, vop('B')}).build()};
}

Play prefixedNalUnits() {
    std::vector<Bytes> samples(kFrames, {0, 0, 0, 3, 0x41, 0x9A, 2});
    samples[0] = {0, 0, 0, 4, 0x65, 0x88, 0x84, 0x21};
    return {fileWith(lengthPrefixedStream(4), samples).build()};
}

Play malformedNalUnits() {
    return {fileWith(lengthPrefixedStream(4), {{0, 0, 0, 9, 0x65, 0x88, 0x84}}).build()};
}

Play nalUnitsBeyondTheBuffer() {
    Bytes sample;
    for (int i = 0; i < 30; ++i)
        sample = sample + Bytes{1, 0x65};
    return {fileWith(lengthPrefixedStream(1), {sample}).build()};
}

Play mpegAudioInPieces() {
    const Bytes frame = mpegFrame();
    std::vector<Bytes> chunks(6, frame);
    // A frame in two chunks, of which the second has three bytes left.
    chunks.push_back(frame + piece(frame, 0, 100));
    chunks.push_back(piece(frame, 100, kLayerIIISize) + junk(3));
    // One in three chunks of the same size.
    for (size_t begin = 0; begin < kLayerIIISize; begin += kLayerIIISize / 3)
        chunks.push_back(piece(frame, begin, begin + kLayerIIISize / 3));
    chunks.push_back(frame + junk(5));
    chunks.insert(chunks.end(), 6, frame);
    return mpegAudioChunks(chunks);
}

Play mpegAudioInFewPieces() {
    const Bytes frame = mpegFrame();
    const Bytes rest = piece(frame, 100, kLayerIIISize);
    return mpegAudioChunks({frame + frame + piece(frame, 0, 100), rest + junk(3),
                            piece(frame, 0, 139), piece(frame, 139, 278),
                            piece(frame, 278, kLayerIIISize)});
}

Play mpegAudioCutOff() {
    const Bytes frame = mpegFrame();
    return mpegAudioChunks({frame + frame, piece(frame, 0, 300)});
}

Play mpegAudioUnreadable() {
    const Bytes frame = mpegFrame();
    AviFile avi =
        fileWith(audioStream(0x55, 2, 44100, 16000, 1),
                 {frame + frame + piece(frame, 0, 100), piece(frame, 100, kLayerIIISize)});
    const Bytes file = avi.build();
    return {file, {unreadable(avi.chunks(0)[1].place)}};
}

Play chunkLargerThanAnyBuffer() {
    AviFile avi = fileWith(mjpegStream(), {patternBytes(30)});
    avi.segment().index.edit = [](std::vector<Idx1Entry>& index) { index[0].length = 0x7FFFFFFF; };
    return {avi.build()};
}

Play unreadableSample() {
    AviFile avi = twoStreams();
    const Bytes file = avi.build();
    return {file, {unreadable(avi.chunks(0)[3].place)}};
}

Play slowSample() {
    AviFile avi = twoStreams();
    const Bytes file = avi.build();
    const auto sample = static_cast<off64_t>(avi.chunks(0)[0].place.dataOffset);
    const auto delay = std::chrono::microseconds(50);
    return {file, {Fault::delayed(delay).onOffsets(sample, sample + 1)}};
}

Play noBufferForASample() {
    return pcm8([](Extractor& extractor) {
        readWithAnswer(extractor, 0, RecordingGroup::Answer::kFailure);
    });
}

Play emptyAnswerForASample() {
    return pcm8([](Extractor& extractor) {
        readWithAnswer(extractor, 0, RecordingGroup::Answer::kNothing);
    });
}

Play emptyAnswerForAWideSample() {
    return pcm8([](Extractor& extractor) {
        readWithAnswer(extractor, 1, RecordingGroup::Answer::kNothing);
    });
}

Play emptyAnswerForAFrame() {
    Play play = mpegAudioChunks({mpegFrame() + mpegFrame()});
    play.also = [](Extractor& extractor) {
        readWithAnswer(extractor, 1, RecordingGroup::Answer::kNothing);
    };
    return play;
}

Play startedTwice() {
    return pcm8([](Extractor& extractor) {
        const std::unique_ptr<Track> track = extractor.track(0);
        BufferGroup group;
        track->start(group);
        track->start(group);
    });
}

Play readBeforeStart() {
    return pcm8([](Extractor& extractor) { extractor.track(0)->read(); });
}

}  // namespace avitest
