// SPDX-License-Identifier: Apache-2.0
//
// A header of MPEG audio is believed when another one follows its frame, which may be in the next
// chunk. The first bytes of that chunk were read again for each candidate of this one.

#include <algorithm>

#include "tests/behaviour/mpegaudio/MpegAudioFixture.h"
#include "tests/support/LoggedFixture.h"

namespace avitest {
namespace {

class FollowingHeader : public LoggedFixture {
  protected:
    // Opens MPEG audio in these chunks and asks for its tracks.
    void openChunks(const std::vector<Bytes>& chunks) {
        AviFile avi = fileOf(mp3Frames(), chunks);
        mSource = &openCounted(avi.build());
        for (const MoviChunk& chunk : avi.chunks(0))
            mOffsets.push_back(static_cast<off64_t>(chunk.place.dataOffset));
        EXPECT_EQ(1u, countTracks());
    }
    // How often the first bytes of a chunk were read, and no more of it.
    size_t readsOfHeader(size_t chunk) const {
        const auto all = mSource->calls();
        return static_cast<size_t>(
            std::count_if(all.begin(), all.end(), [&](const FaultySource::Call& call) {
                return call.offset == mOffsets[chunk] && call.size == headerBytes(0).size();
            }));
    }

  private:
    FaultySource* mSource = nullptr;
    std::vector<off64_t> mOffsets;
};

// A chunk of nothing but headers, all of whose frames end behind it.
Bytes candidates(size_t count) {
    return joined(std::vector<Bytes>(count, headerBytes(kHeader)));
}

TEST_F(FollowingHeader, IsReadOnceAChunk) {
    openChunks({candidates(100), noise(500), candidates(100), noise(500), frame(1), frame(2)});
    EXPECT_EQ(1u, readsOfHeader(1));
    EXPECT_EQ(1u, readsOfHeader(3));
    EXPECT_EQ((std::vector<Bytes>{frame(1), frame(2)}), readPayloads(0));
}

TEST_F(FollowingHeader, IsThatOfTheNextChunkEachTime) {
    openChunks({candidates(1), noise(500), candidates(1), frame(1), frame(2)});
    EXPECT_EQ(1u, readsOfHeader(1));
    EXPECT_EQ(1u, readsOfHeader(3));
    EXPECT_EQ(3u, readPayloads(0).size());
}

}  // namespace
}  // namespace avitest
