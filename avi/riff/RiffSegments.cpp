// SPDX-License-Identifier: Apache-2.0
//
// The top level of a file's RIFF segments: the first one with the headers, and the further ones
// that OpenDML writers append when a file outgrows it.
#include "RuvoAVIExtractor.h"
#include "support/Log.h"

namespace android {

constexpr int kLineUnreadableFirstRiff = 4074;
constexpr int kLineUnreadableFirstRiffChunk = 4116;
constexpr int kLineNoMovi = 4208;
constexpr int kLineNoUsableTrack = 4276;
constexpr int kLineUnreadableMoreRiffChunk = 4317;
constexpr int kLineMoreRiffWithoutIndex = 4376;
constexpr int kLineUnreadableMoreRiff = 4384;

constexpr uint32_t kMaxRiffSize = 0x40000000;  // what OpenDML allows; larger files are tried
constexpr uint32_t kMaxUnknownChunks = 50;

namespace {

void logChunk(const char* function, const ChunkWalker& chunk) {
    const ChunkHeader& header = chunk.header();
    AVI_TRACE("%s(): ID 0x%08x:%c%c%c%c at pos 0x%llX, list.size: 0x%X, 0x%X", function,
              FOURCC_ARGS(header.id), ull(chunk.position()), header.size, paddedSize(header.size));
}

void logUnknownList(const char* function, const ChunkHeader& header) {
    AVI_LOGW("%s(): unknown list 0x%08x:%c%c%c%c", function, FOURCC_ARGS(header.type));
}

// Counts stray chunks of one segment. True when the walk should stop: a file with this many of them
// behind its headers holds nothing more of use. Only the exact count stops a walk, so that a file
// with many stray chunks in front of its headers is walked to its end.
bool stopsAtUnknownChunk(const char* function, const ChunkHeader& header, bool headersFound,
                         uint32_t* count) {
    AVI_TRACE("%s(): unknown chunk 0x%08x:%c%c%c%c", function, FOURCC_ARGS(header.id));
    if (*count == kMaxUnknownChunks && headersFound) {
        AVI_LOGW("%s(): Unknown chunk num > 50, stop scaning!", function);
        return true;
    }
    ++*count;
    return false;
}

}  // namespace

// The end of the walk over a segment is its size field taken as a file position, in further
// segments too: writers of broken tails are common, and nothing of use lies in the last 8 bytes.
int64_t RuvoAVIExtractor::walkEnd(const char* function, uint32_t riffSize, int64_t contents) const {
    int64_t end = riffSize;
    if (riffSize + kChunkHeaderSize > mReader.size()) {
        AVI_LOGW("%s(): file seems to be chunked (%lld + %d) > %lld", function, ll(riffSize),
                 static_cast<int>(kChunkHeaderSize), ll(mReader.size()));
        end = mReader.size();
    }
    AVI_LOGV("%s(): RIFF size %llX(%lld), pos: %lld ~ %lld", function, ull(riffSize), ll(riffSize),
             ll(contents), ll(end));
    return end;
}

status_t RuvoAVIExtractor::parseFirstRIFF() {
    FirstRiffState found;
    status_t err = walkFirstRIFF(&found);
    if (err != OK) return err;
    if (!found.movi) {
        fail("parseFirstRIFF", ERROR_MALFORMED, kLineNoMovi);
        return ERROR_MALFORMED;
    }

    completeFirstIndex();
    if (mRiffList.size() >= 2 && !videoFullyIndexed()) {
        for (size_t n = 1; n < mRiffList.size(); ++n) {
            parseMoreRIFF(mRiffList[n].offset, n);  // a bad segment costs only its own samples
        }
    }

    err = finishParse();
    if (err != OK) {
        fail("parseFirstRIFF", err, kLineNoUsableTrack);
        return err;
    }
    mMetaDataRead = true;
    return OK;
}

status_t RuvoAVIExtractor::walkFirstRIFF(FirstRiffState* found) {
    ChunkHeader riff;
    if (readChunkHeader(mReader, 0, &riff) != HeaderRead::kWhole) {
        fail("parseFirstRIFF", ERROR_IO, kLineUnreadableFirstRiff);
        return ERROR_IO;
    }
    AVI_LOGV("%s(): ID %X, size %X, type %X", "parseFirstRIFF", toWord(riff.id), riff.size,
             toWord(riff.type));
    if (riff.size > kMaxRiffSize) {
        AVI_LOGW("%s(): RIFF size %llX is out of spec %X, try to support it.", "parseFirstRIFF",
                 ull(riff.size), kMaxRiffSize);
    }
    const int64_t end = walkEnd("parseFirstRIFF", riff.size, kListHeaderSize);

    ChunkWalker chunk(mReader, kListHeaderSize);
    while (chunk.next() < end) {
        const HeaderRead read = chunk.advance();
        if (read == HeaderRead::kZeroTail) break;
        if (read == HeaderRead::kUnreadable) {
            AVI_LOGE("%s(): failed to read header at %llX! @line%d", "parseFirstRIFF",
                     ull(chunk.next()), kLineUnreadableFirstRiffChunk);
            return ERROR_IO;
        }
        logChunk("parseFirstRIFF", chunk);
        const status_t err = parseFirstRiffChunk(chunk, found);
        if (err != OK) return err;
        if (found->tooManyUnknown) break;
    }
    AVI_LOGV("%s() end @%llX(%lld)", "parseFirstRIFF", ull(chunk.next()), ll(chunk.next()));
    return OK;
}

status_t RuvoAVIExtractor::parseFirstRiffChunk(const ChunkWalker& chunk, FirstRiffState* found) {
    const ChunkHeader& header = chunk.header();
    switch (header.id) {
        case fourcc("idx1"):
            return parseFirstIdx1(chunk, found);
        case fourcc("JUNK"):
            return OK;
        case fourcc("LIST"):
            return parseFirstRiffList(chunk, found);
        default:
            found->tooManyUnknown = stopsAtUnknownChunk(
                "parseFirstRIFF", header, found->movi && found->hdrl, &found->unknownChunks);
            return OK;
    }
}

status_t RuvoAVIExtractor::parseFirstRiffList(const ChunkWalker& chunk, FirstRiffState* found) {
    switch (chunk.header().type) {
        case fourcc("movi"):
            parseMOVI(chunk.listContents(), chunk.next());
            found->movi = true;
            return OK;
        case fourcc("hdrl"): {
            const status_t err = parseHDRL(chunk.listContents(), chunk.next());
            found->hdrl = err == OK;
            return err;
        }
        case fourcc("INFO"):
            parseINFO(chunk.listContents(), chunk.next());
            return OK;
        default:
            logUnknownList("parseFirstRIFF", chunk.header());
            return OK;
    }
}

status_t RuvoAVIExtractor::parseFirstIdx1(const ChunkWalker& chunk, FirstRiffState* found) {
    AVI_LOGV("%s(): found idx, idx1Found: %d", "parseFirstRIFF", found->idx1);
    if (found->idx1) {
        AVI_LOGW("%s(): skip multiple idx1!", "parseFirstRIFF");
        return OK;
    }
    if (allTracksIndexed()) {
        AVI_LOGW("%s(): we already have index, ignore idx1!", "parseFirstRIFF");
        return OK;
    }
    for (Track& track : mTracks) {
        clearSamples(&track);
        track.mINDXValid = false;
    }
    const status_t err = parseIDX1(chunk.payload(), chunk.next());
    found->idx1 = err == OK;
    return err;
}

bool RuvoAVIExtractor::allTracksIndexed() const {
    for (const Track& track : mTracks) {
        const bool hasSamples = track.mIsVideo || track.mIsAudio || track.mIsSubtitle;
        if (hasSamples && !track.mINDXValid) return false;
    }
    return true;
}

void RuvoAVIExtractor::completeFirstIndex() {
    if (mHasIndex) return;
    if (allTracksIndexed()) {
        mHasIndex = true;
        return;
    }
    for (Track& track : mTracks) {
        if (track.mIsVideo) track.info.mBrokenIndex = true;
    }
    AVI_LOGW("%s(): The riff doesn't have index!", "parseFirstRIFF");
    AVI_LOGW("%s(): Need to parse 'movi' and may take a long time.", "parseFirstRIFF");
    parseMOVIMore();
}

// Audio tracks take no part: their header lengths are too often wrong.
bool RuvoAVIExtractor::videoFullyIndexed() const {
    for (const Track& track : mTracks) {
        if (!track.mIsVideo) continue;
        const size_t indexed = track.mTable.size();
        if (indexed >= track.mTotalSamples) {
            AVI_LOGD("%s(): All frames have been indexed. No need to parse other riff(s).",
                     "parseFirstRIFF");
            return true;
        }
        AVI_LOGD("%s(): Video track indexed frames %zu VS total frames %u", "parseFirstRIFF",
                 indexed, track.mTotalSamples);
    }
    AVI_LOGD("%s(): Not all frames have been indexed. Need parse more riff(s).", "parseFirstRIFF");
    return false;
}

status_t RuvoAVIExtractor::parseMoreRIFF(int64_t offset, size_t n) {
    ChunkHeader riff;
    if (readChunkHeader(mReader, offset, &riff) != HeaderRead::kWhole) {
        fail("parseMoreRIFF", ERROR_MALFORMED, kLineUnreadableMoreRiff);
        return ERROR_MALFORMED;
    }
    AVI_LOGV("%s(): ID %X, size %X, type %X", "parseMoreRIFF", toWord(riff.id), riff.size,
             toWord(riff.type));
    if (riff.id != fourcc("RIFF")) return ERROR_MALFORMED;
    if (riff.size > kMaxRiffSize) {
        AVI_LOGW("%s(): RIFF%zu size %llX is out of spec %X, try to support it.", "parseMoreRIFF",
                 n, ull(riff.size), kMaxRiffSize);
    }
    const int64_t end = walkEnd("parseMoreRIFF", riff.size, offset + kListHeaderSize);

    MoreRiffState found;
    ChunkWalker chunk(mReader, offset + kListHeaderSize);
    while (chunk.next() < end && !found.tooManyUnknown) {
        const HeaderRead read = chunk.advance();
        if (read == HeaderRead::kZeroTail) break;
        if (read == HeaderRead::kUnreadable) {
            fail("parseMoreRIFF", ERROR_IO, kLineUnreadableMoreRiffChunk);
            return ERROR_IO;
        }
        logChunk("parseMoreRIFF", chunk);
        const status_t err = parseMoreRiffChunk(chunk, n, &found);
        if (err != OK) return err;
    }
    AVI_LOGV("%s() end @%llX(%lld)", "parseMoreRIFF", ull(chunk.next()), ll(chunk.next()));
    if (!found.movi) return ERROR_MALFORMED;
    if (!found.index) {
        AVI_LOGW(
            "%s(): This riff doesn't have index. May take a long time to parse 'movi' "
            "chunk!@L%d",
            "parseMoreRIFF", kLineMoreRiffWithoutIndex);
        parseMOVIMore();
    }
    return OK;
}

status_t RuvoAVIExtractor::parseMoreRiffChunk(const ChunkWalker& chunk, size_t n,
                                              MoreRiffState* found) {
    const ChunkHeader& header = chunk.header();
    switch (header.id) {
        case fourcc("idx1"):
        case fourcc("idx2"):
        case fourcc("idx3"):
        case fourcc("idx4"):
            AVI_LOGV("%s(): found idx%zu", "parseMoreRIFF", n + 1);
            mHasIndex = false;
            found->index = true;
            return found->movi ? parseIDX1(chunk.payload(), chunk.next()) : OK;
        case fourcc("JUNK"):
            return OK;
        case fourcc("LIST"):
            if (header.type == fourcc("movi")) {
                parseMOVI(chunk.listContents(), chunk.next());
                found->movi = true;
            } else {
                logUnknownList("parseMoreRIFF", header);
            }
            return OK;
        default:
            found->tooManyUnknown =
                stopsAtUnknownChunk("parseMoreRIFF", header, found->movi, &found->unknownChunks);
            return OK;
    }
}

// The contents are not walked here: the index knows what lies in them.
status_t RuvoAVIExtractor::parseMOVI(int64_t start, int64_t end) {
    mMoviStart = static_cast<uint32_t>(start - kListHeaderSize);
    mMoviSize = static_cast<uint32_t>(end - start);
    AVI_LOGV("%s(): @%d, size %u, end...", "parseMOVI", static_cast<int>(mMoviStart), mMoviSize);
    return OK;
}

}  // namespace android
