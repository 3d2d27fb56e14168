// SPDX-License-Identifier: Apache-2.0
//
// What the work cannot do without: the bare reads of the file, and for opening the stores of the
// tables. Knows beforehand where everything lies. One thread.
//
// Opens by an index with reads of 64 KiB, by a scan with one read of 12 bytes a chunk, as a parser
// does that knows a chunk by the header before it.
#pragma once

#include <memory>
#include <vector>

#include "bench/AviWriter.h"
#include "bench/Contender.h"
#include "bench/CountingSource.h"

namespace avibench {

class Floor : public Contender {
  public:
    // `layout` is that of the file and outlives this object.
    Floor(const Shape& shape, const Layout& layout);

    void open(const std::string& path) override;
    uint64_t read(uint64_t count) override;
    void seek(int64_t timeUs) override;
    void close() override;
    uint64_t calls() const override { return mSource->calls(); }

  private:
    // One stream's: where each sample lies, its size, whether it is a key frame.
    struct Table {
        std::unique_ptr<uint64_t[]> offsets;
        std::unique_ptr<uint32_t[]> sizes;
        std::unique_ptr<uint8_t[]> keys;
        size_t used = 0;

        void store(uint64_t offset, uint32_t size, bool isKey);
    };

    void allocateTables();
    void readIndex(const IndexPiece& piece);
    void decode(const uint8_t* entries, size_t bytes, uint32_t stream);
    void scan();
    void fetch(const Sample& sample);

    const Shape& mShape;
    const Layout& mLayout;
    std::vector<const Sample*> mLandings;  // for each frame of the video the key frame before it
    size_t mSamples[2] = {0, 0};           // of each stream
    std::unique_ptr<CountingSource> mSource;
    Table mTables[2];
    std::vector<uint8_t> mBuffer;
    size_t mNext = 0;  // of the samples
};

}  // namespace avibench
