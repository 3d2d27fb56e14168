// SPDX-License-Identifier: Apache-2.0
//
// Frames that go on in the next chunks.

#include "tests/behaviour/mpegaudio/MpegAudioFixture.h"

namespace avitest {
namespace {

class SplitFrames : public MpegAudioTest {
  protected:
    void expectFrames(const std::vector<Bytes>& chunks, const std::vector<Bytes>& expected) {
        openStream(mp3Bytes(), chunks);
        EXPECT_EQ(readPayloads(0), expected);
    }
};

TEST_F(SplitFrames, ComeWholeAtEverySplitPosition) {
    const std::vector<Bytes> all = frames(4);
    for (size_t position = 0; position <= kFrameSize; ++position) {
        SCOPED_TRACE(position);
        expectFrames(split(joined(all), {kFrameSize + position}), all);
    }
}

TEST_F(SplitFrames, ComeWholeWithTwoSplitsAFrame) {
    const std::vector<Bytes> all = frames(4);
    for (size_t first = 1; first <= kFrameSize; first += 5) {
        for (const size_t second : {4u, 100u, 300u, 417u}) {
            SCOPED_TRACE(std::to_string(first) + " " + std::to_string(second));
            if (first == second) continue;
            expectFrames(split(joined(all), {kFrameSize + first, second + 1}), all);
        }
    }
}

TEST_F(SplitFrames, SpanningManyChunksComeWhole) {
    const std::vector<Bytes> all = frames(4);
    for (const size_t size : {50u, 100u, 120u, 210u, 416u}) {
        SCOPED_TRACE(size);
        std::vector<size_t> sizes = {kFrameSize + 20};
        while (sizes.size() < 3 * kFrameSize / size)
            sizes.push_back(size);
        expectFrames(split(joined(all), sizes), all);
    }
}

TEST_F(SplitFrames, OfAnyPackingComeWhole) {
    const std::vector<Bytes> all = frames(12);
    for (size_t size = 2 * kFrameSize + 1; size < 3 * kFrameSize; size += 23) {
        SCOPED_TRACE(size);
        expectFrames(split(joined(all), std::vector<size_t>(12 * kFrameSize / size, size)), all);
    }
}

TEST_F(SplitFrames, KeepTheirPlaceBehindJunk) {
    const std::vector<Bytes> all = frames(4);
    expectFrames(
        split(joined({all[0], all[1], noise(30), all[2], all[3]}), {2 * kFrameSize + 30 + 100}),
        all);
}

// The rest of the chunk in which a split frame ends.
TEST_F(SplitFrames, LeaveTheRestOfTheLastChunkForTheNextRead) {
    const std::vector<Bytes> all = frames(6);
    expectFrames(split(joined(all), {kFrameSize + 200}), all);
}

TEST_F(SplitFrames, EndingWithAChunkAreFollowedByTheNext) {
    const std::vector<Bytes> all = frames(4);
    expectFrames(
        {joined({all[0], slice(all[1], 0, 200)}), slice(all[1], 200, kFrameSize), all[2], all[3]},
        all);
}

// Whether a split frame ate a chunk whole is told by the size of the chunk it began in: 139 bytes
// three times make a frame.
TEST_F(SplitFrames, OfThreeEqualChunksComeWhole) {
    const std::vector<Bytes> all = frames(4);
    std::vector<size_t> sizes = {kFrameSize};
    sizes.insert(sizes.end(), 9, kFrameSize / 3);
    // The first chunk confirms its header by the beginning of the next.
    expectFrames(split(joined(all), sizes), all);
}

// 217 bytes are missing, and the chunk the frame began in has 217 bytes: the chunk that holds them
// counts as eaten, with all that is in it.
TEST_F(SplitFrames, MissingAsMuchAsTheLoadedChunkHoldsEatTheNextChunk) {
    const std::vector<Bytes> all = frames(6);
    const std::vector<Bytes> chunks = {
        joined({all[0], all[1]}), joined({noise(17), slice(all[2], 0, 200)}),  // 217 bytes
        joined({slice(all[2], 200, kFrameSize), noise(80)}),  // 217 and what gets lost
        joined({all[3], all[4]}), all[5]};
    expectFrames(chunks, all);
}

TEST_F(SplitFrames, MissingOneByteLessLeaveTheRestOfTheNextChunk) {
    const std::vector<Bytes> all = frames(6);
    const std::vector<Bytes> chunks = {
        joined({all[0], all[1]}), joined({noise(18), slice(all[2], 0, 200)}),  // 218 bytes
        joined({slice(all[2], 200, kFrameSize), all[3]}), joined({all[4], all[5]})};
    expectFrames(chunks, all);
}

// The chunk that is told to be eaten need not be the last.
TEST_F(SplitFrames, MissingAsMuchAsTheLoadedChunkHoldsEatTheLastOfSeveralChunks) {
    const std::vector<Bytes> all = frames(5);
    const std::vector<Bytes> chunks = {
        joined({all[0], all[1]}), joined({noise(17), slice(all[2], 0, 200)}),
        slice(all[2], 200, 300), joined({slice(all[2], 300, kFrameSize), all[3]}), all[4]};
    expectFrames(chunks, {all[0], all[1], all[2], all[4]});
}

// Of a chunk whose first frame was cut before, nothing was loaded by the call that meets the split.
TEST_F(SplitFrames, BehindAnotherFrameOfTheirChunkEatNoChunkBySize) {
    const std::vector<Bytes> all = frames(4);
    const Bytes small = frameOf(0xFFFB1000, 104, 9);
    // The chunk has 261 bytes, as many as the split frame misses.
    const Bytes first = joined({noise(1), small, slice(all[1], 0, 156)});
    const Bytes second = joined({slice(all[1], 156, kFrameSize), all[2]});
    expectFrames({joined({small, small}), first, second, all[3]},
                 {small, small, small, all[1], all[2], all[3]});
}

// Stopping goes back to the first chunk, but keeps how much the split frame took of the next one.
TEST_F(SplitFrames, LeaveWhatTheyTookOfAChunkTakenAfterARestart) {
    const Bytes all = joined(frames(5));
    openStream(mp3Bytes(), split(all, {2 * kFrameSize + 100, kFrameSize}));
    const std::unique_ptr<Track> source = track(0);
    EXPECT_EQ(payloadsOf(readTrack(*source, {}, 2).samples), frames(2));
    EXPECT_EQ(payloadsOf(readTrack(*source, {}, 3).samples), frames(3));
    // 317 bytes of the third frame came from the second chunk. As many of the first chunk are
    // passed over, and with them the beginning of the first frame.
    const ReadRun again = readTrack(*source, {}, 2);
    EXPECT_EQ(payloadsOf(again.samples), (std::vector<Bytes>{frame(1), frame(2)}));
}

TEST_F(SplitFrames, AreNotTouchedByOtherStreamsBetween) {
    const std::vector<Bytes> all = frames(6);
    AviFile avi;
    const size_t video = avi.addStream(mjpegStream());
    const size_t audio = avi.addStream(mp3Bytes());
    for (const Bytes& chunk : split(joined(all), {900, 300, 500, 77})) {
        avi.addChunk(audio, chunk);
        avi.addChunk(video, patternBytes(150));
    }
    openFile(avi.build());
    EXPECT_EQ(readPayloads(1), all);
    EXPECT_EQ(readAll(0).size(), 5u);
}

}  // namespace
}  // namespace avitest
