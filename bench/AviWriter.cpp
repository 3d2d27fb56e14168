// SPDX-License-Identifier: Apache-2.0
#include "bench/AviWriter.h"

#include <algorithm>

#include "bench/FileWriter.h"
#include "tests/support/AviBuilder.h"

namespace avibench {

namespace {

using avitest::AviFile;
using avitest::Bytes;
using avitest::ByteWriter;
using avitest::Chunk;
using avitest::ChunkId;
using avitest::Stream;

constexpr uint32_t kChunkHeader = 8;
constexpr uint64_t kSegmentBytes = 1 << 30;  // as writers divide OpenDML files
constexpr uint32_t kFirstChunks = 32;        // that are there where the rest is a hole
constexpr size_t kHeadBytes = 8;             // of a payload that is a hole
constexpr uint8_t kFiller = 0x5A;            // never part of a start code

// The configuration in front of every key frame of MPEG-4: 320 x 240, 25 frames a second.
constexpr uint8_t kMpeg4Headers[] = {
    0x00, 0x00, 0x01, 0xB0, 0xF1, 0x00, 0x00, 0x01, 0xB5, 0xA9, 0x13, 0x00, 0x00, 0x01, 0x00, 0x00,
    0x00, 0x01, 0x20, 0x08, 0xD4, 0x8D, 0x08, 0x00, 0xCD, 0x0A, 0x04, 0x1E, 0x14, 0x18, 0x3F};

const ChunkId kChunkIds[] = {"00dc", "01wb"};
const ChunkId kIndexIds[] = {"ix00", "ix01"};

uint32_t sampleSize(const Shape& shape, size_t stream, uint32_t number) {
    if (stream != kVideoStream) return shape.soundBytes;
    if (!shape.bFrames) return shape.frameBytes;
    return shape.frameBytes / 2 + number * 7919 % (shape.frameBytes + 1);
}

// The types of a video object plane.
constexpr uint8_t kIntraVop = 0x10;
constexpr uint8_t kPredictedVop = 0x50;
constexpr uint8_t kBidirectionalVop = 0x90;

uint8_t vopByte(const Shape& shape, uint32_t number) {
    if (isKeyFrame(shape, number)) return kIntraVop;
    if (!shape.bFrames || number % shape.keyDistance % 3 == 1) return kPredictedVop;
    return kBidirectionalVop;
}

// The first bytes of a payload, by which readers know what it is.
Bytes payloadHead(const Shape& shape, size_t stream, uint32_t number) {
    if (stream != kVideoStream) {
        return shape.sound == Sound::kMp3 ? Bytes{0xFF, 0xFB, 0x90, 0x64} : Bytes{};
    }
    if (shape.picture == Picture::kMjpeg) return {0xFF, 0xD8, 0xFF, 0xE0};
    ByteWriter out;
    if (isKeyFrame(shape, number) && shape.frameBytes > sizeof(kMpeg4Headers) * 2) {
        out.bytes(Bytes(std::begin(kMpeg4Headers), std::end(kMpeg4Headers)));
    }
    return out.bytes(Bytes{0, 0, 1, 0xB6, vopByte(shape, number)}).take();
}

Stream soundStream(Sound sound) {
    if (sound == Sound::kPcm) return avitest::pcmStream(2, 44100, 16);
    if (sound == Sound::kAlaw) return avitest::audioStream(6, 1, 8000, 8000, 1, 8);
    Stream stream = avitest::frameAudioStream(0x55, 2, 44100, 1152);
    stream.header.scale = 1152;  // one frame a chunk
    return stream;
}

uint32_t chunksOf(const Shape& shape, size_t stream, uint32_t entries) {
    const auto streams = static_cast<uint32_t>(streamsOf(shape));
    return entries / streams + (stream < entries % streams ? 1 : 0);
}

// Writes one file, step by step. Used once.
class AviWriter {
  public:
    AviWriter(const Shape& shape, uint32_t entries, const std::string& path)
        : mShape(shape), mEntries(entries), mOut(path) {}

    Layout write();

  private:
    Stream stream(size_t number) const;
    Bytes headers() const;
    uint32_t entriesASegment() const;
    void writeSegment(uint32_t first, uint32_t end);
    void writeChunk(uint32_t entry);
    void writePayload(size_t stream, uint32_t number, uint32_t size);
    void writeStandardIndexes(uint64_t base, size_t firstSample);
    void writeLegacyIndex(uint64_t base);
    void closeList(uint64_t start);

    const Shape& mShape;
    const uint32_t mEntries;
    FileWriter mOut;
    Layout mLayout;
    std::vector<avitest::SuperIndex::Entry> mSuper[2];
};

Layout AviWriter::write() {
    const uint32_t step = entriesASegment();
    for (auto& entries : mSuper) {
        entries.resize((mEntries + step - 1) / step);  // the header keeps its length
    }
    mOut.put(headers());
    for (auto& entries : mSuper)
        entries.clear();
    for (uint32_t first = 0; first < mEntries; first += step) {
        writeSegment(first, first + std::min(step, mEntries - first));
    }
    if (mShape.index == Index::kOpenDml) {
        Bytes withPlaces = headers();
        withPlaces.erase(withPlaces.begin(), withPlaces.begin() + 8);  // its RIFF size is there
        mOut.putAt(8, withPlaces);
    }
    mOut.close();
    return std::move(mLayout);
}

uint32_t AviWriter::entriesASegment() const {
    if (mShape.index != Index::kOpenDml) return mEntries;
    return static_cast<uint32_t>(kSegmentBytes / (kChunkHeader + mShape.frameBytes));
}

Stream AviWriter::stream(size_t number) const {
    const auto [scale, rate] = frameRateOf(mShape);
    const ChunkId fourcc = mShape.picture == Picture::kMjpeg ? "MJPG" : "XVID";
    Stream result = number == kVideoStream ? avitest::videoStream(fourcc, 320, 240, rate, scale)
                                           : soundStream(mShape.sound);
    const uint32_t chunks = chunksOf(mShape, number, mEntries);
    const uint32_t block = result.header.sampleSize;
    result.header.length = block == 0 ? chunks : chunks * (mShape.soundBytes / block);
    result.header.suggestedBufferSize = 2 * std::max(mShape.frameBytes, mShape.soundBytes);
    if (mShape.index != Index::kOpenDml) return result;
    result.edit = [this, number](Chunk& strl) {
        avitest::SuperIndex super;
        super.header.chunkId = kChunkIds[number];
        super.entries = mSuper[number];
        strl.add(Chunk("indx", super.toBytes()));
    };
    return result;
}

// The RIFF header and the header list.
Bytes AviWriter::headers() const {
    AviFile avi;
    for (size_t i = 0; i < streamsOf(mShape); ++i)
        avi.addStream(stream(i));
    avi.header.totalFrames = chunksOf(mShape, kVideoStream, mEntries);
    Bytes file = avi.build();
    file.resize(avi.place("movi0").headerOffset);
    return file;
}

void AviWriter::writeSegment(uint32_t first, uint32_t end) {
    const uint64_t riff = first == 0 ? 0 : mOut.position();
    if (first != 0) mOut.put(ByteWriter().fourcc("RIFF").u32(0).fourcc("AVIX").take());
    const uint64_t movi = mOut.position();
    mOut.put(ByteWriter().fourcc("LIST").u32(0).fourcc("movi").take());
    const size_t firstSample = mLayout.samples.size();
    for (uint32_t entry = first; entry < end; ++entry)
        writeChunk(entry);
    if (mShape.index == Index::kOpenDml) writeStandardIndexes(movi, firstSample);
    closeList(movi);
    if (mShape.index == Index::kIdx1) writeLegacyIndex(movi + kChunkHeader);
    closeList(riff);
}

void AviWriter::closeList(uint64_t start) {
    const auto size = static_cast<uint32_t>(mOut.position() - start - kChunkHeader);
    mOut.putAt(start + 4, ByteWriter().u32(size).take());
}

void AviWriter::writeChunk(uint32_t entry) {
    const auto streams = static_cast<uint32_t>(streamsOf(mShape));
    const uint32_t stream = entry % streams;
    const uint32_t number = entry / streams;
    const uint32_t size = sampleSize(mShape, stream, number);
    const bool isKey = stream != kVideoStream || isKeyFrame(mShape, number);
    mLayout.samples.push_back({mOut.position() + kChunkHeader, size, stream, isKey});
    const uint32_t padded = size + size % 2;
    if (mShape.fill == Fill::kFirstChunks && entry >= kFirstChunks) {
        mOut.skip(kChunkHeader + padded);
        return;
    }
    mOut.put(ByteWriter().fourcc(kChunkIds[stream]).u32(size).take());
    writePayload(stream, number, padded);
}

void AviWriter::writePayload(size_t stream, uint32_t number, uint32_t size) {
    Bytes payload = payloadHead(mShape, stream, number);
    const size_t written = mShape.fill == Fill::kWhole ? size : std::min<size_t>(size, kHeadBytes);
    payload.resize(written, kFiller);
    mOut.put(payload);
    mOut.skip(size - written);
}

// An index of chunks for each stream, at the end of the movi list at `base`.
void AviWriter::writeStandardIndexes(uint64_t base, size_t firstSample) {
    for (uint32_t stream = 0; stream < streamsOf(mShape); ++stream) {
        avitest::StandardIndex index;
        index.header.chunkId = kChunkIds[stream];
        index.header.baseOffset = base;
        for (size_t i = firstSample; i < mLayout.samples.size(); ++i) {
            const Sample& sample = mLayout.samples[i];
            if (sample.stream != stream) continue;
            index.entries.push_back({static_cast<uint32_t>(sample.offset - base),
                                     sample.size | (sample.isKey ? 0 : avitest::kNotKeyBit)});
        }
        const Bytes chunk = Chunk(kIndexIds[stream], index.toBytes()).toBytes();
        mSuper[stream].push_back({mOut.position(), static_cast<uint32_t>(chunk.size()),
                                  static_cast<uint32_t>(index.entries.size())});
        const size_t entryBytes = index.entries.size() * 8;
        mOut.put(chunk);
        mLayout.index.push_back({mOut.position() - entryBytes, entryBytes, stream});
    }
}

void AviWriter::writeLegacyIndex(uint64_t base) {
    ByteWriter index;
    index.fourcc("idx1").u32(static_cast<uint32_t>(mLayout.samples.size() * 16));
    for (const Sample& sample : mLayout.samples) {
        index.fourcc(kChunkIds[sample.stream]).u32(sample.isKey ? avitest::kKey : 0);
        index.u32(static_cast<uint32_t>(sample.offset - kChunkHeader - base)).u32(sample.size);
    }
    mLayout.index.push_back({mOut.position() + kChunkHeader, index.size() - kChunkHeader, 0});
    mOut.put(index.data());
}

}  // namespace

Layout writeAvi(const Shape& shape, uint32_t entries, const std::string& path) {
    return AviWriter(shape, entries, path).write();
}

}  // namespace avibench
