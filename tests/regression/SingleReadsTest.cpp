// SPDX-License-Identifier: Apache-2.0
//
// Bytes of a sample that had been read were read again: the head of a VC-1 frame, and what a frame
// of MPEG audio takes from the beginning of the next chunk.

#include "tests/behaviour/mpegaudio/MpegAudioFixture.h"
#include "tests/support/LoggedFixture.h"

namespace avitest {
namespace {

class SingleReads : public LoggedFixture {
  protected:
    // Opens a stream of these chunks and plays it; returns what the source was asked for meanwhile.
    std::vector<FaultySource::Call> callsOf(Stream stream, const std::vector<Bytes>& chunks) {
        FaultySource& source = openCounted(fileOf(std::move(stream), chunks).build());
        EXPECT_EQ(1u, countTracks());
        source.reset();
        mPlayed = readPayloads(0);
        return source.calls();
    }
    std::vector<Bytes> mPlayed;
};

uint64_t bytesRead(const std::vector<FaultySource::Call>& calls) {
    uint64_t bytes = 0;
    for (const FaultySource::Call& call : calls)
        bytes += static_cast<uint64_t>(call.result);
    return bytes;
}

TEST_F(SingleReads, SufficeForFramesOfVc1) {
    const Bytes with = {0, 0, 1, 0x0D, 0xC5, 0x55, 0x66};
    const Bytes without = {0xC5, 0x55, 0x66, 0x77};
    EXPECT_EQ(3u, callsOf(videoStream("WVC1", 320, 240, 25), {without, with, without}).size());
    const Bytes made = {0, 0, 1, 0x0D, 0xC5, 0x55, 0x66, 0x77};
    EXPECT_EQ((std::vector<Bytes>{made, with, made}), mPlayed);
}

// The last byte of a chunk is read in any case.
TEST_F(SingleReads, SufficeForFramesOfMpegAudioInTwoChunks) {
    const Bytes stream = joined(frames(6));
    const std::vector<Bytes> chunks = split(stream, {2 * kFrameSize + 10, kFrameSize, 407, 600});
    EXPECT_GE(stream.size() + chunks.size(), bytesRead(callsOf(mp3Bytes(), chunks)));
    EXPECT_EQ(frames(6), mPlayed);
}

}  // namespace
}  // namespace avitest
