// SPDX-License-Identifier: Apache-2.0
//
// The index of AVI 1.0 files, idx1: one entry a chunk of the movi list, for all streams together.
#include <algorithm>

#include "RuvoAVIExtractor.h"
#include "index/StreamNumber.h"
#include "support/ByteReader.h"
#include "support/Log.h"

namespace android {

namespace {

constexpr int64_t kIdx1EntrySize = 16;
constexpr int64_t kIdx1EntriesPerRead = 256;
constexpr uint32_t kIdx1FlagList = 0x1;       // AVIIF_LIST
constexpr uint32_t kIdx1FlagKeyFrame = 0x10;  // AVIIF_KEYFRAME

// Where the type word of the movi list stands behind the list's header.
constexpr uint32_t kListTypeOffset = 8;

// u32 ckid | u32 flags | u32 offset of the chunk header | u32 length of the chunk data
struct Idx1Entry {
    FourCC id{};
    uint32_t flags = 0;
    uint32_t offset = 0;
    uint32_t length = 0;
};

Idx1Entry readIdx1Entry(ByteReader* in) {
    Idx1Entry entry;
    in->code(&entry.id);
    in->u32(&entry.flags);
    in->u32(&entry.offset);
    in->u32(&entry.length);
    return entry;
}

}  // namespace

uint32_t streamNumber(FourCC chunkId) {
    constexpr uint32_t kAsciiZeros = 10 * '0' + '0';
    return wrapSub32(10u * charAt(chunkId, 0) + charAt(chunkId, 1), kAsciiZeros);
}

status_t RuvoAVIExtractor::parseIDX1(int64_t start, int64_t end) {
    if (mReader.size() < end) {
        AVI_LOGW("%s(): Chunked file with wrong idx1(end %lld, fileSize %lld), ignore it!",
                 "parseIDX1", ll(end), ll(mReader.size()));
        return OK;
    }
    if (mHasIndex) {
        AVI_LOGW("%s(): Ignore multiple index!", "parseIDX1");
        return OK;
    }
    const int64_t entries = (end - start) / kIdx1EntrySize;
    AVI_LOGD("%s(): numPerRead %d, numbers %d @%lld", "parseIDX1",
             static_cast<int>(kIdx1EntriesPerRead), static_cast<int>(entries), ll(start));

    int added = 0;
    for (int64_t first = 0; first < entries; first += kIdx1EntriesPerRead) {
        const int64_t count = std::min(kIdx1EntriesPerRead, entries - first);
        uint8_t bytes[kIdx1EntriesPerRead * kIdx1EntrySize];
        const size_t size = static_cast<size_t>(count * kIdx1EntrySize);
        if (!mReader.readExactly(start + first * kIdx1EntrySize, bytes, size)) {
            fail("parseIDX1", ERROR_IO, __LINE__);
            return ERROR_IO;
        }
        added += addIdx1Entries(bytes, size, first == 0);
    }
    mHasIndex = true;
    AVI_LOGD("%s(): end (%d samples added)...", "parseIDX1", added);
    return OK;
}

// Adds a batch of entries to their tracks; returns how many were data chunks, with or without a
// track of their own.
int RuvoAVIExtractor::addIdx1Entries(const uint8_t* bytes, size_t size, bool isFirstBatch) {
    int counted = 0;
    ByteReader in(bytes, size);
    for (bool isFirst = isFirstBatch; in.remaining() > 0; isFirst = false) {
        const Idx1Entry entry = readIdx1Entry(&in);
        if (isFirst) {
            // Writers disagree on what offsets are relative to: the file, or the type word of the
            // movi list. An offset in front of the list can only be relative.
            mIndexOffsetBase =
                entry.offset < mMoviStart ? wrapAdd32(mMoviStart, kListTypeOffset) : 0;
        }
        if ((entry.flags & kIdx1FlagList) != 0) continue;
        RuvoAVISample sample;
        sample.offset = wrapAdd32(wrapAdd32(entry.offset, mIndexOffsetBase),  // 32-bit by format
                                  static_cast<uint32_t>(kChunkHeaderSize));
        sample.size = entry.length;
        sample.isSyncSample = (entry.flags & kIdx1FlagKeyFrame) != 0 ? 1 : 0;
        addSampleById(streamNumber(entry.id), &sample);
        ++counted;
    }
    return counted;
}

}  // namespace android
