// SPDX-License-Identifier: Apache-2.0
#include "tests/unit/service/plugins/GoodPlugin.h"

#include <string.h>

#include <string>

#include <media/MediaExtractorPluginHelper.h>

namespace android {
namespace {

constexpr size_t kMagicSize = 4;
constexpr int64_t kSampleUs = 1000;
GoodPluginObjects gObjects;

std::string readAll(CDataSource* source) {
    off64_t size = 0;
    if (source->getSize(source->handle, &size) != OK || size <= 0) return "";
    std::string bytes(static_cast<size_t>(size), '\0');
    const ssize_t got = source->readAt(source->handle, 0, &bytes[0], bytes.size());
    bytes.resize(got < 0 ? 0 : static_cast<size_t>(got));
    return bytes;
}

// Hands its samples out through the plain records, so that a test decides about every pointer.
struct Samples {
    explicit Samples(std::string samples) : body(std::move(samples)) { ++gObjects.tracks; }
    ~Samples() { --gObjects.tracks; }

    media_status_t read(CMediaBuffer** out, uint32_t options, int64_t seekPosUs) {
        if ((options & CMediaTrackReadOptions::SEEK) != 0) {
            next = static_cast<size_t>(seekPosUs / kSampleUs);
        }
        if (next >= body.size()) return AMEDIA_ERROR_END_OF_STREAM;
        const char sample = body[next];
        if (sample == 'E') return AMEDIA_ERROR_MALFORMED;

        CMediaBuffer* buffer = nullptr;
        const bool nonBlocking = (options & CMediaTrackReadOptions::NONBLOCKING) != 0;
        media_status_t status = group->acquire_buffer(group->handle, &buffer, nonBlocking, 1);
        if (status != AMEDIA_OK) return status;
        *static_cast<char*>(buffer->data(buffer->handle)) = sample;
        buffer->set_range(buffer->handle, 0, 1);
        AMediaFormat* meta = buffer->meta_data(buffer->handle);
        AMediaFormat_setInt64(meta, AMEDIAFORMAT_KEY_TIME_US,
                              static_cast<int64_t>(next) * kSampleUs);
        *out = buffer;
        ++next;
        return sample == 'B' ? AMEDIA_ERROR_IO : AMEDIA_OK;
    }

    const std::string body;
    size_t next = 0;
    CMediaBufferGroup* group = nullptr;
};

Samples* samplesOf(void* data) {
    return static_cast<Samples*>(data);
}

CMediaTrack* makeTrack(const std::string& body) {
    auto* track = static_cast<CMediaTrack*>(malloc(sizeof(CMediaTrack)));
    track->data = new Samples(body);
    track->free = [](void* data) { delete samplesOf(data); };
    track->start = [](void* data, CMediaBufferGroup* group) {
        if (!group->init(group->handle, 1, 16, 2)) return AMEDIA_ERROR_UNKNOWN;
        samplesOf(data)->group = group;
        return AMEDIA_OK;
    };
    track->stop = [](void* data) {
        if (samplesOf(data)->group == nullptr) return AMEDIA_ERROR_INVALID_OPERATION;
        samplesOf(data)->group = nullptr;
        return AMEDIA_OK;
    };
    track->getFormat = [](void* data, AMediaFormat* format) {
        AMediaFormat_setString(format, AMEDIAFORMAT_KEY_MIME, "test/good");
        AMediaFormat_setSize(format, "samples", samplesOf(data)->body.size());
        return AMEDIA_OK;
    };
    track->read = [](void* data, CMediaBuffer** buffer, uint32_t options, int64_t seekPosUs) {
        return samplesOf(data)->read(buffer, options, seekPosUs);
    };
    track->supportsNonBlockingRead = [](void*) { return true; };
    return track;
}

class GoodExtractor : public MediaExtractorPluginHelper {
  public:
    explicit GoodExtractor(CDataSource* source) : mSource(source) { ++gObjects.extractors; }
    // Reads once more: the source must still be there.
    ~GoodExtractor() override {
        readAll(mSource);
        --gObjects.extractors;
    }

    size_t countTracks() override { return 1; }
    MediaTrackHelper* getTrack(size_t) override {
        return nullptr;
    }  // the record's entry is replaced
    media_status_t getTrackMetaData(AMediaFormat* meta, size_t index, uint32_t flags) override {
        if (index != 0) return AMEDIA_ERROR_INVALID_PARAMETER;
        AMediaFormat_setInt32(meta, AMEDIAFORMAT_KEY_TRACK_ID, 1);
        AMediaFormat_setInt32(meta, "flags", static_cast<int32_t>(flags));
        return AMEDIA_OK;
    }
    media_status_t getMetaData(AMediaFormat* meta) override {
        AMediaFormat_setString(meta, AMEDIAFORMAT_KEY_MIME, "test/container");
        return AMEDIA_OK;
    }
    uint32_t flags() const override { return CAN_PAUSE | CAN_SEEK; }
    media_status_t setMediaCas(const uint8_t* token, size_t size) override {
        return size == 2 && token[0] == 'o' && token[1] == 'k' ? AMEDIA_OK
                                                               : AMEDIA_ERROR_UNSUPPORTED;
    }
    const char* name() override { return unnamed() ? nullptr : "GoodExtractor"; }
    std::string body() const { return readAll(mSource).substr(kMagicSize); }

  private:
    bool unnamed() const { return body().empty(); }

    CDataSource* mSource = nullptr;
};

CMediaExtractor* create(CDataSource* source, void* meta) {
    if (*static_cast<std::string*>(meta) == "NULL") return nullptr;
    CMediaExtractor* extractor = wrap(new GoodExtractor(source));
    extractor->getTrack = [](void* data, size_t index) -> CMediaTrack* {
        if (index != 0) return nullptr;
        return makeTrack(
            static_cast<GoodExtractor*>(static_cast<MediaExtractorPluginHelper*>(data))->body());
    };
    return extractor;
}

CreatorFunc sniff(CDataSource* source, float* confidence, void** meta, FreeMetaFunc* freeMeta) {
    const std::string magic = readAll(source).substr(0, kMagicSize);
    if (magic != "GOOD" && magic != "NOCO" && magic != "ZERO" && magic != "NULL") {
        *confidence = 0.5;
        return nullptr;
    }
    if (magic != "NOCO") *confidence = magic == "ZERO" ? 0.0f : 0.75f;
    *meta = new std::string(magic);
    ++gObjects.metas;
    *freeMeta = [](void* text) {
        delete static_cast<std::string*>(text);
        --gObjects.metas;
    };
    return create;
}

const char* gTypes[] = {"good", "test/good", nullptr};

}  // namespace

extern "C" {

__attribute__((visibility("default"))) ExtractorDef GETEXTRACTORDEF() {
    ExtractorDef definition{EXTRACTORDEF_VERSION,
                            UUID("00112233-4455-6677-8899-aabbccddeeff"),
                            12,
                            "Good",
                            {{nullptr}}};
    definition.u.v3 = {sniff, gTypes};
    return definition;
}

__attribute__((visibility("default"))) const GoodPluginObjects* goodPluginObjects() {
    return &gObjects;
}

}  // extern "C"

}  // namespace android
