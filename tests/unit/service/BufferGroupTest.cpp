// SPDX-License-Identifier: Apache-2.0
#include "service/BufferGroup.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sys/resource.h>

#include <algorithm>
#include <limits>

#include "tests/unit/service/AllocatorAborts.h"

namespace android::service {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;

// Acquires without waiting and expects to get a buffer.
BufferHandle take(BufferGroup& group, size_t requestedSize = 0) {
    BufferGroup::Acquired acquired = group.acquire(true, requestedSize);
    EXPECT_EQ(AMEDIA_OK, acquired.status);
    EXPECT_TRUE(acquired.buffer);
    return std::move(acquired.buffer);
}

TEST(BufferGroup, NewGroupIsEmpty) {
    BufferGroup group;
    EXPECT_THAT(group.bufferSizes(), IsEmpty());
    EXPECT_FALSE(group.hasBuffers());
    EXPECT_EQ(AMEDIA_ERROR_UNKNOWN, group.acquire(true).status);
}

TEST(BufferGroup, InitMakesThatManyBuffersOfThatSize) {
    BufferGroup group;
    EXPECT_TRUE(group.init(3, 100));
    EXPECT_THAT(group.bufferSizes(), ElementsAre(100, 100, 100));
    EXPECT_EQ(0u, group.heldCount());
}

TEST(BufferGroup, InitWithNothingIsTrue) {
    BufferGroup group;
    EXPECT_TRUE(group.init(0, 0, 0));
    EXPECT_EQ(0u, group.bufferCount());
}

TEST(BufferGroup, SecondInitAddsBuffers) {
    BufferGroup group;
    group.init(1, 10);
    group.init(1, 20);
    EXPECT_THAT(group.bufferSizes(), ElementsAre(10, 20));
}

TEST(BufferGroup, SecondInitSetsTheGrowthLimitAnew) {
    BufferGroup group;
    group.init(1, 10, 5);
    group.init(0, 0, 0);
    BufferHandle held = take(group);
    EXPECT_EQ(AMEDIA_ERROR_UNKNOWN, group.acquire(true).status);
}

TEST(BufferGroup, AddBufferIgnoresTheGrowthLimit) {
    BufferGroup group;
    group.init(1, 10, 1);
    group.addBuffer(20);
    EXPECT_THAT(group.bufferSizes(), ElementsAre(10, 20));
}

TEST(BufferGroup, FreshBufferRangesOverTheWholeBuffer) {
    BufferGroup group;
    group.init(1, 100);
    BufferHandle buffer = take(group);
    EXPECT_EQ(100u, buffer.size());
    EXPECT_EQ(0u, buffer.rangeOffset());
    EXPECT_EQ(100u, buffer.rangeLength());
    EXPECT_THAT(buffer.metaData().entries(), IsEmpty());
}

TEST(BufferGroup, FirstFreeOneIsTaken) {
    BufferGroup group;
    group.addBuffer(30);
    group.addBuffer(10);
    group.addBuffer(20);
    EXPECT_EQ(30u, take(group).size());
    BufferHandle first = take(group);
    EXPECT_EQ(10u, take(group).size());
}

TEST(BufferGroup, FirstFreeOneOfSufficientSizeIsTaken) {
    BufferGroup group;
    group.addBuffer(10);
    group.addBuffer(30);
    group.addBuffer(20);
    EXPECT_EQ(30u, take(group, 15).size());
}

TEST(BufferGroup, ExactSizeIsSufficient) {
    BufferGroup group;
    group.addBuffer(10);
    EXPECT_EQ(10u, take(group, 10).size());
    EXPECT_THAT(group.bufferSizes(), ElementsAre(10));
}

TEST(BufferGroup, ReleasedBufferIsTakenAgain) {
    BufferGroup group;
    group.init(1, 10);
    CMediaBuffer* first = take(group).get();
    EXPECT_EQ(first, take(group).get());
}

TEST(BufferGroup, SmallestFreeOneIsReplacedInItsPlace) {
    BufferGroup group;
    group.addBuffer(30);
    group.addBuffer(10);
    group.addBuffer(20);
    EXPECT_EQ(150u, take(group, 100).size());
    EXPECT_THAT(group.bufferSizes(), ElementsAre(30, 150, 20));
}

TEST(BufferGroup, FirstOfEquallySmallOnesIsReplaced) {
    BufferGroup group;
    group.init(2, 10);
    take(group, 100);
    EXPECT_THAT(group.bufferSizes(), ElementsAre(150, 10));
}

TEST(BufferGroup, HeldBufferIsNotReplaced) {
    BufferGroup group;
    group.addBuffer(10);
    group.addBuffer(20);
    BufferHandle smallest = take(group);
    take(group, 100);
    EXPECT_THAT(group.bufferSizes(), ElementsAre(10, 150));
}

TEST(BufferGroup, ReplacementComesBeforeGrowth) {
    BufferGroup group;
    group.init(1, 10, 5);
    take(group, 100);
    EXPECT_THAT(group.bufferSizes(), ElementsAre(150));
}

TEST(BufferGroup, ReplacementNeedsNoGrowthLimit) {
    BufferGroup group;
    group.init(1, 10, 0);
    take(group, 100);
    EXPECT_THAT(group.bufferSizes(), ElementsAre(150));
}

TEST(BufferGroup, ReplacedBufferHasFreshMetaData) {
    BufferGroup group;
    group.init(1, 10);
    AMediaFormat_setInt32(take(group).metaData().get(), "stale", 1);
    EXPECT_FALSE(take(group, 100).metaData().contains("stale"));
}

TEST(BufferGroup, AllHeldUnderTheLimitGrows) {
    BufferGroup group;
    group.init(1, 10, 2);
    BufferHandle first = take(group);
    BufferHandle second = take(group, 20);
    EXPECT_THAT(group.bufferSizes(), ElementsAre(10, 30));
}

TEST(BufferGroup, GrowthStopsAtTheLimit) {
    BufferGroup group;
    group.init(1, 10, 2);
    BufferHandle first = take(group);
    BufferHandle second = take(group);
    BufferGroup::Acquired third = group.acquire(true);
    EXPECT_EQ(AMEDIA_ERROR_UNKNOWN, third.status);
    EXPECT_FALSE(third.buffer);
    EXPECT_EQ(2u, group.bufferCount());
}

TEST(BufferGroup, LimitZeroNeverGrows) {
    BufferGroup group;
    group.init(1, 10, 0);
    BufferHandle first = take(group);
    EXPECT_EQ(AMEDIA_ERROR_UNKNOWN, group.acquire(true, 20).status);
    EXPECT_EQ(1u, group.bufferCount());
}

TEST(BufferGroup, LimitBelowTheInitialCountIsRaisedToIt) {
    BufferGroup group;
    group.init(3, 10, 1);
    EXPECT_EQ(3u, group.growthLimit());
    EXPECT_EQ(3u, group.bufferCount());
}

TEST(BufferGroup, LimitZeroIsNotRaised) {
    BufferGroup group;
    group.init(3, 10, 0);
    EXPECT_EQ(0u, group.growthLimit());
}

TEST(BufferGroup, LimitAboveTheInitialCountIsKept) {
    BufferGroup group;
    group.init(3, 10, 4);
    EXPECT_EQ(4u, group.growthLimit());
}

TEST(BufferGroup, EmptyGroupGrowsUnderTheLimit) {
    BufferGroup group;
    group.init(0, 0, 1);
    EXPECT_EQ(150u, take(group, 100).size());
}

TEST(BufferGroup, GrowthForNoSizeTakesTheBiggestOnes) {
    BufferGroup group;
    group.addBuffer(10);
    group.addBuffer(40);
    group.addBuffer(20);
    BufferHandle held[] = {take(group), take(group), take(group)};
    group.init(0, 0, 4);
    EXPECT_EQ(40u, take(group).size());
}

TEST(BufferGroup, OddRequestRoundsTheGrowthDown) {
    BufferGroup group;
    group.init(0, 0, 1);
    EXPECT_EQ(151u, take(group, 101).size());
}

TEST(BufferGroup, RequestOfOneByteGetsOne) {
    BufferGroup group;
    group.init(0, 0, 1);
    EXPECT_EQ(1u, take(group, 1).size());
}

TEST(BufferGroup, NoSizeOutOfNoBuffersGivesAnEmptyBuffer) {
    BufferGroup group;
    group.init(0, 0, 1);
    EXPECT_EQ(0u, take(group).size());
}

TEST(BufferGroup, WithoutMemoryTheGroupStaysAsItIs) {
    if (kAllocatorAborts) GTEST_SKIP() << "the sanitizer's allocator ends the process instead";
    BufferGroup group;
    group.init(1, 10, 2);
    for (const size_t tooMuch :
         {std::numeric_limits<size_t>::max(), std::numeric_limits<size_t>::max() / 3 * 2 + 1,
          std::numeric_limits<size_t>::max() / 2}) {
        EXPECT_EQ(AMEDIA_ERROR_UNKNOWN, group.acquire(true, tooMuch).status);
    }
    group.addBuffer(std::numeric_limits<size_t>::max());
    EXPECT_THAT(group.bufferSizes(), ElementsAre(10));
}

// A size that no allocator gives.
constexpr size_t kTooMuch = std::numeric_limits<size_t>::max() / 2;

TEST(BufferGroup, WithoutMemoryForAnyBufferAcquireFailsInsteadOfWaiting) {
    if (kAllocatorAborts) GTEST_SKIP() << "the sanitizer's allocator ends the process instead";
    BufferGroup group;
    EXPECT_FALSE(group.init(2, kTooMuch));
    const BufferGroup::Acquired acquired = group.acquire();
    EXPECT_EQ(AMEDIA_ERROR_UNKNOWN, acquired.status);
    EXPECT_FALSE(acquired.buffer);
}

// Under half of what is left: one fits, and whoever holds it would wait for the other.
TEST(BufferGroup, WithoutMemoryForAllBuffersInitMakesNone) {
    if (kAllocatorAborts) GTEST_SKIP() << "the sanitizer's allocator ends the process instead";
    rlimit before{};
    ASSERT_EQ(0, getrlimit(RLIMIT_AS, &before));
    constexpr size_t kSize = size_t{4} << 30;
    rlimit limit = before;
    limit.rlim_cur = kSize + kSize / 2;
    BufferGroup group;
    ASSERT_EQ(0, setrlimit(RLIMIT_AS, &limit));
    const bool one = BufferGroup().init(1, kSize);
    const bool both = group.init(2, kSize);
    const bool unlimited = BufferGroup().init(1, 2 * kSize);
    setrlimit(RLIMIT_AS, &before);
    if (!one || unlimited) GTEST_SKIP() << "addresses cannot be limited to 6 GiB here";
    EXPECT_FALSE(both);
    EXPECT_EQ(AMEDIA_ERROR_UNKNOWN, group.acquire().status);
}

TEST(BufferGroup, WithoutMemoryForALargerBufferAcquireFailsInsteadOfWaiting) {
    if (kAllocatorAborts) GTEST_SKIP() << "the sanitizer's allocator ends the process instead";
    BufferGroup group;
    group.init(1, 10);
    EXPECT_EQ(AMEDIA_ERROR_UNKNOWN, group.acquire(false, kTooMuch).status);
    EXPECT_EQ(10u, take(group).size());
}

TEST(BufferGroup, MemoryThatWasShortIsAskedForAgain) {
    if (kAllocatorAborts) GTEST_SKIP() << "the sanitizer's allocator ends the process instead";
    BufferGroup group;
    group.init(0, 0, 1);
    EXPECT_EQ(AMEDIA_ERROR_UNKNOWN, group.acquire(false, kTooMuch).status);
    EXPECT_EQ(AMEDIA_OK, group.acquire(false, 20).status);
}

TEST(BufferGroup, NonBlockingFailureStoresNull) {
    BufferGroup group;
    CMediaBufferGroup* plain = group.plain();
    CMediaBuffer untouched{};
    CMediaBuffer* buffer = &untouched;
    EXPECT_EQ(-10000, plain->acquire_buffer(plain->handle, &buffer, true, 0));
    EXPECT_EQ(nullptr, buffer);
}

TEST(BufferGroup, ReacquiredBufferRangesOverTheWholeBufferAgain) {
    BufferGroup group;
    group.init(1, 100);
    take(group).setRange(30, 20);
    BufferHandle again = take(group);
    EXPECT_EQ(0u, again.rangeOffset());
    EXPECT_EQ(100u, again.rangeLength());
}

TEST(BufferGroup, ReacquiredBufferKeepsStaleMetaData) {
    BufferGroup group;
    group.init(1, 100);
    AMediaFormat_setInt32(take(group).metaData().get(), "stale", 7);
    EXPECT_EQ(7, take(group).metaData().getInt32("stale"));
}

TEST(BufferGroup, RangeUpToTheEndIsAllowed) {
    BufferGroup group;
    group.init(1, 100);
    BufferHandle buffer = take(group);
    buffer.setRange(100, 0);
    EXPECT_EQ(100u, buffer.rangeOffset());
    buffer.setRange(1, 99);
    EXPECT_EQ(99u, buffer.rangeLength());
}

TEST(BufferGroup, WholeBufferIsWritable) {
    BufferGroup group;
    group.init(1, 100000);
    BufferHandle buffer = take(group);
    std::fill_n(buffer.base(), buffer.size(), uint8_t{0xab});
    EXPECT_EQ(std::vector<uint8_t>(100000, 0xab), buffer.bytes());
}

TEST(BufferGroup, BuffersDoNotOverlap) {
    BufferGroup group;
    group.init(2, 8);
    BufferHandle first = take(group);
    BufferHandle second = take(group);
    std::fill_n(first.base(), 8, uint8_t{1});
    std::fill_n(second.base(), 8, uint8_t{2});
    EXPECT_EQ(std::vector<uint8_t>(8, 1), first.bytes());
}

TEST(BufferGroup, HasBuffersWhenOneIsFree) {
    BufferGroup group;
    group.init(2, 10);
    BufferHandle first = take(group);
    EXPECT_TRUE(group.hasBuffers());
}

TEST(BufferGroup, HasBuffersWhenItMayGrow) {
    BufferGroup group;
    group.init(1, 10, 2);
    BufferHandle first = take(group);
    EXPECT_TRUE(group.hasBuffers());
}

TEST(BufferGroup, HasNoBuffersWhenAllAreHeldAtTheLimit) {
    BufferGroup group;
    group.init(1, 10, 1);
    BufferHandle first = take(group);
    EXPECT_FALSE(group.hasBuffers());
    first.release();
    EXPECT_TRUE(group.hasBuffers());
}

TEST(BufferGroup, HeldBuffersAreCounted) {
    BufferGroup group;
    group.init(3, 10);
    BufferHandle first = take(group);
    BufferHandle second = take(group);
    EXPECT_EQ(2u, group.heldCount());
    first.release();
    EXPECT_EQ(1u, group.heldCount());
}

TEST(BufferGroup, PlainRecordForwardsEveryCall) {
    BufferGroup group;
    CMediaBufferGroup* plain = group.plain();
    EXPECT_TRUE(plain->init(plain->handle, 1, 10, 1));
    plain->add_buffer(plain->handle, 20);
    EXPECT_THAT(group.bufferSizes(), ElementsAre(10, 20));
    EXPECT_TRUE(plain->has_buffers(plain->handle));
    CMediaBuffer* buffer = nullptr;
    ASSERT_EQ(AMEDIA_OK, plain->acquire_buffer(plain->handle, &buffer, false, 15));
    EXPECT_EQ(20u, buffer->size(buffer->handle));
    buffer->release(buffer->handle);
    EXPECT_EQ(0u, group.heldCount());
}

}  // namespace
}  // namespace android::service
