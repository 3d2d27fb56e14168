// SPDX-License-Identifier: Apache-2.0
//
// How the configuration builders get at the samples of a track.
#pragma once

#include "FileReader.h"
#include "Track.h"
#include "support/Log.h"

namespace android {

// Reads chunk i of a track whole; errors as FileReader::readBuffer(). REQUIRES: i < table size.
inline status_t readSample(FileReader& reader, const Track& track, size_t i, sp<ABuffer>* out) {
    return reader.readBuffer(track.mTable.offset(i), track.mTable.chunkSize(i), out);
}

// REQUIRES: the track has samples.
inline void logFirstSample(const char* function, const Track& track) {
    AVI_LOGV("%s(): First sample offset %llx, size %d", function,
             ull(static_cast<uint64_t>(track.mTable.offset(0))),
             static_cast<int>(track.mTable.chunkSize(0)));
}

}  // namespace android
