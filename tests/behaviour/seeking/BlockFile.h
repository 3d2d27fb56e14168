// SPDX-License-Identifier: Apache-2.0
//
// A file of one MPEG-audio stream in blocks: chunks of whole blocks of 1152 bytes, the first chunk
// being junk. Every other block begins with a frame that no other block has. One thread.

#pragma once

#include <map>
#include <vector>

#include "tests/behaviour/mpegaudio/MpegAudioFixture.h"
#include "tests/support/AviBuilder.h"

namespace avitest {

constexpr size_t kBlockBytes = 1152;

struct BlockFile {
    AviFile avi;
    std::map<Bytes, int> firstFrames;  // of each block behind the junk, to the block's number
};

// Chunks of so many blocks each.
BlockFile blockFile(const std::vector<int>& blocks);

}  // namespace avitest
