// SPDX-License-Identifier: Apache-2.0
#include "index/MoviScan.h"

#include <media/stagefright/MediaErrors.h>

#include <algorithm>
#include <atomic>

#include "index/AddSample.h"
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

}  // namespace

void MoviScan::parseMOVIMore(const MoviRange& movi) {
    const int64_t start = int64_t{movi.start} + kListHeaderSize;
    const int64_t end = std::min(mReader.size(), start + movi.size + (movi.size & 1));
    AVI_LOGV("%s(): setup index from %llX to %llX VS fileSize %llX", "parseMOVIMore",
             ull(static_cast<uint64_t>(start)), ull(static_cast<uint64_t>(end)),
             ull(static_cast<uint64_t>(mReader.size())));
    ChunkWalker chunk(mReader, start);
    while (chunk.next() < end && !mDone) {
        const int64_t position = chunk.next();
        const HeaderRead read = chunk.advance();
        if (read == HeaderRead::kUnreadable) {
            AVI_LOGW("%s(): Failed to read header at %lld, stop parsing", "parseMOVIMore",
                     ll(position));
        }
        if (read != HeaderRead::kWhole) return;
        if (chunk.paddedEnd() > end) {
            AVI_LOGW("%s(): skip last incomplete chunk/list at %lld-%lld", "parseMOVIMore",
                     ll(position), ll(chunk.paddedEnd()));
            return;
        }
        scanChunk(chunk);
    }
}

// One chunk at the top level of the movi list.
void MoviScan::scanChunk(const ChunkWalker& chunk) {
    const ChunkHeader& header = chunk.header();
    if (header.id == fourcc("LIST")) {
        AVI_LOGV("parseMOVIMore(): type 0x%08x:%c%c%c%c", FOURCC_ARGS(header.type));
        if (header.type == fourcc("rec ")) {
            scanRecordList(chunk);
        } else {
            AVI_LOGW("parseMOVIMore(): unknown list 0x%08x:%c%c%c%c", FOURCC_ARGS(header.type));
        }
        return;
    }
    const status_t err =
        parseDataChunk(static_cast<uint32_t>(chunk.payload()), header.id, header.size);
    if (err == kSkipped) {
        mDone = reachesUnknownLimit();
    } else if (err != OK) {
        AVI_LOGE("%s(): Failed to parseDataChunk()! err = %d", "parseMOVIMore", err);
        mDone = true;
    }
}

// The chunks of one 'rec ' list, in which interleaving writers group what belongs together. A limit
// ends the list, not the scan.
void MoviScan::scanRecordList(const ChunkWalker& list) {
    mEmptyHeaders = 0;
    ChunkWalker chunk(mReader, list.listContents());
    while (chunk.next() < list.next()) {
        if (!chunk.advancePlain() || chunk.paddedEnd() > list.next()) return;
        const status_t err = parseDataChunk(static_cast<uint32_t>(chunk.payload()),
                                            chunk.header().id, chunk.header().size);
        if (err == kSkipped) {
            if (reachesUnknownLimit()) return;
        } else if (err != OK) {
            return;
        }
    }
}

bool MoviScan::reachesUnknownLimit() {
    if (++mUnknownChunks != kMaxUnknownChunks) return false;
    AVI_LOGW("%s(): Unknown chunk num > 100, stop scaning!", "parseMOVIMore");
    return true;
}

// Adds a data chunk to its track. Positions are 32-bit: files without an index are old. Without an
// index nothing tells key frames, so every sample counts as one until a seek looks at it.
status_t MoviScan::parseDataChunk(uint32_t offset, FourCC id, uint32_t size) {
    if (toWord(id) == 0 && size == 0) {
        if (++mEmptyHeaders < kMaxEmptyHeaders) return OK;
        return fail("parseDataChunk", status_t{ERROR_UNSUPPORTED}, __LINE__);
    }
    mEmptyHeaders = 0;
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
    const Track* track = mTracks.byStream(streamNumber(id));
    if (track != nullptr && track->mTable.isFromOpenDml()) return OK;
    addSampleById(mReader, mTracks, streamNumber(id), {offset, size, 1});
    return OK;
}

}  // namespace android
