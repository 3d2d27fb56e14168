// SPDX-License-Identifier: Apache-2.0

#include "tests/support/AviStructs.h"

namespace avitest {

namespace {

uint32_t countOr(const std::optional<uint32_t>& declared, size_t count) {
    return declared.value_or(static_cast<uint32_t>(count));
}

}  // namespace

Bytes MainHeader::toBytes() const {
    ByteWriter out;
    out.u32(microSecPerFrame.value_or(0)).u32(maxBytesPerSec).u32(paddingGranularity).u32(flags);
    out.u32(totalFrames.value_or(0)).u32(initialFrames).u32(streams.value_or(0));
    out.u32(suggestedBufferSize).u32(width.value_or(0)).u32(height.value_or(0));
    for (uint32_t value : reserved)
        out.u32(value);
    return out.take();
}

Bytes StreamHeader::toBytes() const {
    ByteWriter out;
    out.fourcc(type).fourcc(handler).u32(flags).u16(priority).u16(language).u32(initialFrames);
    out.u32(scale).u32(rate).u32(start).u32(length.value_or(0));
    out.u32(suggestedBufferSize.value_or(0)).u32(quality).u32(sampleSize);
    out.i16(left).i16(top).i16(right).i16(bottom);
    return out.take();
}

Bytes BitmapInfo::toBytes() const {
    ByteWriter out;
    out.u32(size).i32(width).i32(height).u16(planes).u16(bitCount).fourcc(compression);
    out.u32(sizeImage).u32(xPelsPerMeter).u32(yPelsPerMeter).u32(colorsUsed).u32(colorsImportant);
    return out.bytes(extra).take();
}

Bytes WaveFormat::toBytes() const {
    ByteWriter out;
    out.u16(formatTag).u16(channels).u32(samplesPerSec).u32(avgBytesPerSec);
    out.u16(blockAlign).u16(bitsPerSample);
    if (extraSize || !extra.empty()) {
        out.u16(extraSize.value_or(static_cast<uint16_t>(extra.size()))).bytes(extra);
    }
    return out.take();
}

Bytes ExtensibleFormat::toBytes() const {
    ByteWriter out;
    out.u16(validBitsPerSample).u32(channelMask).u64(subFormatLow).u64(subFormatHigh);
    return out.take();
}

void VideoField::write(ByteWriter& out) const {
    out.u32(compressedHeight).u32(compressedWidth).u32(validHeight).u32(validWidth);
    out.u32(validXOffset).u32(validYOffset).u32(videoXOffsetInT).u32(videoYValidStartLine);
}

Bytes VideoProperties::toBytes() const {
    ByteWriter out;
    out.u32(formatToken).u32(standard).u32(verticalRefreshRate).u32(horizontalTotalInT);
    out.u32(verticalTotalInLines).u32(frameAspectRatio).u32(frameWidthInPixels);
    out.u32(frameHeightInLines).u32(countOr(fieldsPerFrame, fields.size()));
    for (const VideoField& field : fields)
        field.write(out);
    return out.take();
}

void Idx1Entry::write(ByteWriter& out) const {
    out.fourcc(id).u32(flags).u32(offset).u32(length);
}

Bytes toBytes(const std::vector<Idx1Entry>& entries) {
    ByteWriter out;
    for (const Idx1Entry& entry : entries)
        entry.write(out);
    return out.take();
}

void IndexHeader::write(ByteWriter& out, size_t entryCount) const {
    out.u16(longsPerEntry).u8(subType).u8(type).u32(countOr(entriesInUse, entryCount));
    out.fourcc(chunkId).u64(baseOffset).u32(reserved3);
}

Bytes StandardIndex::toBytes() const {
    ByteWriter out;
    header.write(out, entries.size());
    for (const Entry& entry : entries)
        out.u32(entry.offset).u32(entry.size);
    return out.take();
}

IndexHeader SuperIndex::superHeader() {
    IndexHeader result;
    result.longsPerEntry = 4;
    result.type = 0;
    return result;
}

Bytes SuperIndex::toBytes() const {
    ByteWriter out;
    header.write(out, entries.size());
    for (const Entry& entry : entries)
        out.u64(entry.offset).u32(entry.size).u32(entry.duration);
    return out.take();
}

Chunk infoList(const std::vector<std::pair<ChunkId, std::string_view>>& tags) {
    Chunk result = Chunk::list("INFO");
    for (const auto& [id, text] : tags) {
        result.add(Chunk(id, ByteWriter().bytes(text).u8(0).take()));
    }
    return result;
}

}  // namespace avitest
