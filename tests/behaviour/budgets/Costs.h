// SPDX-License-Identifier: Apache-2.0
//
// What it costs to open a file, to read its tracks and to seek in them. One thread, one at a time.

#pragma once

#include <cstddef>
#include <cstdint>
#include <vector>

#include "tests/support/ByteWriter.h"

namespace avitest {

struct OpeningCost {
    uint64_t bytes = 0;  // that the source delivered
    uint64_t calls = 0;  // of the source
    uint64_t lines = 0;  // in the log, all switches off
    size_t memory = 0;   // held at one time
    size_t tracks = 0;
};

// The sniff, the parse and the first answers to all queries.
OpeningCost costOfOpening(const Bytes& file);

// What the first tracks of the file cost, those of them that have samples.
struct PlayingCost {
    uint64_t tracks = 0;
    uint64_t entries = 0;       // of the tables, as far as they were played
    uint64_t reads = 0;         // of tracks, also those that gave nothing
    uint64_t sampleBytes = 0;   // that they gave
    uint64_t largestBytes = 0;  // of the largest sample
    uint64_t sourceBytes = 0;   // that the source delivered
    uint64_t sourceReads = 0;
};

// From the beginning to the end, or to where so much was handed out that the rest shows no more.
PlayingCost costOfReading(const Bytes& file);
// To places all over the track in every mode, each followed by a read.
PlayingCost costOfSeeking(const Bytes& file);

// Processor time of opening the file and of reading its tracks.
double secondsToPlay(const Bytes& file);

}  // namespace avitest
