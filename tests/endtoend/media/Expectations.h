// SPDX-License-Identifier: Apache-2.0
//
// What a player has to get from a media file, worked out from the file's own bytes and fields
// without the plug-in. One thread.

#pragma once

#include <cstdint>
#include <vector>

#include "tests/endtoend/media/MediaFile.h"

namespace avitest {

// A sample and the chunk it comes from.
struct ExpectedSample {
    IndexedChunk chunk;
    Bytes bytes;
    int64_t timeUs = 0;
    bool sync = false;
};

// The samples of a stream: the chunks that are not empty, each with its time. PCM comes in 16 bits
// a sample, whatever the file has.
std::vector<ExpectedSample> expectedSamples(const MediaFile& media, size_t stream);

// Little-endian signed 16-bit samples from PCM of `bits` bits: 8 (unsigned), 16, 24 or 32 (signed).
Bytes toPcm16(const Bytes& pcm, unsigned bits);

}  // namespace avitest
