// SPDX-License-Identifier: Apache-2.0
//
// The index of AVI 1.0 files, idx1: one entry a chunk of the movi list, for all streams together.
#include "index/LegacyIndex.h"

#include <media/stagefright/MediaErrors.h>

#include <algorithm>

#include "ChunkWalker.h"
#include "index/AddSample.h"
#include "index/StreamNumber.h"
#include "support/ByteReader.h"
#include "support/Log.h"

namespace android {

namespace {

constexpr int64_t kIdx1EntrySize = 16;
constexpr int64_t kIdx1EntriesPerRead = 256;
constexpr uint32_t kIdx1FlagList = 0x1;       // AVIIF_LIST
constexpr uint32_t kIdx1FlagKeyFrame = 0x10;  // AVIIF_KEYFRAME

// Where the type word of the movi list stands, from the list's header on.
constexpr uint32_t kListTypeOffset = 8;

// u32 ckid | u32 flags | u32 offset of the chunk header | u32 length of the chunk data
struct Idx1Entry {
    FourCC id{};
    uint32_t flags = 0;
    uint32_t offset = 0;
    uint32_t length = 0;
};

Idx1Entry entryAt(const uint8_t* bytes) {
    Idx1Entry entry;
    ByteReader in(bytes, kIdx1EntrySize);
    in.code(&entry.id);
    in.u32(&entry.flags);
    in.u32(&entry.offset);
    in.u32(&entry.length);
    return entry;
}

// Writers disagree on what offsets are relative to: the file, or the type word of the movi list. An
// offset in front of the list can only be relative.
uint32_t offsetBase(const Idx1Entry& first, uint32_t moviStart) {
    return first.offset < moviStart ? wrapAdd32(moviStart, kListTypeOffset) : 0;
}

RuvoAVISample sampleOf(const Idx1Entry& entry, uint32_t base) {
    RuvoAVISample sample;
    sample.offset = wrapAdd32(wrapAdd32(entry.offset, base),  // 32-bit by format
                              static_cast<uint32_t>(kChunkHeaderSize));
    sample.size = entry.length;
    sample.isSyncSample = (entry.flags & kIdx1FlagKeyFrame) != 0 ? 1 : 0;
    return sample;
}

}  // namespace

status_t parseIDX1(FileReader& reader, const TrackList& tracks, int64_t start, int64_t end,
                   uint32_t moviStart) {
    const int64_t entries = (end - start) / kIdx1EntrySize;
    AVI_LOGD("%s(): numPerRead %d, numbers %d @%lld", "parseIDX1",
             static_cast<int>(kIdx1EntriesPerRead), static_cast<int>(entries), ll(start));

    int added = 0;  // data chunks, with or without a track of their own
    uint32_t base = 0;
    for (int64_t first = 0; first < entries; first += kIdx1EntriesPerRead) {
        const int64_t count = std::min(kIdx1EntriesPerRead, entries - first);
        uint8_t bytes[kIdx1EntriesPerRead * kIdx1EntrySize];
        const auto size = static_cast<size_t>(count * kIdx1EntrySize);
        if (!reader.readRun(start + first * kIdx1EntrySize, bytes, size, end)) {
            return fail("parseIDX1", status_t{ERROR_IO}, __LINE__);
        }
        if (first == 0) base = offsetBase(entryAt(bytes), moviStart);
        for (size_t at = 0; at < size; at += kIdx1EntrySize) {
            const Idx1Entry entry = entryAt(bytes + at);
            if ((entry.flags & kIdx1FlagList) != 0) continue;
            addSampleById(reader, tracks, streamNumber(entry.id), sampleOf(entry, base));
            ++added;
        }
    }
    AVI_LOGD("%s(): end (%d samples added)...", "parseIDX1", added);
    return OK;
}

}  // namespace android
