// SPDX-License-Identifier: Apache-2.0
//
// The stream format chunk (strf): its header of either kind and the codec-private bytes after it.
#pragma once

#include <stddef.h>
#include <stdint.h>
#include <utils/Errors.h>

#include "AviFile.h"
#include "FileReader.h"

namespace android {

constexpr size_t kWaveFormatSize = 16;  // without the size of the extra data
constexpr size_t kBitmapInfoSize = 40;

// The chunk while it is parsed.
struct StreamFormat {
    int64_t offset = 0;  // of the chunk's payload in the file
    size_t size = 0;     // of the payload
    uint8_t header[kBitmapInfoSize] = {};
};

// Reads a stream format into the track, whose header told its kind. ERROR_MALFORMED, ERROR_IO or
// NO_MEMORY for a format that cannot be had; a codec that is not known is no error.
status_t parseSTRF(FileReader& reader, int64_t start, int64_t end, AviFile* file, Track* track);

}  // namespace android
