// SPDX-License-Identifier: Apache-2.0
#include "riff/AudioFormat.h"

#include <media/NdkMediaFormatRuvo.h>
#include <media/stagefright/foundation/MediaDefs.h>
#include <string.h>

#include "riff/CodecTables.h"
#include "support/ByteReader.h"
#include "support/HexDump.h"
#include "support/Log.h"
#include "support/Mime.h"

namespace android {

namespace {

constexpr uint16_t kTagMp3 = 0x55;
constexpr uint16_t kTagWma1 = 0x160;
constexpr uint16_t kTagWma2 = 0x161;

constexpr uint32_t kSamplesPerMp3Frame = 1152;

// u16 formatTag | u16 nChannels | u32 nSamplesPerSec | u32 nAvgBytesPerSec | u16 nBlockAlign |
// u16 bitsPerSample
struct WaveFormat {
    uint16_t formatTag, channels;
    uint32_t samplesPerSec, avgBytesPerSec;
    uint16_t blockAlign, bitsPerSample;
};

WaveFormat readWaveFormat(const StreamFormat& format) {
    ByteReader in(format.header, kWaveFormatSize);
    WaveFormat w = {};
    in.u16(&w.formatTag);
    in.u16(&w.channels);
    in.u32(&w.samplesPerSec);
    in.u32(&w.avgBytesPerSec);
    in.u16(&w.blockAlign);
    in.u16(&w.bitsPerSample);
    return w;
}

// Five channels are a writer's way of saying 5.1; the extensible format has a channel mask for it.
int32_t publishedChannels(const WaveFormat& w) {
    return w.channels == 5 && w.formatTag != kWaveTagExtensible ? 6 : w.channels;
}

// The number that the device's WMA decoder goes by.
int32_t wmaVersion(uint16_t formatTag) {
    if (formatTag == kTagWma1) return 1;
    return formatTag == kTagWma2 ? 2 : 3;
}

void logWaveFormat(const WaveFormat& w, const char* mime, uint16_t extraSize) {
    AVI_LOGV("==== AVIWaveFormat ====");
    AVI_LOGV("   formatTag = 0x%x(%s)", w.formatTag, mime);
    AVI_LOGV("   nChannels = %d", publishedChannels(w));
    AVI_LOGV("   nSamplesPerSec = %d", static_cast<int>(w.samplesPerSec));
    AVI_LOGV("   nAvgBytesPerSec = %d", static_cast<int>(w.avgBytesPerSec));
    AVI_LOGV("   nBlockAlign = %d", w.blockAlign);
    AVI_LOGV("   bitsPerSample = %d", w.bitsPerSample);
    AVI_LOGV("   size = %d", extraSize);
}

void publishWaveFormat(AMediaFormat* meta, const WaveFormat& w, const char* mime) {
    AMediaFormat_setInt32(meta, AMEDIAFORMAT_KEY_AUDIO_FORMAT, wmaVersion(w.formatTag));
    AMediaFormat_setInt32(meta, AMEDIAFORMAT_KEY_AUDIO_PROFILE, wmaVersion(w.formatTag));
    AMediaFormat_setString(meta, AMEDIAFORMAT_KEY_MIME, mime);
    AMediaFormat_setInt32(meta, AMEDIAFORMAT_KEY_CHANNEL_COUNT, publishedChannels(w));
    AMediaFormat_setInt32(meta, AMEDIAFORMAT_KEY_SAMPLE_RATE,
                          static_cast<int32_t>(w.samplesPerSec));
    AMediaFormat_setInt32(meta, AMEDIAFORMAT_KEY_BLOCKALIGN, w.blockAlign);
}

// The codec behind the extensible format: its GUID follows the valid bits and the channel mask.
const char* extensibleSubFormat(const sp<ABuffer>& extra) {
    constexpr uint64_t kGuidLowALaw = 0x0010000000000006;
    constexpr uint64_t kGuidLowMuLaw = 0x0010000000000007;
    constexpr uint64_t kGuidHigh = 0x719B3800AA000080;
    if (extra == nullptr) return MEDIA_MIMETYPE_AUDIO_RAW;
    uint64_t low = 0;
    uint64_t high = 0;
    ByteReader in(extra->data(), extra->size());
    const bool whole = in.skip(6) && in.u64(&low) && in.u64(&high);
    if (!whole || high != kGuidHigh) return MEDIA_MIMETYPE_AUDIO_RAW;
    if (low == kGuidLowALaw) return MEDIA_MIMETYPE_AUDIO_G711_ALAW;
    return low == kGuidLowMuLaw ? MEDIA_MIMETYPE_AUDIO_G711_MLAW : MEDIA_MIMETYPE_AUDIO_RAW;
}

// MP3 stream headers often lie about the sample size: 0 means one frame a chunk, anything else
// bytes. Tell which one it is from the rates.
void repairMp3SampleSize(TrackInfo* info) {
    if (info->mFormatTag != kTagMp3 || info->mSampleSize == 1) return;
    const uint32_t unitsPerSec = divideOrZero(info->mRate, info->mScale);
    const bool comparable = info->mScale != 0 && info->mBlockAlign != 0;
    if (comparable && unitsPerSec == info->mSamplesPerSec / info->mBlockAlign) {
        info->mSampleSize = 0;
    }
    if (info->mSampleSize != 0) return;
    const uint32_t framesPerSec =
        info->mSamplesPerSec / (info->mBlockAlign != 0 ? info->mBlockAlign : kSamplesPerMp3Frame);
    if (unitsPerSec != framesPerSec) {
        info->mSampleSize = saturateToUint32(
            divideOrZero(uint64_t{info->mAvgBytesPerSec} * info->mScale, uint64_t{info->mRate}));
    }
}

// The platform's WMA decoders take the whole wave format as their configuration.
void publishWmaFormat(AMediaFormat* meta, const StreamFormat& format, const TrackInfo& info,
                      const sp<ABuffer>& extra) {
    constexpr size_t kFullFormatSize = kWaveFormatSize + 2;
    sp<ABuffer> csd = new ABuffer(kFullFormatSize + extra->size());
    if (csd->base() == nullptr) return;
    memcpy(csd->data(), format.header, kWaveFormatSize);
    csd->data()[kWaveFormatSize] = static_cast<uint8_t>(info.mSize);
    csd->data()[kWaveFormatSize + 1] = static_cast<uint8_t>(info.mSize >> 8);
    memcpy(csd->data() + kFullFormatSize, extra->data(), extra->size());
    AVI_LOGV("kKeyWMAC size is %zu\n", csd->size());
    hexDump(csd->data(), csd->size());
    AMediaFormat_setBuffer(meta, AMEDIAFORMAT_KEY_CSD_0, csd->data(), csd->size());
}

// The platform's decoders take only these sample widths.
bool isBadSampleWidth(const char* mime, uint32_t bits) {
    if (isMime(mime, MEDIA_MIMETYPE_AUDIO_RAW)) {
        return bits != 8 && bits != 16 && bits != 24 && bits != 32;
    }
    if (isMime(mime, MEDIA_MIMETYPE_AUDIO_G711_ALAW) ||
        isMime(mime, MEDIA_MIMETYPE_AUDIO_G711_MLAW)) {
        return bits != 8;
    }
    if (isMime(mime, MEDIA_MIMETYPE_AUDIO_MS_ADPCM) ||
        isMime(mime, MEDIA_MIMETYPE_AUDIO_DVI_IMA_ADPCM)) {
        return bits != 4;
    }
    return false;
}

// The three header packets of a Vorbis stream in Xiph lacing, the first two lengths in one byte
// each: u8 packets - 1 | u8 length | u8 length | identification | comment | setup.
bool publishVorbisHeaders(AMediaFormat* meta, const sp<ABuffer>& extra) {
    constexpr size_t kLacingSize = 3;
    constexpr uint8_t kIdentification = 1;
    constexpr uint8_t kComment = 3;
    constexpr uint8_t kSetup = 5;
    if (extra == nullptr || extra->size() < kLacingSize) return false;
    const uint8_t* data = extra->data();
    const size_t commentAt = kLacingSize + data[1];
    const size_t setupAt = commentAt + data[2];
    if (data[0] != 2 || extra->size() <= setupAt) return false;
    if (data[kLacingSize] != kIdentification || data[commentAt] != kComment ||
        data[setupAt] != kSetup) {
        return false;
    }
    AVI_LOGV("kKeyVorbisInfo(%zd):", static_cast<ssize_t>(data[1]));
    hexDump(data + kLacingSize, data[1]);
    AMediaFormat_setBuffer(meta, AMEDIAFORMAT_KEY_CSD_0, data + kLacingSize, data[1]);
    const size_t setupSize = extra->size() - setupAt;
    AVI_LOGV("kKeyVorbisBooks(%zd):", static_cast<ssize_t>(setupSize));
    hexDump(data + setupAt, setupSize);
    AMediaFormat_setBuffer(meta, AMEDIAFORMAT_KEY_CSD_1, data + setupAt, setupSize);
    return true;
}

void addAudioSeekTime(uint32_t streamIndex, const char* mime,
                      Vector<sp<RuvoAVISeekTime>>* seekTimes) {
    sp<RuvoAVISeekTime> seekTime = new RuvoAVISeekTime;
    seekTime->mTrackId = static_cast<int32_t>(streamIndex);
    seekTimes->push_back(seekTime);
    AVI_LOGV("%s(%s): Initialize seekTimeUs(%d, %lld)", "parseSTRF", mime, seekTime->mTrackId,
             ll(seekTime->mSeekTimeUs));
}

}  // namespace

void applyWaveFormat(const StreamFormat& format, AviFile* file, Track* track) {
    TrackInfo* info = &track->info;
    AMediaFormat* meta = track->meta.get();
    const WaveFormat w = readWaveFormat(format);
    const char* mime = waveFormatTagToMime(w.formatTag);
    track->mIsVorbis = isMime(mime, MEDIA_MIMETYPE_AUDIO_VORBIS);
    publishWaveFormat(meta, w, mime);

    info->mFormatTag = w.formatTag;
    info->mChannels = w.channels;
    info->mSamplesPerSec = w.samplesPerSec;
    info->mAvgBytesPerSec = w.avgBytesPerSec;
    info->mBlockAlign = w.blockAlign;
    info->mBitsPerSample = w.bitsPerSample;
    logWaveFormat(w, mime, info->mSize);
    addAudioSeekTime(info->mStreamIndex, mime, &file->audioSeekTimes);

    if (w.formatTag == kWaveTagExtensible && info->mSize != 0) {
        AMediaFormat_setString(meta, AMEDIAFORMAT_KEY_MIME, extensibleSubFormat(track->mCodecData));
    }
    repairMp3SampleSize(info);
    if (track->mCodecData != nullptr && isMime(mime, MEDIA_MIMETYPE_AUDIO_WMA)) {
        publishWmaFormat(meta, format, *info, track->mCodecData);
    }
    track->mBadTrack = isBadSampleWidth(mime, info->mBitsPerSample);
    if (track->mIsVorbis) {
        track->mBadTrack = !publishVorbisHeaders(meta, track->mCodecData);
    }
}

}  // namespace android
