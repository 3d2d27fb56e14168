// SPDX-License-Identifier: Apache-2.0
#include "ChunkWalker.h"

#include "support/ByteReader.h"

namespace android {

HeaderRead readChunkHeader(FileReader& reader, int64_t position, ChunkHeader* out) {
    uint8_t bytes[kListHeaderSize] = {};
    const ssize_t count = reader.readNear(position, bytes, sizeof(bytes));
    if (count < 0 || count > kListHeaderSize) return HeaderRead::kUnreadable;
    ByteReader in(bytes, static_cast<size_t>(count));
    ChunkHeader header;  // u32 id | u32 size | u32 type
    if (!in.code(&header.id) || !in.u32(&header.size)) return HeaderRead::kUnreadable;
    if (count != kChunkHeaderSize && !in.code(&header.type)) return HeaderRead::kUnreadable;
    *out = header;
    if (count != kChunkHeaderSize) return HeaderRead::kWhole;
    return header.size == 0 ? HeaderRead::kZeroTail : HeaderRead::kCutType;
}

bool ChunkWalker::advancePlain() {
    ChunkHeader header;
    if (readChunkHeader(mReader, mNext, &header) == HeaderRead::kUnreadable) return false;
    stepOnto(header);
    return true;
}

bool ChunkWalker::advanceTag() {
    uint8_t bytes[kChunkHeaderSize];
    const auto wanted = static_cast<ssize_t>(sizeof(bytes));
    if (mReader.readNear(mNext, bytes, sizeof(bytes)) != wanted) return false;
    ChunkHeader header;  // u32 id | u32 size
    ByteReader in(bytes, sizeof(bytes));
    in.code(&header.id);
    in.u32(&header.size);
    stepOnto(header);
    return true;
}

}  // namespace android
