// SPDX-License-Identifier: Apache-2.0

#include "tests/behaviour/budgets/Costs.h"

#include <android/log.h>
#include <time.h>

#include <algorithm>
#include <cstdlib>
#include <cstring>
#include <memory>
#include <vector>

#include "fuzz/OpeningWatch.h"
#include "service/BufferGroup.h"
#include "service/Extractor.h"
#include "service/MemorySource.h"
#include "tests/support/ExtractorFixture.h"

namespace avitest {

using android::service::BufferGroup;
using android::service::Extractor;
using android::service::MemorySource;
using android::service::ReadResult;
using android::service::Track;
using avifuzz::MeasuredSource;

namespace {

constexpr size_t kMostTracks = 8;
constexpr uint64_t kMostSampleBytes = 1 << 26;  // of a track

// Counts the lines of the log while it lives, and notes what they say of tables. Keeps none, so
// that no memory but the plug-in's is held for them.
class LogWatch {
  public:
    LogWatch() {
        gLines = 0;
        gEntries.clear();
        gEntries.reserve(kMostTracks);
        __android_log_set_logger(count);
        mFormer = __android_log_set_minimum_priority(ANDROID_LOG_VERBOSE);
    }
    LogWatch(const LogWatch&) = delete;
    LogWatch& operator=(const LogWatch&) = delete;
    ~LogWatch() {
        __android_log_set_logger(__android_log_stderr_logger);
        __android_log_set_minimum_priority(mFormer);
    }

    static uint64_t lines() { return gLines; }
    // Entries of the tables of the first tracks, in their order.
    static const std::vector<uint64_t>& entries() { return gEntries; }

  private:
    static void count(const __android_logger_data* /*data*/, const char* message) {
        ++gLines;
        constexpr char kCount[] = "sampleCount ";
        const char* found = gEntries.size() < kMostTracks ? std::strstr(message, kCount) : nullptr;
        if (found == nullptr) return;
        gEntries.push_back(std::strtoull(found + std::strlen(kCount), nullptr, 10));
    }

    static uint64_t gLines;
    static std::vector<uint64_t> gEntries;
    int mFormer = 0;
};

uint64_t LogWatch::gLines = 0;
std::vector<uint64_t> LogWatch::gEntries;

double processorSeconds() {
    timespec now = {};
    clock_gettime(CLOCK_THREAD_CPUTIME_ID, &now);
    return static_cast<double>(now.tv_sec) + static_cast<double>(now.tv_nsec) / 1e9;
}

size_t queryAll(const Extractor& extractor) {
    extractor.metaData();
    const size_t tracks = extractor.countTracks();
    for (size_t i = 0; i < tracks; ++i)
        extractor.trackMetaData(i, Extractor::kIncludeExtensiveMetaData);
    return tracks;
}

// A file that is opened, with the watch on what it costs.
struct OpenFile {
    explicit OpenFile(const Bytes& file) : memory(file.data(), file.size()), source(memory) {
        extractor = Extractor::open(pluginUnderTest(), source);
        if (extractor != nullptr) tracks = queryAll(*extractor);
    }

    LogWatch log;
    MemorySource memory;
    MeasuredSource source;
    std::unique_ptr<Extractor> extractor;
    size_t tracks = 0;
};

uint64_t largestOf(const Track& track) {
    const auto size = track.getFormat().format.getInt32(AMEDIAFORMAT_KEY_MAX_INPUT_SIZE);
    return static_cast<uint32_t>(size.value_or(0));
}

// Does something with each of the first tracks, and adds up what it costs.
template <typename Work>
PlayingCost costOf(const Bytes& file, const Work& work) {
    OpenFile open(file);
    PlayingCost cost;
    const uint64_t bytesBefore = open.source.bytes();
    const uint64_t readsBefore = open.source.reads();
    for (size_t i = 0; i < std::min(open.tracks, kMostTracks); ++i) {
        BufferGroup group;
        const std::unique_ptr<Track> track = open.extractor->track(i);
        const uint64_t entries = LogWatch::entries().at(i);
        if (entries == 0 || track == nullptr || track->start(group) != AMEDIA_OK) continue;
        ++cost.tracks;
        cost.largestBytes = std::max(cost.largestBytes, largestOf(*track));
        work(*track, entries, &cost);
        track->stop();
    }
    cost.sourceBytes = open.source.bytes() - bytesBefore;
    cost.sourceReads = open.source.reads() - readsBefore;
    return cost;
}

media_status_t take(const ReadResult& result, PlayingCost* cost) {
    ++cost->reads;
    if (result.buffer) cost->sampleBytes += result.buffer.rangeLength();
    return result.status;
}

}  // namespace

OpeningCost costOfOpening(const Bytes& file) {
    const AllocationWatch watch;
    const OpenFile open(file);
    return {open.source.bytes(), open.source.calls(), LogWatch::lines(), watch.peak(), open.tracks};
}

PlayingCost costOfReading(const Bytes& file) {
    return costOf(file, [](Track& track, uint64_t entries, PlayingCost* cost) {
        const uint64_t before = cost->reads;
        const uint64_t enough = cost->sampleBytes + kMostSampleBytes;
        media_status_t status = AMEDIA_OK;
        while (status != AMEDIA_ERROR_END_OF_STREAM && cost->sampleBytes < enough)
            status = take(track.read(), cost);
        const bool isThrough = status == AMEDIA_ERROR_END_OF_STREAM;
        cost->entries += isThrough ? entries : std::min(entries, cost->reads - before);
    });
}

PlayingCost costOfSeeking(const Bytes& file) {
    return costOf(file, [](Track& track, uint64_t entries, PlayingCost* cost) {
        constexpr uint64_t kFrameUs = 40000;
        constexpr uint64_t kPlaces = 97;  // of which a few steps lead to every one
        const uint64_t durationUs = entries * kFrameUs;
        cost->entries += entries;
        for (uint64_t i = 0; i < kPlaces; ++i) {
            const uint64_t place = i * 31 % kPlaces;
            const auto mode = static_cast<uint32_t>(i % 4);
            take(track.read(mode | android::SEEK,
                            static_cast<int64_t>(durationUs / kPlaces * place)),
                 cost);
        }
    });
}

double secondsToPlay(const Bytes& file) {
    const double before = processorSeconds();
    costOfReading(file);
    return processorSeconds() - before;
}

}  // namespace avitest
