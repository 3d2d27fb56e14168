// SPDX-License-Identifier: Apache-2.0
//
// Configuration of AVC tracks whose samples carry their parameter sets between start codes.
#include "codec/AvcCodecData.h"

#include <media/stagefright/MediaErrors.h>
#include <media/stagefright/foundation/MediaDefs.h>
#include <media/stagefright/foundation/avc_utils.h>

#include <algorithm>
#include <memory>

#include "codec/AvcNalUnits.h"
#include "codec/AvcRecord.h"
#include "codec/ReadSample.h"
#include "codec/SequenceParameterSet.h"
#include "support/HexDump.h"
#include "support/Log.h"

namespace android {

namespace {

constexpr size_t kDumpedBytes = 64;

struct Dimensions {
    int32_t width = 0;
    int32_t height = 0;
    int32_t sarWidth = 0;
    int32_t sarHeight = 0;
};

void publishAvcConfig(AMediaFormat* meta, const sp<ABuffer>& record, const Dimensions& d) {
    AMediaFormat_setString(meta, AMEDIAFORMAT_KEY_MIME, MEDIA_MIMETYPE_VIDEO_AVC);
    AMediaFormat_setBuffer(meta, AMEDIAFORMAT_KEY_CSD_AVC, record->data(), record->size());
    AMediaFormat_setInt32(meta, AMEDIAFORMAT_KEY_WIDTH, d.width);
    AMediaFormat_setInt32(meta, AMEDIAFORMAT_KEY_HEIGHT, d.height);
    const uint8_t profile = record->data()[1];
    const uint8_t level = record->data()[3];
    if (d.sarWidth > 1 || d.sarHeight >= 2) {
        AMediaFormat_setInt32(meta, AMEDIAFORMAT_KEY_SAR_WIDTH, d.sarWidth);
        AMediaFormat_setInt32(meta, AMEDIAFORMAT_KEY_SAR_HEIGHT, d.sarHeight);
        AVI_LOGD("found AVC codec config (%d x %d, %s-profile level %d.%d) SAR %d : %d", d.width,
                 d.height, AVCProfileToString(profile), level / 10, level % 10, d.sarWidth,
                 d.sarHeight);
    } else {
        AVI_LOGD("found AVC codec config (%d x %d, %s-profile level %d.%d)", d.width, d.height,
                 AVCProfileToString(profile), level / 10, level % 10);
    }
}

void logRecord(const sp<ABuffer>& record) {
    const size_t shown = std::min(record->size(), kMaxLoggedBytes);
    const std::unique_ptr<char[]> text = hexText(record->data(), shown, HexCase::kUpper);
    if (text == nullptr) {
        AVI_LOGE("malloc(%zu) falied!", 3 * record->size() + 1);
        return;
    }
    AVI_LOGD("%s", text.get());
}

// Builds and publishes the record from the parameter sets in `range`.
void makeAvcConfig(AMediaFormat* meta, const sp<ABuffer>& range) {
    const sp<ABuffer> sps = findNALUnit(range->data(), range->size(), kNalSequenceParameterSet);
    if (sps == nullptr || !isSaneSequenceParameterSet(sps->data(), sps->size())) {
        AVI_LOGE("%s(): No SPS found!!! Try to play it anyway. @L%d", "generateAvcCodecData",
                 __LINE__);
        AVI_LOGV("%s(): MakeAVCCodecSpecificData ret %d @L%d", "generateAvcCodecData",
                 static_cast<int>(ERROR_MALFORMED), __LINE__);
        return;
    }
    Dimensions d;
    FindAVCDimensions(sps, &d.width, &d.height, &d.sarWidth, &d.sarHeight);
    AVI_LOGD("AVC Dimensions: %d x %d (%d : %d)", d.width, d.height, d.sarWidth, d.sarHeight);

    const sp<ABuffer> pps = findNALUnit(range->data(), range->size(), kNalPictureParameterSet);
    if (pps == nullptr) {
        AVI_LOGE("%s(): No PPS found!!! Try to play it anyway. @L%d", "generateAvcCodecData",
                 __LINE__);
        return;
    }
    const sp<ABuffer> record = makeAvcRecord(sps, pps);
    if (record == nullptr) return;
    AVI_LOGD("avcC(%zuB):", record->size());
    logRecord(record);
    publishAvcConfig(meta, record, d);
}

}  // namespace

void generateAvcCodecData(FileReader& reader, Track* track) {
    sp<ABuffer> sample;
    logFirstSample("generateAvcCodecData", *track);
    if (readSample(reader, *track, 0, &sample) != OK) {
        track->mBadTrack = true;
        fail("generateAvcCodecData", ERROR_IO, __LINE__);
        return;
    }
    const uint8_t* data = sample->data();
    const size_t size = sample->size();
    hexDump(data, std::min(size, kDumpedBytes));
    const size_t spsAt = findSequenceParameterSet(data, size);
    AVI_LOGV("%s(): AVCPos %d", "generateAvcCodecData", static_cast<int>(spsAt));

    const IdrSearch idr = findFirstIdr(data, size);
    if (!idr.found) {
        // Normal for length-prefixed samples, whose record the stream format had.
        AVI_LOGE("%s(): Can't not find start code, offsetStart %d, prefixLen %d",
                 "generateAvcCodecData", static_cast<int>(idr.searchStart),
                 static_cast<int>(idr.prefixLength));
        return;
    }
    AVI_LOGV("%s(): Find I-frame done", "generateAvcCodecData");
    AVI_LOGV("%s(): NAL start @offset %d.", "generateAvcCodecData", static_cast<int>(idr.position));

    // The length stays that from the start of the sample, so that a delimiter in front of the
    // parameter sets does not cut them off.
    sample->setRange(spsAt + idr.position < sample->capacity() ? spsAt : 0, idr.position);
    track->mCodecData = nullptr;  // these parameter sets take the place of the stream format's
    hexDump(sample->data(), sample->size());
    makeAvcConfig(track->meta.get(), sample);
}

}  // namespace android
