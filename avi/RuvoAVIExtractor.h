// SPDX-License-Identifier: Apache-2.0
//
// The object that the framework holds for one opened file: parses it on the first query, owns the
// tracks and answers for them.
// Threading: the framework queries from one thread at a time. Sources run on threads of their own
// and must be freed before the extractor, whose tables they read.
#pragma once

#include <media/MediaExtractorPluginHelper.h>
#include <media/stagefright/MediaErrors.h>
#include <utils/Errors.h>

#include <list>
#include <memory>
#include <vector>

#include "ChunkWalker.h"
#include "FileReader.h"
#include "Track.h"
#include "support/MediaFormat.h"

namespace android {

struct StreamFormat;

class RuvoAVIExtractor : public MediaExtractorPluginHelper {
  public:
    // Takes ownership of `source`. Reads the system properties, but nothing of the file.
    explicit RuvoAVIExtractor(DataSourceHelper* source);
    ~RuvoAVIExtractor() override;

    // Number of tracks, bad ones included; 0 when the file cannot be parsed.
    size_t countTracks() override;

    // A new source over track `index`, or null. The caller owns it; it must not outlive this
    // object.
    MediaTrackHelper* getTrack(size_t index) override;

    // Copies the format of track `index` into `out`. With kIncludeExtensiveMetaData a video track
    // gets its thumbnail time. AMEDIA_ERROR_UNKNOWN for no such track or a file that does not
    // parse.
    media_status_t getTrackMetaData(AMediaFormat* out, size_t index, uint32_t flags) override;

    // Copies the file's format into `out`; AMEDIA_ERROR_UNKNOWN when the file does not parse.
    media_status_t getMetaData(AMediaFormat* out) override;

    uint32_t flags() const override;
    media_status_t setMediaCas(const uint8_t* data, size_t size) override;
    const char* name() override { return "AVIExtractor"; }

  private:
    struct RiffSegment {
        int64_t offset;  // of the RIFF header
        int64_t size;    // its size field
    };

    // Parses the file once and remembers the outcome. Headers that cannot be read are tried again
    // by the next call.
    status_t readMetaData();
    status_t listRiffSegments();

    // riff/RiffSegments.cpp
    struct FirstRiffState {
        bool hdrl = false;
        bool movi = false;
        bool idx1 = false;  // the index was read, or found unusable
        bool tooManyUnknown = false;
        uint32_t unknownChunks = 0;
    };
    struct MoreRiffState {
        bool movi = false;
        bool index = false;
        bool tooManyUnknown = false;
        uint32_t unknownChunks = 0;
    };
    status_t parseFirstRIFF();
    status_t walkFirstRIFF(FirstRiffState* found);
    status_t parseFirstRiffChunk(const ChunkWalker& chunk, FirstRiffState* found);
    status_t parseFirstRiffList(const ChunkWalker& chunk, FirstRiffState* found);
    status_t parseFirstIdx1(const ChunkWalker& chunk, FirstRiffState* found);
    bool allTracksIndexed() const;
    void completeFirstIndex();
    bool videoFullyIndexed() const;
    status_t parseMoreRIFF(int64_t offset, size_t n);
    status_t parseMoreRiffChunk(const ChunkWalker& chunk, size_t n, MoreRiffState* found);
    status_t parseMOVI(int64_t start, int64_t end);
    int64_t walkEnd(const char* function, uint32_t riffSize, int64_t contents) const;

    // riff/HeaderList.cpp
    status_t parseHDRL(int64_t start, int64_t end);
    status_t parseHeaderChunk(const ChunkWalker& chunk, bool* foundAvih, uint32_t* streamLists);
    status_t parseAVIH(int64_t start, int64_t end);

    // riff/Info.cpp
    status_t parseINFO(int64_t start, int64_t end);
    void publishTag(const char* key, int64_t offset, uint32_t padded);

    // riff/StreamList.cpp, working on mCurrentTrack like all parsers of stream chunks
    struct StreamListState;
    status_t parseSTRL(int64_t start, int64_t end, uint32_t streamIndex);
    bool parseStreamChunk(const ChunkWalker& chunk, StreamListState* seen);
    bool parseUniqueStreamChunk(const ChunkWalker& chunk, StreamListState* seen);
    void parseStreamIndex(int64_t start, int64_t end);
    void addTrack(uint32_t streamIndex);
    void dropCurrentTrack();

    // riff/StreamHeader.cpp
    status_t parseSTRH(int64_t start, int64_t end);
    void publishFrameRate(uint32_t rate, uint32_t scale, uint32_t length);

    // riff/StreamProperties.cpp
    status_t parseSTRN(int64_t start, int64_t end);
    status_t parseVPRP(int64_t start, int64_t end);
    void publishAspectRatio(uint16_t width, uint16_t height);

    // riff/StreamFormat.cpp
    status_t parseSTRF(int64_t offset, int64_t end);
    void detectSubtitle(const StreamFormat& format);
    void putVideoFirst();
    bool readAudioExtraSize(StreamFormat* format, size_t rest, size_t* out);
    status_t readExtraData(StreamFormat* format);

    // riff/AudioFormat.cpp
    void applyWaveFormat(const StreamFormat& format);
    void addAudioSeekTime(uint32_t streamIndex, const char* mime);

    // riff/VideoFormat.cpp
    void applyBitmapInfo(const StreamFormat& format);
    void readAvcRecord(const StreamFormat& format);

    // index/SampleTable.cpp
    status_t addSample(const RuvoAVISample* sample, Track* track);
    status_t addSampleById(uint32_t streamNumber, const RuvoAVISample* sample);
    status_t clearSamples(Track* track);
    Track* trackByStream(uint32_t streamNumber) const;

    // index/LegacyIndex.cpp
    status_t parseIDX1(int64_t start, int64_t end);
    int addIdx1Entries(const uint8_t* bytes, size_t size, bool isFirstBatch);

    // index/OpenDmlIndex.cpp
    status_t parseINDX(int64_t start, int64_t end);
    status_t parseSuperIndex(int64_t start, const RuvoAVIIndexChunk& header);
    status_t parseStandardIndexAt(uint64_t position, uint32_t size);
    status_t parseChunkIndex(int64_t start, int64_t end, const RuvoAVIIndexChunk* known);
    bool readIndexHeader(int64_t start, RuvoAVIIndexChunk* out) const;
    status_t addStandardEntries(int64_t entries, const RuvoAVIIndexChunk& header, uint32_t* added);
    bool hasIndexEntriesLeft();
    void logChunkIndexEnd(const RuvoAVIIndexChunk& header, uint32_t added, int64_t position);

    // index/MoviScan.cpp
    struct MoviScanState {
        uint32_t unknownChunks = 0;
        uint32_t emptyHeaders = 0;  // in a row
        bool done = false;
    };
    status_t parseMOVIMore();
    void scanChunk(const ChunkWalker& chunk, MoviScanState* scan);
    void scanRecordList(const ChunkWalker& list, MoviScanState* scan);
    bool reachesUnknownLimit(MoviScanState* scan);
    status_t parseDataChunk(uint32_t offset, FourCC id, uint32_t size, uint32_t* emptyHeaders);

    // index/Finish.cpp
    status_t finishParse();
    void finishTrack(Track* track);
    status_t updateSamples(Track* track);
    int64_t clampToVideo(int64_t audioDurationUs) const;

    Track* trackAt(size_t index);
    void publishThumbnailTime(Track* track);
    Track* currentTrack() { return &*mCurrentTrack; }

    FileReader mReader;
    status_t mInitCheck = NO_INIT;  // outcome of the first RIFF's parse
    bool mMetaDataRead = false;

    uint32_t mMoviStart = 0;  // offset of the movi list's header, modulo 2^32
    uint32_t mMoviSize = 0;   // of its payload behind the list type
    uint32_t mWidth = 0;      // of the main header
    uint32_t mHeight = 0;
    uint32_t mNumStreams = 0;
    int64_t mIndexEntriesLeft = 0;  // OpenDML index entries that an honest file may still have
    bool mIndexLimitWarned = false;
    uint32_t mIndexOffsetBase = 0;  // what idx1 offsets are relative to

    bool mHasVideo = false;  // at least one good track of the kind
    bool mHasAudio = false;
    bool mHasSubtitle = false;
    bool mHasIndex = false;        // the tables of the current RIFF are complete
    int64_t mVideoDurationUs = 0;  // of the last finished video track

    std::vector<RiffSegment> mRiffList;
    Vector<sp<RuvoAVISeekTime>> mAudioSeekTimes;
    std::list<Track> mTracks;                  // video first, the others in stream order
    std::vector<Track*> mTrackTable;           // mTracks by position, once the file is parsed
    std::list<Track>::iterator mCurrentTrack;  // the stream list being parsed
    std::vector<Track*> mTracksByStream;       // by stream number; null where a stream was dropped
    MediaFormatPtr mFileMeta{AMediaFormat_new()};
};

}  // namespace android
