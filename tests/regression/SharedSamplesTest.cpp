// SPDX-License-Identifier: Apache-2.0
//
// Entries of indexes may all name the same bytes. Configuration read them again for each track and
// each entry, and kept them for each track: a file of 1 MB took 1.6 GB, or seconds.

#include "tests/behaviour/seeking/SeekingFixture.h"

namespace avitest {
namespace {

constexpr size_t kSharedSize = 100000;

// How many times the bytes of a file configuration may read. What else is read is less than the
// file.
constexpr uint64_t kMostTimes = 4;

class SharedSamples : public SeekingTest {
  protected:
    // Opens a file of so many streams with so many samples each, which are all the same bytes, and
    // a stream that is not configured from them.
    void openShared(const Stream& stream, size_t streams, size_t samples, const Bytes& shared) {
        AviFile avi;
        for (size_t i = 0; i < streams; ++i) {
            avi.addStream(stream);
            avi.addChunk(i, i == 0 ? shared : Bytes(2));
        }
        avi.addChunk(avi.addStream(mjpegStream()), Bytes(2));
        avi.segment().index.edit = [samples](std::vector<Idx1Entry>& entries) {
            std::vector<Idx1Entry> all;
            for (size_t i = 0; i < samples; ++i) {
                for (Idx1Entry entry : entries) {
                    entry.offset = entries[0].offset;
                    entry.length = entries[0].length;
                    all.push_back(entry);
                }
            }
            entries = all;
        };
        open(avi);
        mFileSize = avi.build().size();
        countTracks();
    }
    void expectBounded() {
        const uint64_t most = kMostTimes * mFileSize;
        EXPECT_LT(most - kSharedSize, source().byteCount());  // the limit is reached
        EXPECT_GT(most + mFileSize, source().byteCount());
    }

  private:
    uint64_t mFileSize = 0;
};

// Without a picture all of the first sample is taken for the sequence header, and published.
TEST_F(SharedSamples, OfManyVideoTracksAreReadAFewTimes) {
    openShared(videoStream("MPG2", 320, 240, 25), 200, 10, Bytes(kSharedSize, 0x77));
    expectBounded();
    size_t configured = 0;
    for (size_t i = 0; i < 200; ++i)
        configured += trackFormat(i).getBuffer(AMEDIAFORMAT_KEY_ESDS).has_value() ? 1 : 0;
    EXPECT_LE(kMostTimes, configured);
    EXPECT_GT(20u, configured);
}

TEST_F(SharedSamples, OfAc3WithoutASyncWordAreReadAFewTimes) {
    constexpr uint16_t kTagAc3 = 0x2000;
    openShared(frameAudioStream(kTagAc3, 2, 48000, 1536), 1, 2000, Bytes(kSharedSize, 0x77));
    expectBounded();
    EXPECT_EQ("audio/ac3", trackFormat(1).getString(AMEDIAFORMAT_KEY_MIME));
}

TEST_F(SharedSamples, OfMpegAudioWithoutAHeaderAreReadAFewTimes) {
    constexpr uint16_t kTagMp3 = 0x55;
    openShared(frameAudioStream(kTagMp3, 2, 44100, 1152), 1, 2000, Bytes(kSharedSize, 0x77));
    expectBounded();
    EXPECT_EQ("audio/x-unknown", trackFormat(1).getString(AMEDIAFORMAT_KEY_MIME));
}

}  // namespace
}  // namespace avitest
