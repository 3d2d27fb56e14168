// SPDX-License-Identifier: Apache-2.0
#include "codec/DtsHeaders.h"

#include <media/stagefright/MediaErrors.h>
#include <media/stagefright/foundation/ByteUtils.h>
#include <media/stagefright/foundation/MediaDefs.h>

#include <algorithm>

#include "support/GracefulBits.h"
#include "support/Log.h"
#include "support/PaddedBytes.h"

namespace android {

namespace {

constexpr uint32_t kCoreSync = 0x7FFE8001;
constexpr uint32_t kCoreSync14Bit = 0x1FFFE800;
constexpr uint32_t kSubstreamSync = 0x64582025;
constexpr size_t kSyncSize = 4;

// What an extension substream holds, by the word behind its header.
constexpr uint32_t kLosslessAsset = 0x41A29547;
constexpr uint32_t kLowBitRateAsset = 0x0A801921;
constexpr uint32_t kSubstreamCore = 0x02B09261;

constexpr uint32_t kInvalidRate = 0xFFFFFFFF;
constexpr uint32_t kCoreRates[16] = {
    kInvalidRate, 8000,         16000, 32000, kInvalidRate, kInvalidRate, 11025,       22050, 44100,
    kInvalidRate, kInvalidRate, 12000, 24000, 48000,        kInvalidRate, kInvalidRate};
constexpr uint32_t kSubstreamRates[16] = {8000,  16000, 32000,  64000,  128000, 22050,
                                          44100, 88200, 176400, 352800, 12000,  24000,
                                          48000, 96000, 192000, 384000};

// By AMODE; mono is played as stereo.
constexpr uint32_t kCoreChannels[16] = {2, 2, 2, 2, 2, 3, 3, 4, 4, 5, 6, 6, 6, 7, 8, 8};

constexpr char kMimeDtsHd[] = "audio/vnd.dts.hd";
constexpr char kMimeDtsExpress[] = "audio/vnd.dts.hd;profile=lbr";

enum DtsType : size_t {
    kCore = 0,
    kExpress = 1,  // low bit rate
    kHd = 2,
};

struct DtsFormat {
    DtsType type = kCore;
    uint32_t channels = 2;
    uint32_t rate = 48000;
};

const char* mimeOf(DtsType type) {
    if (type == kHd) return kMimeDtsHd;
    return type == kExpress ? kMimeDtsExpress : MEDIA_MIMETYPE_AUDIO_DTS;
}

struct SubstreamHeader {
    bool isLarge;
    size_t size;
    size_t assetSizeBits;
};

SubstreamHeader readSubstreamHeader(const PaddedBytes& frame) {
    const uint32_t b5 = frame.byteAt(5);
    SubstreamHeader header;
    header.isLarge = (b5 & 0x20) != 0;
    const uint32_t word = (b5 & 0x1F) << 8 | frame.byteAt(6);
    // nuExtSSHeaderSize: 8 bits, or 12 of a large header.
    header.size = (word >> (header.isLarge ? 1 : 5)) + 1;
    header.assetSizeBits = header.isLarge ? 20 : 16;
    return header;
}

void skipMixMetadata(GracefulBits* bits) {
    if (!bits->flag()) return;
    bits->skip(2);
    const uint32_t maskWidth = (bits->u(2) + 1) * 4;
    const uint32_t configurations = bits->u(2) + 1;
    bits->skip(size_t{maskWidth} * configurations);
}

// Presentations and assets; returns the number of assets.
uint32_t skipPresentations(GracefulBits* bits, uint32_t substreamIndex) {
    bits->skip(5);
    if (bits->flag()) bits->skip(36);  // time stamp
    const uint32_t presentations = bits->u(3) + 1;
    const uint32_t assets = bits->u(3) + 1;
    uint32_t masks[8] = {};
    for (uint32_t i = 0; i < presentations; ++i) {
        masks[i] = bits->u(substreamIndex + 1);
    }
    for (uint32_t i = 0; i < presentations; ++i) {
        for (uint32_t index = 0; index <= substreamIndex; ++index) {
            if ((masks[i] >> index & 1) != 0) bits->skip(8);
        }
    }
    skipMixMetadata(bits);
    return assets;
}

// The asset descriptor's static fields.
void readAsset(GracefulBits* bits, DtsFormat* out) {
    if (bits->flag()) bits->skip(4);
    if (bits->flag()) bits->skip(24);  // language
    if (bits->flag()) {                // text
        const uint32_t count = bits->u(10);
        bits->skip(8 * (size_t{count} + 1));
    }
    bits->skip(5);
    const uint32_t rateIndex = bits->u(4);
    AVI_LOGV("Ext substream sampleRateIndex %u", rateIndex);
    out->rate = kSubstreamRates[rateIndex];
    out->channels = bits->u(8) + 1;
}

// Reads the substream header; false when it ends before its fields.
bool readSubstreamFields(const PaddedBytes& frame, const SubstreamHeader& header, DtsFormat* out) {
    GracefulBits bits(frame.data(), std::min(frame.size(), header.size));
    bits.skip(40);
    const uint32_t substreamIndex = bits.u(2);
    bits.skip(header.isLarge ? 33 : 25);
    const bool staticFields = bits.flag();
    AVI_LOGV("Ext substream staticFieldsPresent %u", staticFields);
    if (!staticFields) {
        AVI_LOGV("Ext substream staticFieldsPresent is false, set to default value");
        return bits.ok();
    }
    const uint32_t assets = skipPresentations(&bits, substreamIndex);
    bits.skip(assets * header.assetSizeBits + 12);
    readAsset(&bits, out);
    return bits.ok();
}

// FSIZE of the core header: 14 bits behind sync, frame type, deficit, CRC flag and block count.
uint32_t coreFrameSizeField(const PaddedBytes& core) {
    return (core.byteAt(5) & 3u) << 12 | uint32_t{core.byteAt(6)} << 4 | core.byteAt(7) >> 4u;
}

bool parseSubstream(const PaddedBytes& frame, DtsFormat* out) {
    constexpr size_t kSizeFieldsEnd = 7;
    if (frame.size() < kSizeFieldsEnd) return false;
    const SubstreamHeader header = readSubstreamHeader(frame);
    if (header.size + kSyncSize > frame.size()) return false;
    const uint32_t sync = frame.wordAt(header.size);
    AVI_LOGV("syncValue 0x%x", sync);
    if (sync == kSubstreamCore) {
        const PaddedBytes core = frame.from(header.size);
        parseDtsCoreHeader(core.data(), core.size(), &out->channels, &out->rate);
        const uint32_t sync2 = frame.wordAt(header.size + coreFrameSizeField(core) + 1);
        AVI_LOGV("syncValue2 0x%x", sync2);
        out->type = sync2 == kLosslessAsset ? kHd : kCore;
        return true;
    }
    if (sync != kLosslessAsset && sync != kLowBitRateAsset) return true;
    out->type = sync == kLosslessAsset ? kHd : kExpress;
    return readSubstreamFields(frame, header, out);
}

}  // namespace

bool isDtsSync(const uint8_t* data) {
    const uint32_t word = U32_AT(data);
    return word == kCoreSync || word == kCoreSync14Bit || word == kSubstreamSync;
}

void parseDtsCoreHeader(const uint8_t* data, size_t size, uint32_t* channels, uint32_t* rate) {
    const PaddedBytes frame(data, size);
    const uint32_t mode = (frame.byteAt(7) & 15u) << 2 | frame.byteAt(8) >> 6u;
    AVI_LOGV("Core substream channelMode %u", mode);
    const uint32_t lfe = frame.byteAt(10) >> 1u & 3;
    AVI_LOGV("Core substream lowFreqEffectsFlag %u", lfe);
    const uint32_t rateIndex = frame.byteAt(8) >> 2u & 15;
    AVI_LOGV("Core substream samplingFreqIndex %u", rateIndex);
    if (channels != nullptr) {
        *channels = (mode < 16 ? kCoreChannels[mode] : 2) + (lfe != 0 ? 1 : 0);
    }
    if (rate != nullptr) *rate = kCoreRates[rateIndex];
}

status_t parseDtsMetaData(AMediaFormat* meta, const sp<ABuffer>& sample) {
    constexpr size_t kMinSize = 5;
    if (sample->size() < kMinSize) return ERROR_MALFORMED;
    size_t offset = 0;
    while (!isDtsSync(sample->data() + offset)) {
        ++offset;
        if (offset + kSyncSize >= sample->size()) return ERROR_MALFORMED;
    }
    const PaddedBytes frame(sample->data() + offset, sample->size() - offset);
    const uint32_t sync = U32_AT(frame.data());
    AVI_LOGV("offset %zd, startCode 0x%x", static_cast<ssize_t>(offset), sync);

    DtsFormat format;
    if (sync == kCoreSync) {
        parseDtsCoreHeader(frame.data(), frame.size(), &format.channels, &format.rate);
    } else if (sync == kSubstreamSync && !parseSubstream(frame, &format)) {
        return ERROR_MALFORMED;
    }
    const char* mime = mimeOf(format.type);
    AVI_LOGD("[%s] offset %zd, dtsType %zu, chanCount %d, sampleRate %d", mime,
             static_cast<ssize_t>(offset), static_cast<size_t>(format.type),
             static_cast<int>(format.channels), static_cast<int>(format.rate));
    AMediaFormat_setInt32(meta, AMEDIAFORMAT_KEY_SAMPLE_RATE, static_cast<int32_t>(format.rate));
    AMediaFormat_setInt32(meta, AMEDIAFORMAT_KEY_CHANNEL_COUNT,
                          static_cast<int32_t>(format.channels));
    AMediaFormat_setString(meta, AMEDIAFORMAT_KEY_MIME, mime);
    return OK;
}

}  // namespace android
