// SPDX-License-Identifier: Apache-2.0
//
// 64 extractors in 16 threads, each opened, asked, read and sought in again and again, and one file
// of which sources of one track are read and sought in by all threads at once. A race shows under
// ThreadSanitizer. AVI_LOAD_SECONDS is how long it goes on.

#include <algorithm>
#include <chrono>
#include <cstdlib>
#include <memory>
#include <random>
#include <thread>

#include "service/MemorySource.h"
#include "tests/behaviour/faults/FormFiles.h"
#include "tests/behaviour/faults/Outcomes.h"
#include "tests/behaviour/robustness/Endurance.h"

namespace avitest {
namespace {

using android::service::BufferGroup;
using android::service::Extractor;
using android::service::MemorySource;
using android::service::Track;

constexpr size_t kThreads = 16;
constexpr size_t kExtractors = 64;
constexpr uint32_t kSeekModes = 5;
constexpr int64_t kLongestUs = 1'000'000;

std::chrono::seconds duration() {
    constexpr int kSuite = 2;
    const char* seconds = std::getenv("AVI_LOAD_SECONDS");
    return std::chrono::seconds(seconds == nullptr ? kSuite : std::atoi(seconds));
}

// A file, and what all of its tracks hold.
struct Film {
    explicit Film(const Bytes& bytes) : source(bytes) {}
    MemorySource source;
    std::vector<std::vector<Outcome>> tracks;
};

std::vector<Outcome> readWhole(Track& track) {
    BufferGroup group;
    EXPECT_EQ(AMEDIA_OK, track.start(group));
    std::vector<Outcome> outcomes = readToEnd(track);
    EXPECT_EQ(AMEDIA_OK, track.stop());
    return outcomes;
}

std::unique_ptr<Film> filmOf(const FormFile& file) {
    auto film = std::make_unique<Film>(file.bytes);
    const auto extractor = Extractor::open(pluginUnderTest(), film->source);
    for (size_t i = 0; i < extractor->countTracks(); ++i)
        film->tracks.push_back(readWhole(*extractor->track(i)));
    return film;
}

// What one thread does, and what came of it.
class Worker {
  public:
    // The films outlive the worker.
    Worker(unsigned seed, const std::vector<std::unique_ptr<Film>>& films, size_t extractors)
        : mRandom(seed), mFilms(films), mExtractors(extractors) {}

    // Goes on until the time is over. `track` is a source of the first film's first track.
    void run(std::chrono::steady_clock::time_point end, Track& track) {
        BufferGroup group;
        count(track.start(group) == AMEDIA_OK);
        for (Opened& opened : mExtractors)
            open(&opened);
        while (std::chrono::steady_clock::now() < end) {
            useOne(&mExtractors[mRandom() % mExtractors.size()]);
            seekAndRead(track, mFilms.front()->tracks.front());
        }
        count(track.stop() == AMEDIA_OK);
        count(group.heldCount() == 0);
    }

    size_t steps() const { return mSteps; }
    size_t failures() const { return mFailures; }

  private:
    struct Opened {
        Film* film = nullptr;
        std::unique_ptr<Extractor> extractor;
    };

    void open(Opened* opened) {
        opened->extractor.reset();
        opened->film = mFilms[mRandom() % mFilms.size()].get();
        opened->extractor = Extractor::open(pluginUnderTest(), opened->film->source);
        count(opened->extractor->countTracks() == opened->film->tracks.size());
    }
    void useOne(Opened* opened) {
        const size_t tracks = opened->film->tracks.size();
        const size_t track = mRandom() % tracks;
        switch (mRandom() % 4) {
            case 0:
                return open(opened);
            case 1:
                return count(opened->extractor->trackMetaData(track, 1).status == AMEDIA_OK &&
                             opened->extractor->metaData().status == AMEDIA_OK);
            case 2:
                return count(isWhole(readWhole(*opened->extractor->track(track)),
                                     opened->film->tracks[track]));
            default:
                return seekIn(*opened->extractor->track(track), opened->film->tracks[track]);
        }
    }
    // By the bytes: in a file without an index, seeks correct key flags.
    static bool isWhole(const std::vector<Outcome>& outcomes, const std::vector<Outcome>& all) {
        return outcomes.size() == all.size() && endWith(outcomes, all, 0);
    }
    void seekIn(Track& track, const std::vector<Outcome>& all) {
        BufferGroup group;
        count(track.start(group) == AMEDIA_OK);
        for (int i = 0; i < 4; ++i)
            seekAndRead(track, all);
        count(track.stop() == AMEDIA_OK);
    }
    // A seek lands on a sample or at the end; then the next one comes, or what ends the track.
    void seekAndRead(Track& track, const std::vector<Outcome>& all) {
        const auto timeUs = static_cast<int64_t>(mRandom() % kLongestUs);
        const auto mode = static_cast<uint32_t>(mRandom() % kSeekModes);
        const Outcome landing = readOnce(track, {android::SEEK | mode, timeUs});
        const Outcome next = readOnce(track);
        for (const Outcome& outcome : {landing, next})
            count(std::any_of(all.begin(), all.end(), [&outcome](const Outcome& known) {
                return known.status == outcome.status;
            }));
    }
    void count(bool isRight) {
        ++mSteps;
        if (!isRight) ++mFailures;
    }

    std::mt19937 mRandom;
    const std::vector<std::unique_ptr<Film>>& mFilms;
    std::vector<Opened> mExtractors;
    size_t mSteps = 0;
    size_t mFailures = 0;
};

class LoadThreads : public QuietTest {
  protected:
    // The first film has no index: seeks correct the key flags that all its sources share.
    LoadThreads() {
        for (const FormFile& file : formFiles()) {
            const bool isFirst = file.name.rfind("NoIndex", 0) == 0;
            mFilms.insert(isFirst ? mFilms.begin() : mFilms.end(), filmOf(file));
        }
    }
    std::vector<std::unique_ptr<Film>> mFilms;
};

TEST_F(LoadThreads, OfManyExtractorsGiveWhatOneGives) {
    const auto shared = Extractor::open(pluginUnderTest(), mFilms.front()->source);
    const auto end = std::chrono::steady_clock::now() + duration();
    std::vector<std::unique_ptr<Worker>> workers;
    std::vector<std::thread> threads;
    for (size_t i = 0; i < kThreads; ++i) {
        workers.push_back(std::make_unique<Worker>(i, mFilms, kExtractors / kThreads));
        threads.emplace_back(
            [worker = workers.back().get(), end, track = std::shared_ptr<Track>(shared->track(0))] {
                worker->run(end, *track);
            });
    }
    for (std::thread& thread : threads)
        thread.join();
    size_t steps = 0;
    for (const auto& worker : workers) {
        EXPECT_EQ(0u, worker->failures());
        steps += worker->steps();
    }
    EXPECT_LT(kExtractors, steps);
    RecordProperty("steps", std::to_string(steps));
}

}  // namespace
}  // namespace avitest
