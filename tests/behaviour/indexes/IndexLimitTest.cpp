// SPDX-License-Identifier: Apache-2.0
//
// Indexes that claim more than the file can hold, or that point at one another: what they cost is
// bounded by the file's size.

#include <android/log.h>

#include "tests/behaviour/indexes/IndexesFixture.h"
#include "tests/behaviour/robustness/AllocationWatch.h"

namespace avitest {
namespace {

using android::service::DataSource;

// Counts reads, and keeps nothing of them.
class CountedSource : public DataSource {
  public:
    explicit CountedSource(DataSource& source) : mSource(source) {}
    ssize_t readAt(off64_t offset, void* data, size_t size) override {
        ++mReads;
        return mSource.readAt(offset, data, size);
    }
    android::status_t getSize(off64_t* size) override { return mSource.getSize(size); }
    uint64_t reads() const { return mReads; }

  private:
    DataSource& mSource;
    uint64_t mReads = 0;
};

class IndexLimit : public IndexesFixture {
  protected:
    size_t samplesOf(size_t track) { return readRun(track).samples.size(); }

    size_t warnings() const { return mLog.count(ANDROID_LOG_WARN, "drop the rest"); }
};

// An index of indexes all of whose entries name the same standard index of `frames` frames.
IndexedFile repeatedIndex(size_t frames, size_t times) {
    IndexedFile made({frames}, times);
    made.layOut();
    made.super.entries.assign(times, made.super.entries[0]);
    return made;
}

TEST_F(IndexLimit, SameIndexMayBeNamedTwice) {
    const IndexedFile made = repeatedIndex(3, 2);
    openFile(made.bytes());
    const std::vector<Bytes> once = made.chunks();
    std::vector<Bytes> twice = once;
    twice.insert(twice.end(), once.begin(), once.end());
    EXPECT_EQ(twice, readPayloads(0));
    EXPECT_EQ(0u, warnings());
}

TEST_F(IndexLimit, TableHoldsNoMoreThanAnEighthOfTheFile) {
    const IndexedFile made = repeatedIndex(200, 10000);
    const Bytes file = made.bytes();
    openFile(file);
    ASSERT_EQ(1u, countTracks());
    const size_t count = samplesOf(0);
    EXPECT_LE(count, file.size() / 8);
    EXPECT_GT(count, file.size() / 8 - 512);  // whole batches of entries
    EXPECT_EQ(1u, warnings());
}

TEST_F(IndexLimit, WhatFitsIsKeptInOrder) {
    const IndexedFile made = repeatedIndex(50, 1000);
    openFile(made.bytes());
    const auto chunks = made.chunks();
    const auto samples = readPayloads(0);
    ASSERT_LE(chunks.size(), samples.size());
    for (size_t i = 0; i < samples.size(); ++i)
        ASSERT_EQ(chunks[i % chunks.size()], samples[i]) << i;
}

// The warning tells of the samples that are missing, also when the last batch just fitted.
TEST_F(IndexLimit, IsWarnedOfAlsoWhenItIsReachedExactly) {
    constexpr size_t kFrames = 10;
    IndexedFile made({kFrames}, 1000);
    const size_t unit = 8 * kFrames;
    made.layOut();
    made.avi.trailing = Bytes(unit - made.bytes().size() % unit);
    made.layOut();
    made.super.entries.assign(1000, made.super.entries[0]);
    const Bytes file = made.bytes();
    ASSERT_EQ(0u, file.size() % unit);
    openFile(file);
    countTracks();
    EXPECT_EQ(1u, mLog.count(sampleCountLine(file.size() / 8)));
    EXPECT_EQ(1u, warnings());
}

TEST_F(IndexLimit, IsNotWarnedOfWhenNothingIsDropped) {
    constexpr size_t kFrames = 10;
    constexpr size_t kTimes = 400;
    IndexedFile made = repeatedIndex(kFrames, kTimes);
    const size_t size = made.bytes().size();
    ASSERT_LT(size, 8 * kFrames * kTimes);
    made.avi.trailing = Bytes(8 * kFrames * kTimes - size);
    made.layOut();
    made.super.entries.assign(kTimes, made.super.entries[0]);
    openFile(made.bytes());
    countTracks();
    EXPECT_EQ(1u, mLog.count(sampleCountLine(kFrames * kTimes)));
    EXPECT_EQ(0u, warnings());
}

TEST_F(IndexLimit, HoldsForAllStreamsTogetherWithOneWarning) {
    for (const OpenDml second : {OpenDml::kStandard, OpenDml::kSuper}) {
        SCOPED_TRACE(second == OpenDml::kSuper);
        mLog.clear();
        AviFile avi = twoStreamFile();
        avi.segment().index.copies = 0;
        avi.stream(0).openDml = OpenDml::kSuper;
        avi.stream(1).openDml = second;
        avi.stream(0).edit = [](Chunk& strl) {
            Bytes& index = strl.child("indx").payload;
            const Bytes entry(index.begin() + 24, index.begin() + 40);
            for (size_t i = 1; i < 5000; ++i)
                index.insert(index.end(), entry.begin(), entry.end());
            index[4] = 5000 & 0xFF;
            index[5] = 5000 >> 8;
        };
        while (avi.build().size() / 8 % 3 != 1)  // the last index of the first stream is cut
            avi.trailing.resize(avi.trailing.size() + 8);
        openFile(avi.build());
        countTracks();
        EXPECT_EQ(1u, warnings());
    }
}

// Costs of opening a file: reads of the source and the memory that was held for it.
struct Cost {
    uint64_t reads = 0;
    size_t peak = 0;
    size_t largest = 0;
};

Cost costOf(const Bytes& file) {
    android::service::MemorySource memory(file.data(), file.size());
    CountedSource source(memory);
    Cost cost;
    // What the log keeps of its lines is no cost of the plug-in.
    const int priority = __android_log_set_minimum_priority(ANDROID_LOG_FATAL);
    const AllocationWatch watch;
    const auto extractor = android::service::Extractor::open(pluginUnderTest(), source);
    extractor->countTracks();
    cost = {source.reads(), watch.peak(), watch.largest()};
    __android_log_set_minimum_priority(priority);
    return cost;
}

// A table takes 13 bytes a sample, in arrays that double; the file has 8 bytes for each.
void expectBounded(const Bytes& file) {
    const Cost cost = costOf(file);
    EXPECT_LT(cost.reads, 100 + file.size() / 4);
    EXPECT_LT(cost.peak, 50000 + 8 * file.size());
    EXPECT_LT(cost.largest, 20000 + 4 * file.size());
}

TEST_F(IndexLimit, SameIndexTenThousandTimesTakesBoundedReadsAndMemory) {
    expectBounded(repeatedIndex(100, 10000).bytes());
    expectBounded(repeatedIndex(1, 10000).bytes());
}

TEST_F(IndexLimit, SameEmptyIndexTenThousandTimesTakesBoundedReads) {
    IndexedFile made = repeatedIndex(3, 10000);
    made.parts[0].header.entriesInUse = 0;
    expectBounded(made.bytes());
}

TEST_F(IndexLimit, IndexesBehindTheEndTakeARead) {
    IndexedFile made = repeatedIndex(3, 10000);
    for (SuperIndex::Entry& entry : made.super.entries)
        entry.offset = 1U << 31;
    const Cost cost = costOf(made.bytes());
    EXPECT_LT(cost.reads, 10000u + 100u);
}

TEST_F(IndexLimit, CountOfTwoToThe31TakesNoRead) {
    for (const uint32_t count : {0x7FFFFFFFU, 0x80000000U, 0x80000001U, 0xFFFFFFFFU, 0x20000000U}) {
        SCOPED_TRACE(count);
        IndexedFile made({3});
        made.layOut();
        made.super.header.entriesInUse = count;
        const Cost super = costOf(made.bytes());
        EXPECT_LT(super.reads, 60u);
        EXPECT_LT(super.peak, 100000u);

        made.super.header.entriesInUse.reset();
        made.super.entries[0].size = 0xFFFFFFFF;
        made.parts[0].header.entriesInUse = count;
        const Cost standard = costOf(made.bytes());
        EXPECT_LT(standard.reads, 60u);
        EXPECT_LT(standard.peak, 100000u);
    }
}

// A size of 4 GiB makes room for half a thousand million entries; the file does not.
TEST_F(IndexLimit, EntriesThatOnlyTheClaimedSizeHoldsFailAtTheFilesEnd) {
    IndexedFile made({3});
    made.layOut();
    made.super.entries[0].size = 0xFFFFFFFF;
    made.parts[0].header.entriesInUse = 0x1FFFFFFC;  // x 8 + 24 < 2^32
    const Bytes file = made.bytes();
    openFile(file);
    ASSERT_EQ(1u, countTracks());
    EXPECT_EQ(made.chunks(), readPayloads(0));
    EXPECT_TRUE(scanned());
    expectBounded(file);
}

TEST_F(IndexLimit, SuperIndexesOfTwoStreamsThatNameEachOtherFail) {
    AviFile avi = twoStreamFile();
    avi.segment().index.copies = 0;
    for (const size_t stream : {0, 1}) {
        avi.stream(stream).openDml = OpenDml::kSuper;
        const std::string mark = "indx" + std::to_string(stream);
        avi.stream(stream).edit = [mark](Chunk& strl) { strl.child("indx").marked(mark); };
    }
    Bytes file = avi.build();
    const auto point = [&](const char* from, const char* to) {
        const size_t at = avi.place(from).dataOffset + 24;
        const uint64_t target = avi.place(to).headerOffset;
        for (size_t i = 0; i < 8; ++i)
            file[at + i] = static_cast<uint8_t>(target >> (8 * i));
    };
    point("indx0", "indx1");
    point("indx1", "indx0");
    openFile(file);
    EXPECT_EQ(avi.payloads(0), readPayloads(0));
    EXPECT_EQ(avi.payloads(1), readPayloads(1));
    EXPECT_EQ(2u, mLog.count(ANDROID_LOG_ERROR, failureOf("parseINDX", kMalformed)));
    expectBounded(file);
}

TEST_F(IndexLimit, ManyStreamsThatNameOneIndexShareTheLimit) {
    AviFile avi;
    constexpr size_t kStreams = 20;
    for (size_t i = 0; i < kStreams; ++i) {
        avi.addStream(mjpegStream());
        avi.stream(i).edit = [i](Chunk& strl) {
            strl.add(Chunk("indx", Bytes(24 + 16 * 50)).marked("indx" + std::to_string(i)));
        };
    }
    for (uint32_t i = 0; i < 40; ++i)
        avi.addChunk(0, patternBytes(4, i));
    avi.segment().index.copies = 0;
    StandardIndex part;
    part.entries.assign(500, {0, 4});
    avi.addLooseChunk(Chunk("ix00", part.toBytes()).marked("part"));
    Bytes file = avi.build();
    SuperIndex super;
    super.entries.assign(50, {avi.place("part").headerOffset, 24 + 8 * 500, 500});
    const Bytes bytes = super.toBytes();
    for (size_t i = 0; i < kStreams; ++i) {
        const auto at = static_cast<ptrdiff_t>(avi.place("indx" + std::to_string(i)).dataOffset);
        std::copy(bytes.begin(), bytes.end(), file.begin() + at);
    }
    openFile(file);
    countTracks();
    EXPECT_EQ(1u, warnings());
    expectBounded(file);
}

}  // namespace
}  // namespace avitest
