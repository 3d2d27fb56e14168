// SPDX-License-Identifier: Apache-2.0
#include "source/ReadFailure.h"

#include <algorithm>

#include "support/Log.h"

namespace android {

media_status_t endOfStream(const LogPrefix& prefix, int line) {
    AVI_LOGE("%s end of stream @L%d", prefix.text(), line);
    return AMEDIA_ERROR_END_OF_STREAM;
}

media_status_t unknownError(const LogPrefix& prefix, int line) {
    AVI_LOGE("%s Unknown error(-%x) @L%d", prefix.text(),
             static_cast<unsigned>(-AMEDIA_ERROR_UNKNOWN), line);
    return AMEDIA_ERROR_UNKNOWN;
}

media_status_t shortRead(const SourceTrack& track, const Chunk& chunk, int line) {
    const LogPrefix prefix(track, chunk);
    const int64_t fileSize = std::max<int64_t>(track.reader.askSize(), 0);
    const bool atFileEnd = chunk.offset >= fileSize - chunk.size;
    return atFileEnd ? endOfStream(prefix, line) : unknownError(prefix, line);
}

media_status_t bufferFailure(const SourceTrack& track, const Chunk& chunk, int line) {
    const LogPrefix prefix(track, chunk);
    return track.reader.askSize() < 1 ? endOfStream(prefix, line) : unknownError(prefix, line);
}

}  // namespace android
