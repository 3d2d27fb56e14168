// SPDX-License-Identifier: Apache-2.0
#include "source/LogPrefix.h"

#include <stdarg.h>
#include <stdio.h>

#include <algorithm>

namespace android {

LogPrefix::LogPrefix(const SourceTrack& track) {
    append("[%s][%u]", track.mime.c_str(), track.info.mStreamIndex);
}

LogPrefix::LogPrefix(const SourceTrack& track, const Chunk& chunk) {
    if (chunk.label != Chunk::Label::kWithoutMime) append("[%s]", track.mime.c_str());
    append("[%u]", track.info.mStreamIndex);
    if (chunk.label == Chunk::Label::kNone) return;
    append("[%u/%zu]", chunk.index, track.table.size());
    if (track.isVideo && chunk.type) append("[%s]", frameTypeText(*chunk.type));
}

void LogPrefix::append(const char* format, ...) {
    va_list args;
    va_start(args, format);
    const int written = vsnprintf(mText + mLength, sizeof(mText) - mLength, format, args);
    va_end(args);
    if (written > 0) {
        mLength = std::min(mLength + static_cast<size_t>(written), sizeof(mText) - 1);
    }
}

}  // namespace android
