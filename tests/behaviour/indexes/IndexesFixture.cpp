// SPDX-License-Identifier: Apache-2.0

#include "tests/behaviour/indexes/IndexesFixture.h"

#include <algorithm>
#include <stdexcept>

namespace avitest {

namespace {

void overwrite(Bytes& file, const ChunkPlace& place, const Bytes& with) {
    if (with.size() != place.dataSize) throw std::logic_error("an index changed its length");
    std::copy(with.begin(), with.end(), file.begin() + static_cast<ptrdiff_t>(place.dataOffset));
}

constexpr size_t kHeaderBytes = 24;
constexpr size_t kSuperEntryBytes = 16;
constexpr size_t kStandardEntryBytes = 8;

}  // namespace

AviFile unindexedFile(size_t frames) {
    AviFile avi = videoFile(frames);
    avi.segment().index.copies = 0;
    return avi;
}

IndexedFile::IndexedFile(std::vector<size_t> frames, size_t room) : mFrames(std::move(frames)) {
    size_t total = 0;
    for (size_t count : mFrames)
        total += count;
    avi = unindexedFile(total);
    const size_t entries = room == 0 ? mFrames.size() : room;
    avi.stream(0).edit = [entries](Chunk& strl) {
        strl.add(Chunk("indx", Bytes(kHeaderBytes + kSuperEntryBytes * entries)).marked("indx"));
    };
    super.entries.resize(entries);
    for (size_t i = 0; i < mFrames.size(); ++i) {
        avi.addLooseChunk(Chunk("ix00", Bytes(kHeaderBytes + kStandardEntryBytes * mFrames[i]))
                              .marked("part" + std::to_string(i)));
    }
}

void IndexedFile::layOut() {
    mFile = avi.build();
    parts.assign(mFrames.size(), StandardIndex());
    const std::vector<MoviChunk> all = avi.chunks(0);
    size_t next = 0;
    for (size_t i = 0; i < parts.size(); ++i) {
        parts[i].header.baseOffset = avi.place("movi0").headerOffset;
        for (size_t n = 0; n < mFrames[i]; ++n, ++next) {
            const uint64_t offset = all[next].place.dataOffset - parts[i].header.baseOffset;
            const uint32_t notKey = (all[next].flags & kKey) == 0 ? kNotKeyBit : 0;
            parts[i].entries.push_back({static_cast<uint32_t>(offset),
                                        static_cast<uint32_t>(all[next].data().size()) | notKey});
        }
        const ChunkPlace place = partPlace(i);
        super.entries[i] = {place.headerOffset, static_cast<uint32_t>(place.dataSize),
                            static_cast<uint32_t>(mFrames[i])};
    }
}

Bytes IndexedFile::bytes() const {
    Bytes file = mFile;
    overwrite(file, superPlace(), super.toBytes());
    for (size_t i = 0; i < parts.size(); ++i)
        overwrite(file, partPlace(i), parts[i].toBytes());
    return file;
}

std::string IndexesFixture::sampleCountLine(size_t count) const {
    return " sampleCount " + std::to_string(count);
}

std::vector<bool> IndexesFixture::syncFlags(size_t track) {
    std::vector<bool> result;
    for (const Sample& sample : readAll(track))
        result.push_back(sample.sync);
    return result;
}

std::string IndexesFixture::mimeOf(size_t track) {
    return trackFormat(track).getString(AMEDIAFORMAT_KEY_MIME).value_or("");
}

}  // namespace avitest
