// SPDX-License-Identifier: Apache-2.0
//
// Video and two audio tracks, each read and sought by a thread of its own. A race shows under
// ThreadSanitizer; a torn time would send audio to a place where no video frame is.

#include <atomic>
#include <chrono>
#include <random>
#include <set>
#include <thread>

#include "tests/behaviour/seeking/FollowingFixture.h"

namespace avitest {
namespace {

constexpr std::chrono::milliseconds kDuration{1000};
constexpr int64_t kLengthUs = 4000000;  // of the file
constexpr int64_t kBeforeUs = 100000;   // negative times are sought as well

class SeekThreads : public FollowingTest {
  protected:
    using Check = std::function<bool(uint32_t mode, int64_t timeUs, const Landing& landing)>;

    // Seeks at random until the time is over, reads a few samples after each, and counts the seeks
    // whose landing does not pass the check.
    void seekAround(size_t trackIndex, const Check& check) {
        StartedTrack started(track(trackIndex));
        std::mt19937 random(static_cast<unsigned>(trackIndex));
        std::uniform_int_distribution<int64_t> time(0, kLengthUs + kBeforeUs - 1);
        const auto end = std::chrono::steady_clock::now() + kDuration;
        while (std::chrono::steady_clock::now() < end) {
            const auto mode = static_cast<uint32_t>(random() % kModes);
            const int64_t timeUs = time(random) - kBeforeUs;
            const Landing landing = seek(started, mode, timeUs);
            if (!check(mode, std::max<int64_t>(timeUs, 0), landing)) ++mWrong;
            for (auto more = random() % 4; more > 0; --more)
                nextChunk(started);
            ++mSeeks;
        }
    }
    // Audio lands where it was asked to, or on a key frame's time.
    void seekAudioAround(size_t trackIndex, int64_t chunkUs) {
        std::set<int> landings;
        for (int64_t frame = 0; frame < 100; frame += 10)
            landings.insert(static_cast<int>(frame * kFrameUs / chunkUs));
        seekAround(trackIndex, [&](uint32_t, int64_t timeUs, const Landing& landing) {
            return landing.chunk == timeUs / chunkUs || landings.count(landing.chunk) != 0;
        });
    }
    void seekVideoAround() {
        seekAround(kVideo, [](uint32_t mode, int64_t timeUs, const Landing& landing) {
            const auto frame = static_cast<int>(timeUs / kFrameUs);
            if (mode != kNext) return landing.chunk == frame / 10 * 10;
            return landing.chunk == (frame > 90 ? kEndOfStream : (frame + 9) / 10 * 10);
        });
    }
    void seekEverywhere() {
        std::thread video([this] { seekVideoAround(); });
        std::thread audio([this] { seekAudioAround(kFirst, 100000); });
        seekAudioAround(kSecond, 50000);
        video.join();
        audio.join();
        EXPECT_EQ(mWrong, 0);
        EXPECT_GT(mSeeks, 10);
    }

    std::atomic<int> mSeeks{0};
    std::atomic<int> mWrong{0};
};

TEST_F(SeekThreads, TrustedIndex) {
    seekEverywhere();
}

TEST_F(SeekThreads, UntrustedIndex) {
    AviFile avi = followingFile();
    dropIndex(avi);
    open(avi);
    seekEverywhere();
}

TEST_F(SeekThreads, WithAllLogs) {
    setProperty(kExtractLogProperty, "1");
    setProperty(kVerboseLogProperty, "1");
    const LogCapture log;
    AviFile avi = followingFile();
    open(avi);
    seekEverywhere();
    EXPECT_EQ(log.count("not found!"), 0u);
}

}  // namespace
}  // namespace avitest
