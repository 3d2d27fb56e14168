// SPDX-License-Identifier: Apache-2.0
//
// The stream format: reads the header of either kind and the codec-private bytes behind it, and
// hands them to the audio or video side.
#include "riff/StreamFormat.h"

#include <string.h>

#include "RuvoAVIExtractor.h"
#include "support/ByteReader.h"
#include "support/HexDump.h"
#include "support/Log.h"
#include "support/Mime.h"

namespace android {

namespace {

// Smallest rests of a chunk that are taken for codec-private bytes.
constexpr size_t kMinAudioRest = 3;
constexpr size_t kMinVideoRest = 4;

constexpr size_t kCompressionOffset = 16;

// The first bytes of AAC extra data are its AudioSpecificConfig (ISO/IEC 14496-3).
void logAudioSpecificConfig(const uint8_t* data) {
    AVI_LOGV("%s(): profile %u, samplingFreqIndex %u, channelConfig %u", "parseSTRF",
             static_cast<uint8_t>((data[0] >> 3) + 0xFF), (data[0] & 7) << 1 | data[1] >> 7,
             data[1] >> 3 & 15);
}

status_t failure(status_t status, int line) {
    fail("parseSTRF", status, line);
    return status;
}

}  // namespace

status_t RuvoAVIExtractor::parseSTRF(int64_t offset, int64_t end) {
    Track* track = currentTrack();
    AMediaFormat_setString(track->meta.get(), AMEDIAFORMAT_KEY_MIME, kMimeUndecided);

    StreamFormat format;
    format.offset = offset;
    format.size = static_cast<size_t>(end - offset);
    format.headerSize = track->mIsAudio ? kWaveFormatSize : kBitmapInfoSize;
    if (format.size < format.headerSize) return failure(ERROR_MALFORMED, __LINE__);
    if (track->mIsVideo && format.size > kBitmapInfoSize) {
        AVI_LOGD("%s(): Video has %zdB extra config data.", "parseSTRF",
                 static_cast<ssize_t>(format.size - kBitmapInfoSize));
    }
    if (!mReader.readExactly(offset, format.header, format.headerSize)) {
        return failure(ERROR_IO, __LINE__);
    }
    detectSubtitle(format);
    putVideoFirst();

    const status_t err = readExtraData(&format);
    if (err != OK) return err;
    if (track->mIsAudio) {
        applyWaveFormat(format);
    } else {
        applyBitmapInfo(format);
    }
    return OK;
}

// Subtitles are stored as a video stream of their own compression.
void RuvoAVIExtractor::detectSubtitle(const StreamFormat& format) {
    Track* track = currentTrack();
    if (!track->mIsVideo) return;
    FourCC compression{};
    ByteReader in(format.header, format.headerSize);
    in.skip(kCompressionOffset);
    in.code(&compression);
    if (compression != fourcc("DXSB") && compression != fourcc("DXSA")) return;
    track->mIsSubtitle = true;
    track->mIsVideo = false;
}

// Audio durations are clamped to the video's, which is known once the video track is finished: so
// it must be finished first.
void RuvoAVIExtractor::putVideoFirst() {
    if (mCurrentTrack == mTracks.begin() || !mCurrentTrack->mIsVideo || mTracks.front().mIsVideo) {
        return;
    }
    mTracks.splice(mTracks.begin(), mTracks, mCurrentTrack);
    AVI_LOGD("%s(): Put video track on the front.", "parseSTRF");
}

// Reads the size of the extra data behind a wave format; the data begins behind it when the size is
// possible. False when it cannot be read.
bool RuvoAVIExtractor::readAudioExtraSize(StreamFormat* format, size_t rest, size_t* out) {
    uint8_t bytes[2];
    if (!mReader.readExactly(format->offset + int64_t{kWaveFormatSize}, bytes, sizeof(bytes)))
        return false;
    *out = size_t{bytes[0]} | size_t{bytes[1]} << 8;
    // Compared with all bytes behind the header, so that writers which count the size field itself
    // are accepted; a rest of 64 KiB and more counts by its low 16 bits.
    if (((rest & ~size_t{0xFFFF}) | *out) > rest) return true;
    format->headerSize += sizeof(bytes);
    currentTrack()->info.mSize = static_cast<uint16_t>(*out);
    AVI_LOGV("%s(): aHeader.size = %d", "parseSTRF", currentTrack()->info.mSize);
    return true;
}

// Keeps the codec-private bytes in the track. What is too short or contradicts itself is skipped.
status_t RuvoAVIExtractor::readExtraData(StreamFormat* format) {
    Track* track = currentTrack();
    const size_t rest = format->size - format->headerSize;
    if (rest == 0) return OK;

    size_t extraSize = rest;
    bool valid = track->mIsVideo && rest >= kMinVideoRest;
    if (track->mIsAudio && rest >= kMinAudioRest) {
        if (!readAudioExtraSize(format, rest, &extraSize)) return failure(ERROR_IO, __LINE__);
        valid = format->headerSize > kWaveFormatSize;
    }
    if (!valid) {
        AVI_LOGW("%s(): skip invalid codec data %zd bytes", "parseSTRF",
                 static_cast<ssize_t>(rest));
        return OK;
    }

    sp<ABuffer> data;
    const status_t err = mReader.readBuffer(
        format->offset + static_cast<int64_t>(format->headerSize), extraSize, &data);
    if (err == ERROR_IO) return failure(err, __LINE__);
    if (err != OK) return err;
    track->mCodecData = data;
    hexDump(data->data(), data->size());
    if (track->mIsAudio && data->size() >= 2) logAudioSpecificConfig(data->data());
    return OK;
}

}  // namespace android
