// SPDX-License-Identifier: Apache-2.0
//
// Which track a scanned chunk belongs to: audio before video, dropped streams, many streams.

#include "tests/behaviour/indexes/IndexesFixture.h"

namespace avitest {
namespace {

class ScanStreams : public IndexesFixture {};

TEST_F(ScanStreams, VideoComesFirstAlsoWhenItsStreamDoesNot) {
    AviFile avi;
    avi.addStream(pcmStream(1, 8000, 16));
    avi.addStream(mjpegStream());
    avi.addStream(pcmStream(2, 8000, 16));
    for (uint32_t i = 0; i < 3; ++i) {
        avi.addChunk(0, patternBytes(40, 3 * i));
        avi.addChunk(1, patternBytes(50 + i, 3 * i + 1));
        avi.addChunk(2, patternBytes(60, 3 * i + 2));
    }
    avi.segment().index.copies = 0;
    openFile(avi.build());
    ASSERT_EQ(3u, countTracks());
    EXPECT_EQ(avi.payloads(1), readPayloads(0));
    EXPECT_EQ(avi.payloads(0), readPayloads(1));
    EXPECT_EQ(avi.payloads(2), readPayloads(2));
}

TEST_F(ScanStreams, DroppedStreamInFrontKeepsItsNumber) {
    AviFile avi;
    avi.addStream(mjpegStream());
    avi.stream(0).header.type = "txts";
    avi.addStream(mjpegStream());
    avi.addStream(pcmStream(1, 8000, 16));
    for (uint32_t i = 0; i < 3; ++i) {
        avi.addChunk(0, patternBytes(41, 3 * i));
        avi.addChunk(1, patternBytes(50 + i, 3 * i + 1));
        avi.addChunk(2, patternBytes(60, 3 * i + 2));
    }
    avi.segment().index.copies = 0;
    openFile(avi.build());
    ASSERT_EQ(2u, countTracks());
    EXPECT_EQ(avi.payloads(1), readPayloads(0));
    EXPECT_EQ(avi.payloads(2), readPayloads(1));
}

TEST_F(ScanStreams, DroppedStreamAtTheEndLosesItsChunksOnly) {
    AviFile avi = twoStreamFile();
    avi.addStream(mjpegStream());
    avi.stream(2).header.type = "txts";
    avi.addChunk(2, patternBytes(41, 3));
    avi.addChunk(0, patternBytes(43, 4));
    avi.segment().index.copies = 0;
    openFile(avi.build());
    ASSERT_EQ(2u, countTracks());
    EXPECT_EQ(avi.payloads(0), readPayloads(0));
    EXPECT_EQ(avi.payloads(1), readPayloads(1));
}

// One video stream, the others audio, two chunks each, interleaved.
AviFile manyStreams(size_t count) {
    AviFile avi;
    for (size_t i = 0; i < count; ++i)
        avi.addStream(i == count - 1 ? mjpegStream() : pcmStream(1, 8000, 16));
    for (uint32_t round = 0; round < 2; ++round) {
        for (size_t i = 0; i < count; ++i) {
            const auto seed = static_cast<uint32_t>(i);
            avi.addChunk(i, patternBytes(20 + 2 * round, 100 * round + seed));
        }
    }
    return avi;
}

class ManyStreams : public IndexesFixture, public ::testing::WithParamInterface<size_t> {
  protected:
    void expectAllRead(AviFile avi) {
        const size_t count = GetParam();
        openFile(avi.build());
        ASSERT_EQ(count, countTracks());
        EXPECT_EQ(avi.payloads(count - 1), readPayloads(0));
        for (size_t stream = 0; stream + 1 < count; ++stream)
            EXPECT_EQ(avi.payloads(stream), readPayloads(stream + 1)) << stream;
    }
};

TEST_P(ManyStreams, AreFoundByAScan) {
    AviFile avi = manyStreams(GetParam());
    avi.segment().index.copies = 0;
    expectAllRead(std::move(avi));
    EXPECT_TRUE(scanned());
}

TEST_P(ManyStreams, AreFoundByIdx1) {
    expectAllRead(manyStreams(GetParam()));
    EXPECT_FALSE(scanned());
}

TEST_P(ManyStreams, AreFoundByOpenDmlIndexes) {
    AviFile avi = manyStreams(GetParam());
    avi.segment().index.copies = 0;
    for (size_t i = 0; i < GetParam(); ++i)
        avi.stream(i).openDml = i % 2 == 0 ? OpenDml::kSuper : OpenDml::kStandard;
    expectAllRead(std::move(avi));
    EXPECT_FALSE(scanned());
}

INSTANTIATE_TEST_SUITE_P(Counts, ManyStreams, ::testing::Values(2, 10, 11, 99));

}  // namespace
}  // namespace avitest
