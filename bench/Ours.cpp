// SPDX-License-Identifier: Apache-2.0
#include "bench/Ours.h"

#include <android/log.h>

#include <stdexcept>

namespace avibench {

void discardLogLines() {
    __android_log_set_minimum_priority(ANDROID_LOG_VERBOSE);
    __android_log_set_logger([](const __android_logger_data* /*data*/, const char* /*text*/) {});
}

Ours::Ours() : mPlugin(AVI_PLUGIN_PATH) {
    discardLogLines();
}

Ours::~Ours() {
    close();
}

void Ours::open(const std::string& path) {
    mSource = std::make_unique<CountingSource>(path);
    mExtractor = android::service::Extractor::open(mPlugin, *mSource);
    if (mExtractor == nullptr) throw std::runtime_error(path + " is not claimed");
    mTrackCount = mExtractor->countTracks();  // the first query parses the file
    if (mTrackCount == 0) throw std::runtime_error(path + " has no tracks");
}

void Ours::start() {
    for (size_t i = 0; i < mTrackCount; ++i) {
        auto& started = mTracks.emplace_back(std::make_unique<StartedTrack>());
        started->track = mExtractor->track(i);
        if (started->track->start(started->group) != AMEDIA_OK) {
            throw std::runtime_error("a track does not start");
        }
    }
}

uint64_t Ours::read(uint64_t count) {
    for (uint64_t done = 0; done < count; ++done) {
        if (!mTracks[mNext]->track->read().buffer) return done;
        mNext = (mNext + 1) % mTracks.size();
    }
    return count;
}

void Ours::seek(int64_t timeUs) {
    constexpr uint32_t kOptions = android::SEEK | android::SEEK_PREVIOUS_SYNC;
    if (!mTracks[0]->track->read(kOptions, timeUs).buffer) {
        throw std::runtime_error("a seek found no frame");
    }
}

void Ours::close() {
    for (const auto& started : mTracks)
        started->track->stop();
    mTracks.clear();
    mNext = 0;
    mExtractor.reset();
    mSource.reset();
}

}  // namespace avibench
