// SPDX-License-Identifier: Apache-2.0
#include "riff/VideoProperties.h"

#include "support/ByteReader.h"
#include "support/HexDump.h"
#include "support/Log.h"

namespace android {

namespace {

constexpr int64_t kMaxPropertiesSize = 0xFFFFFFE;
constexpr size_t kFieldDescriptorSize = 32;

// u32 token | u32 standard | u32 refreshRate | u32 hTotal | u32 vTotal |
// u16 aspect height | u16 aspect width | u32 frameWidth | u32 frameHeight | u32 fields
struct VideoProperties {
    uint32_t token, standard, refreshRate, hTotal, vTotal;
    uint16_t aspectHeight, aspectWidth;
    uint32_t frameWidth, frameHeight, fields;
};

bool readVideoProperties(ByteReader* in, VideoProperties* out) {
    VideoProperties p;
    if (!in->u32(&p.token) || !in->u32(&p.standard) || !in->u32(&p.refreshRate) ||
        !in->u32(&p.hTotal) || !in->u32(&p.vTotal) || !in->u16(&p.aspectHeight) ||
        !in->u16(&p.aspectWidth) || !in->u32(&p.frameWidth) || !in->u32(&p.frameHeight) ||
        !in->u32(&p.fields)) {
        return false;
    }
    *out = p;
    return true;
}

void logVideoProperties(const VideoProperties& p) {
    AVI_LOGV("VideoFormatToken:    %d", static_cast<int>(p.token));
    AVI_LOGV("VideoStandard:       %d", static_cast<int>(p.standard));
    AVI_LOGV("VerticalRefreshRate: %d", static_cast<int>(p.refreshRate));
    AVI_LOGV("HTotalInT:           %d", static_cast<int>(p.hTotal));
    AVI_LOGV("VTotalInLines:       %d", static_cast<int>(p.vTotal));
    AVI_LOGV("FrameAspectRatio_H:  %d", p.aspectHeight);
    AVI_LOGV("FrameAspectRatio_W:  %d", p.aspectWidth);
    AVI_LOGV("FrameWidthInPixels:  %d", static_cast<int>(p.frameWidth));
    AVI_LOGV("FrameHeightInLines:  %d", static_cast<int>(p.frameHeight));
    AVI_LOGV("FieldPerFrame:       %d", static_cast<int>(p.fields));
}

// Eight u32, in this order. REQUIRES: `in` holds `fields` whole descriptors.
void logFieldDescriptors(ByteReader in, uint32_t fields) {
    static constexpr const char* kNames[] = {
        "CompressedBMHeight:", "CompressedBMWidth:", "ValidBMHeight:",   "ValidBMWidth:",
        "ValidBMXOffset:",     "ValidBMYOffset:",    "VideoXOffsetInT:", "VideoYValidStartLine:",
    };
    for (uint32_t field = 0; field < fields && extractLogEnabled(); ++field) {
        AVI_LOGV("Field-%u:", field);
        for (const char* name : kNames) {
            uint32_t value = 0;
            in.u32(&value);
            AVI_LOGV("%-22s%d", name, static_cast<int>(value));
        }
    }
}

void publishAspectRatio(uint16_t width, uint16_t height, AMediaFormat* meta) {
    if (width == 0 || height == 0) return;
    AMediaFormat_setInt32(meta, AMEDIAFORMAT_KEY_SAR_WIDTH, width);
    AMediaFormat_setInt32(meta, AMEDIAFORMAT_KEY_SAR_HEIGHT, height);
    AVI_LOGD("set kKeySARWidth %d, kKeySARHeight %d", width, height);
}

}  // namespace

void parseVPRP(FileReader& reader, int64_t start, int64_t end, Track* track) {
    const int64_t size = end - start;
    AVI_LOGV("==== parseVPRP(pos: %lld, end: %lld, size: %zd) ====", ll(start), ll(end),
             static_cast<ssize_t>(size));
    sp<ABuffer> chunk;
    if (size == 0 || size > kMaxPropertiesSize ||
        reader.readBuffer(start, static_cast<size_t>(size), &chunk) != OK) {
        return;
    }
    hexDump(chunk->data(), chunk->size());

    VideoProperties properties;
    ByteReader in(chunk->data(), chunk->size());
    if (readVideoProperties(&in, &properties)) {
        logVideoProperties(properties);
        // A writer that cuts its field descriptors short cannot be trusted with the ratio either.
        if (properties.fields <= in.remaining() / kFieldDescriptorSize) {
            logFieldDescriptors(in, properties.fields);
            publishAspectRatio(properties.aspectWidth, properties.aspectHeight, track->meta.get());
        }
    }
    AVI_LOGV("%s(): end...", "parseVPRP");
}

}  // namespace android
