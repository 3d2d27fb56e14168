// SPDX-License-Identifier: Apache-2.0
#include "riff/ChunkWalker.h"

#include "support/ByteReader.h"

namespace android {

HeaderRead readChunkHeader(DataSourceHelper* source, int64_t position, ChunkHeader* out) {
    uint8_t bytes[kListHeaderSize] = {};
    const ssize_t count = source->readAt(position, bytes, sizeof(bytes));
    if (count < 0 || count > kListHeaderSize) return HeaderRead::kUnreadable;
    ByteReader in(bytes, static_cast<size_t>(count));
    ChunkHeader header;  // u32 id | u32 size | u32 type
    if (!in.code(&header.id) || !in.u32(&header.size)) return HeaderRead::kUnreadable;
    if (!in.code(&header.type)) {
        const bool isZeroTail = count == kChunkHeaderSize && header.size == 0;
        return isZeroTail ? HeaderRead::kZeroTail : HeaderRead::kUnreadable;
    }
    *out = header;
    return HeaderRead::kWhole;
}

}  // namespace android
