// SPDX-License-Identifier: Apache-2.0
//
// The records that the parsers fill and the track sources read: one Track a stream, with its format
// and its sample table.
// Threading: written on the thread that parses the file, before any source exists; read-only
// afterwards, but for the format, which mFormatLock guards, and the times of RuvoAVISeekTime.
#pragma once

#include <media/stagefright/foundation/ABuffer.h>
#include <stdint.h>
#include <utils/RefBase.h>
#include <utils/StrongPointer.h>
#include <utils/Vector.h>

#include <atomic>
#include <mutex>

#include "SampleTable.h"
#include "support/FourCC.h"
#include "support/MediaFormat.h"

namespace android {

// Where the audio tracks of a file should resume after a video seek. One record an audio track,
// shared by all sources of the file; each time is read and written as a single value.
struct RuvoAVISeekTime : public RefBase {
    int32_t mTrackId = -1;                 // stream number
    std::atomic<int64_t> mSeekTimeUs{-1};  // -1: no seek pending
};

// The wave format tag of streams whose codec a GUID tells, in the extra data.
constexpr uint16_t kWaveTagExtensible = 0xFFFE;

// What a source needs to know of its stream. Names as in the stream header (strh) and the stream
// format (strf) they come from.
struct TrackInfo {
    uint32_t mStreamIndex = 0;  // the number at the head of the stream's chunk ids
    uint32_t mScale = 0;        // mRate / mScale: units (frames, blocks) a second
    uint32_t mRate = 0;
    FourCC mFccType{};
    FourCC mCompression{};
    uint32_t mBlockAlign = 0;
    uint32_t mSampleSize = 0;  // non-zero: the stream counts bytes; 0 for video
    uint32_t mBitsPerSample = 0;
    uint32_t mAvgBytesPerSec = 0;
    uint32_t mMP3Header = 0;         // first MPEG-audio frame header of the stream
    uint32_t mInvalidDataSize = 0;   // bytes in front of the first valid frame
    uint32_t mInvalidSampleIdx = 0;  // chunk that holds the first valid frame
    bool mIsSubtitle = false;
    bool mBlockMode = false;    // audio is delivered and timed in blocks of mBlockAlign bytes
    bool mBrokenIndex = false;  // key flags are not to be trusted when seeking
    bool mIsRawAACData = false;
    bool mIsVBRWise = false;
    bool mIsExcludingInvalidData = false;
    int32_t mAVCStyle = 0;       // 0: length-prefixed NAL units, 1: start codes
    int32_t mAVCSizeLength = 0;  // width of the length prefix in bytes, 0 when unknown
    float mFrameRate = 0;
    uint16_t mFormatTag = 0;
    uint16_t mChannels = 0;
    uint32_t mSamplesPerSec = 0;
    uint16_t mSize = 0;  // of the extra data of the wave format
};

// One stream of the file. Owned by a TrackList; its address is stable.
struct Track {
    MediaFormatPtr meta{AMediaFormat_new()};
    // Guards meta once sources exist: the framework copies the format while a source reads it.
    std::mutex mFormatLock;

    bool mIsVideo = false;
    bool mIsAudio = false;
    bool mIsSubtitle = false;
    bool mBadTrack = false;

    uint32_t mStartOffset = 0;   // of the stream header, in units of its time base
    uint32_t mTotalSamples = 0;  // length of the stream header
    uint32_t mTotalSyncSamples = 0;
    uint32_t mMaxSampleSize = 0;
    uint32_t mMaxSyncSampleSize = 0;  // video only
    uint64_t mTotalSampleSize = 0;
    uint32_t mThumbNailIndex = 0;  // the largest key sample of a video track
    SampleTable mTable;
    bool mTableFull = false;  // the table reached its limit and the warning is out

    sp<ABuffer> mCodecData;  // what follows the stream format's header, may be null
    TrackInfo info;

    bool mIsAVC = false;
    bool mIsHEVC = false;
    bool mIsVorbis = false;
    bool mINDXValid = false;               // the table came from an OpenDML index
    bool mIsConfigured = false;            // its codec was configured from its samples
    bool mNeedCodecData = false;           // the decoder wants configuration from the first samples
    bool mIsIncludeExpensiveMeta = false;  // the thumbnail time is in meta
};

// Key of the track formats: average bit rate in bits per second, int32.
extern const char* const AMEDIAFORMAT_KEY_AVI_AV_BIT_RATE;

// How the samples of an AVC stream are framed: TrackInfo::mAVCStyle.
constexpr int32_t kLengthPrefixes = 0;
constexpr int32_t kStartCodes = 1;

// The track's MIME type, valid until it is asked for again. Every track has one: aborts otherwise.
const char* trackMime(const Track& track);

}  // namespace android
