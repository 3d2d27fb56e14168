// SPDX-License-Identifier: Apache-2.0
//
// What is fetched ahead of time, in how many calls, and that only what is asked for decides.

#include "avi/FileReader.h"

#include <gtest/gtest.h>

#include "avi/ChunkWalker.h"
#include "tests/unit/avi/Content.h"

namespace android {
namespace {

using avitest::Bytes;
using avitest::patternBytes;
using service::Fault;
using service::FaultySource;

// Headers that lie close together are fetched ahead of time.
class ReadAhead : public ::testing::Test {
  protected:
    ReadAhead() { mContent.reader().keepSize(); }
    // How many calls of the source it takes to read one header `times` times, each `step` bytes
    // behind the one before.
    uint64_t callsFor(int64_t position, int64_t step, int times) {
        mContent.source().reset();
        ChunkHeader header;
        for (int i = 0; i < times; ++i)
            readChunkHeader(mContent.reader(), position + i * step, &header);
        return mContent.source().callCount();
    }

  private:
    Content mContent{Bytes(100000)};
};

TEST_F(ReadAhead, ManyHeadersTakeFewCalls) {
    EXPECT_LT(callsFor(0, 12, 1000), 30u);
}

TEST_F(ReadAhead, SameHeaderAgainAndAgainIsCloseToItself) {
    EXPECT_LT(callsFor(500, 0, 1000), 30u);
}

TEST_F(ReadAhead, HeadersThatLieFarApartAreReadOneByOne) {
    EXPECT_EQ(10u, callsFor(0, 9000, 10));
}

TEST_F(ReadAhead, JumpGivesUpWhatWasFetched) {
    callsFor(0, 12, 100);
    EXPECT_EQ(0u, callsFor(1200, 0, 1));
    EXPECT_EQ(1u, callsFor(50000, 0, 1));
    EXPECT_EQ(1u, callsFor(1200, 0, 1));
}

constexpr size_t kRunBytes = 200000;
constexpr size_t kPiece = 4096;

// Pieces that follow one another up to a known end are fetched 64 KiB at a time.
class ReadRun : public ::testing::Test {
  protected:
    ReadRun() { mContent.reader().keepSize(); }
    // Reads a run from `start` to `end`; returns the pieces, as far as they could be read.
    Bytes run(int64_t start, int64_t end) {
        mContent.source().reset();
        Bytes all;
        Bytes piece(kPiece);
        for (int64_t at = start; at + int64_t{kPiece} <= end; at += kPiece) {
            if (!mContent.reader().readRun(at, piece.data(), piece.size(), end)) break;
            all.insert(all.end(), piece.begin(), piece.end());
        }
        return all;
    }
    std::vector<size_t> sizes() const {
        std::vector<size_t> result;
        for (const FaultySource::Call& call : mContent.source().calls())
            result.push_back(call.size);
        return result;
    }
    Bytes part(size_t start, size_t size) const {
        const auto begin = mBytes.begin() + static_cast<ptrdiff_t>(start);
        return Bytes(begin, begin + static_cast<ptrdiff_t>(size));
    }

    const Bytes mBytes = patternBytes(kRunBytes);
    mutable Content mContent{mBytes};
};

TEST_F(ReadRun, TakesACallFor64KiB) {
    EXPECT_EQ(part(100, 40 * kPiece), run(100, 100 + 40 * kPiece));
    EXPECT_EQ(sizes(), (std::vector<size_t>{65536, 65536, 8 * kPiece}));
}

TEST_F(ReadRun, FetchesNothingBeyondItsEnd) {
    EXPECT_EQ(part(0, 2 * kPiece), run(0, 2 * kPiece));
    EXPECT_EQ(sizes(), (std::vector<size_t>{2 * kPiece}));
}

TEST_F(ReadRun, FetchesNothingBeyondTheFile) {
    const size_t start = kRunBytes - 3 * kPiece;
    EXPECT_EQ(part(start, 3 * kPiece), run(start, kRunBytes + 10 * kPiece));
    EXPECT_EQ(sizes(), (std::vector<size_t>{3 * kPiece, kPiece}));
}

TEST_F(ReadRun, IsReadPieceByPieceWhereAFetchFails) {
    mContent.source().inject(Fault::error(-EIO).onOffsets(3 * kPiece, 3 * kPiece + 1));
    EXPECT_EQ(part(0, 3 * kPiece), run(0, 8 * kPiece));
    EXPECT_EQ(sizes(), (std::vector<size_t>{8 * kPiece, kPiece, 7 * kPiece, kPiece, 6 * kPiece,
                                            kPiece, 5 * kPiece, kPiece}));
}

TEST_F(ReadRun, UsesWhatAShortFetchBrought) {
    mContent.source().inject(Fault::shortRead(2 * kPiece + 1));
    EXPECT_EQ(part(0, 6 * kPiece), run(0, 6 * kPiece));
    EXPECT_EQ(sizes(), (std::vector<size_t>{6 * kPiece, 4 * kPiece, 2 * kPiece}));
}

TEST_F(ReadRun, OutsideTheFileFails) {
    Bytes piece(kPiece);
    EXPECT_FALSE(mContent.reader().readRun(-1, piece.data(), kPiece, kRunBytes));
    EXPECT_FALSE(mContent.reader().readRun(kRunBytes - 1, piece.data(), kPiece, 2 * kRunBytes));
}

}  // namespace
}  // namespace android
