// SPDX-License-Identifier: Apache-2.0
//
// Codec configuration of a video track from its first samples: settles how AVC samples are framed,
// gives every track an aspect ratio, and hands on to the codec's own file.
#include "codec/VideoCodecData.h"

#include <media/stagefright/foundation/MediaDefs.h>
#include <string.h>

#include "codec/AvcCodecData.h"
#include "codec/HevcCodecData.h"
#include "codec/Mpeg2CodecData.h"
#include "support/Log.h"
#include "support/Mime.h"

namespace android {

namespace {

bool hasAspectRatio(AMediaFormat* meta) {
    int32_t value = 0;
    if (AMediaFormat_getInt32(meta, AMEDIAFORMAT_KEY_SAR_WIDTH, &value)) return value != 0;
    return AMediaFormat_getInt32(meta, AMEDIAFORMAT_KEY_SAR_HEIGHT, &value) && value != 0;
}

// Key samples begin with parameter sets in either form more often than not; the others tell.
void probeAvcFraming(FileReader& reader, Track* track) {
    constexpr int32_t kMinProbedSize = 5;  // sizes of 2 GiB and more count as negative
    static constexpr uint8_t kStartCode[] = {0, 0, 0, 1};
    const SampleTable& table = track->mTable;
    for (size_t i = 0; i < table.size(); ++i) {
        const bool isKeySample = table.syncFlag(i) == 1;
        const auto size = static_cast<int32_t>(table.chunkSize(i));
        if (isKeySample || size < kMinProbedSize) continue;
        uint8_t bytes[sizeof(kStartCode)];
        if (!reader.readExactly(table.offset(i), bytes, sizeof(bytes))) continue;
        AVI_LOGW("%s(): Start code + NALU style H264 from sample %zu", "generateVideoCodecData", i);
        const bool startCodes = memcmp(bytes, kStartCode, sizeof(bytes)) == 0;
        track->info.mAVCStyle = startCodes ? kStartCodes : kLengthPrefixes;
        break;
    }
    AVI_LOGW("%s(): Length + NALU style H264", "generateVideoCodecData");
}

// The framework drops keys that follow a ratio without a value: a track always has one.
void checkSampleAspectRatio(Track* track) {
    AMediaFormat* meta = track->meta.get();
    if (!track->mIsVideo || hasAspectRatio(meta)) return;
    AMediaFormat_setInt32(meta, AMEDIAFORMAT_KEY_SAR_WIDTH, 1);
    AMediaFormat_setInt32(meta, AMEDIAFORMAT_KEY_SAR_HEIGHT, 1);
    AVI_LOGD("%s(): No SAR found in container. Set sarWidth : sarHeight(1 : 1) as default.",
             "checkSampleAspectRatio");
}

}  // namespace

void generateVideoCodecData(FileReader& reader, Track* track) {
    const char* mime = trackMime(*track);
    track->mBadTrack = track->mTable.size() == 0;
    if (track->mBadTrack || track->mIsSubtitle) return;
    if (track->mIsAVC && track->info.mAVCStyle == kLengthPrefixes) probeAvcFraming(reader, track);

    AVI_LOGV("generateCodecData for [%s]:", mime);
    checkSampleAspectRatio(track);
    if (track->mIsAVC) {
        generateAvcCodecData(reader, track);
    } else if (track->mIsHEVC) {
        generateHevcCodecData(reader, track);
    } else if (isMime(mime, MEDIA_MIMETYPE_VIDEO_MPEG2)) {
        generateMPEG2CodecData(reader, track);
    }
}

}  // namespace android
