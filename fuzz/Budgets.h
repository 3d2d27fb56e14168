// SPDX-License-Identifier: Apache-2.0
//
// What opening a file may cost at most, by its size in bytes: the sniff, the parse and the first
// answers to all queries; and what playing it may cost. The fuzzers and the tests measure against
// these numbers; they hold for every file, damaged ones included.
#pragma once

#include <algorithm>
#include <cstdint>

namespace avifuzz {

constexpr uint64_t kKiB = 1024;
constexpr uint64_t kMiB = 1024 * kKiB;

// Every chunk has a header of 8 bytes, every index entry has at least as many.
constexpr uint64_t kLeastRecordBytes = 8;

// Sources may claim any size; no budget needs to tell apart what is beyond this one.
constexpr uint64_t kLargestFile = uint64_t{1} << 48;

/** Bytes that the source delivers. */
constexpr uint64_t maxBytesRead(uint64_t fileSize) {
    return 16 * std::min(fileSize, kLargestFile) + 64 * kKiB;
}

/** Calls of the source: four for each chunk and each index entry. */
constexpr uint64_t maxSourceCalls(uint64_t fileSize) {
    return 4 * (std::min(fileSize, kLargestFile) / kLeastRecordBytes) + 1000;
}

/** Bytes of memory held at one time: 16 times a small file, 8 times one of 2 MiB or more. */
constexpr uint64_t maxMemory(uint64_t fileSize) {
    const uint64_t size = std::min(fileSize, kLargestFile);
    return std::max(16 * std::min(size, kMiB), 8 * size) + 2 * kMiB;
}

/** Lines in the log while all switches are off. */
constexpr uint64_t maxLogLines(uint64_t fileSize) {
    return std::min(fileSize, kLargestFile) / kLeastRecordBytes + 1000;
}

// A table entry is looked at, no more than once while a track is read: its frame's type says when
// those in front of it are shown.
constexpr uint64_t kBytesLookedAt = 512;

/**
 * Bytes that the source delivers while tracks are read through: what is handed out, a look at each
 * entry, and the last sample, which cannot be had.
 */
constexpr uint64_t maxBytesReading(uint64_t sampleBytes, uint64_t entries, uint64_t lastBytes) {
    return sampleBytes + kBytesLookedAt * entries + lastBytes;
}

/** Reads of the source meanwhile: one for each of a track, and the looks. */
constexpr uint64_t maxReadsReading(uint64_t reads, uint64_t entries) {
    return reads + entries;
}

/**
 * The same for reads that seek: each loads one chunk, of which perhaps nothing is handed out, and
 * looks at the entry behind it; the entries are looked at no more than once.
 */
constexpr uint64_t maxBytesSeeking(uint64_t reads, uint64_t largestBytes, uint64_t entries) {
    return reads * (largestBytes + kBytesLookedAt) + kBytesLookedAt * entries;
}
constexpr uint64_t maxReadsSeeking(uint64_t reads, uint64_t entries) {
    return 2 * reads + entries;
}

}  // namespace avifuzz
