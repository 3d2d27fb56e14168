// SPDX-License-Identifier: Apache-2.0

#include <algorithm>

#include "tests/behaviour/budgets/FileParts.h"
#include "tests/behaviour/budgets/HostileFiles.h"

namespace avitest {

namespace {

constexpr size_t kSmall = 8;  // bytes of a sample

// One small chunk of each of two streams, video and sound in bytes; an entry for the first, then so
// many bytes of entries in turn.
Bytes legacy(const std::vector<Idx1Entry>& unit, size_t bytes) {
    FileParts parts;
    Stream sound = smallAudio(kTagPcm);
    sound.header.sampleSize = 1;
    parts.streams = streamBytes(smallVideo()) + streamBytes(sound);
    parts.movi = chunkBytes("00dc", patternBytes(kSmall)) + chunkBytes("01wb", Bytes(kSmall));
    parts.idx1 =
        entriesOf({{"00dc", kKey, idx1Offset(0), kSmall}}, kIdx1Entry) + entriesOf(unit, bytes);
    return parts.build();
}

Bytes entriesForOneFrame(size_t bytes) {
    return legacy({{"00dc", kKey, idx1Offset(0), kSmall}}, bytes);
}

Bytes entriesForOneSound(size_t bytes) {
    return legacy({{"01wb", kKey, idx1Offset(16), kSmall}}, bytes);
}

Bytes entriesOfEmptyFrames(size_t bytes) {
    return legacy({{"00dc", kKey, idx1Offset(0), kSmall}, {"00dc", kNoFlags, idx1Offset(0), 0}},
                  bytes);
}

Bytes entriesOfEmptySounds(size_t bytes) {
    return legacy({{"01wb", kKey, idx1Offset(16), 0}}, bytes);
}

Bytes entriesOfBothStreams(size_t bytes) {
    return legacy({{"00dc", kKey, idx1Offset(0), kSmall}, {"01wb", kKey, idx1Offset(16), kSmall}},
                  bytes);
}

Bytes entriesOfLists(size_t bytes) {
    return legacy({{"rec ", kListEntry, idx1Offset(0), kSmall}}, bytes);
}

Bytes entriesBehindTheFile(size_t bytes) {
    return legacy({{"00dc", kKey, idx1Offset(0), kSmall}, {"00dc", kKey, 0x70000000, kSmall}},
                  bytes);
}

// Each frame ends behind the file.
Bytes entriesThatAreTooLong(size_t bytes) {
    return legacy({{"00dc", kKey, idx1Offset(0), 0x00FFFFFF}}, bytes);
}

Bytes entriesOfManyStreams(size_t bytes) {
    FileParts parts;
    const Bytes stream = streamBytes(smallVideo());
    parts.streams = repeated(stream, bytes / 2);
    parts.movi = chunkBytes("00dc", patternBytes(kSmall));
    const auto streams = static_cast<uint32_t>(parts.streams.size() / stream.size());
    std::vector<Idx1Entry> entries;
    for (uint32_t i = 0; i < std::min(streams, kMostStreams); ++i)
        entries.push_back({chunkIdOf(i, "dc"), kKey, idx1Offset(0), kSmall});
    parts.idx1 = entriesOf(entries, bytes / 2);
    return parts.build();
}

Bytes manyIdx1Chunks(size_t bytes) {
    FileParts parts;
    parts.streams = streamBytes(smallVideo());
    parts.movi = chunkBytes("00dc", patternBytes(kSmall));
    parts.idx1 = entriesOf({{"00dc", kKey, idx1Offset(0), kSmall}}, kIdx1Entry);
    parts.afterMovi = repeated(chunkBytes("idx1", {}), bytes);
    return parts.build();
}

// A file whose streams have `more` behind their formats, and whose movi list is `movi`.
FileParts withIndexes(const Bytes& more, size_t streams, const Bytes& movi) {
    FileParts parts;
    const Bytes stream = streamBytes(smallVideo(), more);
    parts.streams = repeated(stream, streams * stream.size());
    parts.movi = movi;
    return parts;
}

// The same with indexes that know where the movi list lies: `indexesAt` is told.
template <typename IndexesAt>
Bytes indexed(size_t streams, const Bytes& movi, const IndexesAt& indexesAt) {
    const size_t moviAt = withIndexes(indexesAt(0), streams, movi).moviAt();
    return withIndexes(indexesAt(static_cast<uint32_t>(moviAt)), streams, movi).build();
}

// OpenDML indexes list all chunks of many streams, so that each idx1 is ignored.
Bytes ignoredIdx1Chunks(size_t bytes) {
    const Bytes none = chunkBytes("indx", SuperIndex().toBytes());
    const Bytes stream = streamBytes(smallVideo(), none);
    FileParts parts;
    parts.movi = chunkBytes("00dc", patternBytes(kSmall));
    const auto streams = [&](uint32_t offset) {
        StandardIndex one;
        one.entries = {{offset, kSmall}};
        return streamBytes(smallVideo(), chunkBytes("indx", one.toBytes())) +
               repeated(stream, bytes / 4);
    };
    parts.streams = streams(0);
    parts.streams = streams(static_cast<uint32_t>(parts.moviAt() + 8));
    parts.afterMovi = repeated(chunkBytes("idx1", {}), bytes - bytes / 4);
    return parts.build();
}

Bytes oneLargeStandardIndex(size_t bytes) {
    return indexed(1, chunkBytes("00dc", patternBytes(kSmall)), [bytes](uint32_t moviAt) {
        StandardIndex index;
        index.entries.assign(bytes / 8, StandardIndex::Entry{moviAt + 8, kSmall});
        return chunkBytes("indx", index.toBytes());
    });
}

// Small indexes, of which each adds a frame.
Bytes manyStandardIndexes(size_t bytes) {
    return indexed(1, chunkBytes("00dc", patternBytes(kSmall)), [bytes](uint32_t moviAt) {
        StandardIndex index;
        index.entries = {{moviAt + 8, kSmall}};
        return repeated(chunkBytes("indx", index.toBytes()), bytes);
    });
}

// So many super indexes of so many entries, all of which name one standard index of so many frames.
Bytes sameIndex(size_t superIndexes, size_t entries, size_t frames, bool fails) {
    StandardIndex part;
    part.entries.assign(frames, StandardIndex::Entry{0, kSmall});
    const size_t partSize = part.toBytes().size();
    const auto movi = [&](uint32_t moviAt) {
        part.entries.assign(frames, StandardIndex::Entry{moviAt + 8, kSmall});
        return chunkBytes("00dc", patternBytes(kSmall)) + chunkBytes("ix00", part.toBytes());
    };
    const auto indexes = [&](uint32_t moviAt) {
        SuperIndex super;
        super.entries.assign(entries, {moviAt + 16, static_cast<uint32_t>(partSize), 1});
        if (fails) super.entries.back().size = 0;
        return repeated(chunkBytes("indx", super.toBytes()), superIndexes * (32 + 16 * entries));
    };
    FileParts parts = withIndexes(indexes(0), 1, movi(0));
    const auto moviAt = static_cast<uint32_t>(parts.moviAt());
    return withIndexes(indexes(moviAt), 1, movi(moviAt)).build();
}

Bytes oneIndexNamedAgainAndAgain(size_t bytes) {
    return sameIndex(1, bytes / 32, bytes / 16, false);
}

Bytes smallIndexNamedAgainAndAgain(size_t bytes) {
    return sameIndex(1, bytes / 16, 1, false);
}

Bytes emptyIndexNamedAgainAndAgain(size_t bytes) {
    return sameIndex(1, bytes / 16, 0, false);
}

// The table is filled and emptied again each time.
Bytes indexesThatFillAndFail(size_t bytes) {
    return sameIndex(bytes / 64, 2, 12, true);
}

Bytes largeIndexesThatFillAndFail(size_t bytes) {
    return sameIndex(bytes / 128, 2, bytes / 16, true);
}

Bytes manySuperIndexes(size_t bytes) {
    return sameIndex(bytes / 48, 1, 1, false);
}

Bytes indexesBehindTheFile(size_t bytes) {
    SuperIndex super;
    super.entries.assign(bytes / 16, {uint64_t{1} << 40, 100, 1});
    return withIndexes(chunkBytes("indx", super.toBytes()), 1,
                       chunkBytes("00dc", patternBytes(kSmall)))
        .build();
}

// Each stream claims all the frames that the file can hold.
Bytes oneIndexOfManyStreams(size_t bytes) {
    constexpr size_t kStreams = 100;
    StandardIndex part;
    const auto movi = [&](uint32_t moviAt) {
        part.entries.assign(bytes / 8, StandardIndex::Entry{moviAt + 8, kSmall});
        return chunkBytes("00dc", patternBytes(kSmall)) + chunkBytes("ix00", part.toBytes());
    };
    const auto index = [&](uint32_t moviAt) {
        SuperIndex super;
        super.entries = {{moviAt + 16, static_cast<uint32_t>(24 + 8 * part.entries.size()), 1}};
        return chunkBytes("indx", super.toBytes());
    };
    const Bytes none = movi(0);
    const auto moviAt = static_cast<uint32_t>(withIndexes(index(0), kStreams, none).moviAt());
    return withIndexes(index(moviAt), kStreams, movi(moviAt)).build();
}

}  // namespace

std::vector<HostileFile> hostileIndexes() {
    return {
        {"EntriesForOneFrame", entriesForOneFrame},
        {"EntriesForOneSound", entriesForOneSound},
        {"EntriesOfEmptyFrames", entriesOfEmptyFrames},
        {"EntriesOfEmptySounds", entriesOfEmptySounds},
        {"EntriesOfBothStreams", entriesOfBothStreams},
        {"EntriesOfLists", entriesOfLists},
        {"EntriesBehindTheFile", entriesBehindTheFile},
        {"EntriesThatAreTooLong", entriesThatAreTooLong},
        {"EntriesOfManyStreams", entriesOfManyStreams},
        {"ManyIdx1Chunks", manyIdx1Chunks},
        {"IgnoredIdx1Chunks", ignoredIdx1Chunks},
        {"OneLargeStandardIndex", oneLargeStandardIndex},
        {"ManyStandardIndexes", manyStandardIndexes},
        {"OneIndexNamedAgainAndAgain", oneIndexNamedAgainAndAgain},
        {"SmallIndexNamedAgainAndAgain", smallIndexNamedAgainAndAgain},
        {"EmptyIndexNamedAgainAndAgain", emptyIndexNamedAgainAndAgain},
        {"IndexesThatFillAndFail", indexesThatFillAndFail},
        {"LargeIndexesThatFillAndFail", largeIndexesThatFillAndFail},
        {"ManySuperIndexes", manySuperIndexes},
        {"IndexesBehindTheFile", indexesBehindTheFile},
        {"OneIndexOfManyStreams", oneIndexOfManyStreams},
    };
}

}  // namespace avitest
