// SPDX-License-Identifier: Apache-2.0
//
// The header list of the file: its main header and one stream list a stream.
#include "RuvoAVIExtractor.h"
#include "support/ByteReader.h"
#include "support/Log.h"

namespace android {

constexpr int kLineShortAvih = 1981;
constexpr int kLineUnreadableAvih = 1986;
constexpr int kLineUnreadableHdrlChunk = 2887;

constexpr size_t kMainHeaderSize = 56;

namespace {

// u32 msPerFrame | u32 maxBytesPersec | u32 paddingGranularity | u32 flags | u32 totalFrames |
// u32 initialFrames | u32 streams | u32 sugBufferSize | u32 width | u32 height | 4 x u32 reserved
struct MainHeader {
    uint32_t msPerFrame, maxBytesPersec, paddingGranularity, flags, totalFrames, initialFrames;
    uint32_t streams, sugBufferSize, width, height;
    uint32_t reserved[4];
};

MainHeader readMainHeader(const uint8_t (&bytes)[kMainHeaderSize]) {
    ByteReader in(bytes, sizeof(bytes));
    MainHeader h = {};
    for (uint32_t* field :
         {&h.msPerFrame, &h.maxBytesPersec, &h.paddingGranularity, &h.flags, &h.totalFrames,
          &h.initialFrames, &h.streams, &h.sugBufferSize, &h.width, &h.height, &h.reserved[0],
          &h.reserved[1], &h.reserved[2], &h.reserved[3]}) {
        in.u32(field);
    }
    return h;
}

void logMainHeader(const MainHeader& h) {
    AVI_LOGV("==== aviMainHeader ====");
    AVI_LOGV("   width:          %u", h.width);
    AVI_LOGV("   height:         %u", h.height);
    AVI_LOGV("   streams:        %u", h.streams);
    AVI_LOGV("   flags:          %u", h.flags);
    AVI_LOGV("   totalFrames:    %u", h.totalFrames);
    AVI_LOGV("   msPerFrame:     %u", h.msPerFrame);
    AVI_LOGV("   maxBytesPersec: %u", h.maxBytesPersec);
    AVI_LOGV("   sugBufferSize:  %u", h.sugBufferSize);
    AVI_LOGV("   paddingGranularity: %u", h.paddingGranularity);
    AVI_LOGV("   reserved1: %u", h.reserved[0]);
    AVI_LOGV("   reserved2: %u", h.reserved[1]);
    AVI_LOGV("   reserved3: %u", h.reserved[2]);
    AVI_LOGV("   reserved4: %u", h.reserved[3]);
}

void logCorruptedHeaderList(int64_t position, int64_t end, bool foundAvih, uint32_t streams,
                            uint32_t announced) {
    AVI_LOGE(
        "%s(): hdrl seems to be corrupted: end at %lld, expected end at %lld,avih %s, "
        "actual streams %d, expected streams %d",
        "parseHDRL", ll(position), ll(end), foundAvih ? "true" : "false", static_cast<int>(streams),
        static_cast<int>(announced));
}

}  // namespace

status_t RuvoAVIExtractor::parseHDRL(int64_t start, int64_t end) {
    if (start >= end) {
        logCorruptedHeaderList(start, end, false, 0, mNumStreams);
        return ERROR_MALFORMED;
    }

    bool foundAvih = false;
    uint32_t streamLists = 0;
    ChunkWalker chunk(mReader, start);
    do {
        const HeaderRead read = chunk.advance();
        if (read == HeaderRead::kZeroTail) break;
        if (read == HeaderRead::kUnreadable) {
            fail("parseHDRL", ERROR_IO, kLineUnreadableHdrlChunk);
            return ERROR_IO;
        }
        const status_t err = parseHeaderChunk(chunk, &foundAvih, &streamLists);
        if (err != OK) return err;
        AVI_LOGV("%s(): pos %llX", "parseHDRL", ull(chunk.next()));
    } while (chunk.next() < end);

    if (chunk.next() > end || !foundAvih || streamLists < mNumStreams) {
        logCorruptedHeaderList(chunk.next(), end, foundAvih, streamLists, mNumStreams);
        return ERROR_MALFORMED;
    }
    return OK;
}

status_t RuvoAVIExtractor::parseHeaderChunk(const ChunkWalker& chunk, bool* foundAvih,
                                            uint32_t* streamLists) {
    const ChunkHeader& header = chunk.header();
    switch (header.id) {
        case fourcc("JUNK"):
            return OK;
        case fourcc("avih"): {
            const status_t err = parseAVIH(chunk.payload(), chunk.next());
            if (err != OK) AVI_LOGE("%s(): parseAVIH err: %d", "parseHDRL", err);
            *foundAvih = err == OK;
            return err;
        }
        case fourcc("LIST"):
            AVI_LOGV("parseHDRL(): type 0x%08x:%c%c%c%c", FOURCC_ARGS(header.type));
            if (header.type != fourcc("strl")) {
                AVI_LOGW("parseHDRL(): unknown list 0x%08x:%c%c%c%c in %s",
                         FOURCC_ARGS(header.type), "parseHDRL");
                return OK;
            }
            if (!*foundAvih) {
                AVI_LOGE("%s(): avih MUST before strl! Malformed file!", "parseHDRL");
                return ERROR_MALFORMED;
            }
            return parseSTRL(chunk.listContents(), chunk.next(), (*streamLists)++);
        default:
            AVI_LOGW("parseHDRL(): unknown chunk 0x%08x:%c%c%c%c in %s", FOURCC_ARGS(header.id),
                     "parseHDRL");
            return OK;
    }
}

status_t RuvoAVIExtractor::parseAVIH(int64_t start, int64_t end) {
    uint8_t bytes[kMainHeaderSize];
    if (end - start < static_cast<int64_t>(sizeof(bytes))) {
        fail("parseAVIH", ERROR_MALFORMED, kLineShortAvih);
        return ERROR_MALFORMED;
    }
    if (!mReader.readExactly(start, bytes, sizeof(bytes))) {
        fail("parseAVIH", ERROR_IO, kLineUnreadableAvih);
        return ERROR_IO;
    }
    const MainHeader header = readMainHeader(bytes);
    mWidth = header.width;
    mHeight = header.height;
    mNumStreams = header.streams;
    logMainHeader(header);
    return OK;
}

}  // namespace android
