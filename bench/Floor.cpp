// SPDX-License-Identifier: Apache-2.0
#include "bench/Floor.h"

#include <algorithm>
#include <cstring>
#include <stdexcept>

namespace avibench {

namespace {

constexpr size_t kIndexRead = 64 << 10;
constexpr size_t kHeaderRead = 12;  // a chunk's header, or a list's with its type
constexpr size_t kChunkHeader = 8;
constexpr size_t kIdx1Entry = 16;
constexpr size_t kOpenDmlEntry = 8;
constexpr uint32_t kIdx1Key = 0x10;
constexpr uint32_t kOpenDmlNotKey = 0x80000000;
constexpr size_t kStreamDigit = 1;  // of a chunk's id: "01wb"

uint32_t wordAt(const uint8_t* bytes) {
    uint32_t word = 0;  // in the order of the machine, which is little-endian
    std::memcpy(&word, bytes, sizeof word);
    return word;
}

}  // namespace

Floor::Floor(const Shape& shape, const Layout& layout) : mShape(shape), mLayout(layout) {
    const Sample* landing = nullptr;
    uint32_t largest = kIndexRead;
    for (const Sample& sample : layout.samples) {
        ++mSamples[sample.stream];
        largest = std::max(largest, sample.size);
        if (sample.stream != kVideoStream) continue;
        if (sample.isKey) landing = &sample;
        mLandings.push_back(landing);
    }
    mBuffer.resize(largest);
}

void Floor::Table::store(uint64_t offset, uint32_t size, bool isKey) {
    offsets[used] = offset;
    sizes[used] = size;
    keys[used] = isKey ? 1 : 0;
    ++used;
}

void Floor::open(const std::string& path) {
    mSource = std::make_unique<CountingSource>(path);
    allocateTables();
    for (const IndexPiece& piece : mLayout.index)
        readIndex(piece);
    if (mLayout.index.empty()) scan();
}

// Uninitialised: each row is written once, which is when its pages are had.
void Floor::allocateTables() {
    for (size_t i = 0; i < 2; ++i) {
        mTables[i].offsets.reset(new uint64_t[mSamples[i]]);
        mTables[i].sizes.reset(new uint32_t[mSamples[i]]);
        mTables[i].keys.reset(new uint8_t[mSamples[i]]);
        mTables[i].used = 0;
    }
}

void Floor::readIndex(const IndexPiece& piece) {
    for (uint64_t done = 0; done < piece.size; done += kIndexRead) {
        const size_t bytes = std::min<uint64_t>(kIndexRead, piece.size - done);
        mSource->readAt(static_cast<off64_t>(piece.offset + done), mBuffer.data(), bytes);
        decode(mBuffer.data(), bytes, piece.stream);
    }
}

void Floor::decode(const uint8_t* entries, size_t bytes, uint32_t stream) {
    if (mShape.index == Index::kOpenDml) {
        for (const uint8_t* entry = entries; entry < entries + bytes; entry += kOpenDmlEntry) {
            const uint32_t size = wordAt(entry + 4);
            mTables[stream].store(wordAt(entry), size & ~kOpenDmlNotKey, size < kOpenDmlNotKey);
        }
        return;
    }
    for (const uint8_t* entry = entries; entry < entries + bytes; entry += kIdx1Entry) {
        Table& table = mTables[entry[kStreamDigit] & 1];
        table.store(wordAt(entry + 8), wordAt(entry + 12), (wordAt(entry + 4) & kIdx1Key) != 0);
    }
}

void Floor::scan() {
    uint64_t offset = mLayout.samples.front().offset - kChunkHeader;
    for (size_t i = 0; i < mLayout.samples.size(); ++i) {
        uint8_t header[kHeaderRead];
        mSource->readAt(static_cast<off64_t>(offset), header, sizeof header);
        const uint32_t size = wordAt(header + 4);
        mTables[header[kStreamDigit] & 1].store(offset + kChunkHeader, size, true);
        offset += kChunkHeader + size + size % 2;
    }
}

void Floor::fetch(const Sample& sample) {
    mSource->readAt(static_cast<off64_t>(sample.offset), mBuffer.data(), sample.size);
}

uint64_t Floor::read(uint64_t count) {
    const uint64_t end = std::min<uint64_t>(mLayout.samples.size(), mNext + count);
    const uint64_t first = mNext;
    while (mNext < end)
        fetch(mLayout.samples[mNext++]);
    return end - first;
}

void Floor::seek(int64_t timeUs) {
    const auto [scale, rate] = frameRateOf(mShape);
    const auto frame = static_cast<size_t>(timeUs * rate / (int64_t{1000000} * scale));
    fetch(*mLandings.at(frame));
}

void Floor::close() {
    mSource.reset();
    for (Table& table : mTables)
        table = Table();
    mNext = 0;
}

}  // namespace avibench
