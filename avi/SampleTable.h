// SPDX-License-Identifier: Apache-2.0
//
// The sample table of a track: one row a chunk, in parallel columns.
// Invariant: offsets and sizes have one entry a row; key flags too, or none where the track keeps
// none. The first row settles whether the size column holds sizes or running totals.
// Threading: rows are added while the file is parsed, before any source exists. Afterwards only key
// flags change, each read and written as a single value.
#pragma once

#include <stddef.h>
#include <stdint.h>

#include "support/Arithmetic.h"
#include "support/PlainArray.h"

namespace android {

// One index entry, as every index reader hands it to addSample().
struct RuvoAVISample {
    int64_t offset;        // of the chunk's data in the file, past its 8-byte header
    uint32_t size;         // of the chunk's data
    uint8_t isSyncSample;  // 1 for a key sample, else 0
};

class SampleTable {
  public:
    // What the size column holds: the size of each chunk, or the bytes of the stream up to its end
    // (modulo 2^32), so that a byte position is found by bisection.
    enum class Sizes { kOfChunks, kRunningTotals };

    size_t size() const { return mRows; }
    bool isEmpty() const { return mRows == 0; }

    // Appends a row, with its key flag where the track keeps them. `sizes` counts for the first row
    // alone, later ones follow it. False, and nothing changed, when there is no memory for a whole
    // row.
    bool add(const RuvoAVISample& sample, Sizes sizes, bool keepsSyncFlags) {
        if (!hasRoom(keepsSyncFlags) && !grow(keepsSyncFlags)) return false;
        if (isEmpty()) mSizes = sizes;
        const uint32_t before =
            mSizes == Sizes::kRunningTotals && !isEmpty() ? sizeEntry(mRows - 1) : 0;
        mSampleOffsets[mRows] = sample.offset;
        mSampleSizes[mRows] = wrapAdd32(before, sample.size);
        if (keepsSyncFlags) mSampleSyncs[mSyncRows++] = static_cast<int8_t>(sample.isSyncSample);
        ++mRows;
        return true;
    }

    // Gives back the memory that no row uses: for tables that are complete.
    void trim();

    // Keeps for every row the audio blocks up to its end (modulo 2^32), a part of a block counting
    // as one. False, and nothing changed, when there is no memory for them. REQUIRES: blockSize >
    // 0.
    bool addBlockTotals(uint32_t blockSize);

    // Turns sizes into running totals: for streams that are timed by bytes though their header does
    // not say so.
    void makeRunningTotals();

    // Forgets all rows but the block totals, and where they came from.
    void clear();

    // Marks a table that an OpenDML index filled: it lists all chunks of the stream.
    void markFromOpenDml() { mIsFromOpenDml = true; }
    bool isFromOpenDml() const { return mIsFromOpenDml; }

    // REQUIRES of all below: i < size().

    // Of the chunk's data in the file.
    int64_t offset(size_t i) const { return mSampleOffsets[i]; }

    // Bytes of the stream before chunk i; 0 in a table of sizes.
    uint32_t bytesBefore(size_t i) const {
        return mSizes == Sizes::kRunningTotals && i > 0 ? sizeEntry(i - 1) : 0;
    }

    uint32_t chunkSize(size_t i) const { return wrapSub32(sizeEntry(i), bytesBefore(i)); }

    // Bytes of the stream up to the end of chunk i. REQUIRES: a table of running totals.
    uint32_t bytesThrough(size_t i) const { return sizeEntry(i); }

    // Audio blocks up to the end of chunk i. REQUIRES: block mode.
    int32_t blocksThrough(size_t i) const { return mSampleBlockSizes[i]; }

    // Key flag of chunk i: 0, 1, or kConfirmedSync; 0 where the track keeps none.
    int8_t syncFlag(size_t i) const {
        return i < mSyncRows ? __atomic_load_n(&mSampleSyncs[i], __ATOMIC_RELAXED) : int8_t{0};
    }

    // The first entry from `from` on, or the last one up to it, that has a key flag; size() when
    // there is none. At the speed of memory: a film may have one key frame in a million.
    size_t nextSync(size_t from) const;
    size_t previousSync(size_t from) const;

    // A key flag that the frame's own data confirmed; negative, unlike those of an index.
    static constexpr int8_t kConfirmedSync = -127;

    // Corrects the key flag of chunk i by what its data says. Any thread. REQUIRES: flags are kept.
    void correctSyncFlag(size_t i, bool isSync);

    size_t syncFlags() const { return mSyncRows; }
    size_t blockTotals() const { return mBlockRows; }

  private:
    bool hasRoom(bool keepsSyncFlags) const {
        return mRows < mCapacity && (!keepsSyncFlags || mSyncRows < mSyncCapacity);
    }
    bool grow(bool keepsSyncFlags);
    uint32_t sizeEntry(size_t i) const { return mSampleSizes[i]; }

    PlainArray<int64_t> mSampleOffsets;
    PlainArray<uint32_t> mSampleSizes;
    PlainArray<int8_t> mSampleSyncs;
    PlainArray<int32_t> mSampleBlockSizes;
    size_t mRows = 0;
    size_t mCapacity = 0;      // rows that there is room for
    size_t mSyncRows = 0;      // rows with a key flag
    size_t mSyncCapacity = 0;  // and those that there is room for
    size_t mBlockRows = 0;     // rows with a block total
    Sizes mSizes = Sizes::kOfChunks;
    bool mIsFromOpenDml = false;
};

}  // namespace android
