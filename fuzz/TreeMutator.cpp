// SPDX-License-Identifier: Apache-2.0
#include "fuzz/TreeMutator.h"

#include <algorithm>
#include <iterator>
#include <utility>

namespace avifuzz {

using avitest::Bytes;
using avitest::Chunk;
using avitest::ChunkId;

namespace {

constexpr size_t kMostBytes = 1 << 16;  // of a tree that is repeated or crossed into

// Ids, list types, stream types and codecs that the plug-in knows, and two that nobody does.
constexpr const char* kCodes[] = {
    "RIFF", "LIST",
    "AVI ", "AVIX",
    "hdrl", "avih",
    "strl", "strh",
    "strf", "strd",
    "strn", "vprp",
    "indx", "ix00",
    "ix01", "idx1",
    "idx2", "movi",
    "rec ", "JUNK",
    "odml", "dmlh",
    "INFO", "INAM",
    "IART", "ICRD",
    "IGNR", "ISFT",
    "00dc", "00db",
    "00wb", "00tx",
    "00sb", "01dc",
    "01wb", "01sb",
    "02wb", "vids",
    "auds", "txts",
    "mids", "MJPG",
    "XVID", "DIVX",
    "DX50", "DIV3",
    "FMP4", "H264",
    "avc1", "HEVC",
    "hev1", "WVC1",
    "WMV3", "MPG2",
    "mpg1", "VP80",
    "VP90", "H263",
    "DXSB", "DXSA",
    "abcd", "\xFF\xFF\xFF\xFF",
};

// Format tags of waves: PCM, ADPCM, MPEG, AAC, AC-3, DTS, FLAC, Vorbis, extensible.
constexpr uint16_t kWaveTags[] = {1,     2,      3,      0x11,   0x50,   0x55,   0xFF,
                                  0x161, 0x1600, 0x2000, 0x2001, 0xF1AC, 0x566F, 0xFFFE};

uint64_t read(const Bytes& data, size_t at, size_t size) {
    uint64_t value = 0;
    for (size_t i = size; i > 0; --i)
        value = value << 8 | data[at + i - 1];
    return value;
}

void write(Bytes* data, size_t at, size_t size, uint64_t value) {
    for (size_t i = 0; i < size; ++i)
        (*data)[at + i] = static_cast<uint8_t>(value >> (8 * i) & 0xFF);
}

size_t sizeOf(const Chunk& chunk) {
    return chunk.toBytes().size();
}

}  // namespace

void TreeMutator::list(std::vector<Chunk>* chunks, std::vector<Spot>* out) {
    for (size_t i = 0; i < chunks->size(); ++i) {
        out->push_back({chunks, i});
        list(&(*chunks)[i].children, out);
    }
}

// REQUIRES: a tree that is not empty. Headers are chosen as often as samples, of which there are
// more.
TreeMutator::Spot TreeMutator::choose(RiffTree* tree) {
    std::vector<Spot> spots;
    list(&tree->chunks, &spots);
    const size_t first = below(2) == 0 ? spots.size() : std::min<size_t>(spots.size(), 24);
    return spots[below(first)];
}

void TreeMutator::mutate(RiffTree* tree) {
    for (size_t count = 1 + below(4); count > 0; --count)
        change(tree);
    if (below(8) != 0) mendIndexes(tree);
}

void TreeMutator::change(RiffTree* tree) {
    using Change = void (TreeMutator::*)(RiffTree*);
    static constexpr Change kChanges[] = {
        &TreeMutator::declareSize,   &TreeMutator::drop,          &TreeMutator::repeat,
        &TreeMutator::swap,          &TreeMutator::copyElsewhere, &TreeMutator::rename,
        &TreeMutator::resize,        &TreeMutator::setField,      &TreeMutator::setField,
        &TreeMutator::setField,      &TreeMutator::setCode,       &TreeMutator::repeatEntries,
        &TreeMutator::mutatePayload, &TreeMutator::mutatePayload, &TreeMutator::mutatePayload,
    };
    if (!tree->chunks.empty()) (this->*kChanges[below(std::size(kChanges))])(tree);
}

// Values at which something changes, near the one that is there or near an end of the range.
uint64_t TreeMutator::interesting(uint64_t current) {
    const int64_t step = static_cast<int64_t>(below(17)) - 8;
    const auto near = [step](uint64_t value) {
        return static_cast<uint64_t>(static_cast<__int128>(value) + step);
    };
    switch (below(6)) {
        case 0:
            return below(3);
        case 1:
            return near(current);
        case 2:
            return near(0);  // the largest values of every width, too
        case 3:
            return near(uint64_t{1} << below(64));
        case 4:
            return current ^ uint64_t { 1 } << below(32);
        default:
            return mRandom();
    }
}

void TreeMutator::declareSize(RiffTree* tree) {
    Chunk& chunk = choose(tree).chunk();
    if (chunk.declaredSize && below(2) == 0) {
        chunk.declaredSize.reset();
        return;
    }
    const size_t size = sizeOf(chunk);
    chunk.declaredSize = static_cast<uint32_t>(interesting(size) & 0xFFFFFFFF);
}

void TreeMutator::drop(RiffTree* tree) {
    const Spot spot = choose(tree);
    spot.siblings->erase(spot.siblings->begin() + static_cast<std::ptrdiff_t>(spot.number));
}

void TreeMutator::repeat(RiffTree* tree) {
    const Spot spot = choose(tree);
    const Chunk copy = spot.chunk();
    const size_t most = std::min<size_t>(16, kMostBytes / (1 + sizeOf(copy)));
    spot.siblings->insert(spot.siblings->begin() + static_cast<std::ptrdiff_t>(spot.number),
                          below(most + 1), copy);
}

void TreeMutator::swap(RiffTree* tree) {
    const Spot spot = choose(tree);
    std::swap(spot.chunk(), (*spot.siblings)[below(spot.siblings->size())]);
}

void TreeMutator::copyElsewhere(RiffTree* tree) {
    const Chunk copy = choose(tree).chunk();
    const Spot to = choose(tree);
    to.siblings->insert(to.siblings->begin() + static_cast<std::ptrdiff_t>(to.number), copy);
}

void TreeMutator::rename(RiffTree* tree) {
    Chunk& chunk = choose(tree).chunk();
    const ChunkId id = ChunkId::of(kCodes[below(std::size(kCodes))]);
    if (chunk.listType && below(4) != 0) {
        chunk.listType = id;
    } else {
        chunk.id = id;
    }
}

void TreeMutator::resize(RiffTree* tree) {
    Chunk& chunk = choose(tree).chunk();
    const size_t size = chunk.payload.size();
    chunk.payload.resize(below(2) == 0 ? below(size + 1) : size + below(64));
    chunk.padded = below(4) != 0;
}

void TreeMutator::setField(RiffTree* tree) {
    static constexpr size_t kWidths[] = {1, 2, 4, 4, 4, 8};
    Bytes& payload = choose(tree).chunk().payload;
    const size_t width = kWidths[below(std::size(kWidths))];
    if (payload.size() < width) return;
    const size_t at = below(payload.size() / width) * width;
    write(&payload, at, width, interesting(read(payload, at, width)));
}

// A codec or a format tag, mostly where the stream format has it.
void TreeMutator::setCode(RiffTree* tree) {
    constexpr size_t kCompressionAt = 16;
    Bytes& payload = choose(tree).chunk().payload;
    if (below(3) == 0 && payload.size() >= 2) {
        write(&payload, 0, 2, kWaveTags[below(std::size(kWaveTags))]);
        return;
    }
    if (payload.size() < 4) return;
    const bool isFormat = payload.size() >= kCompressionAt + 4 && below(2) == 0;
    const size_t at = isFormat ? kCompressionAt : below(payload.size() / 4) * 4;
    write(&payload, at, 4, ChunkId::of(kCodes[below(std::size(kCodes))]).value());
}

// The entries of an index, or anything else that comes in rows of 8 or 16 bytes.
void TreeMutator::repeatEntries(RiffTree* tree) {
    Bytes& payload = choose(tree).chunk().payload;
    const size_t width = 8 + 8 * below(2);
    if (payload.size() < width || payload.size() > kMostBytes) return;
    const auto at = static_cast<std::ptrdiff_t>(below(payload.size() / width) * width);
    const Bytes entry(payload.begin() + at,
                      payload.begin() + at + static_cast<std::ptrdiff_t>(width));
    for (size_t count = 1 + below(32); count > 0; --count)
        payload.insert(payload.begin() + at, entry.begin(), entry.end());
}

void TreeMutator::mutatePayload(RiffTree* tree) {
    Bytes& payload = choose(tree).chunk().payload;
    mutateBytes(&payload, payload.size() + 64);
}

void TreeMutator::mutateBytes(Bytes* bytes, size_t maxSize) {
    const size_t size = std::min(bytes->size(), maxSize);
    bytes->resize(maxSize);
    if (maxSize > 0) bytes->resize(mMutate(bytes->data(), size, maxSize));
}

void TreeMutator::cross(RiffTree* tree, const RiffTree& other) {
    RiffTree source = other;
    if (source.chunks.empty() || tree->chunks.empty()) return;
    Chunk part = choose(&source).chunk();
    const Spot spot = choose(tree);
    if (below(2) == 0) {
        spot.chunk() = std::move(part);
    } else {
        spot.siblings->insert(spot.siblings->begin() + static_cast<std::ptrdiff_t>(spot.number),
                              std::move(part));
    }
    if (below(8) != 0) mendIndexes(tree);
}

}  // namespace avifuzz
