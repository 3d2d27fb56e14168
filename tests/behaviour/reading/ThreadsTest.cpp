// SPDX-License-Identifier: Apache-2.0
//
// What the framework does at once in several threads. A failure shows under ThreadSanitizer; the
// samples are compared all the same.

#include <atomic>
#include <functional>
#include <thread>

#include <media/NdkMediaFormat.h>

#include "service/Extractor.h"
#include "tests/behaviour/reading/ReadingFixture.h"

namespace avitest {
namespace {

using android::service::Extractor;

constexpr int kRounds = 40;

class Threads : public ReadingTest {
  protected:
    void SetUp() override {
        openStream(mjpegStream(), mChunks);
        ASSERT_EQ(countTracks(), 1u);
    }

    // Runs `work` again and again in a thread of its own until `reading` is done.
    static void runBeside(const std::function<void()>& work, const std::function<void()>& reading) {
        std::atomic<bool> done{false};
        std::atomic<int> rounds{0};
        std::thread thread([&] {
            while (!done || rounds == 0) {
                work();
                ++rounds;
            }
        });
        while (rounds == 0)
            std::this_thread::yield();
        reading();
        done = true;
        thread.join();
    }

    // Starts, reads and stops a track, over and over.
    void readOften(Track& source) {
        for (int i = 0; i < kRounds; ++i)
            EXPECT_EQ(payloadsOf(readTrack(source).samples), mChunks);
    }

    const std::vector<Bytes> mChunks = {patternBytes(30, 1), patternBytes(41, 2),
                                        patternBytes(50, 3)};
};

TEST_F(Threads, FormatOfATrackIsCopiedWhileItIsRead) {
    const std::unique_ptr<Track> source = track(0);
    runBeside(
        [&source] {
            const auto result = source->getFormat();
            EXPECT_EQ(result.format.getString(AMEDIAFORMAT_KEY_MIME), "video/x-motion-jpeg");
        },
        [this, &source] { readOften(*source); });
}

TEST_F(Threads, TrackIsQueriedWhileItIsRead) {
    for (const uint32_t flags : {0u, Extractor::kIncludeExtensiveMetaData}) {
        const std::unique_ptr<Track> source = track(0);
        runBeside(
            [this, flags] {
                const auto result = extractor().trackMetaData(0, flags);
                EXPECT_EQ(result.format.getString(AMEDIAFORMAT_KEY_MIME), "video/x-motion-jpeg");
            },
            [this, &source] { readOften(*source); });
    }
}

// The first query of this kind writes to the format.
TEST_F(Threads, ExtensiveQueryMayComeWhileTheTrackIsRead) {
    for (int i = 0; i < kRounds; ++i) {
        openStream(mjpegStream(), mChunks);
        ASSERT_EQ(countTracks(), 1u);
        const std::unique_ptr<Track> source = track(0);
        std::thread thread(
            [this] { extractor().trackMetaData(0, Extractor::kIncludeExtensiveMetaData); });
        EXPECT_EQ(payloadsOf(readTrack(*source).samples), mChunks);
        source->getFormat();
        thread.join();
    }
}

TEST_F(Threads, TracksAreMadeWhileOthersAreRead) {
    const std::unique_ptr<Track> source = track(0);
    runBeside([this] { EXPECT_NE(extractor().track(0), nullptr); },
              [this, &source] { readOften(*source); });
}

TEST_F(Threads, SourcesOfOneTrackAreReadAtOnce) {
    const std::unique_ptr<Track> first = track(0);
    const std::unique_ptr<Track> second = track(0);
    std::thread thread([this, &first] { readOften(*first); });
    readOften(*second);
    thread.join();
}

TEST_F(Threads, FilesAreOpenedWhileOthersAreRead) {
    setProperty(kVerboseLogProperty, "1");
    setProperty(kExtractLogProperty, "1");
    LogCapture log;
    AviFile avi = fileOf(mjpegStream(), mChunks);
    const Bytes file = avi.build();
    const std::unique_ptr<Track> source = track(0);
    const auto open = [&file] {
        MemorySource memory(file);
        const std::unique_ptr<Extractor> opened = Extractor::open(pluginUnderTest(), memory);
        ASSERT_NE(opened, nullptr);
        EXPECT_EQ(opened->countTracks(), 1u);
    };
    runBeside(open, [&] { runBeside(open, [&] { readOften(*source); }); });
}

}  // namespace
}  // namespace avitest
