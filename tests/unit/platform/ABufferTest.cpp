// SPDX-License-Identifier: Apache-2.0

#include <media/stagefright/foundation/ABuffer.h>

#include <cstdint>
#include <cstring>

#include "tests/unit/platform/AbortTest.h"

// The sanitizers' allocators abort where malloc answers null, unless told otherwise.
// NOLINTBEGIN(bugprone-reserved-identifier): names that the sanitizers' runtimes look for
#define EXPORTED extern "C" __attribute__((visibility("default")))
EXPORTED const char* __asan_default_options() {
    return "allocator_may_return_null=1";
}
EXPORTED const char* __tsan_default_options() {
    return "allocator_may_return_null=1";
}
// NOLINTEND(bugprone-reserved-identifier)

namespace android {
namespace {

class ABufferDeathTest : public testing::Test {};

TEST(ABuffer, NewBufferHasItsWholeCapacityInRange) {
    sp<ABuffer> buffer = new ABuffer(10);
    EXPECT_NE(buffer->base(), nullptr);
    EXPECT_EQ(buffer->data(), buffer->base());
    EXPECT_EQ(buffer->capacity(), 10u);
    EXPECT_EQ(buffer->size(), 10u);
    EXPECT_EQ(buffer->offset(), 0u);
}

TEST(ABuffer, AllBytesCanBeWritten) {
    sp<ABuffer> buffer = new ABuffer(4096);
    memset(buffer->data(), 0x5a, buffer->size());
    EXPECT_EQ(buffer->data()[4095], 0x5a);
}

TEST(ABuffer, FailedAllocationLeavesNullBaseAndNoCapacity) {
    sp<ABuffer> buffer = new ABuffer(SIZE_MAX / 2);
    EXPECT_EQ(buffer->base(), nullptr);
    EXPECT_EQ(buffer->capacity(), 0u);
    EXPECT_EQ(buffer->size(), 0u);
    EXPECT_EQ(buffer->offset(), 0u);
}

TEST(ABuffer, LargestSizeFailsToo) {
    sp<ABuffer> buffer = new ABuffer(SIZE_MAX);
    EXPECT_EQ(buffer->base(), nullptr);
    EXPECT_EQ(buffer->capacity(), 0u);
}

TEST(ABuffer, WrappedMemoryIsUsedAndNotFreed) {
    uint8_t bytes[3] = {1, 2, 3};
    {
        sp<ABuffer> buffer = new ABuffer(bytes, sizeof(bytes));
        EXPECT_EQ(buffer->base(), bytes);
        EXPECT_EQ(buffer->capacity(), 3u);
        EXPECT_EQ(buffer->size(), 3u);
        buffer->data()[1] = 9;
    }
    EXPECT_EQ(bytes[1], 9);
}

TEST(ABuffer, CopyHasItsOwnBytes) {
    uint8_t bytes[3] = {1, 2, 3};
    sp<ABuffer> copy = ABuffer::CreateAsCopy(bytes, sizeof(bytes));
    bytes[0] = 7;
    ASSERT_EQ(copy->size(), 3u);
    EXPECT_EQ(copy->data()[0], 1);
    EXPECT_EQ(copy->data()[2], 3);
}

TEST(ABuffer, CopyWithoutMemoryIsNull) {
    const uint8_t byte = 1;
    // The copy reads nothing before it has the memory.
    EXPECT_EQ(ABuffer::CreateAsCopy(&byte, SIZE_MAX).get(), nullptr);
}

TEST(ABuffer, SetRangeMovesDataAndSizeOnly) {
    sp<ABuffer> buffer = new ABuffer(10);
    buffer->setRange(3, 4);
    EXPECT_EQ(buffer->data(), buffer->base() + 3);
    EXPECT_EQ(buffer->offset(), 3u);
    EXPECT_EQ(buffer->size(), 4u);
    EXPECT_EQ(buffer->capacity(), 10u);
}

TEST(ABuffer, RangeIsRelativeToTheBaseAndCanGrowAgain) {
    sp<ABuffer> buffer = new ABuffer(10);
    buffer->setRange(3, 4);
    buffer->setRange(0, 10);
    EXPECT_EQ(buffer->data(), buffer->base());
    EXPECT_EQ(buffer->size(), 10u);
}

TEST(ABuffer, EmptyRangeAtTheEndIsAllowed) {
    sp<ABuffer> buffer = new ABuffer(10);
    buffer->setRange(10, 0);
    EXPECT_EQ(buffer->offset(), 10u);
    EXPECT_EQ(buffer->size(), 0u);
}

TEST_F(ABufferDeathTest, RangeSizeBeyondCapacityAborts) {
    sp<ABuffer> buffer = new ABuffer(10);
    EXPECT_ABORT(buffer->setRange(0, 11), "CHECK_LE.*failed: 11 vs. 10");
}

TEST_F(ABufferDeathTest, RangeOffsetBeyondCapacityAborts) {
    sp<ABuffer> buffer = new ABuffer(10);
    EXPECT_ABORT(buffer->setRange(11, 0), "CHECK_LE.*failed: 11 vs. 10");
}

TEST_F(ABufferDeathTest, RangeEndBeyondCapacityAborts) {
    sp<ABuffer> buffer = new ABuffer(10);
    EXPECT_ABORT(buffer->setRange(6, 5), "CHECK_LE.*failed: 5 vs. 4");
}

TEST_F(ABufferDeathTest, RangeWhoseEndWrapsAborts) {
    sp<ABuffer> buffer = new ABuffer(10);
    EXPECT_ABORT(buffer->setRange(2, SIZE_MAX), "CHECK_LE");
}

TEST_F(ABufferDeathTest, RangeAfterFailedAllocationAborts) {
    sp<ABuffer> buffer = new ABuffer(SIZE_MAX / 2);
    EXPECT_ABORT(buffer->setRange(0, 1), "CHECK_LE");
}

}  // namespace
}  // namespace android
