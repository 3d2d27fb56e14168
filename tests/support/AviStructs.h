// SPDX-License-Identifier: Apache-2.0
//
// The structures of an AVI file as plain records, one field a field on disk and in its order, each
// with a default that makes a valid file. toBytes() gives the payload without a chunk header.
// A field of optional type is filled in by AviFile when it is left unset; toBytes() writes it as 0.
// Plain values, one thread.

#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "tests/support/Chunk.h"

namespace avitest {

// Flags of an idx1 entry.
constexpr uint32_t kNoFlags = 0;
constexpr uint32_t kListEntry = 0x01;  // the entry indexes a list, not a data chunk
constexpr uint32_t kKey = 0x10;        // key frame

// 'avih', 56 bytes.
struct MainHeader {
    std::optional<uint32_t> microSecPerFrame;
    uint32_t maxBytesPerSec = 0;
    uint32_t paddingGranularity = 0;
    uint32_t flags = 0x10;  // the file has an index
    std::optional<uint32_t> totalFrames;
    uint32_t initialFrames = 0;
    std::optional<uint32_t> streams;
    uint32_t suggestedBufferSize = 0;
    std::optional<uint32_t> width;   // of the first video stream
    std::optional<uint32_t> height;  // of the first video stream
    uint32_t reserved[4] = {0, 0, 0, 0};

    Bytes toBytes() const;
};

// 'strh', 56 bytes. Old writers end it before the rectangle: resize the chunk's payload to 48.
struct StreamHeader {
    ChunkId type = "vids";
    ChunkId handler = uint32_t{0};
    uint32_t flags = 0;
    uint16_t priority = 0;
    uint16_t language = 0;
    uint32_t initialFrames = 0;
    uint32_t scale = 1;
    uint32_t rate = 25;
    uint32_t start = 0;
    std::optional<uint32_t> length;               // in units of scale / rate
    std::optional<uint32_t> suggestedBufferSize;  // the largest chunk
    uint32_t quality = 0xFFFFFFFF;                // the driver's default
    uint32_t sampleSize = 0;
    int16_t left = 0;
    int16_t top = 0;
    int16_t right = 0;
    int16_t bottom = 0;

    Bytes toBytes() const;
};

// 'strf' of a video stream: 40 bytes and what follows them.
struct BitmapInfo {
    uint32_t size = 40;
    int32_t width = 320;
    int32_t height = 240;
    uint16_t planes = 1;
    uint16_t bitCount = 24;
    ChunkId compression = "MJPG";
    uint32_t sizeImage = 0;
    uint32_t xPelsPerMeter = 0;
    uint32_t yPelsPerMeter = 0;
    uint32_t colorsUsed = 0;
    uint32_t colorsImportant = 0;
    Bytes extra;

    Bytes toBytes() const;
};

// 'strf' of an audio stream: 16 bytes, then, when there is an extra size or extra data, a 16-bit
// count and the data.
struct WaveFormat {
    uint16_t formatTag = 1;
    uint16_t channels = 2;
    uint32_t samplesPerSec = 44100;
    uint32_t avgBytesPerSec = 176400;
    uint16_t blockAlign = 4;
    uint16_t bitsPerSample = 16;
    std::optional<uint16_t> extraSize;  // unset: the length of `extra`, if any
    Bytes extra;

    Bytes toBytes() const;
};

// Extra data of the extensible wave format (tag 0xFFFE), 22 bytes. The sub-format is the format tag
// followed by the fixed tail of the media sub-type identifiers.
struct ExtensibleFormat {
    uint16_t validBitsPerSample = 16;
    uint32_t channelMask = 0x3;
    uint64_t subFormatLow = 0x0010000000000001;  // PCM
    uint64_t subFormatHigh = 0x719B3800AA000080;

    Bytes toBytes() const;
};

// One field descriptor of 'vprp', 32 bytes.
struct VideoField {
    uint32_t compressedHeight = 240;
    uint32_t compressedWidth = 320;
    uint32_t validHeight = 240;
    uint32_t validWidth = 320;
    uint32_t validXOffset = 0;
    uint32_t validYOffset = 0;
    uint32_t videoXOffsetInT = 0;
    uint32_t videoYValidStartLine = 0;

    void write(ByteWriter& out) const;
};

// 'vprp': 36 bytes and the field descriptors.
struct VideoProperties {
    uint32_t formatToken = 0;
    uint32_t standard = 0;
    uint32_t verticalRefreshRate = 25;
    uint32_t horizontalTotalInT = 320;
    uint32_t verticalTotalInLines = 240;
    uint32_t frameAspectRatio = 0x00040003;  // width term in the high word, height term in the low
    uint32_t frameWidthInPixels = 320;
    uint32_t frameHeightInLines = 240;
    std::optional<uint32_t> fieldsPerFrame;  // unset: as many as there are descriptors
    std::vector<VideoField> fields = {VideoField()};

    Bytes toBytes() const;
};

// One entry of 'idx1', 16 bytes.
struct Idx1Entry {
    ChunkId id = "00dc";
    uint32_t flags = kKey;
    uint32_t offset = 4;  // of the chunk's header, counted from the type word of movi, or absolute
    uint32_t length = 0;

    void write(ByteWriter& out) const;
};

Bytes toBytes(const std::vector<Idx1Entry>& entries);

// The 24 bytes before the entries of an OpenDML 'indx' or 'ix##' chunk.
struct IndexHeader {
    uint16_t longsPerEntry = 2;
    uint8_t subType = 0;
    uint8_t type = 1;                      // 0 index of indexes, 1 index of chunks
    std::optional<uint32_t> entriesInUse;  // unset: as many as there are entries
    ChunkId chunkId = "00dc";
    uint64_t baseOffset = 0;  // index of indexes: two reserved words
    uint32_t reserved3 = 0;

    void write(ByteWriter& out, size_t entryCount) const;
};

// Index of chunks: 8 bytes an entry.
struct StandardIndex {
    struct Entry {
        uint32_t offset = 0;  // of the chunk's data, counted from the base offset
        uint32_t size = 0;    // bit 31 set: not a key frame
    };
    IndexHeader header;
    std::vector<Entry> entries;

    Bytes toBytes() const;
};
constexpr uint32_t kNotKeyBit = 0x80000000;

// Index of indexes: 16 bytes an entry.
struct SuperIndex {
    struct Entry {
        uint64_t offset = 0;  // of the index chunk's header in the file
        uint32_t size = 0;    // of the index chunk
        uint32_t duration = 0;
    };
    IndexHeader header = superHeader();
    std::vector<Entry> entries;

    Bytes toBytes() const;

  private:
    static IndexHeader superHeader();
};

// The list of text tags: infoList({{"INAM", "A title"}, {"IART", "Somebody"}}). Each text is
// written with a terminating NUL.
Chunk infoList(const std::vector<std::pair<ChunkId, std::string_view>>& tags);

}  // namespace avitest
