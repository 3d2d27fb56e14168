// SPDX-License-Identifier: Apache-2.0
//
// One stream list of the header list: creates the stream's track, hands the list's chunks to their
// readers and drops a stream that breaks the rules, so that the others still play.
#include "RuvoAVIExtractor.h"
#include "support/Log.h"

namespace android {

constexpr int kLineUnreadableStrlChunk = 2034;

struct RuvoAVIExtractor::StreamListState {
    bool strh = false;
    bool strf = false;
    bool strd = false;
    bool strn = false;
};

namespace {

void logCorruptedStreamList(const Track& track, int64_t position, int64_t end, bool strh,
                            bool strf) {
    AVI_LOGE(
        "%s(): strl of stream %d seems to be corrupted: end at %lld, expected end at %lld, "
        "strh %s, strf %s",
        "parseSTRL", static_cast<int>(track.info.mStreamIndex), ll(position), ll(end),
        strh ? "true" : "false", strf ? "true" : "false");
}

// Every stream chunk needs the stream header in front of it: only that one tells the stream's kind.
bool comesBeforeStreamHeader(bool strhSeen, const char* chunkName) {
    if (strhSeen) return false;
    AVI_LOGE("%s(): Found %s before strh! Malformed file!", "parseSTRL", chunkName);
    return true;
}

}  // namespace

status_t RuvoAVIExtractor::parseSTRL(int64_t start, int64_t end, uint32_t streamIndex) {
    AVI_LOGW("parseSTRL(): new track.");
    addTrack(streamIndex);
    if (start >= end) {
        logCorruptedStreamList(*mCurrentTrack, start, end, false, false);
        return ERROR_MALFORMED;
    }

    StreamListState seen;
    ChunkWalker chunk(mReader, start);
    do {
        const HeaderRead read = chunk.advance();
        if (read == HeaderRead::kZeroTail) break;
        if (read == HeaderRead::kUnreadable) {
            fail("parseSTRL", ERROR_IO, kLineUnreadableStrlChunk);
            return ERROR_IO;
        }
        const bool usable = parseStreamChunk(chunk, &seen) && !mCurrentTrack->mBadTrack;
        const bool knownKind =
            mCurrentTrack->mIsVideo || mCurrentTrack->mIsAudio || mCurrentTrack->mIsSubtitle;
        if (!usable || !knownKind) {
            dropCurrentTrack();
            return OK;
        }
    } while (chunk.next() < end);

    if (chunk.next() > end || !seen.strh || !seen.strf) {
        logCorruptedStreamList(*mCurrentTrack, chunk.next(), end, seen.strh, seen.strf);
        return ERROR_MALFORMED;
    }
    return OK;
}

// Handles one chunk of the stream list; false when the stream cannot be used.
bool RuvoAVIExtractor::parseStreamChunk(const ChunkWalker& chunk, StreamListState* seen) {
    const ChunkHeader& header = chunk.header();
    switch (header.id) {
        case fourcc("strh"):
        case fourcc("strf"):
        case fourcc("strd"):
        case fourcc("strn"):
            return parseUniqueStreamChunk(chunk, seen);
        case fourcc("vprp"):
            if (!seen->strh || !seen->strf) {
                AVI_LOGW("%s(): Found vprp before strh or strf! Malformed file!", "parseSTRL");
                return false;
            }
            parseVPRP(chunk.payload(), chunk.next());
            return true;
        case fourcc("indx"):
            parseStreamIndex(chunk.payload(), chunk.next());
            return true;
        case fourcc("JUNK"):
            return true;
        case fourcc("LIST"):
            AVI_LOGV("parseSTRL(): type 0x%08x:%c%c%c%c", FOURCC_ARGS(header.type));
            AVI_LOGW("parseSTRL(): unknown list 0x%08x:%c%c%c%c", FOURCC_ARGS(header.type));
            return true;
        default:
            AVI_LOGW("parseSTRL(): unknown chunk 0x%08x:%c%c%c%c", FOURCC_ARGS(header.id));
            return true;
    }
}

// A track is indexed from its OpenDML index completely or not at all.
void RuvoAVIExtractor::parseStreamIndex(int64_t start, int64_t end) {
    if (parseINDX(start, end) == OK) {
        mCurrentTrack->mINDXValid = true;
    } else {
        clearSamples(currentTrack());
    }
}

// The chunks of which only the first one counts.
bool RuvoAVIExtractor::parseUniqueStreamChunk(const ChunkWalker& chunk, StreamListState* seen) {
    const int64_t start = chunk.payload();
    const int64_t end = chunk.next();
    switch (chunk.header().id) {
        case fourcc("strh"):
            if (seen->strh) {
                AVI_LOGW("%s(): Skip multiple strh", "parseSTRL");
                return true;
            }
            seen->strh = parseSTRH(start, end) == OK;
            return seen->strh;
        case fourcc("strf"):
            if (seen->strf) {
                AVI_LOGW("%s(): Skip multiple strf...", "parseSTRL");
                return true;
            }
            if (comesBeforeStreamHeader(seen->strh, "strf")) return false;
            seen->strf = true;
            return parseSTRF(start, end) == OK;
        case fourcc("strd"):
            if (seen->strd) {
                AVI_LOGW("%s(): Skip multiple strd...", "parseSTRL");
                return true;
            }
            if (comesBeforeStreamHeader(seen->strh, "strd")) return false;
            seen->strd = true;
            return true;
        default:  // strn
            if (seen->strn) {
                AVI_LOGW("%s(): Skip multiple strn...", "parseSTRL");
                return true;
            }
            if (comesBeforeStreamHeader(seen->strh, "strn")) return false;
            parseSTRN(start, end);
            seen->strn = true;
            return true;
    }
}

void RuvoAVIExtractor::addTrack(uint32_t streamIndex) {
    mTracks.emplace_back();
    mCurrentTrack = std::prev(mTracks.end());
    mCurrentTrack->info.mStreamIndex = streamIndex;
    if (streamIndex >= mTracksByStream.size()) {
        mTracksByStream.resize(streamIndex + 1, nullptr);
    }
    // A second header list counts its streams from 0 again: the first taker keeps the number.
    Track*& slot = mTracksByStream[streamIndex];
    if (slot == nullptr) slot = currentTrack();
}

void RuvoAVIExtractor::dropCurrentTrack() {
    AVI_LOGE("%s(): Something wrong, skip the track!", "parseSTRL");
    Track*& slot = mTracksByStream[mCurrentTrack->info.mStreamIndex];
    if (slot == currentTrack()) slot = nullptr;
    mTracks.erase(mCurrentTrack);
    mCurrentTrack = mTracks.end();
}

}  // namespace android
