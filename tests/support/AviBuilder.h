// SPDX-License-Identifier: Apache-2.0
//
// Builds an AVI file in memory:
//
//     AviFile avi;
//     const size_t video = avi.addStream(videoStream("MJPG", 320, 240, 25));
//     avi.addChunk(video, patternBytes(100), kKey);
//     avi.addChunk(video, patternBytes(60, 1), kNoFlags);
//     const Bytes file = avi.build();
//     // avi.chunks(video)[1].place.dataOffset is where the 60 bytes lie
//
// A file that nothing was changed in is valid. Damage is set field by field in the records, chunk
// by chunk in the MoviChunk, or with an `edit` function, which receives the finished tree of chunks
// before offsets are computed: whatever it moves, inserts or enlarges, the indexes still point
// right.
//
//     avi.segment().edit = [](Chunk& riff) { riff.arrange({"movi", "hdrl"}); };  // movi first
//     avi.stream(video).edit = [](Chunk& strl) { strl.child("strf").payload.resize(39); };
//
// Plain values; one thread at a time.

#pragma once

#include <deque>
#include <functional>
#include <optional>
#include <string>
#include <variant>
#include <vector>

#include "tests/support/AviStructs.h"

namespace avitest {

// The OpenDML index that AviFile writes for a stream.
enum class OpenDml {
    kNone,
    kStandard,  // an index of chunks in the stream list itself
    kSuper,     // an index of indexes in the stream list, and an index of chunks at the end of the
                // movi list of each segment in which the stream has chunks
};

// One stream list. Its chunks are written in the order of the fields; `edit` changes what it wants.
struct Stream {
    StreamHeader header;
    std::variant<Bytes, BitmapInfo, WaveFormat> format;  // Bytes: the payload of strf as it is
    std::optional<Bytes> privateData;                    // strd
    std::optional<std::string> name;                     // strn, written with a terminating NUL
    std::optional<VideoProperties> properties;           // vprp
    OpenDml openDml = OpenDml::kNone;                    // indx
    std::string chunkType = "dc";                        // the letters of its data chunks' ids
    std::function<void(Chunk& strl)> edit;
};

// A video stream of `rate` / `scale` frames a second.
Stream videoStream(ChunkId fourcc, uint32_t width, uint32_t height, uint32_t rate,
                   uint32_t scale = 1);
// Pictures of 320 x 240, 25 a second, all alike to the reader and without any configuration.
Stream mjpegStream();
// PCM: a chunk holds any number of sample frames.
Stream pcmStream(uint16_t channels, uint32_t sampleRate, uint16_t bits);
// Coded audio of constant size: scale and sample size are the block, rate is the byte rate.
Stream audioStream(uint16_t formatTag, uint16_t channels, uint32_t sampleRate,
                   uint32_t avgBytesPerSec, uint16_t blockAlign, uint16_t bits = 0);
// Coded audio of one frame a chunk (sample size 0), each frame `samplesPerFrame` samples long.
Stream frameAudioStream(uint16_t formatTag, uint16_t channels, uint32_t sampleRate,
                        uint16_t samplesPerFrame, uint32_t avgBytesPerSec = 16000);

constexpr size_t kNoStream = SIZE_MAX;

// One chunk within a movi list, with its entry in idx1.
struct MoviChunk {
    size_t stream = kNoStream;
    size_t segment = 0;
    Chunk chunk;  // its damage fields may be set
    uint32_t flags = kKey;
    bool indexed = true;                  // false: no index of any kind mentions the chunk
    std::optional<ChunkId> indexId;       // what idx1 says instead of the truth
    std::optional<uint32_t> indexOffset;  // the same, written as it is
    std::optional<uint32_t> indexLength;  // the same
    std::optional<size_t> group;          // number of the 'rec ' list that holds it
    ChunkPlace place;                     // set by build()

    const Bytes& data() const { return chunk.payload; }
};

enum class IndexOffsets { kRelative, kAbsolute };

// The idx1 of a segment.
struct IndexOptions {
    ChunkId id = "idx1";
    size_t copies = 1;  // 0: none
    IndexOffsets offsets = IndexOffsets::kRelative;
    bool listsIndexed = false;  // an entry for each 'rec ' list, before those of its chunks
    // Last word on the entries. The number of entries must not depend on their offsets, which are 0
    // in a first call that only measures.
    std::function<void(std::vector<Idx1Entry>& entries)> edit;
    Bytes tail;  // after the last entry
};

// One RIFF of the file: the first has the headers, a further one only movi and, if asked, an index.
struct Segment {
    ChunkId form = "AVI ";
    std::optional<uint32_t> riffSize;
    std::vector<Chunk> beforeHeaders;
    std::vector<Chunk> beforeMovi;
    std::vector<Chunk> afterMovi;
    IndexOptions index;
    std::vector<Chunk> afterIndex;
    std::function<void(Chunk& riff)> edit;
};

class AviFile {
  public:
    MainHeader header;
    std::function<void(Chunk& hdrl)> editHeaders;
    Bytes trailing;  // after the last RIFF

    // Adds a stream list; returns the stream's number.
    size_t addStream(Stream stream);
    Stream& stream(size_t number) { return mStreams.at(number); }

    // Adds a data chunk of a stream at the end of the current movi list. The reference stays valid.
    MoviChunk& addChunk(size_t stream, Bytes data, uint32_t flags = kKey);
    // Adds a chunk that belongs to no stream and that no index mentions (JUNK, for example).
    MoviChunk& addLooseChunk(Chunk chunk);
    // Chunks added until endGroup() lie together in one 'rec ' list.
    void beginGroup();
    void endGroup() { mGroup.reset(); }

    // Starts a further RIFF ('AVIX', without idx1); chunks added from here on belong to it.
    Segment& addSegment();
    Segment& segment(size_t number = 0) { return mSegments.at(number); }

    // Assembles the file. May be called again after a change.
    Bytes build();

    // The chunks of one stream, or all, in the order they were added; places are those of the last
    // build().
    std::vector<MoviChunk> chunks(size_t stream) const;
    const std::deque<MoviChunk>& allChunks() const { return mChunks; }
    // Their payloads, as reading the stream's track should give them where nothing is converted.
    std::vector<Bytes> payloads(size_t stream) const;
    // The place of a marked chunk in the last build(); AviFile marks its own "hdrl", "strl0",
    // "movi0", "idx1.0" (the number is the stream's or the segment's), "avih", "riff0", "rec0".
    // Unknown marks end the program.
    ChunkPlace place(const std::string& mark) const;

  private:
    std::vector<Chunk> assemble() const;
    Chunk assembleSegment(size_t number) const;
    Chunk assembleHeaders() const;
    Chunk assembleStream(size_t number) const;
    Chunk assembleMovi(size_t segment) const;
    std::vector<Idx1Entry> idx1Entries(size_t segment) const;
    Idx1Entry idx1Entry(size_t chunk, uint64_t base) const;

    MainHeader completeHeader() const;
    StreamHeader completeHeader(size_t stream) const;
    Bytes openDmlIndex(size_t stream) const;
    StandardIndex standardIndex(size_t stream, std::optional<size_t> segment) const;
    bool hasChunks(size_t stream, size_t segment) const;
    ChunkPlace placeOrZero(const std::string& mark) const;
    void storePlaces();

    std::deque<Stream> mStreams;
    std::deque<MoviChunk> mChunks;
    std::deque<Segment> mSegments = std::deque<Segment>(1);
    std::optional<size_t> mGroup;
    size_t mGroups = 0;
    Layout mLayout;
};

}  // namespace avitest
