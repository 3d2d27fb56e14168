// SPDX-License-Identifier: Apache-2.0
//
// Files made to keep a reader busy or to fill its memory.

#include <algorithm>
#include <cstring>
#include <ctime>
#include <functional>
#include <utility>

#include "service/Extractor.h"
#include "service/MemorySource.h"
#include "tests/behaviour/robustness/AllocationWatch.h"
#include "tests/behaviour/robustness/Endurance.h"
#include "tests/support/SlowBuild.h"

namespace avitest {
namespace {

using android::service::DataSource;
using android::service::Extractor;
using android::service::MemorySource;

constexpr double kMostSeconds = kSlowBuild ? 30 : 1;  // of processor time

constexpr size_t kMegabyte = 1024 * 1024;

// Processor time, which other programs of the machine do not lengthen.
double secondsOf(const std::function<void()>& work) {
    const std::clock_t begin = std::clock();
    work();
    return static_cast<double>(std::clock() - begin) / CLOCKS_PER_SEC;
}

// The first bytes of an AVI file, then `rest` times one byte.
Bytes sniffedThen(uint8_t byte, size_t rest) {
    return ByteWriter()
        .fourcc("RIFF")
        .u32(static_cast<uint32_t>(4 + rest))
        .fourcc("AVI ")
        .fill(rest, byte)
        .take();
}

class HostileFile : public QuietTest {
  protected:
    void expectQuickEnd(const Bytes& file) {
        EXPECT_GT(kMostSeconds, secondsOf([&file] { EXPECT_TRUE(endures(file)); }));
    }
};

TEST_F(HostileFile, OnlyZeroesComeToAnEnd) {
    for (const size_t rest : {size_t{0}, size_t{1}, size_t{8}, size_t{4095}, kMegabyte}) {
        SCOPED_TRACE(rest);
        expectQuickEnd(sniffedThen(0, rest));
    }
}

TEST_F(HostileFile, OnlyOnesComeToAnEnd) {
    for (const size_t rest : {size_t{0}, size_t{1}, size_t{8}, size_t{4095}, kMegabyte}) {
        SCOPED_TRACE(rest);
        expectQuickEnd(sniffedThen(0xFF, rest));
    }
}

TEST_F(HostileFile, RiffOfSizeZeroThenZeroesComesToAnEnd) {
    Bytes file = sniffedThen(0, kMegabyte);
    std::fill(file.begin() + 4, file.begin() + 8, uint8_t{0});
    expectQuickEnd(file);
}

TEST_F(HostileFile, NothingButRiffHeadersComesToAnEnd) {
    ByteWriter out;
    while (out.size() < kMegabyte)
        out.fourcc("RIFF").u32(4).fourcc("AVI ");
    expectQuickEnd(out.data());
}

TEST_F(HostileFile, ListsWithinListsComeToAnEnd) {
    for (const char* type : {"hdrl", "strl", "movi", "INFO", "AVI "}) {
        SCOPED_TRACE(type);
        ByteWriter out;
        out.fourcc("RIFF").u32(kMegabyte).fourcc("AVI ");
        out.fourcc("LIST").u32(kMegabyte).fourcc("hdrl");
        out.fourcc("avih").u32(56).fill(56);
        while (out.size() < kMegabyte)
            out.fourcc("LIST").u32(4).fourcc(ChunkId::of(type));
        expectQuickEnd(out.data());
    }
}

// A file of `streams` tiny stream lists and an index of `entries` entries, which all belong to the
// stream whose number is written as two bytes of 0xFF: the last one that has a number.
constexpr size_t kMostNumberedStreams = 11 * 0xFF - 11 * '0' + 1;
AviFile manyStreams(size_t streams, size_t entries) {
    AviFile avi;
    for (size_t i = 0; i < streams; ++i)
        avi.addStream(videoStream("MJPG", 2, 2, 25));
    avi.addChunk(0, patternBytes(8), kKey);
    avi.segment().index.edit = [entries](std::vector<Idx1Entry>& all) {
        Idx1Entry entry = all.at(0);
        const uint32_t letters = entry.id.value() & 0xFFFF0000;
        entry.id = ChunkId(letters | 0xFFFF);
        all.assign(entries, entry);
    };
    return avi;
}

TEST_F(HostileFile, ManyStreamsWithALargeIndexOpenInTime) {
    constexpr size_t kEntries = 250000;
    const Bytes file = manyStreams(kMostNumberedStreams, kEntries).build();
    MemorySource memory(file.data(), file.size());
    WatchedSource source(memory, mostReads(file.size()));
    EXPECT_GT(kMostSeconds, secondsOf([&source] {
                  const auto extractor = Extractor::open(pluginUnderTest(), source);
                  ASSERT_NE(nullptr, extractor);
                  EXPECT_EQ(kMostNumberedStreams, extractor->countTracks());
              }));
}

TEST_F(HostileFile, ManyStreamsAreQueriedAndReadInTime) {
    expectQuickEnd(manyStreams(4000, 100).build());
}

TEST_F(HostileFile, ManyStreamsTakeASmallMultipleOfTheFilesSize) {
    constexpr size_t kMultiple = 16;
    const Bytes file = manyStreams(8000, 100).build();
    MemorySource memory(file.data(), file.size());
    WatchedSource source(memory, mostReads(file.size()));
    const AllocationWatch watch;
    const auto extractor = Extractor::open(pluginUnderTest(), source);
    ASSERT_NE(nullptr, extractor);
    EXPECT_EQ(kMostNumberedStreams, extractor->countTracks());
    EXPECT_GT(kMultiple * file.size(), watch.peak());
}

// The beginning of a file, then one index entry over and over, made up when it is read.
class RepeatingSource : public DataSource {
  public:
    RepeatingSource(Bytes head, Bytes entry, uint64_t count)
        : mHead(std::move(head)), mEntry(std::move(entry)), mCount(count) {}

    uint64_t size() const { return mHead.size() + mCount * mEntry.size(); }

    ssize_t readAt(off64_t offset, void* data, size_t length) override {
        auto* out = static_cast<uint8_t*>(data);
        size_t done = 0;
        while (done < length) {
            const auto [from, left] = run(static_cast<uint64_t>(offset) + done);
            if (left == 0) break;
            const size_t part = std::min(left, length - done);
            std::memcpy(out + done, from, part);
            done += part;
        }
        return static_cast<ssize_t>(done);
    }

    android::status_t getSize(off64_t* out) override {
        *out = static_cast<off64_t>(size());
        return android::OK;
    }

  private:
    // Where the bytes at `offset` are, and how many of them lie together.
    std::pair<const uint8_t*, size_t> run(uint64_t offset) const {
        if (offset >= size()) return {nullptr, 0};
        if (offset < mHead.size()) return {mHead.data() + offset, mHead.size() - offset};
        const size_t within = (offset - mHead.size()) % mEntry.size();
        return {mEntry.data() + within, mEntry.size() - within};
    }

    Bytes mHead;
    Bytes mEntry;
    uint64_t mCount;
};

// A file of one chunk, to which each of `count` index entries points.
RepeatingSource sameChunkOverAndOver(uint64_t count) {
    constexpr size_t kEntryBytes = 16;
    AviFile avi;
    avi.addStream(videoStream("MJPG", 32, 16, 25));
    avi.addChunk(0, patternBytes(40), kKey);
    Bytes file = avi.build();
    const auto index = static_cast<ptrdiff_t>(avi.place("idx1.0").dataOffset);
    const Bytes entry(file.begin() + index, file.begin() + index + kEntryBytes);
    ByteWriter head;
    head.bytes(Bytes(file.begin(), file.begin() + index));
    const auto indexBytes = static_cast<uint32_t>(count * kEntryBytes);
    head.patchU32(4, static_cast<uint32_t>(index) - 8 + indexBytes);
    head.patchU32(static_cast<size_t>(index) - 4, indexBytes);
    return RepeatingSource(head.take(), entry, count);
}

TEST_F(HostileFile, MillionsOfEntriesForOneChunkComeToAnEnd) {
    constexpr uint64_t kEntries = uint64_t{1} << (kSlowBuild ? 20 : 24);
    RepeatingSource source = sameChunkOverAndOver(kEntries);
    const AllocationWatch watch;
    WatchedSource watched(source, mostReads(source.size()));
    const auto extractor = Extractor::open(pluginUnderTest(), watched);
    ASSERT_NE(nullptr, extractor);
    ASSERT_EQ(1u, extractor->countTracks());
    EXPECT_GT(4 * source.size(), watch.peak());
    const auto track = extractor->track(0);
    ASSERT_NE(nullptr, track);
    const ReadRun run = readTrack(*track, {}, 1000);
    EXPECT_EQ(1000u, run.samples.size());
    EXPECT_EQ(patternBytes(40), run.samples.back().bytes);
}

TEST_F(HostileFile, ManyEntriesForOneChunkAreReadToTheEnd) {
    RepeatingSource source = sameChunkOverAndOver(100000);
    EXPECT_GT(kMostSeconds, secondsOf([&source] { EXPECT_TRUE(endures(source, source.size())); }));
}

// Each frame asks how many B-frames follow it.
TEST_F(HostileFile, EndlessBFramesAreReadInTime) {
    AviFile avi;
    const size_t video = avi.addStream(videoStream("FMP4", 32, 16, 25));
    const Bytes bidirectional = {0, 0, 1, 0xB6, 0x90, 0, 1, 2};
    avi.addChunk(video, bidirectional, kKey);
    avi.segment().index.edit = [](std::vector<Idx1Entry>& all) { all.resize(20000, all.at(0)); };
    expectQuickEnd(avi.build());
}

// The same with chunks that cannot be read, of which nobody knows whether they are B-frames.
TEST_F(HostileFile, EndlessMissingFramesAreReadInTime) {
    AviFile avi;
    const size_t video = avi.addStream(videoStream("FMP4", 32, 16, 25));
    avi.addChunk(video, {0, 0, 1, 0xB6, 0x50, 0, 1, 2}, kKey);
    avi.segment().index.edit = [](std::vector<Idx1Entry>& all) {
        const Idx1Entry good = all.at(0);
        Idx1Entry missing = good;
        missing.length = 0x00FFFFFF;
        all.resize(20000, missing);
        for (size_t i = 0; i < all.size(); i += 100)
            all[i] = good;
    };
    expectQuickEnd(avi.build());
}

}  // namespace
}  // namespace avitest
