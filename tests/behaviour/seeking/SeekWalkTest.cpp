// SPDX-License-Identifier: Apache-2.0
//
// Seeks to every time from before the beginning to behind the end, in small steps and every mode,
// on every kind of track, against a plain model of where each lands.

#include <algorithm>

#include "tests/behaviour/seeking/BlockFile.h"
#include "tests/behaviour/seeking/SeekingFixture.h"

namespace avitest {
namespace {

constexpr int64_t kStepUs = 7919;  // a prime, so that it meets every place of a chunk

using Model = std::function<Landing(uint32_t mode, int64_t timeUs)>;

Landing atEnd() {
    Landing landing;
    landing.chunk = kEndOfStream;
    return landing;
}

int roundedToInt(float value) {
    return static_cast<int>(static_cast<double>(value) + 0.5);
}

// Video as a row of frame kinds. `flags` as the track keeps them: 1 key, -1 key by its data.
class VideoModel {
  public:
    VideoModel(std::string kinds, int64_t rate, int64_t scale, bool trusted)
        : mKinds(std::move(kinds)), mRate(rate), mScale(scale), mTrusted(trusted) {
        for (const char kind : mKinds)
            mFlags.push_back(!trusted || kind == 'I' || kind == 'k' ? 1 : 0);
    }

    Landing operator()(uint32_t mode, int64_t timeUs) {
        const int count = static_cast<int>(mKinds.size());
        const int64_t units = mRate * timeUs / mScale / 1000000;
        int calculated = roundedToInt(static_cast<float>(units));
        int landed = 0;
        if (mode == kNext) {
            for (landed = calculated; landed < count && !landsOn(landed);)
                ++landed;
            if (landed >= count) return atEnd();
        } else {
            calculated = std::min(calculated, count - 1);
            for (landed = calculated; landed > 0 && !landsOn(landed);)
                --landed;
        }
        Landing landing = handedOut(landed);
        if (mode == kClosest && landing.chunk != kEndOfStream) {
            landing.targetUs = calculated * 1000000 * mScale / mRate;
        }
        return landing;
    }

  private:
    bool landsOn(int frame) {
        const auto i = static_cast<size_t>(frame);
        if (!mTrusted && mFlags[i] == 1) mFlags[i] = mKinds[i] == 'I' ? -1 : 0;
        return mFlags[i] != 0;
    }
    // The first frame from there on that is not empty, and its time.
    Landing handedOut(int landed) const {
        const size_t i = mKinds.find_first_not_of("-k", static_cast<size_t>(landed));
        if (i == std::string::npos) return atEnd();
        const size_t behind = std::min(mKinds.find_first_not_of('B', i + 1), mKinds.size());
        const size_t place = mKinds[i] == 'B' ? std::max<size_t>(i, 1) - 1 : behind - 1;
        return {static_cast<int>(i), static_cast<int64_t>(place) * 1000000 * mScale / mRate,
                std::nullopt};
    }

    std::string mKinds;
    int64_t mRate;
    int64_t mScale;
    bool mTrusted;
    std::vector<int> mFlags;
};

// The first chunk that ends behind the time; its time is the end of the one before.
Landing firstEndingBehind(const std::vector<int64_t>& ends, int64_t timeUs) {
    const auto found = std::upper_bound(ends.begin(), ends.end(), timeUs);
    if (found == ends.end()) return atEnd();
    return {static_cast<int>(found - ends.begin()), found == ends.begin() ? 0 : found[-1],
            std::nullopt};
}

std::vector<int64_t> totalsOf(const std::vector<size_t>& sizes) {
    std::vector<int64_t> totals;
    int64_t total = 0;
    for (const size_t size : sizes)
        totals.push_back(total += static_cast<int64_t>(size));
    return totals;
}

class SeekWalk : public SeekingTest {
  protected:
    void walk(size_t trackIndex, int64_t endUs, const Model& model) {
        StartedTrack started(track(trackIndex));
        for (int64_t timeUs = -3 * kStepUs; timeUs < endUs; timeUs += kStepUs) {
            for (uint32_t mode = 0; mode < kModes; ++mode) {
                const Landing expected = model(mode, std::max<int64_t>(timeUs, 0));
                ASSERT_EQ(seek(started, mode, timeUs), expected) << mode << " @" << timeUs;
            }
        }
    }
    void walkVideo(const std::string& kinds, uint32_t rate, uint32_t scale, bool trusted) {
        AviFile avi = videoFile(kinds, rate, scale);
        if (!trusted) dropIndex(avi);
        open(avi);
        const auto count = static_cast<int64_t>(kinds.size());
        walk(0, (count + 5) * 1000000 * scale / rate, VideoModel(kinds, rate, scale, trusted));
    }
    // Sizes without a pattern.
    static std::vector<size_t> unevenSizes(size_t count) {
        std::vector<size_t> sizes;
        for (size_t i = 0; i < count; ++i)
            sizes.push_back(20 + i * i * 37 % 701);
        return sizes;
    }
    void walkBytes(const Stream& stream, int64_t unit) {
        const std::vector<size_t> sizes = unevenSizes(40);
        AviFile avi = audioFile(stream, sizes);
        open(avi);
        std::vector<int64_t> ends = totalsOf(sizes);
        for (int64_t& end : ends)
            end = end * 1000000 * stream.header.scale / stream.header.rate / unit;
        walk(0, ends.back() + 10 * kStepUs,
             [&](uint32_t, int64_t timeUs) { return firstEndingBehind(ends, timeUs); });
    }
};

TEST_F(SeekWalk, TrustedVideo) {
    walkVideo(groups(8, 12), 25, 1, true);
}

TEST_F(SeekWalk, TrustedVideoWithBFramesAndEmptyOnes) {
    walkVideo("PPBIBBPBBP--IPk-PBBIPPBPI---BBPIPPPk-PPBBB", 25, 1, true);
}

TEST_F(SeekWalk, TrustedVideoOfANtscRate) {
    walkVideo(groups(6, 15), 30000, 1001, true);
}

TEST_F(SeekWalk, UntrustedVideo) {
    walkVideo(groups(8, 12), 25, 1, false);
}

TEST_F(SeekWalk, UntrustedVideoWithBFramesAndEmptyOnes) {
    walkVideo("PPBIBBPBBP--IP--PBBIPPBPI---BBPIPPPP-PPBBB", 25, 1, false);
}

TEST_F(SeekWalk, UntrustedVideoOfANtscRate) {
    walkVideo(groups(6, 15), 30000, 1001, false);
}

TEST_F(SeekWalk, ByteTimedAudio) {
    walkBytes(alawStream(), 1);
}

TEST_F(SeekWalk, AudioOfLargerSamples) {
    Stream stream = alawStream();
    stream.header.scale = 7;
    stream.header.rate = 30000;
    stream.header.sampleSize = 13;
    walkBytes(stream, 13);
}

TEST_F(SeekWalk, AdpcmInBlocks) {
    constexpr uint16_t kImaAdpcm = 0x11;
    Stream stream = audioStream(kImaAdpcm, 1, 8000, 4096, 256, 4);
    stream.header.scale = 1;
    stream.header.rate = 16;
    stream.header.sampleSize = 1;
    walkBytes(stream, 256);
}

TEST_F(SeekWalk, OneFrameAChunk) {
    Stream stream = frameAudioStream(0x57, 1, 8000, 160);
    stream.header.length = 150;  // three seconds
    const std::vector<size_t> sizes = unevenSizes(40);
    AviFile avi = audioFile(stream, sizes);
    open(avi);
    walk(0, 3300000, [](uint32_t, int64_t timeUs) -> Landing {
        const float share = static_cast<float>(timeUs) / 3000000.0f;
        const int index = roundedToInt(share * 40.0f);
        if (index >= 40) return atEnd();
        return {index, int64_t{3000000} * index / 40, std::nullopt};
    });
}

TEST_F(SeekWalk, RawAacOfVariableRate) {
    Stream stream = audioStream(0xFF, 2, 44100, 8000, 1024);
    stream.header.rate = 44100;
    stream.header.sampleSize = 1;
    AviFile avi = audioFile(stream, unevenSizes(60));
    open(avi);
    walk(0, 1600000, [](uint32_t, int64_t timeUs) -> Landing {
        const float frames = 44100.0f * static_cast<float>(timeUs) / 1024.0f / 1000000.0f;
        const int index = roundedToInt(frames);
        if (index >= 60) return atEnd();
        return {index, int64_t{index} * 1000000 * 1024 / 44100, std::nullopt};
    });
}

TEST_F(SeekWalk, RawAacOfConstantRate) {
    Stream stream = audioStream(0xFF, 2, 44100, 8000, 1024);
    stream.header.rate = 44100;
    stream.header.sampleSize = 1;
    AviFile avi = audioFile(stream, {4000});  // half a second
    open(avi);
    walk(0, 700000, [](uint32_t, int64_t timeUs) { return firstEndingBehind({500000}, timeUs); });
}

TEST_F(SeekWalk, AudioInBlocks) {
    constexpr int kJunkBlocks = 2;
    const std::vector<int> blocks = {kJunkBlocks, 3, 1, 4, 7, 1, 2};
    BlockFile file = blockFile(blocks);
    open(file.avi);
    for (const auto& [bytes, number] : file.firstFrames)
        learn(bytes, number);
    const auto chunks = static_cast<int64_t>(blocks.size());
    int total = 0;
    std::vector<int64_t> chunkOf;  // the chunk that holds a block
    for (size_t k = 0; k < blocks.size(); ++k) {
        chunkOf.insert(chunkOf.end(), static_cast<size_t>(blocks[k]), static_cast<int64_t>(k));
        total += blocks[k];
    }
    const int64_t durationUs = int64_t{total} * 1000000 * 1152 / 44100;
    walk(0, durationUs + 10 * kStepUs, [&](uint32_t, int64_t timeUs) -> Landing {
        const int block = roundedToInt(static_cast<float>(44100 * timeUs / 1152 / 1000000));
        if (block >= total) return atEnd();
        // Junk is never read: a place in it is taken for one in the chunk behind.
        const int landed = block < kJunkBlocks ? block + kJunkBlocks : block;
        const int64_t chunkUs = durationUs * (chunkOf[static_cast<size_t>(landed)] - 1) / chunks;
        return {landed, std::max(chunkUs, timeUs + kMp3FrameUs), std::nullopt};
    });
}

TEST_F(SeekWalk, Subtitles) {
    AviFile avi = fileOf(subtitleStream(), {subtitleChunk("00:00:00.500", "00:00:01.000"),
                                            subtitleChunk("00:00:01.500", "00:00:02.000")});
    open(avi);
    walk(0, 3000000, [](uint32_t, int64_t) { return Landing{0, 500000, std::nullopt}; });
}

}  // namespace
}  // namespace avitest
