// SPDX-License-Identifier: Apache-2.0

#include "tests/behaviour/logs/Files.h"

#include <cerrno>

namespace avitest {

using android::service::Fault;

AviFile fileWith(const Stream& stream, const std::vector<Bytes>& chunks) {
    AviFile avi;
    avi.addStream(stream);
    const bool isVideo = std::holds_alternative<BitmapInfo>(stream.format);
    for (size_t i = 0; i < chunks.size(); ++i)
        avi.addChunk(0, chunks[i], i == 0 || !isVideo ? kKey : kNoFlags);
    return avi;
}

AviFile clipOf(const Stream& stream, const Bytes& first, const Bytes& other) {
    std::vector<Bytes> chunks(kClipSamples, other);
    chunks.front() = first;
    return fileWith(stream, chunks);
}

AviFile twoStreams() {
    AviFile avi;
    avi.addStream(mjpegStream());
    avi.addStream(pcmStream());
    for (uint32_t i = 0; i < kClipSamples; ++i) {
        avi.addChunk(0, Bytes{0xFF, 0xD8} + patternBytes(38 + 2 * i, i));
        avi.addChunk(1, patternBytes(1280, 100 + i));
    }
    return avi;
}

Play withStreamList(void (*edit)(Chunk& strl)) {
    AviFile avi = twoStreams();
    avi.stream(1).edit = edit;
    return {avi.build()};
}

Play withHeaderList(void (*edit)(Chunk& hdrl)) {
    AviFile avi = twoStreams();
    avi.editHeaders = edit;
    return {avi.build()};
}

Play withRiff(void (*edit)(Chunk& riff)) {
    AviFile avi = twoStreams();
    avi.segment().edit = edit;
    return {avi.build()};
}

Fault unreadable(const ChunkPlace& place, uint64_t begin) {
    return Fault::error(-EIO).onOffsets(static_cast<off64_t>(place.dataOffset + begin),
                                        static_cast<off64_t>(place.dataOffset + place.dataSize));
}

Fault unreadableHeader(const ChunkPlace& place) {
    const auto header = static_cast<off64_t>(place.headerOffset);
    return Fault::error(-EIO).onOffsets(header, header + 8);
}

}  // namespace avitest
