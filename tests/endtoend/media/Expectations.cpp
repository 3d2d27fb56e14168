// SPDX-License-Identifier: Apache-2.0

#include "tests/endtoend/media/Expectations.h"

#include <map>

#include "tests/endtoend/media/Probe.h"

namespace avitest {

namespace {

constexpr int64_t kUsPerSecond = 1000000;

constexpr uint16_t kTagPcm = 0x0001;
constexpr uint16_t kTagMsAdpcm = 0x0002;
constexpr uint16_t kTagImaAdpcm = 0x0011;
constexpr uint16_t kTagExtensible = 0xFFFE;  // which ffmpeg writes for PCM of more than 16 bits

bool isPcm(const StreamFields& stream) {
    return stream.formatTag() == kTagPcm || stream.formatTag() == kTagExtensible;
}

bool isAdpcm(const StreamFields& stream) {
    return stream.formatTag() == kTagMsAdpcm || stream.formatTag() == kTagImaAdpcm;
}

Bytes sampleBytes(const MediaFile& media, const StreamFields& stream, const IndexedChunk& chunk) {
    const auto begin = media.bytes.begin() + static_cast<ptrdiff_t>(chunk.offset);
    const Bytes bytes(begin, begin + chunk.size);
    return !stream.isVideo() && isPcm(stream) ? toPcm16(bytes, stream.bitsPerSample()) : bytes;
}

// The chunks that count: an empty chunk of sound is nothing, one of a video stream is a frame that
// was dropped, unless no frame came before it.
std::vector<IndexedChunk> countedChunks(const AviLayout& layout, size_t stream) {
    std::vector<IndexedChunk> result;
    for (const IndexedChunk& chunk : layout.chunksOf(stream)) {
        const bool keepsEmpty = layout.streams[stream].isVideo() && !result.empty();
        if (chunk.size != 0 || keepsEmpty) result.push_back(chunk);
    }
    return result;
}

// A picture is shown behind the B pictures that are stored directly after it, and those one place
// before their own.
std::vector<int64_t> videoTimes(const MediaFile& media, const StreamFields& stream,
                                const std::vector<IndexedChunk>& chunks) {
    const std::map<uint64_t, char> kinds = probePictures(media.path);
    const auto isB = [&](size_t i) {
        const auto found = kinds.find(chunks[i].offset);
        return chunks[i].size != 0 && found != kinds.end() && found->second == 'B';
    };
    std::vector<int64_t> times;
    for (size_t i = 0; i < chunks.size(); ++i) {
        size_t following = 0;
        while (i + 1 + following < chunks.size() && isB(i + 1 + following))
            ++following;
        const size_t place = isB(i) ? i - 1 : i + following;
        times.push_back(static_cast<int64_t>(place) * kUsPerSecond * stream.scale / stream.rate);
    }
    return times;
}

// Chunks of fixed-size units are timed by the bytes before them, the others by their share of the
// stream's duration.
std::vector<int64_t> audioTimes(const StreamFields& stream,
                                const std::vector<IndexedChunk>& chunks) {
    const bool byBlock = isAdpcm(stream) && stream.blockAlign() != 0;
    const int64_t unitBytes = byBlock ? stream.blockAlign() : stream.sampleSize;
    const int64_t durationUs = int64_t{stream.scale} * stream.length * kUsPerSecond / stream.rate;
    const auto count = static_cast<int64_t>(chunks.size());
    std::vector<int64_t> times;
    int64_t bytesBefore = 0;
    for (int64_t i = 0; i < count; ++i) {
        const int64_t byBytes = bytesBefore * kUsPerSecond * stream.scale / stream.rate;
        times.push_back(unitBytes == 0 ? durationUs * i / count : byBytes / unitBytes);
        bytesBefore += chunks[static_cast<size_t>(i)].size;
    }
    return times;
}

}  // namespace

Bytes toPcm16(const Bytes& pcm, unsigned bits) {
    const size_t width = bits / 8;
    Bytes result;
    for (size_t at = 0; at + width <= pcm.size(); at += width) {
        const uint8_t low = bits == 8 ? uint8_t{0} : pcm[at + width - 2];
        const uint8_t high = pcm[at + width - 1];
        // Only 8-bit PCM is unsigned: its middle is 0x80.
        result.push_back(low);
        result.push_back(bits == 8 ? static_cast<uint8_t>(high ^ 0x80) : high);
    }
    return result;
}

std::vector<ExpectedSample> expectedSamples(const MediaFile& media, size_t stream) {
    const StreamFields& fields = media.layout.streams.at(stream);
    const std::vector<IndexedChunk> chunks = countedChunks(media.layout, stream);
    const std::vector<int64_t> times =
        fields.isVideo() ? videoTimes(media, fields, chunks) : audioTimes(fields, chunks);
    std::vector<ExpectedSample> result;
    for (size_t i = 0; i < chunks.size(); ++i) {
        if (chunks[i].size == 0) continue;
        ExpectedSample sample;
        sample.chunk = chunks[i];
        sample.bytes = sampleBytes(media, fields, chunks[i]);
        sample.timeUs = times[i];
        sample.sync = !fields.isVideo() || chunks[i].key;
        result.push_back(sample);
    }
    return result;
}

}  // namespace avitest
