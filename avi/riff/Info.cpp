// SPDX-License-Identifier: Apache-2.0
#include "riff/Info.h"

#include "ChunkWalker.h"
#include "support/Log.h"

namespace android {

namespace {

constexpr uint32_t kMaxTagSize = 4096;  // padded; longer texts are no tags

struct InfoTag {
    FourCC id;
    const char* key;  // null: known, but of no use to the framework
};

constexpr InfoTag kInfoTags[] = {
    {fourcc("INAM"), "title"},
    {fourcc("IPRD"), "album"},
    // Players sort by the album's artist.
    {fourcc("IART"), "albumartist"},
    {fourcc("IGNR"), "genre"},
    {fourcc("ICRD"), "year"},
    {fourcc("ICMT"), nullptr},
    {fourcc("ICOP"), nullptr},
};

// The key of a tag; null when it is not published.
const char* keyOf(FourCC id) {
    for (const InfoTag& tag : kInfoTags) {
        if (tag.id == id) return tag.key;
    }
    AVI_LOGW("parseINFO(): unknown meta key 0x%08x:%c%c%c%c", FOURCC_ARGS(id));
    return nullptr;
}

// The byte after the text is read too and replaced by a terminator; a tag at the very end of the
// file, which has none, is dropped.
void publishTag(FileReader& reader, const char* key, int64_t offset, uint32_t padded,
                AMediaFormat* fileMeta) {
    sp<ABuffer> text;
    if (reader.readBuffer(offset, size_t{padded} + 1, &text) != OK) return;
    text->data()[padded] = '\0';
    const char* value = reinterpret_cast<const char*>(text->data());
    AMediaFormat_setString(fileMeta, key, value);
    AVI_LOGV("%s(): meta value %s, size %u", "parseINFO", value, padded);
}

}  // namespace

void parseINFO(FileReader& reader, int64_t start, int64_t end, AMediaFormat* fileMeta) {
    ChunkWalker chunk(reader, start);
    while (chunk.next() < end && chunk.advanceTag()) {
        const FourCC id = chunk.header().id;
        const uint32_t padded = paddedSize(chunk.header().size);
        const char* key = keyOf(id);
        if (key == nullptr) continue;
        AVI_LOGV("parseINFO(): meta key 0x%08x:%c%c%c%c", FOURCC_ARGS(id));
        if (padded <= kMaxTagSize) publishTag(reader, key, chunk.payload(), padded, fileMeta);
    }
}

}  // namespace android
