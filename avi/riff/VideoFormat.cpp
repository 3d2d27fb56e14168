// SPDX-License-Identifier: Apache-2.0
#include "riff/VideoFormat.h"

#include <media/NdkMediaFormatRuvo.h>
#include <media/stagefright/foundation/MediaDefs.h>

#include "codec/AvcNalUnits.h"
#include "codec/AvcRecord.h"
#include "riff/CodecTables.h"
#include "support/ByteReader.h"
#include "support/HexDump.h"
#include "support/Log.h"
#include "support/Mime.h"

namespace android {

namespace {

// u32 size | i32 width | i32 height | u16 planes | u16 bitCount | fourcc compression |
// u32 sizeImage | u32 xPelsPerMeter | u32 yPelsPerMeter | u32 clrUsed | u32 clrImportant
struct BitmapInfo {
    uint32_t size;
    int32_t width, height;
    uint16_t planes, bitCount;
    FourCC compression;
    uint32_t sizeImage, xPelsPerMeter, yPelsPerMeter, clrUsed, clrImportant;
};

BitmapInfo readBitmapInfo(const StreamFormat& format) {
    ByteReader in(format.header, kBitmapInfoSize);
    BitmapInfo b = {};
    in.u32(&b.size);
    in.i32(&b.width);
    in.i32(&b.height);
    in.u16(&b.planes);
    in.u16(&b.bitCount);
    in.code(&b.compression);
    for (uint32_t* field :
         {&b.sizeImage, &b.xPelsPerMeter, &b.yPelsPerMeter, &b.clrUsed, &b.clrImportant}) {
        in.u32(field);
    }
    return b;
}

void logBitmapInfo(const BitmapInfo& b, const char* mime) {
    AVI_LOGV("==== AVIBitmapInfo ====");
    AVI_LOGV("   size:          %u", b.size);
    AVI_LOGD("   width:         %u", static_cast<unsigned>(b.width));
    AVI_LOGD("   height:        %u", static_cast<unsigned>(b.height));
    AVI_LOGV("   planes:        %u", b.planes);
    AVI_LOGV("   bitCount:      %u", b.bitCount);
    AVI_LOGD("   compression:   %s(%s)", FourCCText(b.compression).text, mime);
    AVI_LOGV("   sizeImage:     %u", b.sizeImage);
    AVI_LOGV("   xPelsPerMeter: %u", b.xPelsPerMeter);
    AVI_LOGV("   yPelsPerMeter: %u", b.yPelsPerMeter);
    AVI_LOGV("   clrUsed:       %u", b.clrUsed);
    AVI_LOGV("   clrImportant:  %u", b.clrImportant);
}

// A configuration record settles the framing of the samples; anything else counts as start codes.
void publishAvcRecord(Track* track, const sp<ABuffer>& extra) {
    TrackInfo* info = &track->info;
    info->mAVCStyle =
        hasPictureParameterSet(extra->data(), extra->size()) ? kStartCodes : kLengthPrefixes;
    AVI_LOGV("%s(): mAVCStyle = %d", "parseSTRF", info->mAVCStyle);
    if (info->mAVCStyle == kStartCodes) return;

    if (parseAVCCodecSpecificData(extra->data(), extra->size()) != OK) {
        AVI_LOGE("%s(): Not avc codec specific data", "parseSTRF");
        info->mAVCStyle = kStartCodes;
    }
    constexpr size_t kLengthSizeAt = 4;
    const uint8_t lengthSize = extra->size() > kLengthSizeAt ? extra->data()[kLengthSizeAt] : 0;
    info->mAVCSizeLength = (lengthSize & 3) + 1;
    AVI_LOGD("%s(): mAVCSizeLength = %d", "parseSTRF", info->mAVCSizeLength);
    if (info->mAVCStyle == kLengthPrefixes) {
        AVI_LOGV("%s(): set kKeyAVCC data(%zu)", "parseSTRF", extra->size());
        hexDump(extra->data(), extra->size());
        AMediaFormat_setBuffer(track->meta.get(), AMEDIAFORMAT_KEY_CSD_AVC, extra->data(),
                               extra->size());
    }
}

// Of AVC and HEVC streams only parameter sets between start codes are of use later on.
void keepByteStreamParameterSets(Track* track) {
    const sp<ABuffer> extra = track->mCodecData;
    if (findStartCode(extra->data(), extra->size()) < 0) {
        AVI_LOGW("%s(): Didn't find NAL(nalStart1 %d) in bad strfData(%zuB):", "parseSTRF", -1,
                 extra->size());
        AVI_LOGW("%s(): Didn't find NAL(nalStart2 %d) in bad strfData(%zuB):", "parseSTRF", 0,
                 extra->size());
        track->mCodecData = nullptr;
        return;
    }
    if (track->mIsHEVC) {
        AVI_LOGV("%s(): set HVCC csd raw data @L%d:", "parseSTRF", __LINE__);
        hexDump(extra->data(), extra->size());
        AMediaFormat_setBuffer(track->meta.get(), AMEDIAFORMAT_KEY_CSD_HEVC, extra->data(),
                               extra->size());
    }
}

void publishWindowsMediaHeader(Track* track) {
    const sp<ABuffer>& extra = track->mCodecData;
    AVI_LOGV("WMV/VC1 extra data in STRF(%zu):", extra->size());
    hexDump(extra->data(), extra->size());
    AMediaFormat_setBuffer(track->meta.get(), AMEDIAFORMAT_KEY_CSD_0, extra->data(), extra->size());
}

void readAvcRecord(FileReader& reader, const StreamFormat& format, Track* track) {
    const size_t extraSize = format.size - kBitmapInfoSize;
    sp<ABuffer> extra;
    if (extraSize == 0 || reader.readBuffer(format.offset + static_cast<int64_t>(kBitmapInfoSize),
                                            extraSize, &extra) != OK) {
        return;
    }
    publishAvcRecord(track, extra);
}

}  // namespace

bool isSubtitleFormat(const StreamFormat& format) {
    const FourCC compression = readBitmapInfo(format).compression;
    return compression == fourcc("DXSB") || compression == fourcc("DXSA");
}

void applyBitmapInfo(FileReader& reader, const StreamFormat& format, AMediaFormat* fileMeta,
                     Track* track) {
    AMediaFormat* meta = track->meta.get();
    const BitmapInfo b = readBitmapInfo(format);
    const char* mime = videoFourCCToMime(b.compression);
    AMediaFormat_setString(meta, AMEDIAFORMAT_KEY_MIME, mime);
    track->info.mCompression = b.compression;
    track->mIsAVC = isMime(mime, MEDIA_MIMETYPE_VIDEO_AVC);
    track->mIsHEVC = isMime(mime, MEDIA_MIMETYPE_VIDEO_HEVC);
    track->mNeedCodecData = needsCodecData(b.compression);
    AMediaFormat_setInt32(meta, AMEDIAFORMAT_KEY_WIDTH, b.width);
    AMediaFormat_setInt32(meta, AMEDIAFORMAT_KEY_HEIGHT, b.height);
    logBitmapInfo(b, mime);
    if (isMime(mime, MEDIA_MIMETYPE_AVI_VIDEO_UNKNOWN)) {
        AMediaFormat_setInt32(fileMeta, AMEDIAFORMAT_KEY_HAS_UNSUPPORT_VIDEO, 1);
    }
    if (track->mIsAVC) readAvcRecord(reader, format, track);
    if (track->mCodecData == nullptr) return;
    if (track->mIsAVC || track->mIsHEVC) keepByteStreamParameterSets(track);
    if (isMime(mime, MEDIA_MIMETYPE_VIDEO_WMV) || isMime(mime, MEDIA_MIMETYPE_VIDEO_VC1)) {
        publishWindowsMediaHeader(track);
    }
}

}  // namespace android
