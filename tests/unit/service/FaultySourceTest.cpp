// SPDX-License-Identifier: Apache-2.0
#include "service/FaultySource.h"

#include <gtest/gtest.h>

#include <atomic>
#include <cerrno>
#include <thread>

#include "service/MemorySource.h"
#include "tests/unit/service/RunThreads.h"

namespace android::service {
namespace {

using std::chrono::milliseconds;
using std::chrono::steady_clock;

class FaultySourceTest : public ::testing::Test {
  protected:
    ssize_t read(off64_t offset, size_t size) {
        mTarget.assign(size, '?');
        return mSource.readAt(offset, mTarget.data(), size);
    }
    MemorySource mMemory{std::vector<uint8_t>(100, 'x')};
    FaultySource mSource{mMemory};
    std::vector<char> mTarget;
};

TEST_F(FaultySourceTest, WithoutFaultsItForwards) {
    EXPECT_EQ(10, read(85, 10));
    EXPECT_EQ(std::vector<char>(10, 'x'), mTarget);
    EXPECT_EQ(5, read(95, 10));
    off64_t size = 0;
    EXPECT_EQ(OK, mSource.getSize(&size));
    EXPECT_EQ(100, size);
}

TEST_F(FaultySourceTest, FlagsAndUriAreThoseOfTheSource) {
    class Source : public MemorySource {
      public:
        Source() : MemorySource(nullptr, 0) {}
        uint32_t flags() override { return kIsCachingDataSource; }
        std::optional<std::string> getUri() override { return "u"; }
    } source;
    FaultySource faulty(source);
    EXPECT_EQ(DataSource::kIsCachingDataSource, faulty.flags());
    EXPECT_EQ("u", faulty.getUri());
}

TEST_F(FaultySourceTest, ShortReadDeliversAtMostThatMuch) {
    mSource.inject(Fault::shortRead(3));
    EXPECT_EQ(3, read(0, 10));
    EXPECT_EQ('x', mTarget[2]);
    EXPECT_EQ('?', mTarget[3]);
    EXPECT_EQ(2, read(0, 2));
}

TEST_F(FaultySourceTest, ShortReadOfNothingLooksLikeTheEnd) {
    mSource.inject(Fault::shortRead(0));
    EXPECT_EQ(0, read(0, 10));
}

TEST_F(FaultySourceTest, ReadShortByAByteLacksTheLastThatTheSourceHas) {
    mSource.inject(Fault::shortBy(1));
    EXPECT_EQ(9, read(0, 10));
    EXPECT_EQ(4, read(95, 10));
    EXPECT_EQ(0, read(0, 1));
    EXPECT_EQ(0, read(100, 1));
}

TEST_F(FaultySourceTest, GarbledReadInvertsTheBitsOfTheMask) {
    mSource.inject(Fault::garbled(1));
    EXPECT_EQ(5, read(95, 10));
    EXPECT_EQ("yyyyy?????", std::string(mTarget.begin(), mTarget.end()));
    EXPECT_EQ(0, read(100, 10));
}

TEST_F(FaultySourceTest, ErrorReadsNothing) {
    mSource.inject(Fault::error(-EIO));
    EXPECT_EQ(-EIO, read(0, 10));
    EXPECT_EQ(std::vector<char>(10, '?'), mTarget);
}

TEST_F(FaultySourceTest, FaultOnACallStrikesOnlyThatOne) {
    mSource.inject(Fault::error(-EIO).onCall(1));
    EXPECT_EQ(1, read(0, 1));
    EXPECT_EQ(-EIO, read(0, 1));
    EXPECT_EQ(1, read(0, 1));
}

TEST_F(FaultySourceTest, FaultFromACallStrikesAllLaterOnes) {
    mSource.inject(Fault::error(-EIO).fromCall(1));
    EXPECT_EQ(1, read(0, 1));
    EXPECT_EQ(-EIO, read(0, 1));
    EXPECT_EQ(-EIO, read(0, 1));
}

TEST_F(FaultySourceTest, FaultOnOffsetsStrikesReadsThatTouchThem) {
    mSource.inject(Fault::error(-EIO).onOffsets(10, 20));
    EXPECT_EQ(5, read(5, 5)) << "ends where the range begins";
    EXPECT_EQ(-EIO, read(5, 6)) << "asks for its first byte";
    EXPECT_EQ(-EIO, read(12, 2)) << "lies inside";
    EXPECT_EQ(-EIO, read(19, 5)) << "begins with its last byte";
    EXPECT_EQ(5, read(20, 5)) << "begins where it ends";
    EXPECT_EQ(-EIO, read(0, 50)) << "covers it";
}

TEST_F(FaultySourceTest, CallAndOffsetsMustBothMatch) {
    mSource.inject(Fault::error(-EIO).onOffsets(10, 20).onCall(1));
    EXPECT_EQ(1, read(10, 1));
    EXPECT_EQ(-EIO, read(10, 1));
    mSource.reset();
    EXPECT_EQ(1, read(0, 1));
    EXPECT_EQ(1, read(30, 1));
}

TEST_F(FaultySourceTest, SmallestShortReadWins) {
    mSource.inject(Fault::shortRead(5));
    mSource.inject(Fault::shortRead(2));
    mSource.inject(Fault::shortRead(4));
    EXPECT_EQ(2, read(0, 10));
}

TEST_F(FaultySourceTest, FirstErrorWins) {
    mSource.inject(Fault::error(-EIO));
    mSource.inject(Fault::error(-EAGAIN));
    EXPECT_EQ(-EIO, read(0, 10));
}

TEST_F(FaultySourceTest, ErrorWinsOverShortRead) {
    mSource.inject(Fault::shortRead(5));
    mSource.inject(Fault::error(-EIO));
    EXPECT_EQ(-EIO, read(0, 10));
}

TEST_F(FaultySourceTest, DelayedReadTakesThatLong) {
    mSource.inject(Fault::delayed(milliseconds(30)));
    const auto begin = steady_clock::now();
    EXPECT_EQ(10, read(0, 10));
    EXPECT_GE(steady_clock::now() - begin, milliseconds(30));
}

TEST_F(FaultySourceTest, DelayAndErrorMayStrikeTogether) {
    mSource.inject(Fault::delayed(milliseconds(30)).onCall(0));
    mSource.inject(Fault::error(-EIO).onCall(0));
    const auto begin = steady_clock::now();
    EXPECT_EQ(-EIO, read(0, 10));
    EXPECT_GE(steady_clock::now() - begin, milliseconds(30));
}

TEST_F(FaultySourceTest, DelayedReadDoesNotHoldOthersUp) {
    mSource.inject(Fault::delayed(std::chrono::seconds(1)).onCall(0));
    std::atomic<bool> slowDone{false};
    std::thread slow([&] {
        char byte = 0;
        mSource.readAt(0, &byte, 1);
        slowDone = true;
    });
    while (mSource.callCount() == 0) {
        std::this_thread::yield();
    }
    EXPECT_EQ(1, read(0, 1));
    EXPECT_FALSE(slowDone);
    slow.join();
}

TEST_F(FaultySourceTest, ClearedFaultsStrikeNoMore) {
    mSource.inject(Fault::error(-EIO));
    mSource.failGetSize(UNKNOWN_ERROR);
    mSource.clearFaults();
    off64_t size = 0;
    EXPECT_EQ(1, read(0, 1));
    EXPECT_EQ(OK, mSource.getSize(&size));
}

TEST_F(FaultySourceTest, FailingGetSizeLeavesTheOutputAlone) {
    mSource.failGetSize(UNKNOWN_ERROR);
    off64_t size = 42;
    EXPECT_EQ(UNKNOWN_ERROR, mSource.getSize(&size));
    EXPECT_EQ(42, size);
}

TEST_F(FaultySourceTest, CallsAndBytesAreCounted) {
    mSource.inject(Fault::error(-EIO).onCall(2));
    read(0, 10);
    read(95, 10);
    read(0, 10);
    off64_t size = 0;
    mSource.getSize(&size);
    EXPECT_EQ(3u, mSource.callCount());
    EXPECT_EQ(15u, mSource.byteCount());
    EXPECT_EQ(1u, mSource.getSizeCount());
}

TEST_F(FaultySourceTest, EveryCallIsListed) {
    mSource.inject(Fault::error(-EIO).onCall(1));
    read(95, 10);
    read(7, 8);
    const std::vector<FaultySource::Call> calls = mSource.calls();
    ASSERT_EQ(2u, calls.size());
    EXPECT_EQ(95, calls[0].offset);
    EXPECT_EQ(10u, calls[0].size);
    EXPECT_EQ(5, calls[0].result);
    EXPECT_EQ(7, calls[1].offset);
    EXPECT_EQ(8u, calls[1].size);
    EXPECT_EQ(-EIO, calls[1].result);
}

TEST_F(FaultySourceTest, ResetCountsFromZeroAndKeepsTheFaults) {
    mSource.inject(Fault::error(-EIO).onCall(0));
    read(0, 1);
    read(0, 1);
    mSource.reset();
    EXPECT_EQ(0u, mSource.callCount());
    EXPECT_EQ(0u, mSource.byteCount());
    EXPECT_TRUE(mSource.calls().empty());
    EXPECT_EQ(-EIO, read(0, 1)) << "call 0 again";
}

TEST(Fault, StrikesAcrossTheWholeOffsetRange) {
    constexpr off64_t kLowest = std::numeric_limits<off64_t>::min();
    constexpr off64_t kHighest = std::numeric_limits<off64_t>::max();
    const Fault fault = Fault::error(-EIO).onOffsets(kHighest - 1, kHighest);
    EXPECT_FALSE(fault.strikes(0, kLowest, 10));
    EXPECT_TRUE(fault.strikes(0, kLowest, std::numeric_limits<size_t>::max()));
    EXPECT_TRUE(Fault::error(-EIO).strikes(0, kLowest, 0));
}

TEST_F(FaultySourceTest, ThreadsAreCountedTogether) {
    runThreads(4, [this](int) {
        char byte = 0;
        for (int i = 0; i < 100; ++i) {
            mSource.readAt(0, &byte, 1);
        }
    });
    EXPECT_EQ(400u, mSource.callCount());
    EXPECT_EQ(400u, mSource.byteCount());
    EXPECT_EQ(400u, mSource.calls().size());
}

}  // namespace
}  // namespace android::service
