// SPDX-License-Identifier: Apache-2.0
//
// The optional chunks of a stream list that describe it further: its name, which may tell the
// language, and the video properties header of OpenDML files, which tells the aspect ratio.
#include <string_view>

#include "RuvoAVIExtractor.h"
#include "support/ByteReader.h"
#include "support/HexDump.h"
#include "support/Log.h"

namespace android {

namespace {

constexpr int64_t kMaxPropertySize = 0xFFFFFFE;
constexpr size_t kFieldDescriptorSize = 32;

struct LanguageHint {
    std::string_view text;  // in the stream's name
    const char* language;   // ISO 639-2
};

// In the order in which they are looked for.
constexpr LanguageHint kLanguageHints[] = {
    {"en-", "eng"}, {"fr-", "fre"}, {"de-", "deu"}, {"es-", "spa"}, {"jp-", "jpn"}, {"zh-", "chi"},
};

const char* languageFromName(std::string_view name) {
    for (const LanguageHint& hint : kLanguageHints) {
        if (name.find(hint.text) != std::string_view::npos) return hint.language;
    }
    return "und";
}

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

}  // namespace

status_t RuvoAVIExtractor::parseSTRN(int64_t start, int64_t end) {
    const char* language = "und";
    const int64_t size = end - start;
    sp<ABuffer> name;
    if (size >= 1 && size <= kMaxPropertySize &&
        mReader.readBuffer(start, static_cast<size_t>(size), &name) == OK) {
        // The text may end before the chunk does.
        const char* text = reinterpret_cast<const char*>(name->data());
        const std::string_view view(text, strnlen(text, name->size()));
        language = languageFromName(view);
        AVI_LOGV("strn '%.*s', language '%s'", static_cast<int>(view.size()), view.data(),
                 language);
    }
    AMediaFormat_setString(currentTrack()->meta.get(), AMEDIAFORMAT_KEY_LANGUAGE, language);
    return OK;
}

status_t RuvoAVIExtractor::parseVPRP(int64_t start, int64_t end) {
    const int64_t size = end - start;
    AVI_LOGV("==== parseVPRP(pos: %lld, end: %lld, size: %zd) ====", ll(start), ll(end),
             static_cast<ssize_t>(size));
    sp<ABuffer> chunk;
    if (size == 0 || size > kMaxPropertySize ||
        mReader.readBuffer(start, static_cast<size_t>(size), &chunk) != OK) {
        return OK;
    }
    hexDump(chunk->data(), chunk->size());

    VideoProperties properties;
    ByteReader in(chunk->data(), chunk->size());
    if (readVideoProperties(&in, &properties)) {
        logVideoProperties(properties);
        // A writer that cuts its field descriptors short cannot be trusted with the ratio either.
        if (properties.fields <= in.remaining() / kFieldDescriptorSize) {
            logFieldDescriptors(in, properties.fields);
            publishAspectRatio(properties.aspectWidth, properties.aspectHeight);
        }
    }
    AVI_LOGV("%s(): end...", "parseVPRP");
    return OK;
}

void RuvoAVIExtractor::publishAspectRatio(uint16_t width, uint16_t height) {
    if (width == 0 || height == 0) return;
    AMediaFormat* meta = currentTrack()->meta.get();
    AMediaFormat_setInt32(meta, AMEDIAFORMAT_KEY_SAR_WIDTH, width);
    AMediaFormat_setInt32(meta, AMEDIAFORMAT_KEY_SAR_HEIGHT, height);
    AVI_LOGD("set kKeySARWidth %d, kKeySARHeight %d", width, height);
}

}  // namespace android
