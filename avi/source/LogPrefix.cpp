// SPDX-License-Identifier: Apache-2.0
#include "source/LogPrefix.h"

#include <string.h>

#include <algorithm>
#include <charconv>

namespace android {

LogPrefix::LogPrefix(const SourceTrack& track) : LogPrefix(track, Chunk()) {}

LogPrefix::LogPrefix(const SourceTrack& track, const Chunk& chunk) {
    if (chunk.label != Chunk::Label::kWithoutMime) {
        append("[");
        append(track.mime.c_str());
        append("]");
    }
    append("[");
    append(track.info.mStreamIndex);
    append("]");
    if (chunk.label == Chunk::Label::kNone) return;
    append("[");
    append(chunk.index);
    append("/");
    append(track.table.size());
    append("]");
    if (!track.isVideo || !chunk.type) return;
    append("[");
    append(frameTypeText(*chunk.type));
    append("]");
}

// The last byte stays 0.
void LogPrefix::append(const char* text) {
    const size_t size = std::min(strlen(text), sizeof(mText) - 1 - mLength);
    memcpy(mText + mLength, text, size);
    mLength += size;
}

void LogPrefix::append(size_t number) {
    char* const begin = mText + mLength;
    const std::to_chars_result result = std::to_chars(begin, mText + sizeof(mText) - 1, number);
    if (result.ec == std::errc()) mLength += static_cast<size_t>(result.ptr - begin);
}

}  // namespace android
