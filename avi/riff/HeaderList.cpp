// SPDX-License-Identifier: Apache-2.0
#include "riff/HeaderList.h"

#include <media/stagefright/MediaErrors.h>

#include <utility>

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

status_t HeaderList::parseHDRL(int64_t start, int64_t end) {
    if (start >= end) {
        logCorruptedHeaderList(start, end, false, 0, mNumStreams);
        return ERROR_MALFORMED;
    }

    Found found;
    ChunkWalker chunk(mReader, start);
    do {
        const HeaderRead read = chunk.advance();
        if (read == HeaderRead::kZeroTail) break;
        if (read == HeaderRead::kUnreadable) {
            return fail("parseHDRL", status_t{ERROR_IO}, kLineUnreadableHdrlChunk);
        }
        const status_t err = parseChunk(chunk, &found);
        if (err != OK) return err;
        AVI_LOGV("%s(): pos %llX", "parseHDRL", ull(chunk.next()));
    } while (chunk.next() < end);

    if (chunk.next() > end || !found.avih || found.streamLists < mNumStreams) {
        logCorruptedHeaderList(chunk.next(), end, found.avih, found.streamLists, mNumStreams);
        return ERROR_MALFORMED;
    }
    return OK;
}

status_t HeaderList::parseChunk(const ChunkWalker& chunk, Found* found) {
    const ChunkHeader& header = chunk.header();
    switch (header.id) {
        case fourcc("JUNK"):
            return OK;
        case fourcc("avih"): {
            const status_t err = parseAVIH(chunk.payload(), chunk.next());
            if (err != OK) AVI_LOGE("%s(): parseAVIH err: %d", "parseHDRL", err);
            found->avih = err == OK;
            return err;
        }
        case fourcc("LIST"):
            return parseList(chunk, found);
        default:
            if (isEmptyAgain(header, found)) return OK;
            AVI_LOGW("parseHDRL(): unknown chunk 0x%08x:%c%c%c%c in %s", FOURCC_ARGS(header.id),
                     "parseHDRL");
            return OK;
    }
}

// True for the second and further ones of a run of empty headers: writers fill reserved room with
// zeros, and one line for all of it is enough.
bool HeaderList::isEmptyAgain(const ChunkHeader& header, Found* found) {
    const bool isEmpty = toWord(header.id) == 0 && header.size == 0;
    return std::exchange(found->emptyHeader, isEmpty) && isEmpty;
}

status_t HeaderList::parseList(const ChunkWalker& chunk, Found* found) {
    const FourCC type = chunk.header().type;
    AVI_LOGV("parseHDRL(): type 0x%08x:%c%c%c%c", FOURCC_ARGS(type));
    if (type != fourcc("strl")) {
        AVI_LOGW("parseHDRL(): unknown list 0x%08x:%c%c%c%c in %s", FOURCC_ARGS(type), "parseHDRL");
        return OK;
    }
    if (!found->avih) {
        AVI_LOGE("%s(): avih MUST before strl! Malformed file!", "parseHDRL");
        return ERROR_MALFORMED;
    }
    return mStreams.parseSTRL(chunk.listContents(), chunk.next(), found->streamLists++, mFrameSize);
}

status_t HeaderList::parseAVIH(int64_t start, int64_t end) {
    uint8_t bytes[kMainHeaderSize];
    if (end - start < static_cast<int64_t>(sizeof(bytes))) {
        return fail("parseAVIH", status_t{ERROR_MALFORMED}, kLineShortAvih);
    }
    if (!mReader.readExactly(start, bytes, sizeof(bytes))) {
        return fail("parseAVIH", status_t{ERROR_IO}, kLineUnreadableAvih);
    }
    const MainHeader header = readMainHeader(bytes);
    mFrameSize = {header.width, header.height};
    mNumStreams = header.streams;
    logMainHeader(header);
    return OK;
}

}  // namespace android
