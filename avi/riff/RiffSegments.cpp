// SPDX-License-Identifier: Apache-2.0
#include "riff/RiffSegments.h"

#include <media/stagefright/MediaErrors.h>

#include "index/FinishTracks.h"
#include "riff/Info.h"
#include "support/Log.h"

namespace android {

constexpr int kLineUnreadableFirstRiff = 4074;
constexpr int kLineUnreadableFirstRiffChunk = 4116;
constexpr int kLineNoMovi = 4208;
constexpr int kLineNoUsableTrack = 4276;
constexpr int kLineUnreadableMoreRiffChunk = 4317;
constexpr int kLineUnreadableMoreRiff = 4384;
constexpr int kLineUnreadableSegment = 4424;

constexpr uint32_t kMaxRiffSize = 0x40000000;  // what OpenDML allows; larger files are tried
constexpr uint32_t kMaxUnknownChunks = 50;

namespace {

void logChunk(const char* function, const ChunkWalker& chunk) {
    const ChunkHeader& header = chunk.header();
    AVI_TRACE("%s(): ID 0x%08x:%c%c%c%c at pos 0x%llX, list.size: 0x%X, 0x%X", function,
              FOURCC_ARGS(header.id), ull(chunk.position()), header.size, paddedSize(header.size));
}

// Counts stray chunks of one segment. True when the walk should stop: a file with this many of them
// after its headers holds nothing more of use. Only the exact count stops a walk, so that a file
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

RiffSegments::RiffSegments(FileReader& reader, AviFile* file)
    : mReader(reader), mFile(file), mHeaders(reader, file), mIndex(reader, file->tracks) {}

// Chunks at the top level are not padded: a segment of odd size is followed at once.
status_t RiffSegments::list() {
    for (int64_t position = 0; position < mReader.size();) {
        if (mReader.size() - position < kListHeaderSize) {
            AVI_LOGW("No more riff.");
            break;
        }
        ChunkHeader header;
        if (readChunkHeader(mReader, position, &header) != HeaderRead::kWhole) {
            return fail("readMetaData", status_t{ERROR_IO}, kLineUnreadableSegment);
        }
        if (header.id == fourcc("RIFF")) {
            AVI_LOGD("%s(): RIFF%zu size %lld(%llX) @%llX(%lld)", "readMetaData", mRiffList.size(),
                     ll(header.size), ull(header.size), ull(position), ll(position));
            mRiffList.push_back({position, header.size});
        }
        position += header.size + kChunkHeaderSize;
    }
    return OK;
}

status_t RiffSegments::parseFirstRIFF() {
    Walk walk = {"parseFirstRIFF", 0};
    status_t err = walkSegment(&walk);
    if (err != OK) return err;
    if (!walk.movi) return fail("parseFirstRIFF", status_t{ERROR_MALFORMED}, kLineNoMovi);

    mIndex.completeFirst();
    if (mRiffList.size() >= 2 && !mIndex.videoFullyIndexed()) {
        for (size_t n = 1; n < mRiffList.size(); ++n) {
            parseMoreRIFF(n);  // a bad segment costs only its own samples
        }
    }

    err = finishParse(mReader, mFile->tracks);
    return err == OK ? OK : fail("parseFirstRIFF", err, kLineNoUsableTrack);
}

status_t RiffSegments::parseMoreRIFF(size_t number) {
    Walk walk = {"parseMoreRIFF", number};
    const status_t err = walkSegment(&walk);
    if (err != OK) return err;
    if (!walk.movi) return ERROR_MALFORMED;
    if (!walk.index) mIndex.scanFurther();
    return OK;
}

status_t RiffSegments::readSegmentHeader(const Walk& walk, ChunkHeader* out) const {
    const int64_t offset = walk.isFirst() ? 0 : mRiffList[walk.number].offset;
    if (readChunkHeader(mReader, offset, out) != HeaderRead::kWhole) {
        return walk.isFirst()
                   ? fail("parseFirstRIFF", status_t{ERROR_IO}, kLineUnreadableFirstRiff)
                   : fail("parseMoreRIFF", status_t{ERROR_MALFORMED}, kLineUnreadableMoreRiff);
    }
    AVI_LOGV("%s(): ID %X, size %X, type %X", walk.function, toWord(out->id), out->size,
             toWord(out->type));
    if (!walk.isFirst() && out->id != fourcc("RIFF")) return ERROR_MALFORMED;
    if (out->size <= kMaxRiffSize) return OK;
    if (walk.isFirst()) {
        AVI_LOGW("%s(): RIFF size %llX is out of spec %X, try to support it.", "parseFirstRIFF",
                 ull(out->size), kMaxRiffSize);
    } else {
        AVI_LOGW("%s(): RIFF%zu size %llX is out of spec %X, try to support it.", "parseMoreRIFF",
                 walk.number, ull(out->size), kMaxRiffSize);
    }
    return OK;
}

// The end of the walk over a segment is its size field taken as a file position, in further
// segments too: writers of broken tails are common, and nothing of use lies in the last 8 bytes.
int64_t RiffSegments::walkEnd(const Walk& walk, const ChunkHeader& riff) const {
    const int64_t offset = walk.isFirst() ? 0 : mRiffList[walk.number].offset;
    int64_t end = riff.size;
    if (riff.size + kChunkHeaderSize > mReader.size()) {
        AVI_LOGW("%s(): file seems to be chunked (%lld + %d) > %lld", walk.function, ll(riff.size),
                 static_cast<int>(kChunkHeaderSize), ll(mReader.size()));
        end = mReader.size();
    }
    AVI_LOGV("%s(): RIFF size %llX(%lld), pos: %lld ~ %lld", walk.function, ull(riff.size),
             ll(riff.size), ll(offset + kListHeaderSize), ll(end));
    return end;
}

status_t RiffSegments::unreadableChunk(const Walk& walk, int64_t position) {
    if (!walk.isFirst()) {
        return fail("parseMoreRIFF", status_t{ERROR_IO}, kLineUnreadableMoreRiffChunk);
    }
    AVI_LOGE("%s(): failed to read header at %llX! @line%d", "parseFirstRIFF", ull(position),
             kLineUnreadableFirstRiffChunk);
    return ERROR_IO;
}

status_t RiffSegments::walkSegment(Walk* walk) {
    ChunkHeader riff;
    status_t err = readSegmentHeader(*walk, &riff);
    if (err != OK) return err;
    const int64_t end = walkEnd(*walk, riff);
    const int64_t offset = walk->isFirst() ? 0 : mRiffList[walk->number].offset;

    ChunkWalker chunk(mReader, offset + kListHeaderSize);
    int64_t position = chunk.next();
    while (position < end) {
        const HeaderRead read = chunk.advance();
        if (read == HeaderRead::kZeroTail) break;
        if (read == HeaderRead::kUnreadable) return unreadableChunk(*walk, position);
        logChunk(walk->function, chunk);
        err = parseChunk(chunk, walk);
        if (err != OK) return err;
        if (walk->stopped) break;
        position = chunk.next();
    }
    AVI_LOGV("%s() end @%llX(%lld)", walk->function, ull(position), ll(position));
    return OK;
}

status_t RiffSegments::parseChunk(const ChunkWalker& chunk, Walk* walk) {
    const ChunkHeader& header = chunk.header();
    switch (header.id) {
        case fourcc("idx1"):
            return parseIndex(chunk, walk);
        case fourcc("idx2"):
        case fourcc("idx3"):
        case fourcc("idx4"):
            if (!walk->isFirst()) return parseIndex(chunk, walk);
            break;
        case fourcc("JUNK"):
            return OK;
        case fourcc("LIST"):
            return parseList(chunk, walk);
        default:
            break;
    }
    const bool headersFound = walk->movi && (walk->hdrl || !walk->isFirst());
    walk->stopped = stopsAtUnknownChunk(walk->function, header, headersFound, &walk->unknownChunks);
    return OK;
}

status_t RiffSegments::parseIndex(const ChunkWalker& chunk, Walk* walk) {
    if (walk->isFirst()) return mIndex.readFirstIdx1(chunk.payload(), chunk.next());
    AVI_LOGV("%s(): found idx%zu", "parseMoreRIFF", walk->number + 1);
    walk->index = true;
    return walk->movi ? mIndex.readFurtherIdx1(chunk.payload(), chunk.next()) : OK;
}

status_t RiffSegments::parseList(const ChunkWalker& chunk, Walk* walk) {
    const FourCC type = chunk.header().type;
    if (type == fourcc("movi")) {
        mIndex.parseMOVI(chunk.listContents(), chunk.next());
        walk->movi = true;
        return OK;
    }
    if (walk->isFirst() && type == fourcc("hdrl")) {
        const status_t err = mHeaders.parseHDRL(chunk.listContents(), chunk.next());
        walk->hdrl = err == OK;
        return err;
    }
    if (walk->isFirst() && type == fourcc("INFO")) {
        parseINFO(mReader, chunk.listContents(), chunk.next(), mFile->meta.get());
        return OK;
    }
    AVI_LOGW("%s(): unknown list 0x%08x:%c%c%c%c", walk->function, FOURCC_ARGS(type));
    return OK;
}

}  // namespace android
