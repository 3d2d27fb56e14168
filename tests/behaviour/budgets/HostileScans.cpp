// SPDX-License-Identifier: Apache-2.0

#include "tests/behaviour/budgets/FileParts.h"
#include "tests/behaviour/budgets/HostileFiles.h"

namespace avitest {

namespace {

// A frame, then so many bytes of something.
Bytes scanned(const Bytes& unit, size_t bytes, const Stream& stream = smallVideo()) {
    FileParts parts;
    parts.streams = streamBytes(stream) + streamBytes(smallAudio(kTagPcm));
    parts.movi = chunkBytes("00dc", patternBytes(8)) + chunkBytes("01wb", patternBytes(8)) +
                 repeated(unit, bytes);
    return parts.build();
}

Bytes emptyFrames(size_t bytes) {
    return scanned(chunkBytes("00dc", {}), bytes);
}

Bytes smallFrames(size_t bytes) {
    return scanned(chunkBytes("00dc", {1}), bytes);
}

Bytes smallSounds(size_t bytes) {
    return scanned(chunkBytes("01wb", {1}), bytes);
}

Bytes chunksWithoutAStream(size_t bytes) {
    return scanned(chunkBytes("55dc", {}), bytes);
}

Bytes paletteChunks(size_t bytes) {
    return scanned(chunkBytes("00pc", {}), bytes);
}

Bytes unknownMovieLists(size_t bytes) {
    return scanned(listBytes("ABCD", {}), bytes);
}

Bytes recordLists(size_t bytes) {
    return scanned(listBytes("rec ", chunkBytes("00dc", {})), bytes);
}

Bytes emptyRecordLists(size_t bytes) {
    return scanned(listBytes("rec ", {}), bytes);
}

// Lists in lists: a reader that went down into each would not come back.
Bytes nestedRecordLists(size_t bytes) {
    const Bytes open = ByteWriter().fourcc("LIST").u32(0x100).fourcc("rec ").take();
    return scanned(open, bytes);
}

// 999 empty headers at a time are passed over.
Bytes runsOfZeros(size_t bytes) {
    return scanned(Bytes(999 * 8) + chunkBytes("00dc", {}), bytes);
}

// No index tells key frames: each frame is one until a seek has looked at it.
Bytes framesTakenForKeyFrames(size_t bytes) {
    return scanned(chunkBytes("00dc", {0, 0, 1, 0xB6, 0x50, 1}), bytes, smallVideo("FMP4"));
}

}  // namespace

std::vector<HostileFile> hostileScans() {
    return {
        {"EmptyFrames", emptyFrames},
        {"SmallFrames", smallFrames},
        {"SmallSounds", smallSounds},
        {"ChunksWithoutAStream", chunksWithoutAStream},
        {"PaletteChunks", paletteChunks},
        {"UnknownMovieLists", unknownMovieLists},
        {"RecordLists", recordLists},
        {"EmptyRecordLists", emptyRecordLists},
        {"NestedRecordLists", nestedRecordLists},
        {"RunsOfZeros", runsOfZeros},
        {"FramesTakenForKeyFrames", framesTakenForKeyFrames},
    };
}

}  // namespace avitest
