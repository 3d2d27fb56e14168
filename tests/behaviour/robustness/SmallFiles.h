// SPDX-License-Identifier: Apache-2.0
//
// Small valid files of two streams, which the tests of this folder damage. Each kind takes another
// way through the reader. Plain values.

#pragma once

#include <iosfwd>
#include <string>
#include <vector>

#include "tests/support/AviBuilder.h"

namespace avitest {

// A file in which players see video as track 0 and sound as track 1.
struct SmallFile {
    std::string name;
    Bytes bytes;
    std::vector<std::vector<Bytes>> samples;  // by track; empty where reading converts the chunks
};

void PrintTo(const SmallFile& file, std::ostream* out);

// MJPEG and 16-bit PCM with all optional chunks, so that samples are chunks as they are.
SmallFile plainFile();

// All kinds: the plain one, B-frames and 8-bit PCM, length-prefixed AVC and ADPCM, VC-1 and 24-bit
// PCM, subtitles and AC-3, streams in the order of sound and video.
std::vector<SmallFile> smallFiles();

}  // namespace avitest
