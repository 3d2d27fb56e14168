// SPDX-License-Identifier: Apache-2.0
#include "riff/StreamFormat.h"

#include <media/stagefright/MediaErrors.h>

#include <optional>

#include "riff/AudioFormat.h"
#include "riff/VideoFormat.h"
#include "support/HexDump.h"
#include "support/Log.h"
#include "support/Mime.h"

namespace android {

namespace {

// Smallest rests of a chunk that are taken for codec-private bytes.
constexpr size_t kMinAudioRest = 3;
constexpr size_t kMinVideoRest = 4;

constexpr size_t kExtraSizeField = 2;

// Codec-private bytes, counted from the beginning of the payload.
struct ExtraData {
    size_t offset = 0;
    size_t size = 0;
};

// The first bytes of AAC extra data are its AudioSpecificConfig (ISO/IEC 14496-3).
void logAudioSpecificConfig(const uint8_t* data) {
    AVI_LOGV("%s(): profile %u, samplingFreqIndex %u, channelConfig %u", "parseSTRF",
             static_cast<uint8_t>((data[0] >> 3) + 0xFF), (data[0] & 7) << 1 | data[1] >> 7,
             data[1] >> 3 & 15);
}

// The extra data of a wave format, whose size stands in front of it; nothing when that size is
// impossible. `ok` is false when the size cannot be read.
std::optional<ExtraData> audioExtraData(FileReader& reader, const StreamFormat& format,
                                        Track* track, bool* ok) {
    const size_t rest = format.size - kWaveFormatSize;
    uint8_t bytes[kExtraSizeField];
    *ok = reader.readExactly(format.offset + int64_t{kWaveFormatSize}, bytes, sizeof(bytes));
    if (!*ok) return std::nullopt;
    const size_t size = size_t{bytes[0]} | size_t{bytes[1]} << 8;
    // Compared with all bytes after the header, so that writers which count the size field itself
    // are accepted; a rest of 64 KiB and more counts by its low 16 bits.
    if (((rest & ~size_t{0xFFFF}) | size) > rest) return std::nullopt;
    track->info.mSize = static_cast<uint16_t>(size);
    AVI_LOGV("%s(): aHeader.size = %d", "parseSTRF", track->info.mSize);
    return ExtraData{kWaveFormatSize + kExtraSizeField, size};
}

// Keeps the codec-private bytes in the track.
status_t keepExtraData(FileReader& reader, const StreamFormat& format, const ExtraData& extra,
                       Track* track) {
    sp<ABuffer> data;
    const int64_t offset = format.offset + static_cast<int64_t>(extra.offset);
    const status_t err = reader.readBuffer(offset, extra.size, &data);
    if (err == ERROR_IO) return fail("parseSTRF", err, __LINE__);
    if (err != OK) return err;
    track->mCodecData = data;
    hexDump(data->data(), data->size());
    if (track->mIsAudio && data->size() >= 2) logAudioSpecificConfig(data->data());
    return OK;
}

// What is too short or contradicts itself is skipped.
status_t readExtraData(FileReader& reader, const StreamFormat& format, size_t headerSize,
                       Track* track) {
    const size_t rest = format.size - headerSize;
    if (rest == 0) return OK;
    std::optional<ExtraData> extra;
    bool ok = true;
    if (track->mIsVideo && rest >= kMinVideoRest) extra = ExtraData{headerSize, rest};
    if (track->mIsAudio && rest >= kMinAudioRest) {
        extra = audioExtraData(reader, format, track, &ok);
    }
    if (!ok) return fail("parseSTRF", status_t{ERROR_IO}, __LINE__);
    if (extra) return keepExtraData(reader, format, *extra, track);
    AVI_LOGW("%s(): skip invalid codec data %zd bytes", "parseSTRF", static_cast<ssize_t>(rest));
    return OK;
}

}  // namespace

status_t parseSTRF(FileReader& reader, int64_t start, int64_t end, AviFile* file, Track* track) {
    AMediaFormat_setString(track->meta.get(), AMEDIAFORMAT_KEY_MIME, kMimeUndecided);

    StreamFormat format;
    format.offset = start;
    format.size = static_cast<size_t>(end - start);
    const size_t headerSize = track->mIsAudio ? kWaveFormatSize : kBitmapInfoSize;
    if (format.size < headerSize) return fail("parseSTRF", status_t{ERROR_MALFORMED}, __LINE__);
    if (track->mIsVideo && format.size > kBitmapInfoSize) {
        AVI_LOGD("%s(): Video has %zdB extra config data.", "parseSTRF",
                 static_cast<ssize_t>(format.size - kBitmapInfoSize));
    }
    if (!reader.readExactly(start, format.header, headerSize)) {
        return fail("parseSTRF", status_t{ERROR_IO}, __LINE__);
    }
    if (track->mIsVideo && isSubtitleFormat(format)) {
        track->mIsSubtitle = true;
        track->mIsVideo = false;
    }
    // Audio durations are clamped to the video's, which is known once the video track is finished:
    // so it must be finished first.
    file->tracks.putVideoFirst(track);

    const status_t err = readExtraData(reader, format, headerSize, track);
    if (err != OK) return err;
    if (track->mIsAudio) {
        applyWaveFormat(format, file, track);
    } else {
        applyBitmapInfo(reader, format, file->meta.get(), track);
    }
    return OK;
}

}  // namespace android
