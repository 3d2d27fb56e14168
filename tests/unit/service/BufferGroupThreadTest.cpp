// SPDX-License-Identifier: Apache-2.0
// Acquisition that waits, and a group used by several threads at once.
#include <gtest/gtest.h>

#include <algorithm>
#include <atomic>
#include <chrono>
#include <limits>
#include <thread>
#include <vector>

#include "service/BufferGroup.h"
#include "tests/unit/service/AllocatorAborts.h"
#include "tests/unit/service/RunThreads.h"

namespace android::service {
namespace {

// Long enough for a thread that does not wait to get on.
constexpr std::chrono::milliseconds kPatience{50};

// Acquires in a thread of its own and remembers what came of it.
class Acquirer {
  public:
    Acquirer(BufferGroup& group, size_t requestedSize)
        : mThread([this, &group, requestedSize] {
              BufferGroup::Acquired acquired = group.acquire(false, requestedSize);
              mStatus = acquired.status;
              if (acquired.buffer) mSize = acquired.buffer.size();
              mDone = true;
          }) {}
    bool done() const { return mDone; }
    media_status_t join() {
        mThread.join();
        return mStatus;
    }
    size_t size() const { return mSize; }

  private:
    std::atomic<bool> mDone{false};
    media_status_t mStatus = AMEDIA_ERROR_UNKNOWN;
    size_t mSize = 0;
    std::thread mThread;  // last: it uses the others
};

TEST(BufferGroupThreads, AcquireWaitsUntilABufferComesBack) {
    BufferGroup group;
    group.init(1, 10);
    BufferHandle held = group.acquire().buffer;
    Acquirer acquirer(group, 0);
    std::this_thread::sleep_for(kPatience);
    EXPECT_FALSE(acquirer.done());
    held.release();
    EXPECT_EQ(AMEDIA_OK, acquirer.join());
    EXPECT_EQ(10u, acquirer.size());
}

TEST(BufferGroupThreads, BufferThatComesBackTooSmallIsReplaced) {
    BufferGroup group;
    group.init(1, 10);
    BufferHandle held = group.acquire().buffer;
    Acquirer acquirer(group, 100);
    std::this_thread::sleep_for(kPatience);
    EXPECT_FALSE(acquirer.done());
    held.release();
    EXPECT_EQ(AMEDIA_OK, acquirer.join());
    EXPECT_EQ(150u, acquirer.size());
}

TEST(BufferGroupThreads, AddedBufferEndsTheWait) {
    BufferGroup group;
    Acquirer acquirer(group, 0);
    std::this_thread::sleep_for(kPatience);
    EXPECT_FALSE(acquirer.done());
    group.addBuffer(20);
    EXPECT_EQ(AMEDIA_OK, acquirer.join());
    EXPECT_EQ(20u, acquirer.size());
}

TEST(BufferGroupThreads, RaisedLimitEndsTheWait) {
    BufferGroup group;
    Acquirer acquirer(group, 20);
    std::this_thread::sleep_for(kPatience);
    EXPECT_FALSE(acquirer.done());
    group.init(0, 0, 1);
    EXPECT_EQ(AMEDIA_OK, acquirer.join());
    EXPECT_EQ(30u, acquirer.size());
}

TEST(BufferGroupThreads, ShortMemoryWaitsForAHeldBufferOnly) {
    if (kAllocatorAborts) GTEST_SKIP() << "the sanitizer's allocator ends the process instead";
    BufferGroup group;
    group.init(1, 10, 2);
    BufferHandle held = group.acquire().buffer;
    Acquirer acquirer(group, std::numeric_limits<size_t>::max() / 2);
    std::this_thread::sleep_for(kPatience);
    EXPECT_FALSE(acquirer.done());
    held.release();
    EXPECT_EQ(AMEDIA_ERROR_UNKNOWN, acquirer.join());
}

TEST(BufferGroupThreads, EveryWaiterGetsItsTurn) {
    BufferGroup group;
    group.init(1, 10);
    BufferHandle held = group.acquire().buffer;
    Acquirer first(group, 0);
    Acquirer second(group, 5);
    Acquirer third(group, 10);
    held.release();
    EXPECT_EQ(AMEDIA_OK, first.join());
    EXPECT_EQ(AMEDIA_OK, second.join());
    EXPECT_EQ(AMEDIA_OK, third.join());
}

TEST(BufferGroupThreads, BufferMayBeReleasedByAnotherThread) {
    BufferGroup group;
    group.init(1, 10);
    BufferHandle held = group.acquire().buffer;
    std::thread([buffer = std::move(held)]() mutable { buffer.release(); }).join();
    EXPECT_EQ(0u, group.heldCount());
}

// Fills an acquired buffer with a mark of this thread's own; whether it is still there afterwards.
bool fillAlone(BufferGroup& group, size_t size, int thread) {
    const auto mark = static_cast<uint8_t>(thread);
    BufferHandle buffer = group.acquire(false, size).buffer;
    std::fill_n(buffer.base(), buffer.size(), mark);
    AMediaFormat_setInt32(buffer.metaData().get(), "thread", thread);
    std::this_thread::yield();
    return buffer.bytes() == std::vector<uint8_t>(buffer.size(), mark) &&
           buffer.metaData().getInt32("thread") == thread;
}

TEST(BufferGroupThreads, NoTwoThreadsHoldOneBuffer) {
    constexpr size_t kRounds = 500;
    BufferGroup group;
    group.init(2, 16);
    std::atomic<int> mixedUp{0};
    runThreads(4, [&group, &mixedUp](int thread) {
        for (size_t round = 0; round < kRounds; ++round) {
            mixedUp += !fillAlone(group, 1 + round % 32, thread);
        }
    });
    EXPECT_EQ(0, mixedUp);
    EXPECT_EQ(0u, group.heldCount());
    EXPECT_EQ(2u, group.bufferCount());
}

}  // namespace
}  // namespace android::service
