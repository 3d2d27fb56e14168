// SPDX-License-Identifier: Apache-2.0
#include "tools/avitool/extract/StreamForm.h"

#include <media/stagefright/foundation/MediaDefs.h>
#include <strings.h>

#include <utility>

#include "tools/avitool/extract/Adts.h"
#include "tools/avitool/extract/ParameterSets.h"
#include "tools/avitool/extract/Wav.h"

namespace avitool {

namespace {

// Decoders need the parameter sets before the first picture: from the file's header when the stream
// does not begin with its own.
class NalForm : public StreamForm {
  public:
    NalForm(const char* extension, NalCodec codec, const Bytes* record)
        : StreamForm(extension),
          mCodec(codec),
          mSets(record == nullptr ? Bytes() : parameterSetStream(codec, *record)) {}

    Bytes fileHeader(const uint8_t* sample, size_t size) const override {
        return beginsWithParameterSets(mCodec, sample, size) ? Bytes() : mSets;
    }

  private:
    const NalCodec mCodec;
    const Bytes mSets;
};

class AdtsForm : public StreamForm {
  public:
    explicit AdtsForm(const AdtsHeaders& headers) : StreamForm("aac"), mHeaders(headers) {}

    std::optional<Bytes> sampleHeader(size_t size) const override {
        return mHeaders.forFrame(size);
    }

  private:
    const AdtsHeaders mHeaders;
};

class WavForm : public StreamForm {
  public:
    explicit WavForm(WavHeader header) : StreamForm("wav"), mHeader(std::move(header)) {}

    Bytes fileHeader(const uint8_t*, size_t) const override { return mHeader.bytes(0); }
    Bytes finalHeader(uint64_t dataSize) const override { return mHeader.bytes(dataSize); }
    // Chunks are even in length.
    Bytes fileEnd(uint64_t dataSize) const override { return Bytes(dataSize % 2); }

  private:
    const WavHeader mHeader;
};

// The platform's MIME types are variables of a library, so the tables hold their addresses.
struct PlainRow {
    const char* const* mime;
    const char* extension;
};
constexpr PlainRow kPlainForms[] = {
    {&android::MEDIA_MIMETYPE_VIDEO_MPEG4, "m4v"},
    {&android::MEDIA_MIMETYPE_VIDEO_MPEG2, "m2v"},
    {&android::MEDIA_MIMETYPE_VIDEO_MJPEG, "mjpeg"},
    {&android::MEDIA_MIMETYPE_AUDIO_MPEG, "mp3"},
    {&android::MEDIA_MIMETYPE_AUDIO_MPEG_LAYER_I, "mp1"},
    {&android::MEDIA_MIMETYPE_AUDIO_MPEG_LAYER_II, "mp2"},
    {&android::MEDIA_MIMETYPE_AUDIO_AC3, "ac3"},
};

struct WavRow {
    const char* const* mime;
    WavCodec codec;
};
constexpr WavRow kWavForms[] = {
    {&android::MEDIA_MIMETYPE_AUDIO_RAW, WavCodec::kPcm16},
    {&android::MEDIA_MIMETYPE_AUDIO_G711_ALAW, WavCodec::kALaw},
    {&android::MEDIA_MIMETYPE_AUDIO_G711_MLAW, WavCodec::kMuLaw},
    {&android::MEDIA_MIMETYPE_AUDIO_MS_ADPCM, WavCodec::kMsAdpcm},
    {&android::MEDIA_MIMETYPE_AUDIO_DVI_IMA_ADPCM, WavCodec::kImaAdpcm},
};

bool isMime(const std::string& mime, const char* other) {
    return strcasecmp(mime.c_str(), other) == 0;
}

// DTS, DTS-HD and DTS Express: types with one beginning.
bool isDts(const std::string& mime) {
    const std::string dts = android::MEDIA_MIMETYPE_AUDIO_DTS;
    return strncasecmp(mime.c_str(), dts.c_str(), dts.size()) == 0;
}

std::unique_ptr<StreamForm> makeNalForm(const char* extension, NalCodec codec, const char* key,
                                        const FormatEntries& format) {
    return std::make_unique<NalForm>(extension, codec, entryOf<Bytes>(format, key));
}

std::unique_ptr<StreamForm> makeAacForm(const FormatEntries& format) {
    const auto* isAdts = entryOf<int32_t>(format, AMEDIAFORMAT_KEY_IS_ADTS);
    if (isAdts != nullptr && *isAdts != 0) return std::make_unique<StreamForm>("aac");
    const auto* esds = entryOf<Bytes>(format, AMEDIAFORMAT_KEY_ESDS);
    if (esds == nullptr) return nullptr;
    const std::optional<AdtsHeaders> headers = AdtsHeaders::fromEsds(*esds);
    return headers ? std::make_unique<AdtsForm>(*headers) : nullptr;
}

// The size of a block as the decoders of ADPCM get it: u32, little-endian. 0 if they get none.
uint32_t blockSizeIn(const FormatEntries& format) {
    const auto* csd = entryOf<Bytes>(format, AMEDIAFORMAT_KEY_CSD_0);
    if (csd == nullptr || csd->size() != sizeof(uint32_t)) return 0;
    uint32_t value = 0;
    for (size_t i = csd->size(); i > 0; --i)
        value = (value & 0xFFFFFF) << 8 | (*csd)[i - 1];
    return value;
}

std::unique_ptr<StreamForm> makeWavForm(WavCodec codec, const FormatEntries& format) {
    const auto* channels = entryOf<int32_t>(format, AMEDIAFORMAT_KEY_CHANNEL_COUNT);
    const auto* rate = entryOf<int32_t>(format, AMEDIAFORMAT_KEY_SAMPLE_RATE);
    if (channels == nullptr || rate == nullptr) return nullptr;
    std::optional<WavHeader> header = WavHeader::make(codec, *channels, *rate, blockSizeIn(format));
    return header ? std::make_unique<WavForm>(std::move(*header)) : nullptr;
}

// Null for a format without a form of its own.
std::unique_ptr<StreamForm> makeKnownForm(const FormatEntries& format) {
    const std::string mime = stringEntry(format, AMEDIAFORMAT_KEY_MIME);
    if (isMime(mime, android::MEDIA_MIMETYPE_VIDEO_AVC)) {
        return makeNalForm("h264", NalCodec::kAvc, AMEDIAFORMAT_KEY_CSD_AVC, format);
    }
    if (isMime(mime, android::MEDIA_MIMETYPE_VIDEO_HEVC)) {
        return makeNalForm("h265", NalCodec::kHevc, AMEDIAFORMAT_KEY_CSD_HEVC, format);
    }
    if (isMime(mime, android::MEDIA_MIMETYPE_AUDIO_AAC)) return makeAacForm(format);
    if (isDts(mime)) return std::make_unique<StreamForm>("dts");
    for (const WavRow& row : kWavForms) {
        if (isMime(mime, *row.mime)) return makeWavForm(row.codec, format);
    }
    for (const PlainRow& row : kPlainForms) {
        if (isMime(mime, *row.mime)) return std::make_unique<StreamForm>(row.extension);
    }
    return nullptr;
}

}  // namespace

std::unique_ptr<StreamForm> makeStreamForm(const FormatEntries& format) {
    std::unique_ptr<StreamForm> form = makeKnownForm(format);
    return form != nullptr ? std::move(form) : std::make_unique<StreamForm>("bin");
}

}  // namespace avitool
