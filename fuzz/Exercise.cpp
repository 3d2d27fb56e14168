// SPDX-License-Identifier: Apache-2.0
#include "fuzz/Exercise.h"

#include <cutils/properties.h>

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <memory>
#include <vector>

#include "service/Extractor.h"
#include "service/MemorySource.h"

namespace avifuzz {

namespace service = android::service;

namespace {

constexpr size_t kMaxTracks = 8;
constexpr int32_t kMaxBufferBytes = 1 << 20;  // what a track may ask for to be started at all
constexpr size_t kMaxReads = 300;             // of one track from its beginning
constexpr size_t kReadsAfterSeek = 2;
constexpr size_t kControlBytes = 25;  // one for the log, then the seeks
constexpr size_t kSeekBytes = 4;

[[noreturn]] void fail(const char* what) {
    std::fprintf(stderr, "exercise: %s\n", what);
    std::abort();
}

// The end of the input, read as orders.
class Controls {
  public:
    Controls(const uint8_t* data, size_t size) {
        const size_t count = std::min(size, kControlBytes);
        mNext = data + (size - count);
        mEnd = data + size;
    }
    size_t remaining() const { return static_cast<size_t>(mEnd - mNext); }
    // 0 after the last.
    uint8_t byte() { return mNext == mEnd ? uint8_t{0} : *mNext++; }

  private:
    const uint8_t* mNext = nullptr;
    const uint8_t* mEnd = nullptr;
};

// A track that is read like a player's. Stops it before the buffers go.
class Playing {
  public:
    explicit Playing(std::unique_ptr<service::Track> track) : mTrack(std::move(track)) {
        mStarted = mTrack->start(mBuffers) == AMEDIA_OK;
    }
    Playing(const Playing&) = delete;
    Playing& operator=(const Playing&) = delete;
    ~Playing() {
        if (mStarted && mTrack->stop() != AMEDIA_OK) fail("a track does not stop");
        if (mBuffers.heldCount() != 0) fail("a stopped track holds a buffer");
    }

    // Answers whether there may be more to read.
    bool read(uint32_t options = 0, int64_t timeUs = 0) {
        if (!mStarted) return false;
        const service::ReadResult result = mTrack->read(options, timeUs);
        if ((result.status == AMEDIA_OK) != static_cast<bool>(result.buffer)) {
            fail("status and buffer do not agree");
        }
        if (!result.buffer) return false;
        if (!result.buffer.metaData().getInt64(AMEDIAFORMAT_KEY_TIME_US)) {
            fail("a buffer without a time");
        }
        const std::vector<uint8_t> bytes = result.buffer.bytes();  // every one must be readable
        return true;
    }

  private:
    service::BufferGroup mBuffers;
    std::unique_ptr<service::Track> mTrack;
    bool mStarted = false;
};

void setSwitches(uint8_t bits) {
    property_set("vendor.ruvo.avi.extract.log", (bits & 1) != 0 ? "1" : "0");
    property_set("vendor.ruvo.avi.verbose.log", (bits & 2) != 0 ? "1" : "0");
}

void query(const service::Extractor& extractor) {
    extractor.metaData().format.toString();
    extractor.flags();
    extractor.name();
    const size_t count = extractor.countTracks();
    for (size_t i = 0; i <= std::min(count, kMaxTracks); ++i) {
        for (const uint32_t flags : {0u, service::Extractor::kIncludeExtensiveMetaData}) {
            extractor.trackMetaData(i, flags).format.toString();
        }
    }
}

std::vector<std::unique_ptr<Playing>> startTracks(const service::Extractor& extractor) {
    std::vector<std::unique_ptr<Playing>> tracks;
    for (size_t i = 0; i < std::min(extractor.countTracks(), kMaxTracks); ++i) {
        std::unique_ptr<service::Track> track = extractor.track(i);
        if (track == nullptr) fail("a counted track cannot be had");
        const service::FormatResult format = track->getFormat();
        const int32_t wanted = format.format.getInt32(AMEDIAFORMAT_KEY_MAX_INPUT_SIZE).value_or(0);
        if (wanted > kMaxBufferBytes) continue;
        tracks.push_back(std::make_unique<Playing>(std::move(track)));
    }
    return tracks;
}

// Four bytes: mode and track, then a shift and a mantissa, so that both frames and ends of the
// range are near. The two highest shifts give negative times.
void seek(Controls* controls, const std::vector<std::unique_ptr<Playing>>& tracks) {
    const uint8_t order = controls->byte();
    const unsigned shift = controls->byte() % 50u;
    const uint64_t mantissa = controls->byte() * 256u + controls->byte();
    const auto timeUs = static_cast<int64_t>(mantissa << shift);
    constexpr uint32_t kModes = 8;
    Playing& track = *tracks[order / kModes % tracks.size()];
    bool more = track.read(android::SEEK | order % kModes, timeUs);
    for (size_t i = 0; more && i < kReadsAfterSeek; ++i)
        more = track.read();
}

}  // namespace

void exercise(const service::PluginLibrary& plugin, const uint8_t* data, size_t size) {
    Controls controls(data, size);
    setSwitches(controls.byte());
    service::MemorySource source(data, size);
    const std::unique_ptr<service::Extractor> extractor = service::Extractor::open(plugin, source);
    if (extractor == nullptr) return;
    query(*extractor);
    const std::vector<std::unique_ptr<Playing>> tracks = startTracks(*extractor);
    for (const auto& track : tracks) {
        for (size_t i = 0; i < kMaxReads && track->read(); ++i) {
        }
    }
    while (!tracks.empty() && controls.remaining() >= kSeekBytes)
        seek(&controls, tracks);
}

}  // namespace avifuzz
