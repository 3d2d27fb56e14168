// SPDX-License-Identifier: Apache-2.0
//
// Sample tables of files without an index: the movi list is walked chunk by chunk.
#include <algorithm>
#include <atomic>

#include "RuvoAVIExtractor.h"
#include "index/StreamNumber.h"
#include "support/Log.h"

namespace android {

namespace {

constexpr uint32_t kMaxUnknownChunks = 100;
constexpr uint32_t kMaxEmptyHeaders = 1000;

// The result of a chunk that is neither data nor known.
constexpr status_t kSkipped = BAD_VALUE;

// Files full of unknown chunks must not flood the log: of all that were skipped in this process,
// the first few are logged and then every tenth.
std::atomic<uint64_t> gSkippedChunks{0};

void logSkippedChunk(FourCC id, uint32_t offset) {
    const uint64_t skipped = gSkippedChunks.fetch_add(1, std::memory_order_relaxed);
    if (skipped >= 5 && skipped % 10 != 0) return;
    AVI_LOGW("parseDataChunk(): Skip chunk at pos %x 0x%08x:%c%c%c%c", offset, FOURCC_ARGS(id));
}

enum class ChunkKind { kData, kPalette, kOther };

// By the two letters behind the stream number.
ChunkKind kindOf(FourCC id) {
    const uint32_t letters = toWord(id) >> 16;
    const auto is = [letters](const char(&type)[5]) {
        return letters == toWord(fourcc(type)) >> 16;
    };
    if (is("00dc") || is("00db") || is("00wb")) return ChunkKind::kData;
    return is("00pc") ? ChunkKind::kPalette : ChunkKind::kOther;
}

bool isIncomplete(const ChunkWalker& chunk, int64_t end) {
    return chunk.header().size > end - chunk.payload() || chunk.next() > end;
}

}  // namespace

status_t RuvoAVIExtractor::parseMOVIMore() {
    MoviScanState scan;
    const int64_t start = int64_t{mMoviStart} + kListHeaderSize;
    const int64_t end = std::min(mReader.size(), start + mMoviSize + (mMoviSize & 1));
    AVI_LOGV("%s(): setup index from %llX to %llX VS fileSize %llX", "parseMOVIMore",
             ull(static_cast<uint64_t>(start)), ull(static_cast<uint64_t>(end)),
             ull(static_cast<uint64_t>(mReader.size())));
    ChunkWalker chunk(mReader, start);
    while (chunk.next() < end && !scan.done) {
        const int64_t position = chunk.next();
        const HeaderRead read = chunk.advance();
        if (read == HeaderRead::kUnreadable) {
            AVI_LOGW("%s(): Failed to read header at %lld, stop parsing", "parseMOVIMore",
                     ll(position));
        }
        if (read != HeaderRead::kWhole) break;
        if (isIncomplete(chunk, end)) {
            AVI_LOGW("%s(): skip last incomplete chunk/list at %lld-%lld", "parseMOVIMore",
                     ll(position), ll(chunk.next()));
            break;
        }
        scanChunk(chunk, &scan);
    }
    mHasIndex = true;
    return OK;
}

// One chunk at the top level of the movi list.
void RuvoAVIExtractor::scanChunk(const ChunkWalker& chunk, MoviScanState* scan) {
    const ChunkHeader& header = chunk.header();
    if (header.id == fourcc("LIST")) {
        AVI_LOGV("parseMOVIMore(): type 0x%08x:%c%c%c%c", FOURCC_ARGS(header.type));
        if (header.type == fourcc("rec ")) {
            scanRecordList(chunk, scan);
        } else {
            AVI_LOGW("parseMOVIMore(): unknown list 0x%08x:%c%c%c%c", FOURCC_ARGS(header.type));
        }
        return;
    }
    const status_t err = parseDataChunk(static_cast<uint32_t>(chunk.payload()), header.id,
                                        header.size, &scan->emptyHeaders);
    if (err == kSkipped) {
        scan->done = reachesUnknownLimit(scan);
    } else if (err != OK) {
        AVI_LOGE("%s(): Failed to parseDataChunk()! err = %d", "parseMOVIMore", err);
        scan->done = true;
    }
}

// The chunks of one 'rec ' list, in which interleaving writers group what belongs together. A limit
// ends the list, not the scan.
void RuvoAVIExtractor::scanRecordList(const ChunkWalker& list, MoviScanState* scan) {
    scan->emptyHeaders = 0;
    ChunkWalker chunk(mReader, list.listContents());
    while (chunk.next() < list.next()) {
        if (!chunk.advancePlain() || isIncomplete(chunk, list.next())) return;
        const status_t err =
            parseDataChunk(static_cast<uint32_t>(chunk.payload()), chunk.header().id,
                           chunk.header().size, &scan->emptyHeaders);
        if (err == kSkipped) {
            if (reachesUnknownLimit(scan)) return;
        } else if (err != OK) {
            return;
        }
    }
}

bool RuvoAVIExtractor::reachesUnknownLimit(MoviScanState* scan) {
    if (++scan->unknownChunks != kMaxUnknownChunks) return false;
    AVI_LOGW("%s(): Unknown chunk num > 100, stop scaning!", "parseMOVIMore");
    return true;
}

// Adds a data chunk to its track. Positions are 32-bit: files without an index are old. Without an
// index nothing tells key frames, so every sample counts as one until a seek looks at it.
status_t RuvoAVIExtractor::parseDataChunk(uint32_t offset, FourCC id, uint32_t size,
                                          uint32_t* emptyHeaders) {
    if (toWord(id) == 0 && size == 0) {
        if (++*emptyHeaders < kMaxEmptyHeaders) return OK;
        fail("parseDataChunk", ERROR_UNSUPPORTED, __LINE__);
        return ERROR_UNSUPPORTED;
    }
    *emptyHeaders = 0;
    switch (kindOf(id)) {
        case ChunkKind::kPalette:
            AVI_LOGW("parseDataChunk(): NOT support chunk 0x%08x:%c%c%c%c", FOURCC_ARGS(id));
            return OK;
        case ChunkKind::kOther:
            logSkippedChunk(id, offset);
            return kSkipped;
        default:
            break;
    }
    const Track* track = trackByStream(streamNumber(id));
    if (track != nullptr && track->mINDXValid) return OK;  // it has its table already
    const RuvoAVISample sample = {offset, size, 1};
    return addSampleById(streamNumber(id), &sample);
}

}  // namespace android
