// SPDX-License-Identifier: Apache-2.0
// A plug-in for files that begin with "SLOW": one track of sixteen samples, a tenth of a second of
// work each. The byte behind that is the duration it publishes, in tenths of a second.
#include <string.h>
#include <unistd.h>

#include <media/MediaExtractorPluginHelper.h>

namespace android {
namespace {

constexpr size_t kMagicSize = 4;
constexpr int64_t kSamples = 16;
constexpr int64_t kSampleUs = 100000;
constexpr size_t kSampleSize = 1;

bool readHead(CDataSource* source, char (&head)[kMagicSize + 1]) {
    return source->readAt(source->handle, 0, head, sizeof(head)) == sizeof(head) &&
           memcmp(head, "SLOW", kMagicSize) == 0;
}

class SlowTrack : public MediaTrackHelper {
  public:
    media_status_t start() override {
        mBufferGroup->init(1, kSampleSize);
        return AMEDIA_OK;
    }
    media_status_t stop() override { return AMEDIA_OK; }
    media_status_t getFormat(AMediaFormat*) override { return AMEDIA_OK; }

    media_status_t read(MediaBufferHelper** out, const ReadOptions*) override {
        if (mNext == kSamples) return AMEDIA_ERROR_END_OF_STREAM;
        usleep(static_cast<useconds_t>(kSampleUs));
        const media_status_t status = mBufferGroup->acquire_buffer(out);
        if (status != AMEDIA_OK) return status;
        memset((*out)->data(), 's', kSampleSize);
        AMediaFormat* meta = (*out)->meta_data();
        AMediaFormat_clear(meta);
        AMediaFormat_setInt64(meta, AMEDIAFORMAT_KEY_TIME_US, kSampleUs * mNext);
        ++mNext;
        return AMEDIA_OK;
    }

  private:
    int64_t mNext = 0;
};

class SlowExtractor : public MediaExtractorPluginHelper {
  public:
    explicit SlowExtractor(int64_t durationUs) : mDurationUs(durationUs) {}

    size_t countTracks() override { return 1; }
    MediaTrackHelper* getTrack(size_t) override { return new SlowTrack; }
    media_status_t getTrackMetaData(AMediaFormat* meta, size_t, uint32_t) override {
        AMediaFormat_setString(meta, AMEDIAFORMAT_KEY_MIME, "test/slow");
        if (mDurationUs != 0) AMediaFormat_setInt64(meta, AMEDIAFORMAT_KEY_DURATION, mDurationUs);
        return AMEDIA_OK;
    }
    media_status_t getMetaData(AMediaFormat*) override { return AMEDIA_OK; }
    const char* name() override { return "SlowExtractor"; }

  private:
    const int64_t mDurationUs;
};

CMediaExtractor* create(CDataSource* source, void*) {
    char head[kMagicSize + 1] = {};
    if (!readHead(source, head)) return nullptr;
    return wrap(new SlowExtractor(kSampleUs * head[kMagicSize]));
}

CreatorFunc sniff(CDataSource* source, float* confidence, void**, FreeMetaFunc*) {
    *confidence = 0.1f;
    char head[kMagicSize + 1] = {};
    return readHead(source, head) ? create : nullptr;
}

const char* gTypes[] = {"slow", nullptr};

}  // namespace

extern "C" {

__attribute__((visibility("default"))) ExtractorDef GETEXTRACTORDEF() {
    ExtractorDef definition{
        EXTRACTORDEF_VERSION, UUID("0c5e7c0a-3a0e-4d8b-8f5d-0a6f4c1f6d21"), 1, "Slow", {{nullptr}}};
    definition.u.v3 = {sniff, gTypes};
    return definition;
}

}  // extern "C"

}  // namespace android
