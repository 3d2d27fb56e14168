// SPDX-License-Identifier: Apache-2.0
//
// AC-3: the junk in front of the first sync word is measured.

#include "tests/behaviour/codecs/CodecsFixture.h"

namespace avitest {
namespace {

using ::testing::Contains;

class Ac3Configuration : public CodecTest {
  protected:
    const Bytes mFrame = Bytes{0x0B, 0x77} + Bytes(62, 0x31);
    Stream mStream = frameAudioStream(0x2000, 2, 48000, 1536);

    // Opens these samples; the junk measured.
    void expectJunk(const std::vector<Bytes>& samples, size_t junk) {
        openSamplesLogged(mStream, samples);
        EXPECT_THAT(
            log(),
            Contains(verbose(format("generateAC3CodecData(): AC3 invalid data size %zu", junk))));
        EXPECT_EQ(mLog.count("AC3 invalid data size"), 1u);
        EXPECT_EQ(mimeType(), "audio/ac3");
    }
};

TEST_F(Ac3Configuration, FrameAtTheStartHasNoJunk) {
    expectJunk({mFrame, mFrame}, 0);
}

TEST_F(Ac3Configuration, BytesInFrontOfTheSyncWordAreJunk) {
    expectJunk({Bytes(10, 0x44) + mFrame, mFrame}, 10);
}

TEST_F(Ac3Configuration, SamplesWithoutASyncWordAreJunk) {
    expectJunk({Bytes(20, 0x44), Bytes(30, 0x0B), Bytes(5, 0x77) + mFrame, Bytes(9, 0)}, 55);
}

TEST_F(Ac3Configuration, StreamWithoutASyncWordIsAllJunk) {
    expectJunk({Bytes(20, 0x44), Bytes(31, 0x44)}, 51);
}

TEST_F(Ac3Configuration, SyncWordAtTheEndOfASampleIsFound) {
    expectJunk({Bytes(20, 0x44) + Bytes{0x0B, 0x77}, mFrame}, 20);
}

TEST_F(Ac3Configuration, SyncWordAcrossSamplesIsNotFound) {
    expectJunk({Bytes(20, 0x44) + Bytes{0x0B}, Bytes{0x77} + mFrame}, 22);
}

TEST_F(Ac3Configuration, SampleOfOneByteIsJunk) {
    expectJunk({{0x0B}, mFrame}, 1);
}

TEST_F(Ac3Configuration, JunkIsCountedByChunkWhereTheTableCountsBytes) {
    mStream.header.sampleSize = 1;
    expectJunk({Bytes(20, 0x44), Bytes(30, 0x44), Bytes(3, 0x44) + mFrame}, 53);
}

TEST_F(Ac3Configuration, UnreadableSamplesAreNotCounted) {
    setProperty(kExtractLogProperty, "1");
    openSamplesWithout(mStream, {Bytes(20, 0x44), Bytes(30, 0x44), Bytes(3, 0x44) + mFrame}, {1});
    EXPECT_THAT(log(), Contains(verbose("generateAC3CodecData(): AC3 invalid data size 23")));
}

TEST_F(Ac3Configuration, ExtractLogOffSaysNothing) {
    openSamples(mStream, {Bytes(10, 0x44) + mFrame});
    EXPECT_EQ(mLog.count("AC3 invalid data size"), 0u);
}

TEST_F(Ac3Configuration, JunkIsStillHandedOut) {
    const std::vector<Bytes> samples = {Bytes(10, 0x44) + mFrame, mFrame};
    openSamples(mStream, samples);
    EXPECT_EQ(readPayloads(0), samples);
}

}  // namespace
}  // namespace avitest
