// SPDX-License-Identifier: Apache-2.0
#include "index/OpenDmlIndex.h"

#include <media/stagefright/MediaErrors.h>
#include <stdio.h>

#include <algorithm>

#include "ChunkWalker.h"
#include "index/AddSample.h"
#include "support/ByteReader.h"
#include "support/Check.h"
#include "support/Log.h"

namespace android {

namespace {

constexpr int64_t kIndexHeaderSize = 24;
constexpr int64_t kSuperEntrySize = 16;
constexpr int64_t kStandardEntrySize = 8;
constexpr uint32_t kStandardEntriesPerRead = 512;

constexpr uint8_t kSuperIndex = 0;
constexpr uint8_t kStandardIndex = 1;

// How many times the entries that the file can hold all indexes together may list: one stream that
// lists too much leaves as much to the others.
constexpr int64_t kFileShare = 2;

// What a standard index with one chunk takes in an honest file: its entry in the super index, two
// chunk headers, its own header and entry.
constexpr int64_t kMinStandardIndexSize = 64;

constexpr uint32_t kNotKeyFrame = 0x80000000;  // in the size of a standard entry

// u64 offset of a standard index chunk | u32 its size | u32 duration
struct SuperEntry {
    uint64_t offset = 0;
    uint32_t size = 0;
    uint32_t duration = 0;
};

void logIndexHeader(const RuvoAVIIndexChunk& h) {
    AVI_LOGV("   longsPerEntry: %u", h.longsPerEntry);
    AVI_LOGV("   indexType:     0x%x", h.indexType);
    AVI_LOGV("   indexSubType:  0x%x", h.indexSubType);
    AVI_LOGV("   entriesInUse:  %u", h.entriesInUse);
    AVI_LOGV("   ID:            %x", toWord(h.chunkId));
    AVI_LOGV("   baseOffsetL:   %X", h.baseOffsetL);
    AVI_LOGV("   baseOffsetH:   %X", h.baseOffsetH);
    AVI_LOGV("   reserved3:     %u", h.reserved3);
}

uint64_t baseOffset(const RuvoAVIIndexChunk& h) {
    return uint64_t{h.baseOffsetH} << 32 | h.baseOffsetL;
}

// u32 offset of the chunk's data from the base | u32 size and flag. The low words are added in 32
// bits: writers keep them from crossing a 4 GiB border.
RuvoAVISample standardSample(const RuvoAVIIndexChunk& h, const uint8_t* entry) {
    uint32_t offset = 0;
    uint32_t size = 0;
    ByteReader in(entry, kStandardEntrySize);
    in.u32(&offset);
    in.u32(&size);
    RuvoAVISample sample;
    sample.offset =
        static_cast<int64_t>(uint64_t{h.baseOffsetH} << 32 | wrapAdd32(h.baseOffsetL, offset));
    sample.size = size & ~kNotKeyFrame;
    sample.isSyncSample = (size & kNotKeyFrame) == 0 ? 1 : 0;
    return sample;
}

void logSuperEntry(uint32_t i, const uint8_t (&bytes)[kSuperEntrySize], const SuperEntry& entry) {
    if (!extractLogEnabled()) return;
    char text[3 * kSuperEntrySize + 1];
    for (size_t b = 0; b < sizeof(bytes); ++b) {
        snprintf(text + 3 * b, 4, "%02X ", bytes[b]);
    }
    text[3 * kSuperEntrySize - 1] = '\0';
    AVI_LOGV("%s", text);
    AVI_LOGV("aviSuperIndexEntry[%d] duration %u, size %u, offset %llX", static_cast<int>(i),
             entry.duration, entry.size, ull(entry.offset));
}

void logChunkIndexEnd(const Track& track, const RuvoAVIIndexChunk& header, uint32_t added,
                      int64_t position) {
    const SampleTable& table = track.mTable;
    const bool isEmpty = table.isEmpty();
    const size_t last = isEmpty ? 0 : table.size() - 1;
    const char* mime = nullptr;
    AVI_CHECK_TEXT(AMediaFormat_getString(track.meta.get(), AMEDIAFORMAT_KEY_MIME, &mime),
                   "AMediaFormat_getString(mLastTrack->meta, AMEDIAFORMAT_KEY_MIME, &mime)");
    AVI_LOGD("[%s] sample[%zu] (baseOff %llX/%llX, size %d, sync %d]) @line%d", mime, table.size(),
             ull(baseOffset(header)), ull(isEmpty ? 0 : static_cast<uint64_t>(table.offset(last))),
             isEmpty ? 0 : static_cast<int>(table.chunkSize(last)),
             isEmpty ? 0 : table.syncFlag(last), __LINE__);
    AVI_LOGD("end %s() (%d samples added) @%llX...\n", "parseChunkIndex", static_cast<int>(added),
             ull(static_cast<uint64_t>(position)));
}

}  // namespace

OpenDmlIndex::OpenDmlIndex(FileReader& reader)
    : mReader(reader),
      mIndexesLeft(reader.size() / kMinStandardIndexSize),
      mFileEntriesLeft(kFileShare * (reader.size() / kChunkHeaderSize)) {}

bool OpenDmlIndex::readIndexHeader(int64_t start, RuvoAVIIndexChunk* out) const {
    uint8_t bytes[kIndexHeaderSize];
    if (!mReader.readExactly(start, bytes, sizeof(bytes))) return false;
    ByteReader in(bytes, sizeof(bytes));
    in.u16(&out->longsPerEntry);
    in.u8(&out->indexSubType);
    in.u8(&out->indexType);
    in.u32(&out->entriesInUse);
    in.code(&out->chunkId);
    in.u32(&out->baseOffsetL);
    in.u32(&out->baseOffsetH);
    in.u32(&out->reserved3);
    return true;
}

status_t OpenDmlIndex::parseINDX(int64_t start, int64_t end, Track* track) {
    if (end - start < kIndexHeaderSize)
        return fail("parseINDX", status_t{ERROR_MALFORMED}, __LINE__);
    RuvoAVIIndexChunk header;
    if (!readIndexHeader(start, &header)) return fail("parseINDX", status_t{ERROR_IO}, __LINE__);
    AVI_LOGV("==== parseINDX(pos: %llX, end: %llX) ====", ull(start), ull(end));
    logIndexHeader(header);
    mTrackEntriesLeft = mReader.size() / kChunkHeaderSize;
    if (header.indexType == kStandardIndex) {
        AVI_LOGD("start parseChunkIndex() @pos %lld, end %lld...", ll(start), ll(end));
        return parseChunkIndex(start, end, &header, track);
    }
    if (header.indexType != kSuperIndex) {
        return fail("parseINDX", status_t{ERROR_UNSUPPORTED}, __LINE__);
    }
    AVI_LOGD("%s(): The track has a super index with %d entries...", "parseINDX",
             static_cast<int>(header.entriesInUse));
    // Eight bytes an entry, not sixteen: some writers leave the chunk short of its last entries.
    if (end - start < int64_t{header.entriesInUse} * kStandardEntrySize) {
        return fail("parseINDX", status_t{ERROR_MALFORMED}, __LINE__);
    }
    if (static_cast<int32_t>(header.entriesInUse) <= 0) return OK;
    const status_t err = parseSuperIndex(start, header, track);
    const bool gotNothing = track->mTable.isEmpty() && !hasEntriesLeft();
    return err == OK && gotNothing ? fail("parseINDX", status_t{ERROR_MALFORMED}, __LINE__) : err;
}

status_t OpenDmlIndex::parseSuperIndex(int64_t start, const RuvoAVIIndexChunk& header,
                                       Track* track) {
    const uint64_t base = baseOffset(header);
    for (uint32_t i = 0; i < header.entriesInUse && hasEntriesLeft(); ++i) {
        --mIndexesLeft;
        uint8_t bytes[kSuperEntrySize];
        if (!mReader.readExactly(start + kIndexHeaderSize + kSuperEntrySize * i, bytes,
                                 sizeof(bytes))) {
            return fail("parseINDX", status_t{ERROR_IO}, __LINE__);
        }
        SuperEntry entry;
        ByteReader in(bytes, sizeof(bytes));
        in.u64(&entry.offset);
        in.u32(&entry.size);
        in.u32(&entry.duration);
        logSuperEntry(i, bytes, entry);
        AVI_LOGD("start parseChunkIndex(%d) @(%llX + %llX + %d) with entry size %u...",
                 static_cast<int>(i), ull(entry.offset), ull(base),
                 static_cast<int>(kChunkHeaderSize), entry.size);
        const uint64_t position = wrapAdd64(wrapAdd64(base, entry.offset), kChunkHeaderSize);
        const status_t err = parseStandardIndexAt(position, entry.size, track);
        if (err != OK) return fail("parseINDX", err, __LINE__);
    }
    return OK;
}

// A standard index chunk of `size` bytes that a super index points at. One that lies beyond the end
// of a cut file is skipped.
status_t OpenDmlIndex::parseStandardIndexAt(uint64_t position, uint32_t size, Track* track) {
    const auto fileSize = static_cast<uint64_t>(mReader.size());
    if (position > fileSize || fileSize - position < kIndexHeaderSize) {
        AVI_LOGD("parseChunkIndex() to the file end~! pos %lld, fileSize %lld",
                 static_cast<long long>(position), ll(mReader.size()));
        return OK;
    }
    const auto start = static_cast<int64_t>(position);
    return parseChunkIndex(start, start + size, nullptr, track);
}

status_t OpenDmlIndex::parseChunkIndex(int64_t start, int64_t end, const RuvoAVIIndexChunk* known,
                                       Track* track) {
    RuvoAVIIndexChunk header;
    if (known != nullptr) {
        header = *known;
    } else {
        if (end - start < kIndexHeaderSize) {
            return fail("parseChunkIndex", status_t{ERROR_MALFORMED}, __LINE__);
        }
        if (!readIndexHeader(start, &header)) {
            return fail("parseChunkIndex", status_t{ERROR_IO}, __LINE__);
        }
        AVI_LOGV("==== parseChunkIndex(pos: %lld, end: %lld) ====", ll(start), ll(end));
        logIndexHeader(header);
    }
    const int64_t entries = start + kIndexHeaderSize;
    const bool isChunkIndex = header.indexType == kStandardIndex && header.indexSubType == 0;
    if (!isChunkIndex || (end - entries) / kStandardEntrySize < int64_t{header.entriesInUse}) {
        return fail("parseChunkIndex", status_t{ERROR_MALFORMED}, __LINE__);
    }
    uint32_t added = 0;
    const status_t err = addStandardEntries(entries, header, track, &added);
    if (err == OK) logChunkIndexEnd(*track, header, added, entries);
    return err;
}

status_t OpenDmlIndex::addStandardEntries(int64_t entries, const RuvoAVIIndexChunk& header,
                                          Track* track, uint32_t* added) {
    const int64_t end = entries + kStandardEntrySize * header.entriesInUse;
    while (*added < header.entriesInUse && hasEntriesLeft()) {
        const uint32_t count = std::min(kStandardEntriesPerRead, header.entriesInUse - *added);
        uint8_t bytes[kStandardEntriesPerRead * kStandardEntrySize];
        const auto entrySize = static_cast<size_t>(kStandardEntrySize);
        if (!mReader.readRun(entries + kStandardEntrySize * *added, bytes, count * entrySize,
                             end)) {
            AVI_LOGE("%s(): Failed to read chunk entry at %lld", "parseChunkIndex", ll(entries));
            return ERROR_IO;
        }
        const auto taken = static_cast<uint32_t>(takeEntries(count));
        for (uint32_t i = 0; i < taken; ++i) {
            addSample(mReader, standardSample(header, bytes + i * entrySize), track);
        }
        *added += taken;
    }
    return OK;
}

// Every entry takes eight bytes of its own in an honest file. Indexes that claim more entries than
// the file can hold, because they point at one another, are not followed further.
bool OpenDmlIndex::hasEntriesLeft() {
    if (mFileEntriesLeft > 0 && mTrackEntriesLeft > 0 && mIndexesLeft >= 0) return true;
    if (!mLimitWarned) {
        AVI_LOGW("%s(): the indexes list more samples than the file can hold, drop the rest",
                 "parseChunkIndex");
        mLimitWarned = true;
    }
    return false;
}

// Takes up to so many entries off what is left; returns how many.
int64_t OpenDmlIndex::takeEntries(int64_t wanted) {
    const int64_t taken = std::min({wanted, mFileEntriesLeft, mTrackEntriesLeft});
    mFileEntriesLeft -= taken;
    mTrackEntriesLeft -= taken;
    return taken;
}

}  // namespace android
