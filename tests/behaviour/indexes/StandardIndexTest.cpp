// SPDX-License-Identifier: Apache-2.0
//
// Indexes of chunks: what their entries say of the samples, and how they are read.

#include "tests/behaviour/indexes/IndexesFixture.h"

namespace avitest {
namespace {

using android::service::Fault;
using ::testing::ElementsAre;

class StandardIndexes : public IndexesFixture {
  protected:
    std::vector<size_t> batchSizes(size_t entries);
};

Bytes part(const Bytes& file, size_t offset, size_t size) {
    const auto begin = file.begin() + static_cast<ptrdiff_t>(offset);
    return Bytes(begin, begin + static_cast<ptrdiff_t>(size));
}

TEST_F(StandardIndexes, MayBeTheIndexOfTheStreamListItself) {
    AviFile avi = twoStreamFile();
    avi.segment().index.copies = 0;
    avi.stream(0).openDml = OpenDml::kStandard;
    avi.stream(1).openDml = OpenDml::kStandard;
    openFile(avi.build());
    EXPECT_EQ(avi.payloads(0), readPayloads(0));
    EXPECT_EQ(avi.payloads(1), readPayloads(1));
    EXPECT_FALSE(scanned());
}

TEST_F(StandardIndexes, BothFormsMayBeMixedInOneFile) {
    AviFile avi = twoStreamFile();
    avi.segment().index.copies = 0;
    avi.stream(0).openDml = OpenDml::kStandard;
    avi.stream(1).openDml = OpenDml::kSuper;
    openFile(avi.build());
    EXPECT_EQ(avi.payloads(0), readPayloads(0));
    EXPECT_EQ(avi.payloads(1), readPayloads(1));
}

TEST_F(StandardIndexes, Bit31OfTheSizeMarksWhatIsNoKeyFrame) {
    AviFile avi;
    avi.addStream(mjpegStream());
    avi.stream(0).openDml = OpenDml::kSuper;
    avi.segment().index.copies = 0;
    avi.addChunk(0, patternBytes(100), kKey);
    avi.addChunk(0, patternBytes(4096, 1), kNoFlags);
    avi.addChunk(0, patternBytes(50, 2), kKey);
    openFile(avi.build());
    EXPECT_EQ(avi.payloads(0), readPayloads(0));
    EXPECT_THAT(syncFlags(0), ElementsAre(true, false, true));
}

TEST_F(StandardIndexes, KeyFramesAreCountedInTheLog) {
    IndexedFile made({5});
    made.layOut();
    made.parts[0].entries[1].size |= kNotKeyBit;
    made.parts[0].entries[4].size |= kNotKeyBit;
    openFile(made.bytes());
    countTracks();
    EXPECT_EQ(1u, mLog.count("finished samples 5 syncSamples 3"));
}

TEST_F(StandardIndexes, LargestKeyFrameMakesTheThumbnail) {
    IndexedFile made({4});
    made.layOut();
    made.parts[0].entries[3].size |= kNotKeyBit;
    openFile(made.bytes());
    const auto format =
        extractor().trackMetaData(0, android::service::Extractor::kIncludeExtensiveMetaData);
    EXPECT_EQ(2 * 40000, format.format.getInt64(AMEDIAFORMAT_KEY_THUMBNAIL_TIME));
}

TEST_F(StandardIndexes, OffsetsAreOfTheDataNotOfTheHeader) {
    IndexedFile made({1});
    made.layOut();
    made.parts[0].header.baseOffset = 0;
    made.parts[0].entries[0] = {100, 16};
    openFile(made.bytes());
    EXPECT_THAT(readPayloads(0), ElementsAre(part(made.bytes(), 100, 16)));
}

TEST_F(StandardIndexes, LowWordOfTheBaseWrapsWithoutCarry) {
    IndexedFile made({1});
    made.layOut();
    made.parts[0].header.baseOffset = 0xFFFFFF00;
    made.parts[0].entries[0] = {0x200, 16};
    openFile(made.bytes());
    EXPECT_THAT(readPayloads(0), ElementsAre(part(made.bytes(), 0x100, 16)));
}

TEST_F(StandardIndexes, EmptyVideoEntryBehindTheFirstSampleIsADroppedFrame) {
    IndexedFile made({4});
    made.layOut();
    made.parts[0].entries[2].size = kNotKeyBit;
    openFile(made.bytes());
    const auto samples = readAll(0);
    ASSERT_EQ(3u, samples.size());
    EXPECT_EQ(120000, samples[2].timeUs);
    EXPECT_EQ(1u, mLog.count(sampleCountLine(4)));
}

TEST_F(StandardIndexes, EmptyVideoEntriesInFrontOfTheFirstSampleAreLeftOut) {
    IndexedFile made({4});
    made.layOut();
    made.parts[0].entries[0].size = 0;
    made.parts[0].entries[1].size = kNotKeyBit;
    openFile(made.bytes());
    const auto samples = readAll(0);
    ASSERT_EQ(2u, samples.size());
    EXPECT_EQ(0, samples[0].timeUs);
    EXPECT_EQ(1u, mLog.count(sampleCountLine(2)));
}

TEST_F(StandardIndexes, EntriesBeyondTheFileAreKept) {
    IndexedFile made({3});
    made.layOut();
    made.parts[0].entries[2].offset = 0x7FFFFFFF;
    openFile(made.bytes());
    const ReadRun run = readRun(0);
    EXPECT_EQ(2u, run.samples.size());
    EXPECT_EQ(AMEDIA_ERROR_END_OF_STREAM, run.status);
    EXPECT_EQ(1u, mLog.count(sampleCountLine(3)));
    EXPECT_EQ(0u, mLog.count("exceeds the fileSize"));
}

TEST_F(StandardIndexes, WithoutEntriesAddNothing) {
    IndexedFile made({2, 1, 1});
    made.layOut();
    made.parts[1].header.entriesInUse = 0;
    openFile(made.bytes());
    const auto chunks = made.chunks();
    EXPECT_THAT(readPayloads(0), ElementsAre(chunks[0], chunks[1], chunks[3]));
}

TEST_F(StandardIndexes, EntriesBehindTheCountAreNotRead) {
    IndexedFile made({4});
    made.layOut();
    made.parts[0].header.entriesInUse = 2;
    openFile(made.bytes());
    const auto chunks = made.chunks();
    EXPECT_THAT(readPayloads(0), ElementsAre(chunks[0], chunks[1]));
}

// Sizes of the reads that an index of so many entries takes, behind its header.
std::vector<size_t> StandardIndexes::batchSizes(size_t entries) {
    IndexedFile made({entries});
    made.layOut();
    const auto& source = openCounted(made.bytes());
    countTracks();
    const uint64_t first = made.partPlace(0).dataOffset + 24;
    std::vector<size_t> sizes;
    for (const auto& call : source.calls()) {
        if (static_cast<uint64_t>(call.offset) >= first &&
            static_cast<uint64_t>(call.offset) < first + 8 * entries) {
            sizes.push_back(call.size);
        }
    }
    EXPECT_EQ(1u, mLog.count(sampleCountLine(entries)));
    return sizes;
}

TEST_F(StandardIndexes, OneEntryIsReadByItself) {
    EXPECT_THAT(batchSizes(1), ElementsAre(8u));
}

TEST_F(StandardIndexes, UpTo512EntriesTakeOneRead) {
    EXPECT_THAT(batchSizes(512), ElementsAre(4096u));
}

TEST_F(StandardIndexes, EntriesBeyond64KiBTakeASecondRead) {
    EXPECT_THAT(batchSizes(8192), ElementsAre(65536u));
    EXPECT_THAT(batchSizes(8193), ElementsAre(65536u, 8u));
}

TEST_F(StandardIndexes, LongOnesKeepTheOrderAcrossBatches) {
    AviFile avi;
    avi.addStream(mjpegStream());
    avi.segment().index.copies = 0;
    for (uint32_t i = 0; i < 1030; ++i)
        avi.addChunk(0, patternBytes(4 + i % 7, i));
    avi.stream(0).openDml = OpenDml::kStandard;
    openFile(avi.build());
    EXPECT_EQ(avi.payloads(0), readPayloads(0));
}

TEST_F(StandardIndexes, AudioTakesNoKeyFlags) {
    AviFile avi = twoStreamFile();
    avi.segment().index.copies = 0;
    avi.stream(0).openDml = OpenDml::kStandard;
    avi.stream(1).openDml = OpenDml::kStandard;
    const auto audio = static_cast<size_t>(1);
    avi.addChunk(audio, patternBytes(44, 9), kNoFlags);
    openFile(avi.build());
    EXPECT_EQ(avi.payloads(audio), readPayloads(audio));
    EXPECT_THAT(syncFlags(audio), ElementsAre(true, true, true));
}

TEST_F(StandardIndexes, EmptyAudioEntriesAreLeftOut) {
    AviFile avi = twoStreamFile();
    avi.segment().index.copies = 0;
    avi.stream(1).openDml = OpenDml::kStandard;
    avi.stream(0).openDml = OpenDml::kStandard;
    avi.addChunk(1, {});
    avi.addChunk(1, patternBytes(12, 5));
    openFile(avi.build());
    const auto chunks = avi.payloads(1);
    EXPECT_THAT(readPayloads(1), ElementsAre(chunks[0], chunks[1], chunks[3]));
}

}  // namespace
}  // namespace avitest
