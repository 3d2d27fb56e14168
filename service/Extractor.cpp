// SPDX-License-Identifier: Apache-2.0
#include "service/Extractor.h"

#include <cmath>
#include <cstdlib>
#include <limits>
#include <utility>

namespace android::service {

namespace {

// A sniffer's answer with what it allocated for its creator. Invariant: mMeta is freed exactly
// once.
class Sniffed {
  public:
    Sniffed(const PluginLibrary& plugin, CDataSource* source) {
        // A confidence that comes back as NaN was never written: the framework's is uninitialised.
        float confidence = std::numeric_limits<float>::quiet_NaN();
        mCreator = plugin.sniffer()(source, &confidence, &mMeta, &mFreeMeta);
        if (mCreator == nullptr) return;
        mConfidence = confidence;
        if (std::isnan(confidence)) {
            freeMeta();  // no destructor runs after the throw
            throw PluginError(PluginError::Kind::kConfidence,
                              plugin.path() + ": claims the source without a confidence");
        }
    }
    Sniffed(const Sniffed&) = delete;
    Sniffed& operator=(const Sniffed&) = delete;
    ~Sniffed() { freeMeta(); }

    // The framework starts at 0 and takes strictly greater confidences only.
    bool claimed() const { return mCreator != nullptr && mConfidence > 0; }
    float confidence() const { return mConfidence; }
    CMediaExtractor* create(CDataSource* source) const { return mCreator(source, mMeta); }

  private:
    void freeMeta() {
        if (mMeta != nullptr && mFreeMeta != nullptr) mFreeMeta(mMeta);
    }

    CreatorFunc mCreator = nullptr;
    void* mMeta = nullptr;
    FreeMetaFunc mFreeMeta = nullptr;
    float mConfidence = 0;
};

}  // namespace

struct Extractor::Opened {
    explicit Opened(DataSource& dataSource) : source(dataSource) {}
    Opened(const Opened&) = delete;
    Opened& operator=(const Opened&) = delete;
    ~Opened() {
        if (extractor == nullptr) return;
        extractor->free(extractor->data);
        std::free(extractor);  // the plug-in takes the record from malloc and leaves it to its user
    }

    PlainDataSource source;  // read through until the extractor is gone
    CMediaExtractor* extractor = nullptr;
};

SniffResult Extractor::sniff(const PluginLibrary& plugin, DataSource& source) {
    PlainDataSource plain(source);
    const Sniffed sniffed(plugin, plain.get());
    return {sniffed.claimed(), sniffed.confidence()};
}

std::unique_ptr<Extractor> Extractor::open(const PluginLibrary& plugin, DataSource& source) {
    auto opened = std::make_shared<Opened>(source);
    const Sniffed sniffed(plugin, opened->source.get());
    if (!sniffed.claimed()) return nullptr;
    opened->extractor = sniffed.create(opened->source.get());
    if (opened->extractor == nullptr) return nullptr;
    return std::unique_ptr<Extractor>(new Extractor(std::move(opened), sniffed.confidence()));
}

Extractor::Extractor(std::shared_ptr<Opened> opened, float confidence)
    : mOpened(std::move(opened)), mConfidence(confidence) {}

CMediaExtractor* Extractor::plain() const {
    return mOpened->extractor;
}

size_t Extractor::countTracks() const {
    return plain()->countTracks(plain()->data);
}

std::unique_ptr<Track> Extractor::track(size_t index) const {
    CMediaTrack* track = plain()->getTrack(plain()->data, index);
    return track == nullptr ? nullptr : std::make_unique<Track>(track, mOpened);
}

FormatResult Extractor::trackMetaData(size_t index, uint32_t flags) const {
    FormatResult result;
    result.status = plain()->getTrackMetaData(plain()->data, result.format.get(), index, flags);
    return result;
}

FormatResult Extractor::metaData() const {
    FormatResult result;
    result.status = plain()->getMetaData(plain()->data, result.format.get());
    return result;
}

uint32_t Extractor::flags() const {
    return plain()->flags(plain()->data);
}

media_status_t Extractor::setMediaCas(const uint8_t* data, size_t size) {
    return plain()->setMediaCas(plain()->data, data, size);
}

std::string Extractor::name() const {
    const char* name = plain()->name(plain()->data);
    return name == nullptr ? std::string() : name;
}

}  // namespace android::service
