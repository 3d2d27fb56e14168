// SPDX-License-Identifier: Apache-2.0
//
// The INFO list: text tags of the file, for the framework's metadata.
#include "RuvoAVIExtractor.h"
#include "support/ByteReader.h"
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

}  // namespace

// Sub-chunks of eight bytes and a text: u32 id | u32 size. Nothing here fails the file.
status_t RuvoAVIExtractor::parseINFO(int64_t start, int64_t end) {
    for (int64_t position = start; position < end;) {
        uint8_t bytes[kChunkHeaderSize];
        if (!mReader.readExactly(position, bytes, sizeof(bytes))) break;
        FourCC id{};
        uint32_t size = 0;
        ByteReader in(bytes, sizeof(bytes));
        in.code(&id);
        in.u32(&size);
        const uint32_t padded = paddedSize(size);
        const char* key = keyOf(id);
        if (key != nullptr) {
            AVI_LOGV("parseINFO(): meta key 0x%08x:%c%c%c%c", FOURCC_ARGS(id));
            if (padded <= kMaxTagSize) publishTag(key, position + kChunkHeaderSize, padded);
        }
        position += kChunkHeaderSize + padded;
    }
    return OK;
}

// The byte behind the text is read too and replaced by a terminator; a tag at the very end of the
// file, which has none, is dropped.
void RuvoAVIExtractor::publishTag(const char* key, int64_t offset, uint32_t padded) {
    sp<ABuffer> text;
    if (mReader.readBuffer(offset, size_t{padded} + 1, &text) != OK) return;
    text->data()[padded] = '\0';
    const char* value = reinterpret_cast<const char*>(text->data());
    AMediaFormat_setString(mFileMeta.get(), key, value);
    AVI_LOGV("%s(): meta value %s, size %u", "parseINFO", value, padded);
}

}  // namespace android
