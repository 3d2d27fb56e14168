// SPDX-License-Identifier: Apache-2.0
//
// A plug-in's use of the helpers, compiled the way plug-ins are; nothing runs it.

#include <media/MediaExtractorPluginHelper.h>

namespace android {

namespace {

class Track : public MediaTrackHelper {
  public:
    media_status_t start() override { return AMEDIA_OK; }
    media_status_t stop() override { return AMEDIA_OK; }
    media_status_t getFormat(AMediaFormat*) override { return AMEDIA_OK; }
    media_status_t read(MediaBufferHelper** buffer, const ReadOptions*) override {
        return mBufferGroup->acquire_buffer(buffer);
    }
};

class Extractor : public MediaExtractorPluginHelper {
  public:
    size_t countTracks() override { return 1; }
    MediaTrackHelper* getTrack(size_t) override { return new Track; }
    media_status_t getTrackMetaData(AMediaFormat*, size_t, uint32_t) override { return AMEDIA_OK; }
    media_status_t getMetaData(AMediaFormat*) override { return AMEDIA_OK; }
};

CreatorFunc sniff(CDataSource*, float* confidence, void**, FreeMetaFunc*) {
    *confidence = 0;
    return [](CDataSource*, void*) { return wrap(new Extractor); };
}

}  // namespace

extern "C" {
__attribute__((visibility("default"))) ExtractorDef GETEXTRACTORDEF();

ExtractorDef GETEXTRACTORDEF() {
    return {EXTRACTORDEF_VERSION_NDK_V1,
            UUID("00000000-0000-0000-0000-000000000000"),
            1,
            "compile check",
            {{sniff}}};
}
}  // extern "C"

}  // namespace android
