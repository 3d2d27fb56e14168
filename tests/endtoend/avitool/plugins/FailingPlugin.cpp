// SPDX-License-Identifier: Apache-2.0
// A plug-in for files that begin with "TEST": each letter after that is a track, named after what
// goes wrong with it.
//   g  nothing: two samples        s  start fails              r  read fails after two samples
//   u  read gives an odd status    m  read gives no buffer     n  there is no track object
//   f  there is no format          t  samples have no time     a  an assertion fails in the second
//   k  nothing: keys of all types  A  an assertion fails at the      read
//   c  the second read crashes        query for the format
// It claims a file that begins with "NULL" too, but opens none.
#include <signal.h>
#include <string.h>

#include <string>

#include <log/log.h>
#include <media/MediaExtractorPluginHelper.h>

namespace android {
namespace {

constexpr size_t kMagicSize = 4;
constexpr size_t kSamples = 2;
constexpr size_t kSampleSize = 3;
constexpr int64_t kSampleUs = 1500000;

std::string readAll(CDataSource* source) {
    off64_t size = 0;
    if (source->getSize(source->handle, &size) != OK || size <= 0) return "";
    std::string bytes(static_cast<size_t>(size), '\0');
    const ssize_t got = source->readAt(source->handle, 0, &bytes[0], bytes.size());
    bytes.resize(got < 0 ? 0 : static_cast<size_t>(got));
    return bytes;
}

void setAllTypes(AMediaFormat* format) {
    AMediaFormat_setInt64(format, "an-int64", INT64_MIN);
    AMediaFormat_setFloat(format, "a-float", 0.1f);
    AMediaFormat_setDouble(format, "a-double", 2.25);
    AMediaFormat_setSize(format, "a-size", 7);
    AMediaFormat_setRect(format, "a-rect", 1, -2, 3, 4);
    AMediaFormat_setString(format, "title", "caf\xC3\xA9 \xFF\n");
    AMediaFormat_setBuffer(format, "csd-0", "\x00\x01\xAB", 3);
    AMediaFormat_setBuffer(format, "csd-1", "", 0);
    const std::string longBuffer(100, '\x5A');
    AMediaFormat_setBuffer(format, "csd-2", longBuffer.data(), longBuffer.size());
}

class FailingTrack : public MediaTrackHelper {
  public:
    explicit FailingTrack(char kind) : mKind(kind) {}

    media_status_t start() override {
        if (mKind == 's') return AMEDIA_ERROR_INVALID_OPERATION;
        mBufferGroup->init(1, kSampleSize);
        return AMEDIA_OK;
    }
    media_status_t stop() override { return AMEDIA_OK; }
    media_status_t getFormat(AMediaFormat*) override { return AMEDIA_OK; }

    media_status_t read(MediaBufferHelper** out, const ReadOptions*) override {
        if (mKind == 'c' && mNext == 1) raise(SIGKILL);  // not the memory checkers' to report
        if (mKind == 'a') LOG_ALWAYS_FATAL_IF(mNext == 1, "CHECK(mNext != 1) failed.");
        if (mNext == kSamples) return endStatus();
        if (mKind == 'm' && mNext == 1) return AMEDIA_OK;
        MediaBufferHelper* buffer = nullptr;
        const media_status_t status = mBufferGroup->acquire_buffer(&buffer);
        if (status != AMEDIA_OK) return status;
        memset(buffer->data(), static_cast<int>('0' + mNext), kSampleSize);
        AMediaFormat* meta = buffer->meta_data();
        AMediaFormat_clear(meta);
        if (mKind != 't') {
            AMediaFormat_setInt64(meta, AMEDIAFORMAT_KEY_TIME_US,
                                  -static_cast<int64_t>(mNext) * kSampleUs);
        }
        AMediaFormat_setInt32(meta, AMEDIAFORMAT_KEY_IS_SYNC_FRAME, mNext == 0 ? 1 : 0);
        *out = buffer;
        ++mNext;
        return AMEDIA_OK;
    }

  private:
    media_status_t endStatus() const {
        if (mKind == 'r') return AMEDIA_ERROR_IO;
        if (mKind == 'u') return static_cast<media_status_t>(-77);
        return AMEDIA_ERROR_END_OF_STREAM;
    }

    const char mKind;
    size_t mNext = 0;
};

class FailingExtractor : public MediaExtractorPluginHelper {
  public:
    explicit FailingExtractor(CDataSource* source) : mKinds(readAll(source).substr(kMagicSize)) {}

    size_t countTracks() override { return mKinds.size(); }
    MediaTrackHelper* getTrack(size_t index) override {
        return mKinds[index] == 'n' ? nullptr : new FailingTrack(mKinds[index]);
    }
    media_status_t getTrackMetaData(AMediaFormat* meta, size_t index, uint32_t) override {
        if (mKinds[index] == 'f') return AMEDIA_ERROR_MALFORMED;
        LOG_ALWAYS_FATAL_IF(mKinds[index] == 'A', "CHECK(mime) failed.");
        const std::string mime = std::string("test/") + mKinds[index];
        AMediaFormat_setString(meta, AMEDIAFORMAT_KEY_MIME, mime.c_str());
        if (mKinds[index] == 'k') setAllTypes(meta);
        return AMEDIA_OK;
    }
    media_status_t getMetaData(AMediaFormat*) override { return AMEDIA_OK; }
    const char* name() override { return "FailingExtractor"; }

  private:
    const std::string mKinds;
};

CMediaExtractor* create(CDataSource* source, void*) {
    if (readAll(source).substr(0, kMagicSize) == "NULL") return nullptr;
    return wrap(new FailingExtractor(source));
}

CreatorFunc sniff(CDataSource* source, float* confidence, void**, FreeMetaFunc*) {
    *confidence = 0.1f;
    const std::string magic = readAll(source).substr(0, kMagicSize);
    return magic == "TEST" || magic == "NULL" ? create : nullptr;
}

const char* gTypes[] = {"test", nullptr};

}  // namespace

extern "C" {

__attribute__((visibility("default"))) ExtractorDef GETEXTRACTORDEF() {
    ExtractorDef definition{EXTRACTORDEF_VERSION,
                            UUID("6f0b63ad-2e11-4bfa-9d5e-5b3c1f0e9a77"),
                            1,
                            "Failing",
                            {{nullptr}}};
    definition.u.v3 = {sniff, gTypes};
    return definition;
}

}  // extern "C"

}  // namespace android
