// SPDX-License-Identifier: Apache-2.0

#include "tests/support/AviBuilder.h"

#include <algorithm>
#include <cstdio>
#include <cstdlib>

namespace avitest {

namespace {

std::string chunkMark(const MoviChunk& item, size_t number) {
    return item.chunk.mark.empty() ? "chunk" + std::to_string(number) : item.chunk.mark;
}

std::string indexMark(size_t stream, size_t segment) {
    return "ix" + std::to_string(stream) + "." + std::to_string(segment);
}

std::string moviMark(size_t segment) {
    return "movi" + std::to_string(segment);
}

std::string groupMark(size_t group) {
    return "rec" + std::to_string(group);
}

// `letters` after, or before, the stream's number in two digits.
ChunkId numberedId(const std::string& before, size_t stream, const std::string& after) {
    const char tens = static_cast<char>('0' + static_cast<int>(stream / 10 % 10));
    const char ones = static_cast<char>('0' + static_cast<int>(stream % 10));
    return ChunkId::of(before + tens + ones + after);
}

// Offsets are 32 bits wide in the file; a chunk that an edit moved before the base comes out as the
// two's complement.
uint32_t offsetFrom(uint64_t base, uint64_t position) {
    return static_cast<uint32_t>(static_cast<int64_t>(position) - static_cast<int64_t>(base));
}

[[noreturn]] void fail(const std::string& message) {
    std::fprintf(stderr, "AviFile: %s\n", message.c_str());
    std::abort();
}

void append(std::vector<Chunk>& to, const std::vector<Chunk>& from) {
    to.insert(to.end(), from.begin(), from.end());
}

}  // namespace

size_t AviFile::addStream(Stream stream) {
    mStreams.push_back(std::move(stream));
    return mStreams.size() - 1;
}

MoviChunk& AviFile::addChunk(size_t stream, Bytes data, uint32_t flags) {
    const ChunkId id = numberedId("", stream, mStreams.at(stream).chunkType);
    MoviChunk& item = addLooseChunk(Chunk(id, std::move(data)));
    item.stream = stream;
    item.flags = flags;
    item.indexed = true;
    return item;
}

MoviChunk& AviFile::addLooseChunk(Chunk chunk) {
    MoviChunk& item = mChunks.emplace_back();
    item.segment = mSegments.size() - 1;
    item.chunk = std::move(chunk);
    item.indexed = false;
    item.group = mGroup;
    return item;
}

void AviFile::beginGroup() {
    mGroup = mGroups;
    ++mGroups;
}

Segment& AviFile::addSegment() {
    endGroup();
    Segment& result = mSegments.emplace_back();
    result.form = "AVIX";
    result.index.copies = 0;
    return result;
}

std::vector<MoviChunk> AviFile::chunks(size_t stream) const {
    std::vector<MoviChunk> result;
    std::copy_if(mChunks.begin(), mChunks.end(), std::back_inserter(result),
                 [stream](const MoviChunk& item) { return item.stream == stream; });
    return result;
}

std::vector<Bytes> AviFile::payloads(size_t stream) const {
    std::vector<Bytes> result;
    for (const MoviChunk& chunk : chunks(stream))
        result.push_back(chunk.data());
    return result;
}

ChunkPlace AviFile::place(const std::string& mark) const {
    const auto found = mLayout.find(mark);
    if (found == mLayout.end()) fail("no chunk is marked '" + mark + "'");
    return found->second;
}

ChunkPlace AviFile::placeOrZero(const std::string& mark) const {
    const auto found = mLayout.find(mark);
    return found == mLayout.end() ? ChunkPlace() : found->second;
}

Bytes AviFile::build() {
    // The indexes have their final length before their offsets are known, so a first pass with
    // offsets of 0 finds every place, and a second one writes them.
    size_t measured = 0;
    mLayout.clear();
    for (bool final : {false, true}) {
        Layout layout;
        ByteWriter out;
        for (const Chunk& riff : assemble())
            riff.write(out, &layout);
        mLayout = std::move(layout);
        if (final) {
            if (out.size() != measured) fail("an edit function depends on the offsets");
            storePlaces();
            return out.bytes(trailing).take();
        }
        measured = out.size();
    }
    return {};
}

void AviFile::storePlaces() {
    for (size_t i = 0; i < mChunks.size(); ++i) {
        mChunks[i].place = placeOrZero(chunkMark(mChunks[i], i));
    }
}

std::vector<Chunk> AviFile::assemble() const {
    std::vector<Chunk> result;
    for (size_t i = 0; i < mSegments.size(); ++i)
        result.push_back(assembleSegment(i));
    return result;
}

Chunk AviFile::assembleSegment(size_t number) const {
    const Segment& segment = mSegments[number];
    Chunk riff = Chunk::list(segment.form, segment.beforeHeaders, "RIFF");
    riff.marked("riff" + std::to_string(number)).declaredSize = segment.riffSize;
    if (number == 0) riff.add(assembleHeaders());
    append(riff.children, segment.beforeMovi);
    riff.add(assembleMovi(number));
    append(riff.children, segment.afterMovi);
    for (size_t copy = 0; copy < segment.index.copies; ++copy) {
        const Bytes entries = toBytes(idx1Entries(number));
        const std::string mark = "idx1." + std::to_string(number);
        riff.add(
            Chunk(segment.index.id, ByteWriter().bytes(entries).bytes(segment.index.tail).take())
                .marked(copy == 0 ? mark : mark + "." + std::to_string(copy)));
    }
    append(riff.children, segment.afterIndex);
    if (segment.edit) segment.edit(riff);
    return riff;
}

Chunk AviFile::assembleMovi(size_t segment) const {
    Chunk movi = Chunk::list("movi").marked(moviMark(segment));
    std::optional<size_t> group;
    for (size_t i = 0; i < mChunks.size(); ++i) {
        const MoviChunk& item = mChunks[i];
        if (item.segment != segment) continue;
        if (item.group && item.group != group) {
            movi.add(Chunk::list("rec ").marked(groupMark(*item.group)));
        }
        group = item.group;
        Chunk& parent = group ? movi.children.back() : movi;
        parent.add(Chunk(item.chunk).marked(chunkMark(item, i)));
    }
    for (size_t i = 0; i < mStreams.size(); ++i) {
        if (mStreams[i].openDml != OpenDml::kSuper || !hasChunks(i, segment)) continue;
        movi.add(Chunk(numberedId("ix", i, ""), standardIndex(i, segment).toBytes())
                     .marked(indexMark(i, segment)));
    }
    return movi;
}

std::vector<Idx1Entry> AviFile::idx1Entries(size_t segment) const {
    const IndexOptions& options = mSegments[segment].index;
    const bool absolute = options.offsets == IndexOffsets::kAbsolute;
    const uint64_t base = absolute ? 0 : placeOrZero(moviMark(segment)).dataOffset;
    std::vector<Idx1Entry> entries;
    std::optional<size_t> group;
    for (size_t i = 0; i < mChunks.size(); ++i) {
        const MoviChunk& item = mChunks[i];
        if (item.segment != segment) continue;
        if (options.listsIndexed && item.group && item.group != group) {
            const ChunkPlace list = placeOrZero(groupMark(*item.group));
            entries.push_back({"rec ", kListEntry, offsetFrom(base, list.headerOffset),
                               static_cast<uint32_t>(list.dataSize)});
        }
        group = item.group;
        if (item.indexed) entries.push_back(idx1Entry(i, base));
    }
    if (options.edit) options.edit(entries);
    return entries;
}

Idx1Entry AviFile::idx1Entry(size_t number, uint64_t base) const {
    const MoviChunk& item = mChunks[number];
    const ChunkPlace place = placeOrZero(chunkMark(item, number));
    Idx1Entry entry;
    entry.id = item.indexId.value_or(item.chunk.id);
    entry.flags = item.flags;
    entry.offset = item.indexOffset.value_or(offsetFrom(base, place.headerOffset));
    entry.length = item.indexLength.value_or(static_cast<uint32_t>(item.chunk.payload.size()));
    return entry;
}

bool AviFile::hasChunks(size_t stream, size_t segment) const {
    return std::any_of(mChunks.begin(), mChunks.end(), [stream, segment](const MoviChunk& item) {
        return item.indexed && item.stream == stream && item.segment == segment;
    });
}

StandardIndex AviFile::standardIndex(size_t stream, std::optional<size_t> segment) const {
    StandardIndex index;
    index.header.chunkId = numberedId("", stream, mStreams[stream].chunkType);
    index.header.baseOffset = placeOrZero(moviMark(segment.value_or(0))).headerOffset;
    for (size_t i = 0; i < mChunks.size(); ++i) {
        const MoviChunk& item = mChunks[i];
        if (!item.indexed || item.stream != stream) continue;
        if (segment && item.segment != *segment) continue;
        const ChunkPlace place = placeOrZero(chunkMark(item, i));
        const uint32_t notKey = (item.flags & kKey) == 0 ? kNotKeyBit : 0;
        index.entries.push_back({offsetFrom(index.header.baseOffset, place.dataOffset),
                                 static_cast<uint32_t>(item.chunk.payload.size()) | notKey});
    }
    return index;
}

Bytes AviFile::openDmlIndex(size_t stream) const {
    if (mStreams[stream].openDml == OpenDml::kStandard) {
        return standardIndex(stream, std::nullopt).toBytes();
    }
    SuperIndex index;
    index.header.chunkId = numberedId("", stream, mStreams[stream].chunkType);
    for (size_t i = 0; i < mSegments.size(); ++i) {
        if (!hasChunks(stream, i)) continue;
        const ChunkPlace place = placeOrZero(indexMark(stream, i));
        const size_t count = standardIndex(stream, i).entries.size();
        index.entries.push_back({place.headerOffset, static_cast<uint32_t>(place.dataSize + 8),
                                 static_cast<uint32_t>(count)});
    }
    return index.toBytes();
}

}  // namespace avitest
