// SPDX-License-Identifier: Apache-2.0
#include "riff/StreamList.h"

#include <media/stagefright/MediaErrors.h>

#include "index/AddSample.h"
#include "index/StreamNumber.h"
#include "riff/StreamFormat.h"
#include "riff/StreamName.h"
#include "riff/VideoProperties.h"
#include "support/Log.h"

namespace android {

constexpr int kLineUnreadableStrlChunk = 2034;

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

bool isUsable(const Track& track) {
    return !track.mBadTrack && (track.mIsVideo || track.mIsAudio || track.mIsSubtitle);
}

// The data of a codec driver: of no use here, but it has its place.
bool skipDriverData(bool strhSeen, bool* strdSeen) {
    if (*strdSeen) {
        AVI_LOGW("%s(): Skip multiple strd...", "parseSTRL");
        return true;
    }
    if (comesBeforeStreamHeader(strhSeen, "strd")) return false;
    *strdSeen = true;
    return true;
}

}  // namespace

status_t StreamList::parseSTRL(int64_t start, int64_t end, uint32_t streamIndex,
                               const FrameSize& frameSize) {
    if (streamIndex >= kStreamNumbers || mFile->tracks.size() >= kStreamNumbers) {
        AVI_LOGW("%s(): no chunk can name stream %u, skip it!", "parseSTRL", streamIndex);
        return OK;
    }
    AVI_LOGW("parseSTRL(): new track.");
    Track* track = mFile->tracks.add(streamIndex);
    if (start >= end) {
        logCorruptedStreamList(*track, start, end, false, false);
        return ERROR_MALFORMED;
    }

    Seen seen;
    ChunkWalker chunk(mReader, start);
    do {
        const HeaderRead read = chunk.advance();
        if (read == HeaderRead::kZeroTail) break;
        if (read == HeaderRead::kUnreadable) {
            return fail("parseSTRL", status_t{ERROR_IO}, kLineUnreadableStrlChunk);
        }
        if (!parseChunk(chunk, frameSize, track, &seen) || !isUsable(*track)) {
            AVI_LOGE("%s(): Something wrong, skip the track!", "parseSTRL");
            mFile->tracks.drop(track);
            return OK;
        }
    } while (chunk.next() < end);

    if (chunk.next() > end || !seen.strh || !seen.strf) {
        logCorruptedStreamList(*track, chunk.next(), end, seen.strh, seen.strf);
        return ERROR_MALFORMED;
    }
    return OK;
}

// Handles one chunk of the stream list; false when the stream cannot be used.
bool StreamList::parseChunk(const ChunkWalker& chunk, const FrameSize& frameSize, Track* track,
                            Seen* seen) {
    const ChunkHeader& header = chunk.header();
    switch (header.id) {
        case fourcc("strh"):
            return parseHeader(chunk, frameSize, track, seen);
        case fourcc("strf"):
            return parseFormat(chunk, track, seen);
        case fourcc("strd"):
            return skipDriverData(seen->strh, &seen->strd);
        case fourcc("strn"):
            return parseName(chunk, track, seen);
        case fourcc("vprp"):
            return parseProperties(chunk, track, *seen);
        case fourcc("indx"):
            parseIndex(chunk, track);
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

bool StreamList::parseHeader(const ChunkWalker& chunk, const FrameSize& frameSize, Track* track,
                             Seen* seen) {
    if (seen->strh) {
        AVI_LOGW("%s(): Skip multiple strh", "parseSTRL");
        return true;
    }
    seen->strh = parseSTRH(mReader, chunk.payload(), chunk.next(), frameSize, mFile->meta.get(),
                           track) == OK;
    return seen->strh;
}

bool StreamList::parseFormat(const ChunkWalker& chunk, Track* track, Seen* seen) {
    if (seen->strf) {
        AVI_LOGW("%s(): Skip multiple strf...", "parseSTRL");
        return true;
    }
    if (comesBeforeStreamHeader(seen->strh, "strf")) return false;
    seen->strf = true;
    return parseSTRF(mReader, chunk.payload(), chunk.payloadEnd(), mFile, track) == OK;
}

bool StreamList::parseName(const ChunkWalker& chunk, Track* track, Seen* seen) {
    if (seen->strn) {
        AVI_LOGW("%s(): Skip multiple strn...", "parseSTRL");
        return true;
    }
    if (comesBeforeStreamHeader(seen->strh, "strn")) return false;
    parseSTRN(mReader, chunk.payload(), chunk.next(), track);
    seen->strn = true;
    return true;
}

bool StreamList::parseProperties(const ChunkWalker& chunk, Track* track, const Seen& seen) {
    if (!seen.strh || !seen.strf) {
        AVI_LOGW("%s(): Found vprp before strh or strf! Malformed file!", "parseSTRL");
        return false;
    }
    parseVPRP(mReader, chunk.payload(), chunk.next(), track);
    return true;
}

// A track is indexed from its OpenDML index completely or not at all.
void StreamList::parseIndex(const ChunkWalker& chunk, Track* track) {
    track->mINDXValid = mOpenDml.parseINDX(chunk.payload(), chunk.next(), track) == OK;
    if (track->mINDXValid) {
        track->mTable.markFromOpenDml();
    } else {
        clearSamples(track);
    }
}

}  // namespace android
