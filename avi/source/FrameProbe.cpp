// SPDX-License-Identifier: Apache-2.0
#include "source/FrameProbe.h"

#include <algorithm>

namespace android {

FrameType getFrameType(const SourceTrack& track, const uint8_t* data, size_t size) {
    if (track.isAvc || track.isHevc) return avcFrameType(data, size);
    return track.isMpeg4 ? mpeg4FrameType(data, size) : genericFrameType(data, size);
}

std::optional<FrameType> probeFrame(const SourceTrack& track, size_t i) {
    uint8_t bytes[kProbedBytes];
    const size_t size = std::min<size_t>(track.table.chunkSize(i), sizeof(bytes));
    if (!track.reader.readExactly(track.table.offset(i), bytes, size)) return std::nullopt;
    return getFrameType(track, bytes, size);
}

}  // namespace android
