// SPDX-License-Identifier: Apache-2.0
//
// That the fuzzers' instruments do what they are there for.
#include <gtest/gtest.h>

#include "fuzz/Budgets.h"
#include "fuzz/OpeningWatch.h"
#include "fuzz/Orders.h"
#include "fuzz/Seeds.h"
#include "fuzz/TreeMutator.h"
#include "fuzz/UnsteadySource.h"
#include "service/MemorySource.h"
#include "tests/support/AviBuilder.h"

namespace avifuzz {
namespace {

using android::service::MemorySource;
using avitest::AviFile;
using avitest::Bytes;
using avitest::Chunk;
using avitest::patternBytes;
using avitest::Seed;

RiffTree treeOf(const Bytes& bytes) {
    return parseTree(bytes.data(), bytes.size());
}

// Stands in for libFuzzer's: deterministic, and to be seen.
size_t invert(uint8_t* data, size_t size, size_t /*maxSize*/) {
    for (size_t i = 0; i < size; ++i)
        data[i] = static_cast<uint8_t>(~data[i]);
    return size;
}

// A file whose second frame lies elsewhere once JUNK is put in front of the first one.
Bytes shifted(AviFile* file) {
    const Bytes before = file->build();
    RiffTree tree = treeOf(before);
    tree.chunks[0].child("movi").insert(0, Chunk("JUNK", patternBytes(10)));
    mendIndexes(&tree);
    return tree.toBytes();
}

AviFile twoFrames(avitest::OpenDml openDml) {
    AviFile file;
    avitest::Stream stream = avitest::mjpegStream();
    stream.openDml = openDml;
    file.addStream(stream);
    file.addChunk(0, patternBytes(9, 1));
    file.addChunk(0, patternBytes(12, 2));
    return file;
}

// The same file with the JUNK in it from the beginning.
Bytes shiftedByBuilder(AviFile file) {
    file.segment().edit = [](Chunk& riff) {
        riff.child("movi").insert(0, Chunk("JUNK", patternBytes(10)));
    };
    return file.build();
}

}  // namespace

TEST(FuzzOrders, FileAloneIsAnInput) {
    const Bytes file = {1, 2, 3, 0};
    const Input input(file.data(), file.size());
    EXPECT_EQ(input.fileSize, 3u);
    EXPECT_TRUE(input.orders.isEmpty());
}

TEST(FuzzOrders, CountBeyondTheInputTakesWhatIsThere) {
    const Bytes bytes = {1, 2, 200};
    Input input(bytes.data(), bytes.size());
    EXPECT_EQ(input.fileSize, 0u);
    EXPECT_EQ(input.orders.word(), 0x0102);
    EXPECT_EQ(input.orders.byte(), 0);
}

TEST(FuzzTree, EverySeedComesBackAsItWas) {
    for (const Seed& seed : avitest::fileSeeds())
        EXPECT_EQ(treeOf(seed.bytes).toBytes(), seed.bytes) << seed.name;
}

TEST(FuzzTree, CutFileComesBackAsItWas) {
    const Bytes file = avitest::fileSeeds().front().bytes;
    for (size_t size = 0; size < file.size(); ++size) {
        const Bytes cut(file.begin(), file.begin() + static_cast<std::ptrdiff_t>(size));
        ASSERT_EQ(treeOf(cut).toBytes(), cut) << size;
    }
}

TEST(FuzzTree, IndexesFollowTheirChunks) {
    for (const auto openDml : {avitest::OpenDml::kNone, avitest::OpenDml::kSuper}) {
        AviFile file = twoFrames(openDml);
        EXPECT_EQ(shifted(&file), shiftedByBuilder(twoFrames(openDml)));
    }
}

TEST(FuzzTree, AbsoluteOffsetsFollowTheirChunks) {
    AviFile file = twoFrames(avitest::OpenDml::kNone);
    file.segment().index.offsets = avitest::IndexOffsets::kAbsolute;
    AviFile other = twoFrames(avitest::OpenDml::kNone);
    other.segment().index.offsets = avitest::IndexOffsets::kAbsolute;
    EXPECT_EQ(shifted(&file), shiftedByBuilder(other));
}

TEST(FuzzMutator, SameSeedMakesTheSameChange) {
    const Bytes file = avitest::fileSeeds().front().bytes;
    size_t changed = 0;
    for (unsigned seed = 0; seed < 500; ++seed) {
        RiffTree trees[] = {treeOf(file), treeOf(file)};
        for (RiffTree& tree : trees)
            TreeMutator(seed, invert).mutate(&tree);
        ASSERT_EQ(trees[0].toBytes(), trees[1].toBytes()) << seed;
        changed += trees[0].toBytes() == file ? 0 : 1;
    }
    EXPECT_LT(400u, changed);
}

TEST(FuzzMutator, CrossingTakesAChunkOfTheOther) {
    const Bytes file = twoFrames(avitest::OpenDml::kNone).build();
    const Bytes other = Chunk("abcd", patternBytes(30, 7)).toBytes();
    for (unsigned seed = 0; seed < 50; ++seed) {
        RiffTree tree = treeOf(file);
        TreeMutator(seed, invert).cross(&tree, treeOf(other));
        const Bytes crossed = tree.toBytes();
        EXPECT_NE(std::search(crossed.begin(), crossed.end(), other.begin(), other.end()),
                  crossed.end())
            << seed;
    }
}

TEST(FuzzSource, GrowsWithEveryRead) {
    const Bytes file = patternBytes(100);
    const Bytes orderBytes = {5, 0, 10, 20, 0};  // grows, from 10 bytes by 20, no faults
    Orders orders(orderBytes.data(), orderBytes.size());
    UnsteadySource source(file.data(), file.size(), &orders);
    Bytes out(100);
    EXPECT_EQ(source.readAt(0, out.data(), out.size()), 30);
    off64_t size = 0;
    EXPECT_EQ(source.getSize(&size), android::OK);
    EXPECT_EQ(size, 30);
    EXPECT_EQ(source.readAt(0, out.data(), out.size()), 50);
    EXPECT_EQ(source.budgetSize(), 100u);
}

TEST(FuzzSource, FailsWhereItIsOrderedTo) {
    const Bytes file = patternBytes(100);
    // The true size; a fault: an error of -6 in the bytes from 50 to 60.
    const Bytes orderBytes = {7, 1, 4, 5, 0, 50, 10};
    Orders orders(orderBytes.data(), orderBytes.size());
    UnsteadySource source(file.data(), file.size(), &orders);
    Bytes out(100);
    EXPECT_EQ(source.readAt(0, out.data(), 50), 50);
    EXPECT_EQ(source.readAt(55, out.data(), 1), -6);
    EXPECT_EQ(source.readAt(61, out.data(), 100), 39);
}

TEST(Budgets, GrowWithTheFile) {
    EXPECT_EQ(maxBytesRead(1000), 16 * 1000 + 65536u);
    EXPECT_EQ(maxSourceCalls(1000), 4 * 125 + 1000u);
    EXPECT_EQ(maxLogLines(1000), 125 + 1000u);
    EXPECT_EQ(maxMemory(1000), 16 * 1000 + 2 * kMiB);
    EXPECT_EQ(maxMemory(10 * kMiB), 82 * kMiB);
    for (uint64_t size = 0; size < 4 * kMiB; size += 4096)
        ASSERT_LE(maxMemory(size), maxMemory(size + 4096)) << size;
    EXPECT_LE(maxMemory(UINT64_MAX), UINT64_MAX / 2);
}

TEST(BudgetDeathTest, ReadingTooMuchAborts) {
    const Bytes file = patternBytes(4096);
    MemorySource memory(file.data(), file.size());
    MeasuredSource source(memory);
    const OpeningWatch watch(source);
    Bytes out(file.size());
    for (int i = 0; i < 32; ++i)
        source.readAt(0, out.data(), out.size());
    watch.check(file.size(), true);
    EXPECT_DEATH(
        {
            source.readAt(0, out.data(), 1);
            watch.check(file.size(), true);
        },
        "opening 4096 bytes took 131073 bytes of the source, at most 131072 are due");
}

TEST(BudgetDeathTest, HoldingTooMuchMemoryAborts) {
    MemorySource memory(Bytes(100));
    MeasuredSource source(memory);
    const OpeningWatch watch(source);
    const Bytes held(maxMemory(100) + 1);
    EXPECT_DEATH(watch.check(100, true), "opening 100 bytes took 21.* bytes of memory");
}

}  // namespace avifuzz
