// SPDX-License-Identifier: Apache-2.0
//
// AviFile's header list: the main header and the stream lists.

#include <algorithm>

#include "tests/support/AviBuilder.h"

namespace avitest {

namespace {

Bytes strfPayload(const Stream& stream) {
    if (const auto* info = std::get_if<BitmapInfo>(&stream.format)) return info->toBytes();
    if (const auto* format = std::get_if<WaveFormat>(&stream.format)) return format->toBytes();
    return std::get<Bytes>(stream.format);
}

}  // namespace

Chunk AviFile::assembleHeaders() const {
    Chunk hdrl = Chunk::list("hdrl").marked("hdrl");
    hdrl.add(Chunk("avih", completeHeader().toBytes()).marked("avih"));
    for (size_t i = 0; i < mStreams.size(); ++i)
        hdrl.add(assembleStream(i));
    if (editHeaders) editHeaders(hdrl);
    return hdrl;
}

Chunk AviFile::assembleStream(size_t number) const {
    const Stream& stream = mStreams[number];
    Chunk strl = Chunk::list("strl").marked("strl" + std::to_string(number));
    strl.add(Chunk("strh", completeHeader(number).toBytes()));
    strl.add(Chunk("strf", strfPayload(stream)));
    if (stream.privateData) strl.add(Chunk("strd", *stream.privateData));
    if (stream.name) strl.add(Chunk("strn", ByteWriter().bytes(*stream.name).u8(0).take()));
    if (stream.properties) strl.add(Chunk("vprp", stream.properties->toBytes()));
    if (stream.openDml != OpenDml::kNone) strl.add(Chunk("indx", openDmlIndex(number)));
    if (stream.edit) stream.edit(strl);
    return strl;
}

MainHeader AviFile::completeHeader() const {
    MainHeader result = header;
    const auto video = std::find_if(mStreams.begin(), mStreams.end(), [](const Stream& stream) {
        return stream.header.type == ChunkId("vids");
    });
    if (!result.streams) result.streams = static_cast<uint32_t>(mStreams.size());
    if (video == mStreams.end()) return result;

    const StreamHeader& rate = video->header;
    if (!result.microSecPerFrame && rate.rate != 0) {
        result.microSecPerFrame = static_cast<uint32_t>(uint64_t{1000000} * rate.scale / rate.rate);
    }
    const auto frames = chunks(static_cast<size_t>(video - mStreams.begin())).size();
    if (!result.totalFrames) result.totalFrames = static_cast<uint32_t>(frames);
    if (const auto* info = std::get_if<BitmapInfo>(&video->format)) {
        if (!result.width) result.width = static_cast<uint32_t>(info->width);
        if (!result.height) result.height = static_cast<uint32_t>(info->height);
    }
    return result;
}

StreamHeader AviFile::completeHeader(size_t stream) const {
    StreamHeader result = mStreams[stream].header;
    uint64_t count = 0;
    uint64_t bytes = 0;
    uint64_t largest = 0;
    for (const MoviChunk& item : mChunks) {
        if (item.stream != stream) continue;
        ++count;
        bytes += item.data().size();
        largest = std::max<uint64_t>(largest, item.data().size());
    }
    const uint64_t units = result.sampleSize == 0 ? count : bytes / result.sampleSize;
    if (!result.length) result.length = static_cast<uint32_t>(units);
    if (!result.suggestedBufferSize) result.suggestedBufferSize = static_cast<uint32_t>(largest);
    return result;
}

}  // namespace avitest
