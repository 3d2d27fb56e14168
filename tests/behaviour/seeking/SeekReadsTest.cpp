// SPDX-License-Identifier: Apache-2.0
//
// What a seek costs in reads of the file: the landing frame, the B-frames behind it and the one
// that ends their row. How long the film is does not matter.

#include "tests/behaviour/seeking/BlockFile.h"
#include "tests/behaviour/seeking/SeekingFixture.h"

namespace avitest {
namespace {

using Reads = std::vector<std::pair<off64_t, size_t>>;

class SeekReads : public SeekingTest {
  protected:
    void openAvi(AviFile avi) {
        mAvi = std::move(avi);
        open(mAvi);
    }
    // The reads of a seek on a new track object.
    Reads readsOfSeek(size_t trackIndex, uint32_t mode, int64_t timeUs) {
        StartedTrack started(track(trackIndex));
        source().reset();
        mLanded = chunkAt(started, mode, timeUs);
        return reads();
    }
    // One read each of these chunks, but for the first at most 256 bytes.
    Reads readsOf(size_t stream, const std::vector<size_t>& chunks) {
        Reads result;
        const std::vector<MoviChunk> all = mAvi.chunks(stream);
        for (const size_t i : chunks) {
            const ChunkPlace& place = all.at(i).place;
            const size_t limit = result.empty() ? SIZE_MAX : 256;
            result.emplace_back(place.dataOffset, std::min<size_t>(place.dataSize, limit));
        }
        return result;
    }

    AviFile mAvi;
    int mLanded = kOtherFailure;
};

TEST_F(SeekReads, LandingFrameAndTheOneBehind) {
    openAvi(videoFile(groups(4, 50)));
    EXPECT_EQ(readsOfSeek(0, kPrevious, 3100000), readsOf(0, {50, 51}));
    EXPECT_EQ(readsOfSeek(0, kNext, 3100000), readsOf(0, {100, 101}));
    EXPECT_EQ(readsOfSeek(0, kClosestSync, 3900000), readsOf(0, {50, 51}));
    EXPECT_EQ(readsOfSeek(0, kClosest, 3900000), readsOf(0, {50, 51}));
}

TEST_F(SeekReads, BFramesBehindTheLandingFrame) {
    openAvi(videoFile("IPPIBBBPPP"));
    EXPECT_EQ(readsOfSeek(0, kPrevious, 5 * kFrameUs), readsOf(0, {3, 4, 5, 6, 7}));
}

TEST_F(SeekReads, NothingFollowsTheLastFrame) {
    openAvi(videoFile("IPPI"));
    EXPECT_EQ(readsOfSeek(0, kPrevious, 3600000000), readsOf(0, {3}));
}

TEST_F(SeekReads, FollowingFramesAreReadInPart) {
    AviFile avi;
    addFrames(avi, avi.addStream(mpeg4Stream()), "IBPP", 1000);
    openAvi(std::move(avi));
    EXPECT_EQ(readsOfSeek(0, kPrevious, 0), readsOf(0, {0, 1, 2}));
}

TEST_F(SeekReads, SeekThatFailsReadsNothing) {
    openAvi(videoFile(groups(4, 50)));
    EXPECT_EQ(readsOfSeek(0, kNext, 3600000000), Reads());
    EXPECT_EQ(readsOfSeek(0, kNext, 190 * kFrameUs), Reads());
}

TEST_F(SeekReads, AudioReadsItsChunk) {
    openAvi(audioFile(alawStream(), std::vector<size_t>(500, 800)));
    EXPECT_EQ(readsOfSeek(0, kPrevious, 31230000), readsOf(0, {312}));
    EXPECT_EQ(readsOfSeek(0, kPrevious, 60000000), Reads());
}

TEST_F(SeekReads, FramedAudioReadsItsChunk) {
    Stream stream = frameAudioStream(0x57, 1, 8000, 160);
    std::vector<size_t> sizes;
    for (size_t i = 0; i < 500; ++i)
        sizes.push_back(20 + i % 31);
    stream.header.length = 500;
    openAvi(audioFile(stream, sizes));
    EXPECT_EQ(readsOfSeek(0, kPrevious, 312 * 20000), readsOf(0, {312}));
}

TEST_F(SeekReads, AudioInBlocksReadsItsChunkFromTheBlockOn) {
    openAvi(blockFile({2, 3, 1, 4}).avi);
    Reads expected = readsOf(0, {3});
    constexpr size_t kSkipped = 2 * kBlockBytes;
    expected[0].first += kSkipped;
    expected[0].second -= kSkipped;
    EXPECT_EQ(readsOfSeek(0, kPrevious, 8 * 26122 + 13000), expected);
}

TEST_F(SeekReads, SubtitlesReadTheFirst) {
    openAvi(fileOf(subtitleStream(), {subtitleChunk("00:00:01.000", "00:00:02.000"),
                                      subtitleChunk("00:00:03.000", "00:00:04.000")}));
    EXPECT_EQ(readsOfSeek(0, kPrevious, 3500000), readsOf(0, {0}));
}

class TwoHours : public SeekReads {
  protected:
    static constexpr uint32_t kRate = 1;  // frames a second
    static constexpr size_t kFrames = 2 * 3600 * kRate;
    static constexpr size_t kDistance = 120;  // of key frames

    static AviFile film() {
        AviFile avi;
        addFrames(avi, avi.addStream(mpeg4Stream(kRate)), groups(kFrames / kDistance, kDistance));
        Stream audio = alawStream();
        audio.header.rate = 40;  // bytes a second
        addAudio(avi, avi.addStream(audio), std::vector<size_t>(7200, 40));
        return avi;
    }
};

TEST_F(TwoHours, SeekOfATrustedIndexReadsTwoFrames) {
    openAvi(film());
    for (const int64_t minute : {0, 3, 59, 77, 118}) {
        SCOPED_TRACE(minute);
        const auto key = static_cast<size_t>(minute) * 60 * kRate / kDistance * kDistance;
        for (const uint32_t mode : {kPrevious, kClosestSync, kClosest}) {
            EXPECT_EQ(readsOfSeek(0, mode, minute * 60000000), readsOf(0, {key, key + 1}));
            EXPECT_EQ(mLanded, static_cast<int>(key));
        }
    }
    EXPECT_EQ(readsOfSeek(0, kNext, 59 * 60000000ll + 1000000).size(), 2u);
}

TEST_F(TwoHours, AudioSeekReadsOneChunk) {
    openAvi(film());
    EXPECT_EQ(readsOfSeek(1, kPrevious, 7000500000), readsOf(1, {7000}));
}

TEST_F(TwoHours, SeekOfAnUntrustedIndexReadsTheFramesItPasses) {
    AviFile avi = film();
    dropIndex(avi);
    openAvi(std::move(avi));
    const int64_t timeUs = 3600 * int64_t{1000000} + 20 * 1000000;  // 20 frames behind a key frame
    EXPECT_EQ(readsOfSeek(0, kPrevious, timeUs).size(), 20u + 1 + 2);
    EXPECT_EQ(mLanded, static_cast<int>(3600 * kRate));
    EXPECT_EQ(readsOfSeek(0, kPrevious, timeUs).size(), 2u);
}

}  // namespace
}  // namespace avitest
