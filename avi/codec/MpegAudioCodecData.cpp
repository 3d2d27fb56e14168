// SPDX-License-Identifier: Apache-2.0
//
// Configuration of MPEG-audio tracks: finds the first reliable frame header, names the layer, notes
// the junk in front, and settles whether the stream is counted in bytes, frames or blocks.
#include <media/stagefright/foundation/ByteUtils.h>
#include <media/stagefright/foundation/MediaDefs.h>
#include <string.h>

#include <algorithm>

#include "RuvoAVIExtractor.h"
#include "codec/MpegAudioHeader.h"
#include "codec/ReadSample.h"
#include "support/Log.h"

namespace android {

namespace {

const char* layerMime(uint32_t layer) {
    if (layer == kLayerI) return MEDIA_MIMETYPE_AUDIO_MPEG_LAYER_I;
    return layer == kLayerII ? MEDIA_MIMETYPE_AUDIO_MPEG_LAYER_II : MEDIA_MIMETYPE_AUDIO_MPEG;
}

// Stream headers with a sample size other than 0 or 1 and a scale of 1 count bytes after all.
void repairSampleSize(TrackInfo* info) {
    if (info->mSampleSize < 2 || info->mScale != 1) return;
    AVI_LOGW("%s(): rewrite abnormal mp3 samplesize %u to 1", "generateMPEGCodecData",
             info->mSampleSize);
    info->mSampleSize = 1;
}

void logProbedSample(const sp<ABuffer>& sample, size_t index, int64_t offset) {
    uint8_t bytes[kMpegAudioHeaderSize] = {};
    memcpy(bytes, sample->data(), std::min(sizeof(bytes), sample->size()));
    AVI_LOGV("sample[%d] size %d offset %ld, %02X %02X %02X %02X", static_cast<int>(index),
             static_cast<int>(sample->size()), static_cast<long>(offset), bytes[0], bytes[1],
             bytes[2], bytes[3]);
}

}  // namespace

// A sample that is searched for a frame header.
struct RuvoAVIExtractor::MpegAudioProbe {
    size_t index;
    const uint8_t* data;
    size_t size;
    bool isLast;  // of the table
};

void RuvoAVIExtractor::generateMPEGCodecData(Track* track) {
    TrackInfo* info = &track->info;
    MpegAudioStart start;
    const status_t err = findMP3Header(*track, &start);
    info->mMP3Header = start.header;
    track->mBadTrack = err != OK || start.header == 0;
    if (track->mBadTrack) return;

    size_t frameSize = 0;
    uint32_t layer = 0;
    int samplesPerFrame = 0;
    parseMP3Header(start.header, &frameSize, &layer, nullptr, &samplesPerFrame);
    AMediaFormat_setString(track->meta.get(), AMEDIAFORMAT_KEY_MIME, layerMime(layer));
    AVI_LOGD("%s(): MP3 Header %x at frame %d, offset %x, framesize %d, layer %u",
             "generateMPEGCodecData", start.header, static_cast<int>(start.sampleIndex),
             static_cast<unsigned>(start.offset), static_cast<int>(frameSize), layer);

    // Junk in front is not played and takes no time. What lies in front of the header in its own
    // chunk is left to the frame cutter.
    info->mInvalidSampleIdx = static_cast<uint32_t>(start.sampleIndex);
    for (size_t i = 0; i < start.sampleIndex; ++i) {
        info->mInvalidDataSize = wrapAdd32(info->mInvalidDataSize, track->mTable.chunkSize(i));
    }
    info->mIsExcludingInvalidData = true;

    repairSampleSize(info);
    if (info->mSampleSize == 0) {
        AVI_LOGW("%s(): framed mp3? with samplesize 0", "generateMPEGCodecData");
        enableBlockMode(track, static_cast<uint32_t>(samplesPerFrame));
    }
}

// Chunks that hold whole blocks of mBlockAlign bytes are timed by blocks. Only streams with junk in
// front are written that way.
void RuvoAVIExtractor::enableBlockMode(Track* track, uint32_t samplesPerFrame) {
    TrackInfo* info = &track->info;
    const uint32_t align = info->mBlockAlign;
    const uint32_t firstSize = track->mTable.chunkSize(0);
    const bool isBlocked = info->mInvalidSampleIdx >= 1 && align >= 1 && align == samplesPerFrame &&
                           firstSize >= 1 && firstSize % align == 0;
    if (!isBlocked) return;
    uint32_t blocks = 0;
    for (size_t i = 0; i < track->mTable.size(); ++i) {
        const uint32_t size = track->mTable.chunkSize(i);
        blocks = wrapAdd32(blocks, size / align + (size % align != 0 ? 1 : 0));
        track->mTable.addBlockTotal(blocks);
    }
    info->mBlockMode = true;
    AVI_LOGW("%s(): Enable block mode align %d total %d", "generateMPEGCodecData",
             static_cast<int>(align), static_cast<int>(blocks));
}

status_t RuvoAVIExtractor::findMP3Header(const Track& track, MpegAudioStart* out) const {
    AVI_TRACE("findMP3Header(): max sample size %u", track.mMaxSampleSize);
    *out = {};
    for (size_t i = 0; i < track.mTable.size(); ++i) {
        sp<ABuffer> sample;
        if (readSample(mReader, track, i, &sample) != OK) {
            AVI_LOG_FAILURE("findMP3Header", ERROR_IO, __LINE__);
            return ERROR_IO;
        }
        logProbedSample(sample, i, track.mTable.offset(i));
        const MpegAudioProbe probe = {i, sample->data(), sample->size(),
                                      i + 1 == track.mTable.size()};
        const status_t err = findMP3HeaderIn(track, probe, out);
        if (err != OK || out->header != 0) return err;
    }
    return OK;
}

status_t RuvoAVIExtractor::findMP3HeaderIn(const Track& track, const MpegAudioProbe& probe,
                                           MpegAudioStart* out) const {
    const int64_t fileOffset = track.mTable.offset(probe.index);
    for (size_t p = 0; p + kMpegAudioHeaderSize <= probe.size; ++p) {
        const uint32_t candidate = U32_AT(probe.data + p);
        size_t frameSize = 0;
        if (!parseMP3Header(candidate, &frameSize)) continue;
        const size_t next = p + frameSize;
        if (probe.isLast && next + kMpegAudioHeaderSize > probe.size) {
            AVI_TRACE("%s(): [%d] Find header/offset/size=(%x/%llx/%zu)", "findMP3Header",
                      static_cast<int>(probe.index), candidate, ull(fileOffset + p), frameSize);
            *out = {probe.index, p, candidate};
            return OK;
        }
        uint32_t test = 0;
        const status_t err = readSuccessor(track, probe, next, &test);
        if (err != OK) return err;
        AVI_TRACE("%s(): [%d] Find header/offset/size/test=(%x/%llx/%zu/%x)", "findMP3Header",
                  static_cast<int>(probe.index), candidate, ull(fileOffset + p), frameSize, test);
        if (((test ^ candidate) & kMpegAudioStreamMask) == 0) {
            *out = {probe.index, p, candidate};
            return OK;
        }
    }
    return OK;
}

// The four bytes that follow a candidate's frame, which may go on in the next sample. A candidate
// is only believed when they agree with it: sync bits alone are common in compressed data.
status_t RuvoAVIExtractor::readSuccessor(const Track& track, const MpegAudioProbe& probe,
                                         size_t position, uint32_t* out) const {
    uint8_t bytes[kMpegAudioHeaderSize] = {};
    const size_t inside =
        position < probe.size ? std::min(sizeof(bytes), probe.size - position) : 0;
    memcpy(bytes, probe.data + (inside > 0 ? position : 0), inside);
    const size_t missing = sizeof(bytes) - inside;
    const size_t following = probe.index + 1;
    if (missing > 0 && track.mTable.chunkSize(following) < missing) {
        bytes[0] = 0;
    } else if (missing > 0 &&
               !mReader.readExactly(track.mTable.offset(following), bytes + inside, missing)) {
        AVI_LOG_FAILURE("findMP3Header", ERROR_IO, __LINE__);
        return ERROR_IO;
    }
    *out = U32_AT(bytes);
    return OK;
}

}  // namespace android
