// SPDX-License-Identifier: Apache-2.0
//
// An OpenDML index that fails empties the table that it filled, and the next one fills it again:
// the codec was configured each time, from the whole first sample.

#include <algorithm>

#include "tests/behaviour/seeking/SeekingFixture.h"

namespace avitest {
namespace {

constexpr size_t kIndexedFrames = 10;  // a video stream is configured at its tenth
constexpr size_t kFirstSize = 5000;

class RepeatedIndexes : public SeekingTest {
  protected:
    // Opens a file of ten frames in whose stream list so many indexes list them all, and then name
    // another index, which has no room for its header.
    void openFailingIndexes(size_t count, size_t idx1Chunks) {
        AviFile avi;
        avi.addStream(videoStream("MPG2", 320, 240, 25));
        for (uint32_t i = 0; i < kIndexedFrames; ++i)
            avi.addChunk(0, patternBytes(i == 0 ? kFirstSize : 20, i));
        avi.segment().index.copies = idx1Chunks;
        MoviChunk& part = avi.addLooseChunk(Chunk("ix00", partOf(avi)).marked("part"));
        const auto setIndexes = [&avi, count](uint64_t offset, uint32_t size) {
            SuperIndex super;
            super.entries = {{offset, size, kIndexedFrames}, {offset, 0, kIndexedFrames}};
            avi.stream(0).edit = [super, count](Chunk& strl) {
                for (size_t i = 0; i < count; ++i)
                    strl.add(Chunk("indx", super.toBytes()));
            };
        };
        setIndexes(0, 0);
        avi.build();
        setIndexes(avi.place("part").headerOffset, static_cast<uint32_t>(part.data().size()));
        part.chunk.payload = partOf(avi);
        open(avi);
        mFirst = static_cast<off64_t>(avi.chunks(0)[0].place.dataOffset);
        EXPECT_EQ(1u, countTracks());
        EXPECT_EQ(avi.payloads(0), readPayloads(0));
    }

    // How often the file's first sample was read whole before it was read to be played.
    size_t configurations() const {
        const auto all = reads();
        const auto found = std::count(all.begin(), all.end(), std::make_pair(mFirst, kFirstSize));
        return static_cast<size_t>(found) - 1;
    }

  private:
    // The index of all frames.
    static Bytes partOf(const AviFile& avi) {
        StandardIndex index;
        for (const MoviChunk& chunk : avi.chunks(0)) {
            index.entries.push_back({static_cast<uint32_t>(chunk.place.dataOffset),
                                     static_cast<uint32_t>(chunk.data().size())});
        }
        return index.toBytes();
    }

    off64_t mFirst = 0;
};

TEST_F(RepeatedIndexes, ConfigureATrackOnce) {
    openFailingIndexes(1, 0);
    EXPECT_EQ(1u, configurations());
    openFailingIndexes(100, 0);
    EXPECT_EQ(1u, configurations());
}

// The samples that the failed indexes gave may have been the wrong ones.
TEST_F(RepeatedIndexes, AreFollowedByTheConfigurationFromIdx1) {
    openFailingIndexes(100, 1);
    EXPECT_EQ(2u, configurations());
}

}  // namespace
}  // namespace avitest
