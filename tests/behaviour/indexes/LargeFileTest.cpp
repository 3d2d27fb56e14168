// SPDX-License-Identifier: Apache-2.0
//
// Files beyond 4 GiB: OpenDML indexes reach everywhere, what is found by its chunks alone only as
// far as 32 bits do.

#include "service/FileSource.h"
#include "tests/behaviour/indexes/IndexesFixture.h"
#include "tests/support/TempDir.h"

namespace avitest {
namespace {

using ::testing::ElementsAre;

constexpr uint64_t kFourGiB = uint64_t{1} << 32;

class LargeFiles : public IndexesFixture {};

// A first RIFF with one frame, then chunks of nothing up to a second RIFF at `mFar` with two frames
// and the standard index of the stream.
class FarSegment {
  public:
    explicit FarSegment(uint64_t far) : mFar(far), mSource(far + 4096) {
        mHead = unindexedFile(1);
        mHead.stream(0).header.length = 3;
        mHead.stream(0).edit = [](Chunk& strl) {
            strl.add(Chunk("indx", Bytes(24 + 2 * 16)).marked("indx"));
        };
        mHead.addLooseChunk(Chunk("ix00", Bytes(24 + 8)).marked("near"));
        Chunk movi = Chunk::list("movi").marked("movi");
        movi.add(Chunk("00dc", mFrames[0]).marked("a"));
        movi.add(Chunk("00dc", mFrames[1]).marked("b"));
        movi.add(Chunk("ix00", Bytes(24 + 2 * 8)).marked("far"));
        mTail = Chunk::list("AVIX", {movi}, "RIFF");
        mTail.declare(0xFFFFFFF0);
    }

    // With `baseBack`, the base of the far index lies so much in front of its movi list.
    void write(uint64_t baseBack = 0) {
        Bytes head = mHead.build();
        Layout layout;
        ByteWriter out;
        mTail.write(out, &layout);
        Bytes tail = out.take();
        const auto at = [&](const char* mark) { return mFar + layout.at(mark).dataOffset; };

        StandardIndex far;
        far.header.baseOffset = mFar + layout.at("movi").headerOffset - baseBack;
        for (const char* mark : {"a", "b"}) {
            far.entries.push_back({static_cast<uint32_t>(at(mark) - far.header.baseOffset),
                                   static_cast<uint32_t>(layout.at(mark).dataSize)});
        }
        StandardIndex near;
        const ChunkPlace first = mHead.chunks(0)[0].place;
        near.entries = {
            {static_cast<uint32_t>(first.dataOffset), static_cast<uint32_t>(first.dataSize)}};
        SuperIndex super;
        super.entries = {{mHead.place("near").headerOffset, 32, 1},
                         {mFar + layout.at("far").headerOffset, 40, 2}};
        copy(near.toBytes(), mHead.place("near").dataOffset, head);
        copy(super.toBytes(), mHead.place("indx").dataOffset, head);
        copy(far.toBytes(), layout.at("far").dataOffset, tail);
        fill(head.size());
        mSource.put(0, std::move(head));
        mSource.put(mFar, std::move(tail));
    }

    SparseSource& source() { return mSource; }
    std::vector<Bytes> frames() const {
        return {mHead.chunks(0)[0].data(), mFrames[0], mFrames[1]};
    }

  private:
    static void copy(const Bytes& from, uint64_t at, Bytes& to) {
        std::copy(from.begin(), from.end(), to.begin() + static_cast<ptrdiff_t>(at));
    }

    // Chunks that cover what lies between the two RIFFs.
    void fill(uint64_t from) {
        while (from < mFar) {
            const uint64_t size = std::min<uint64_t>(mFar - from - 8, 0x7FFFFFF0);
            mSource.put(from, ByteWriter().fourcc("JUNK").u32(static_cast<uint32_t>(size)).take());
            from += 8 + size;
        }
    }

    uint64_t mFar;
    SparseSource mSource;
    AviFile mHead;
    Chunk mTail;
    std::vector<Bytes> mFrames = {patternBytes(222, 2), patternBytes(333, 3)};
};

TEST_F(LargeFiles, IndexesReachBeyond4GiB) {
    for (const uint64_t far : {kFourGiB - 8192, kFourGiB + 4096, 5 * kFourGiB / 4, 20 * kFourGiB}) {
        SCOPED_TRACE(far);
        FarSegment file(far);
        file.write();
        openSource(file.source());
        EXPECT_EQ(file.frames(), readPayloads(0));
        EXPECT_FALSE(scanned());
    }
}

TEST_F(LargeFiles, BaseMayBeFarFromTheChunks) {
    FarSegment file(3 * kFourGiB + 0x90000000);
    file.write(0x80000000);
    openSource(file.source());
    EXPECT_EQ(file.frames(), readPayloads(0));
}

TEST_F(LargeFiles, SparseFileOnDiskIsReadLikeAnyOther) {
    const TempDir folder;
    FarSegment file(kFourGiB + 0x12345678);
    file.write();
    const std::string path = folder.file("large.avi");
    file.source().writeTo(path);
    android::service::FileSource source(path);
    openSource(source);
    EXPECT_EQ(file.frames(), readPayloads(0));
    openFile(unindexedFile().build());  // lets go of the source
}

TEST_F(LargeFiles, LowWordOfTheBaseWrapsWithoutCarryAbove4GiB) {
    IndexedFile made({1});
    made.layOut();
    made.parts[0].header.baseOffset = 0x1FFFFFF00;
    made.parts[0].entries[0] = {0x200, 16};
    SparseSource source(3 * kFourGiB);
    const Bytes file = made.bytes();
    source.put(0, file);
    const uint64_t rest = 3 * kFourGiB - file.size();
    uint64_t at = file.size();
    for (uint64_t left = rest; left > 0x80000000; left -= 0x80000000, at += 0x80000000)
        source.put(at, ByteWriter().fourcc("JUNK").u32(0x80000000 - 8).take());
    source.put(at, ByteWriter().fourcc("JUNK").u32(0xFFFFFFF0).take());
    const Bytes frame = patternBytes(16, 5);
    source.put(0x100000100, frame);
    openSource(source);
    EXPECT_THAT(readPayloads(0), ElementsAre(frame));
}

// A file of `size` bytes that begins with headers and an open movi list of 4 GiB. Returns where the
// list's first chunk belongs.
uint64_t putHeaders(SparseSource* source) {
    AviFile avi = unindexedFile(0);
    avi.segment().riffSize = 0xFFFFFFF0;
    avi.segment().edit = [](Chunk& riff) { riff.child("movi").declare(0xFFFFFFF0); };
    source->put(0, avi.build());
    return avi.place("movi0").dataOffset + 4;
}

Bytes headerOf(ChunkId id, uint64_t size) {
    return ByteWriter().fourcc(id).u32(static_cast<uint32_t>(size)).take();
}

TEST_F(LargeFiles, ScannedChunkJustBelow4GiBIsFound) {
    SparseSource source(kFourGiB + 200);
    const uint64_t first = putHeaders(&source);
    const uint64_t position = kFourGiB - 24;
    source.put(first, headerOf("JUNK", position - first - 8));
    const Bytes frame = patternBytes(16, 5);
    source.put(position, headerOf("00dc", frame.size()));
    source.put(position + 8, frame);
    openSource(source);
    EXPECT_THAT(readPayloads(0), ElementsAre(frame));
}

// Scanned positions are 32 bits wide: what lies behind 4 GiB is taken for the file's beginning.
TEST_F(LargeFiles, ScannedChunkBeyond4GiBWrapsToTheFilesBeginning) {
    SparseSource source(kFourGiB + 200);
    const uint64_t first = putHeaders(&source);
    const uint64_t position = kFourGiB + 40;
    source.put(first, headerOf("JUNK", position - first - 8));
    source.put(position, headerOf("00dc", 16));
    source.put(position + 8, patternBytes(16, 5));
    Bytes wrapped(16);
    source.readAt(48, wrapped.data(), wrapped.size());
    openSource(source);
    EXPECT_THAT(readPayloads(0), ElementsAre(wrapped));
}

// The size of a further RIFF is also the position where its walk ends, and 32 bits wide.
TEST_F(LargeFiles, FurtherRiffBeyond4GiBIsNotWalked) {
    const uint64_t far = kFourGiB + 0x10000;
    SparseSource source(far + 4096);
    AviFile avi = unindexedFile(1);
    avi.segment().index.copies = 1;
    avi.stream(0).header.length = 2;
    Bytes head = avi.build();
    const uint64_t second = 0x80000000;  // two chunks of nothing fill the gap
    source.put(head.size(), headerOf("JUNK", second - head.size() - 8));
    source.put(second, headerOf("JUNK", far - second - 8));
    source.put(0, std::move(head));
    Chunk riff =
        Chunk::list("AVIX", {Chunk::list("movi", {Chunk("00dc", patternBytes(40, 6))})}, "RIFF");
    riff.declare(0xFFFFFFF0);
    source.put(far, riff.toBytes());
    openSource(source);
    EXPECT_THAT(readPayloads(0), ElementsAre(avi.chunks(0)[0].data()));
    EXPECT_EQ(1u, mLog.count("Not all frames have been indexed. Need parse more riff(s)."));
    EXPECT_EQ(1u, mLog.count("readMetaData(): RIFF1 size "));
    EXPECT_EQ(0u, mLog.count("This riff doesn't have index."));
}

}  // namespace
}  // namespace avitest
