// SPDX-License-Identifier: Apache-2.0

#include <algorithm>

#include "tests/behaviour/budgets/FileParts.h"
#include "tests/behaviour/budgets/HostileFiles.h"

namespace avitest {

namespace {

constexpr size_t kConfiguredAt = 10;  // samples of a video stream

// Many streams, whose samples are all the same bytes: a part of the file for each.
Bytes sharedByStreams(const Stream& stream, const Bytes& head, const Bytes& unit, size_t bytes) {
    FileParts parts;
    const Bytes list = streamBytes(stream);
    const size_t share = list.size() + kConfiguredAt * kIdx1Entry;
    const size_t streams = std::min<size_t>(bytes / 2 / share, kMostStreams);
    parts.streams = repeated(list, streams * list.size());
    const Bytes sample = head + repeated(unit, bytes - streams * share);
    parts.movi = chunkBytes("00dc", sample);
    const auto size = static_cast<uint32_t>(sample.size());
    std::vector<Idx1Entry> entries;
    for (uint32_t i = 0; i < streams; ++i)
        entries.push_back({chunkIdOf(i, "dc"), kKey, idx1Offset(0), size});
    parts.idx1 = entriesOf(entries, kConfiguredAt * entries.size() * kIdx1Entry);
    return parts.build();
}

// Without a picture all of it is published.
Bytes mpeg2OfManyStreams(size_t bytes) {
    return sharedByStreams(smallVideo("MPG2"), {0, 0, 1, 0xB3}, {0x55}, bytes);
}

// A parameter set that is as long as its length can say, then units that nobody asks for.
Bytes avcOfManyStreams(size_t bytes) {
    const Bytes head = Bytes{0, 0, 0, 1, 0x67, 66, 0, 30, 0xF8, 0x41, 0xA2} + Bytes(60000, 0x55) +
                       Bytes{0, 0, 0, 1, 0x68, 0xCE, 0x3C, 0x80} + Bytes{0, 0, 0, 1, 0x65, 0x88};
    return sharedByStreams(smallVideo("H264"), head, {0, 0, 1, 9, 0x10}, bytes);
}

Bytes hevcOfManyStreams(size_t bytes) {
    const Bytes set(300, 0x85);
    const Bytes head = Bytes{0, 0, 0, 1, 0x40, 1} + set + Bytes{0, 0, 0, 1, 0x42, 1} + set +
                       Bytes{0, 0, 0, 1, 0x44, 1} + set + Bytes{0, 0, 0, 1, 0x26, 1};
    return sharedByStreams(smallVideo("HEVC"), head, {0x55}, bytes);
}

Bytes pcmOfManyStreams(size_t bytes) {
    return sharedByStreams(smallAudio(kTagPcm), {}, {0x55}, bytes);
}

Bytes aacOfManyStreams(size_t bytes) {
    return sharedByStreams(smallAudio(kTagAac), {}, {0x55}, bytes);
}

// One stream, whose samples are all the same bytes: half of the file.
Bytes sharedBySamples(const Stream& stream, const Bytes& unit, size_t bytes) {
    FileParts parts;
    parts.streams = streamBytes(stream) + streamBytes(smallVideo());
    const Bytes sample = repeated(unit, bytes / 2);
    parts.movi = chunkBytes("00dc", sample) + chunkBytes("01dc", {1, 2});
    const auto size = static_cast<uint32_t>(sample.size());
    parts.idx1 = entriesOf({{"00dc", kKey, idx1Offset(0), size}}, bytes / 2) +
                 entriesOf({{"01dc", kKey, idx1Offset(8 + size + size % 2), 2}}, kIdx1Entry);
    return parts.build();
}

Bytes ac3WithoutSync(size_t bytes) {
    return sharedBySamples(smallAudio(kTagAc3), {0x55}, bytes);
}

Bytes dtsWithoutSync(size_t bytes) {
    return sharedBySamples(smallAudio(kTagDts), {0x55}, bytes);
}

Bytes mp3WithoutSync(size_t bytes) {
    return sharedBySamples(smallAudio(kTagMp3), {0x55}, bytes);
}

// A stream of these samples: the first ones once, the others by turns in so many bytes of entries.
Bytes filmOf(const Stream& stream, const std::vector<Bytes>& samples, size_t bytes,
             size_t once = 0) {
    FileParts parts;
    parts.streams = streamBytes(stream);
    std::vector<Idx1Entry> entries;
    for (const Bytes& sample : samples) {
        entries.push_back(
            {"00dc", kKey, idx1Offset(parts.movi.size()), static_cast<uint32_t>(sample.size())});
        parts.movi = parts.movi + chunkBytes("00dc", sample);
    }
    const auto turns = entries.begin() + static_cast<ptrdiff_t>(once);
    parts.idx1 = toBytes({entries.begin(), turns}) + entriesOf({turns, entries.end()}, bytes);
    return parts.build();
}

Bytes mpeg4Picture(uint8_t type) {
    return Bytes{0, 0, 1, 0xB6, type} + Bytes(300, 0x55);
}

Bytes rowOfBFrames(size_t bytes) {
    return filmOf(smallVideo("FMP4"), {mpeg4Picture(0x90)}, bytes);
}

Bytes bFramesByTurns(size_t bytes) {
    return filmOf(smallVideo("FMP4"), {mpeg4Picture(0x10), mpeg4Picture(0x90)}, bytes);
}

Bytes noKeyFrames(size_t bytes) {
    return filmOf(smallVideo("FMP4"), {mpeg4Picture(0x50)}, bytes);
}

// A row of frames that nobody can read.
Bytes rowOfMissingFrames(size_t bytes) {
    constexpr size_t kPeriod = 100;
    FileParts parts;
    parts.streams = streamBytes(smallVideo("FMP4"));
    parts.movi = chunkBytes("00dc", mpeg4Picture(0x10));
    const auto size = static_cast<uint32_t>(mpeg4Picture(0x10).size());
    std::vector<Idx1Entry> entries = {{"00dc", kKey, idx1Offset(0), size}};
    // They begin in the last four bytes of the file.
    const size_t index = bytes / (kPeriod * kIdx1Entry) * kPeriod * kIdx1Entry;
    const uint32_t atEnd = idx1Offset(parts.movi.size() + index) - 4;
    entries.resize(kPeriod, {"00dc", kKey, atEnd, 200});
    parts.idx1 = entriesOf(entries, bytes);
    return parts.build();
}

Bytes vc1Frames(size_t bytes) {
    return filmOf(smallVideo("WVC1"), {Bytes{0xC0} + Bytes(300, 0x55)}, bytes);
}

// AVC of length prefixes, and units without a byte.
Stream avcStream() {
    Stream stream = smallVideo("H264");
    std::get<BitmapInfo>(stream.format).extra = {1,  66, 0,  30, 0xFF, 0xE1, 0,    4,   0x67,
                                                 66, 0,  30, 1,  0,    2,    0x68, 0x80};
    return stream;
}

Bytes avcOfEmptyUnits(size_t bytes) {
    const Bytes sample = Bytes(bytes / 4);
    return filmOf(avcStream(), {sample, sample}, bytes / 2);
}

Bytes avcBFrames(size_t bytes) {
    const Bytes sample = Bytes{0, 0, 1, 0x41, 0xA0} + Bytes(320, 0xFF);
    return filmOf(avcStream(), {sample}, bytes);
}

// Headers whose frames are followed by no other header, but for those that end in the next chunk.
Bytes mp3OfCandidates(size_t bytes) {
    const Bytes sample = repeated({0xFF, 0xFB, 0x90, 0, 0x55, 0x55, 0x55}, bytes);
    return filmOf(smallAudio(kTagMp3), {sample}, 2 * kIdx1Entry);
}

// Frames of MPEG audio, all of which but a few bytes lie in the chunk after the one they begin in.
Bytes mp3FramesInTwoChunks(size_t bytes) {
    constexpr size_t kFrame = 1440;  // the largest there is
    constexpr size_t kFirstPart = 10;
    const Bytes frame = Bytes{0xFF, 0xFB, 0xE8, 0} + Bytes(kFrame - 4, 0x55);
    const Bytes begin(frame.begin(), frame.begin() + kFirstPart);
    const Bytes end(frame.begin() + kFirstPart, frame.end());
    return filmOf(smallAudio(kTagMp3), {frame + frame + begin, end + begin}, bytes, 1);
}

Bytes mp3OfSmallChunks(size_t bytes) {
    const Bytes frame = Bytes{0xFF, 0xFB, 0x90, 0} + Bytes(413, 0x55);
    std::vector<Bytes> samples = {frame, frame};
    for (const uint8_t byte : frame)
        samples.push_back({byte});
    return filmOf(smallAudio(kTagMp3), samples, bytes);
}

// MPEG audio in blocks, known by a header behind a first chunk of junk, then a chunk without one.
Bytes blocksWithoutHeader(size_t bytes) {
    constexpr size_t kBlock = 1152;
    const Bytes frame = Bytes{0xFF, 0xFB, 0x90, 0} + Bytes(413, 0x55);
    FileParts parts;
    parts.streams = streamBytes(smallAudio(kTagMp3));
    std::vector<Idx1Entry> entries;
    for (const Bytes& chunk :
         {Bytes(kBlock, 0x55), frame + frame, frame, Bytes(bytes / kBlock * kBlock, 0x55)}) {
        const auto size = static_cast<uint32_t>(chunk.size());
        entries.push_back({"00wb", kKey, idx1Offset(parts.movi.size()), size});
        parts.movi = parts.movi + chunkBytes("00wb", chunk);
    }
    parts.idx1 = toBytes(entries);
    return parts.build();
}

}  // namespace

std::vector<HostileFile> hostileSamples() {
    return {
        {"Mpeg2OfManyStreams", mpeg2OfManyStreams},
        {"AvcOfManyStreams", avcOfManyStreams},
        {"HevcOfManyStreams", hevcOfManyStreams},
        {"PcmOfManyStreams", pcmOfManyStreams},
        {"AacOfManyStreams", aacOfManyStreams},
        {"Ac3WithoutSync", ac3WithoutSync},
        {"DtsWithoutSync", dtsWithoutSync},
        {"Mp3WithoutSync", mp3WithoutSync},
        {"Mp3OfCandidates", mp3OfCandidates},
        {"RowOfBFrames", rowOfBFrames},
        {"BFramesByTurns", bFramesByTurns},
        {"NoKeyFrames", noKeyFrames},
        {"RowOfMissingFrames", rowOfMissingFrames},
        {"Vc1Frames", vc1Frames},
        {"AvcOfEmptyUnits", avcOfEmptyUnits},
        {"AvcBFrames", avcBFrames},
        {"Mp3FramesInTwoChunks", mp3FramesInTwoChunks},
        {"Mp3OfSmallChunks", mp3OfSmallChunks},
        {"BlocksWithoutHeader", blocksWithoutHeader},
    };
}

}  // namespace avitest
