// SPDX-License-Identifier: Apache-2.0

#include <functional>

#include "tests/behaviour/budgets/FileParts.h"
#include "tests/behaviour/budgets/HostileFiles.h"

namespace avitest {

namespace {

constexpr size_t kRiffHeader = 12;
constexpr size_t kAlignment = 16;  // of segments, to the size of an entry of idx1

// A film of one frame without an index, so that all of the file is looked at.
FileParts film() {
    FileParts parts;
    Stream stream = smallVideo();
    stream.header.length = 1000;  // further segments are read for the frames that lack
    parts.streams = streamBytes(stream);
    parts.movi = chunkBytes("00dc", patternBytes(8));
    return parts;
}

Bytes zerosBehindTheRiff(size_t bytes) {
    FileParts parts = film();
    parts.trailing = Bytes(bytes);
    return parts.build();
}

Bytes onesBehindTheRiff(size_t bytes) {
    FileParts parts = film();
    parts.trailing = Bytes(bytes, 0xFF);
    return parts.build();
}

Bytes inFrontOfMovi(const Bytes& more) {
    FileParts parts = film();
    parts.beforeMovi = more;
    return parts.build();
}

Bytes zerosInFrontOfMovi(size_t bytes) {
    return inFrontOfMovi(Bytes(bytes));
}

Bytes junkChunks(size_t bytes) {
    return inFrontOfMovi(repeated(chunkBytes("JUNK", {}), bytes));
}

Bytes unknownChunks(size_t bytes) {
    return inFrontOfMovi(repeated(chunkBytes("ABCD", {}), bytes));
}

Bytes unknownLists(size_t bytes) {
    return inFrontOfMovi(repeated(listBytes("ABCD", {}), bytes));
}

Bytes movieLists(size_t bytes) {
    return inFrontOfMovi(repeated(listBytes("movi", {}), bytes));
}

Bytes emptyRiffs(size_t bytes) {
    FileParts parts = film();
    parts.trailing = repeated(listBytes("AVIX", {}, "RIFF"), bytes);
    return parts.build();
}

// Further segments, each so long as all that lies in front of it, since the walk of one ends at its
// size, taken for a position: any other is passed over. `headOf` gives what a segment at that
// position begins with, `filling` follows it, again and again, and `last` comes in front of the
// next segment.
Bytes growingRiffs(const std::function<Bytes(size_t)>& headOf, const Bytes& filling,
                   const Bytes& last, size_t bytes) {
    FileParts parts = film();
    while (parts.build().size() % kAlignment != 0)
        parts.trailing.push_back(0);
    Bytes file = parts.build();
    while (file.size() < bytes) {
        const Bytes head = headOf(file.size());
        const size_t twice = 2 * file.size() + 8 * kAlignment;
        const size_t end = 2 * twice > bytes ? bytes : twice;
        const size_t room = end - file.size() - kRiffHeader - head.size() - last.size();
        const Bytes contents = head + repeated(filling, room) + last;
        file = file + listBytes("AVIX", contents, "RIFF");
    }
    return file;
}

// Each with a movi list that claims the rest of the file. The last chunk in front of the next
// segment takes that one's headers for its own bytes, so that a scan goes on behind them.
Bytes scannedRiffs(size_t bytes) {
    const Bytes movi = ByteWriter().fourcc("LIST").u32(0x7FFFFFFE).fourcc("movi").take();
    const Bytes last = ByteWriter().fourcc("00dc").u32(kRiffHeader + 12).take();
    const auto headOf = [&movi](size_t /*at*/) { return movi; };
    return growingRiffs(headOf, chunkBytes("00dc", {}), last, bytes / kAlignment * kAlignment);
}

// Each with an index that goes on to the end of the file.
Bytes indexedRiffs(size_t bytes) {
    const size_t size = bytes / kAlignment * kAlignment;
    const auto headOf = [size](size_t at) {
        const Bytes movi = listBytes("movi", {});
        const size_t index = at + kRiffHeader + movi.size() + 8;
        return movi + ByteWriter().fourcc("idx1").u32(static_cast<uint32_t>(size - index)).take();
    };
    const Bytes entry = toBytes(std::vector<Idx1Entry>{{"00dc", kKey, idx1Offset(0), 8}});
    return growingRiffs(headOf, entry, {}, size);
}

}  // namespace

std::vector<HostileFile> hostileSegments() {
    return {
        {"ZerosBehindTheRiff", zerosBehindTheRiff},
        {"OnesBehindTheRiff", onesBehindTheRiff},
        {"ZerosInFrontOfMovi", zerosInFrontOfMovi},
        {"JunkChunks", junkChunks},
        {"UnknownChunks", unknownChunks},
        {"UnknownLists", unknownLists},
        {"MovieLists", movieLists},
        {"EmptyRiffs", emptyRiffs},
        {"ScannedRiffs", scannedRiffs},
        {"IndexedRiffs", indexedRiffs},
    };
}

}  // namespace avitest
