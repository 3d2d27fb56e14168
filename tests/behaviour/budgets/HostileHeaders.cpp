// SPDX-License-Identifier: Apache-2.0

#include <algorithm>

#include "tests/behaviour/budgets/FileParts.h"
#include "tests/behaviour/budgets/HostileFiles.h"

namespace avitest {

namespace {

const Bytes kSample = chunkBytes("00dc", patternBytes(8));

// The same stream list again and again, and an entry of the index for each.
Bytes manyStreams(const Bytes& stream, size_t bytes) {
    constexpr size_t kEntry = 16;
    FileParts parts;
    const size_t count = bytes / (stream.size() + kEntry);
    parts.streams = repeated(stream, count * stream.size());
    parts.movi = kSample;
    std::vector<Idx1Entry> entries;
    for (uint32_t i = 0; i < std::min<size_t>(count, kMostStreams); ++i)
        entries.push_back({chunkIdOf(i, "dc"), kKey, idx1Offset(0), 8});
    parts.idx1 = entriesOf(entries, count * kEntry);
    return parts.build();
}

Bytes manyVideoStreams(size_t bytes) {
    return manyStreams(streamBytes(smallVideo()), bytes);
}

Bytes manyPcmStreams(size_t bytes) {
    return manyStreams(streamBytes(smallAudio(kTagPcm)), bytes);
}

Bytes manyAacStreams(size_t bytes) {
    return manyStreams(streamBytes(smallAudio(kTagAac)), bytes);
}

Bytes manyWmaStreams(size_t bytes) {
    Stream stream = smallAudio(kTagWma);
    std::get<WaveFormat>(stream.format).extra = patternBytes(10);
    return manyStreams(streamBytes(stream), bytes);
}

Bytes manyNamedStreams(size_t bytes) {
    return manyStreams(streamBytes(smallVideo(), chunkBytes("strn", bytesOf("de-"))), bytes);
}

Bytes manyStreamsWithProperties(size_t bytes) {
    Stream stream = smallVideo();
    stream.properties = VideoProperties();
    return manyStreams(streamBytes(stream), bytes);
}

// Streams of no kind that there is.
Bytes manyDroppedStreams(size_t bytes) {
    Stream stream = smallVideo();
    stream.header.type = "xxxx";
    FileParts parts;
    parts.streams = streamBytes(smallVideo()) + repeated(streamBytes(stream), bytes);
    parts.movi = kSample;
    return parts.build();
}

// One stream whose format has so many bytes behind its header.
Bytes largeFormat(Stream stream, const Bytes& head, size_t bytes) {
    FileParts parts;
    const Bytes extra = head + Bytes(bytes - head.size(), 0x55);
    if (auto* video = std::get_if<BitmapInfo>(&stream.format)) video->extra = extra;
    parts.streams = streamBytes(stream);
    parts.movi = kSample;
    parts.idx1 = entriesOf({{"00dc", kKey, idx1Offset(0), 8}}, 12 * 16);
    return parts.build();
}

Bytes largeVc1Format(size_t bytes) {
    return largeFormat(smallVideo("WVC1"), {}, bytes);
}

// A record of one parameter set each, and what follows them.
Bytes largeAvcFormat(size_t bytes) {
    return largeFormat(smallVideo("H264"),
                       {1, 66, 0, 30, 0xFF, 0xE1, 0, 4, 0x67, 66, 0, 30, 1, 0, 2, 0x68, 0x80},
                       bytes);
}

Bytes largeHevcFormat(size_t bytes) {
    return largeFormat(smallVideo("HEVC"), {0, 0, 0, 1, 0x40, 1}, bytes);
}

// Formats of 64 KiB, the most that is kept of one for audio.
Bytes manyLargeFormats(size_t bytes) {
    Stream stream = smallAudio(kTagWma);
    std::get<WaveFormat>(stream.format).extra = Bytes(0xFFF0, 0x55);
    return manyStreams(streamBytes(stream), bytes);
}

// So many bytes of something in the list of the only stream, or of something else in hdrl.
Bytes inStreamList(const Bytes& more) {
    FileParts parts;
    parts.streams = streamBytes(smallVideo(), more);
    parts.movi = kSample;
    return parts.build();
}

Bytes inHeaderList(const Bytes& more) {
    FileParts parts;
    parts.streams = streamBytes(smallVideo()) + more;
    parts.movi = kSample;
    return parts.build();
}

Bytes largeStreamName(size_t bytes) {
    return inStreamList(chunkBytes("strn", Bytes(bytes, 'x')));
}

Bytes manyStreamNames(size_t bytes) {
    return inStreamList(repeated(chunkBytes("strn", bytesOf("x")), bytes));
}

Bytes manyVideoProperties(size_t bytes) {
    return inStreamList(repeated(chunkBytes("vprp", VideoProperties().toBytes()), bytes));
}

Bytes zerosInStreamList(size_t bytes) {
    return inStreamList(Bytes(bytes));
}

Bytes zerosInHeaderList(size_t bytes) {
    return inHeaderList(Bytes(bytes));
}

Bytes unknownChunksInHeaderList(size_t bytes) {
    return inHeaderList(repeated(chunkBytes("ABCD", {}), bytes));
}

Bytes listsInHeaderList(size_t bytes) {
    return inHeaderList(repeated(listBytes("hdrl", {}), bytes));
}

Bytes manyMainHeaders(size_t bytes) {
    return inHeaderList(repeated(chunkBytes("avih", MainHeader().toBytes()), bytes));
}

Bytes beforeMovi(const Bytes& more) {
    FileParts parts;
    parts.streams = streamBytes(smallVideo());
    parts.beforeMovi = more;
    parts.movi = kSample;
    return parts.build();
}

Bytes manyHeaderLists(size_t bytes) {
    const Bytes list = listBytes("hdrl", chunkBytes("avih", MainHeader().toBytes()));
    return beforeMovi(repeated(list, bytes));
}

Bytes zerosInInfoList(size_t bytes) {
    return beforeMovi(listBytes("INFO", Bytes(bytes)));
}

Bytes manyTags(size_t bytes) {
    return beforeMovi(listBytes("INFO", repeated(chunkBytes("INAM", bytesOf("x")), bytes)));
}

Bytes largeTags(size_t bytes) {
    return beforeMovi(listBytes("INFO", repeated(chunkBytes("INAM", Bytes(4096, 'x')), bytes)));
}

Bytes manyInfoLists(size_t bytes) {
    return beforeMovi(repeated(listBytes("INFO", {}), bytes));
}

}  // namespace

std::vector<HostileFile> hostileHeaders() {
    return {
        {"ManyVideoStreams", manyVideoStreams},
        {"ManyPcmStreams", manyPcmStreams},
        {"ManyAacStreams", manyAacStreams},
        {"ManyWmaStreams", manyWmaStreams},
        {"ManyNamedStreams", manyNamedStreams},
        {"ManyStreamsWithProperties", manyStreamsWithProperties},
        {"ManyDroppedStreams", manyDroppedStreams},
        {"LargeVc1Format", largeVc1Format},
        {"LargeAvcFormat", largeAvcFormat},
        {"LargeHevcFormat", largeHevcFormat},
        {"ManyLargeFormats", manyLargeFormats},
        {"LargeStreamName", largeStreamName},
        {"ManyStreamNames", manyStreamNames},
        {"ManyVideoProperties", manyVideoProperties},
        {"ZerosInStreamList", zerosInStreamList},
        {"ZerosInHeaderList", zerosInHeaderList},
        {"UnknownChunksInHeaderList", unknownChunksInHeaderList},
        {"ListsInHeaderList", listsInHeaderList},
        {"ManyMainHeaders", manyMainHeaders},
        {"ManyHeaderLists", manyHeaderLists},
        {"ZerosInInfoList", zerosInInfoList},
        {"ManyTags", manyTags},
        {"LargeTags", largeTags},
        {"ManyInfoLists", manyInfoLists},
    };
}

}  // namespace avitest
