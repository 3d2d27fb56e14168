// SPDX-License-Identifier: Apache-2.0
#include "service/BufferHandle.h"

#include <gtest/gtest.h>

#include <utility>

#include "service/BufferGroup.h"

namespace android::service {
namespace {

class BufferHandleTest : public ::testing::Test {
  protected:
    BufferHandleTest() { mGroup.init(2, 8); }
    BufferGroup mGroup;
};

TEST_F(BufferHandleTest, DefaultIsEmpty) {
    BufferHandle handle;
    EXPECT_FALSE(handle);
    EXPECT_EQ(nullptr, handle.get());
    handle.release();
}

TEST_F(BufferHandleTest, NullIsEmpty) {
    EXPECT_FALSE(BufferHandle(nullptr));
}

TEST_F(BufferHandleTest, EndOfScopeReleases) {
    {
        BufferHandle handle = mGroup.acquire().buffer;
        EXPECT_EQ(1u, mGroup.heldCount());
    }
    EXPECT_EQ(0u, mGroup.heldCount());
}

TEST_F(BufferHandleTest, ReleaseEmptiesTheHandle) {
    BufferHandle handle = mGroup.acquire().buffer;
    handle.release();
    EXPECT_FALSE(handle);
    EXPECT_EQ(0u, mGroup.heldCount());
}

TEST_F(BufferHandleTest, MovedFromHandleIsEmpty) {
    BufferHandle first = mGroup.acquire().buffer;
    CMediaBuffer* buffer = first.get();
    BufferHandle second = std::move(first);
    EXPECT_FALSE(first);  // NOLINT: what is left behind is what is tested
    EXPECT_EQ(buffer, second.get());
    EXPECT_EQ(1u, mGroup.heldCount());
}

TEST_F(BufferHandleTest, AssignmentReleasesWhatWasHeld) {
    BufferHandle first = mGroup.acquire().buffer;
    BufferHandle second = mGroup.acquire().buffer;
    CMediaBuffer* kept = second.get();
    first = std::move(second);
    EXPECT_EQ(kept, first.get());
    EXPECT_EQ(1u, mGroup.heldCount());
}

TEST_F(BufferHandleTest, SelfAssignmentKeepsTheBuffer) {
    BufferHandle handle = mGroup.acquire().buffer;
    BufferHandle& same = handle;
    handle = std::move(same);
    EXPECT_TRUE(handle);
    EXPECT_EQ(1u, mGroup.heldCount());
}

TEST_F(BufferHandleTest, DetachedBufferIsNotReleased) {
    BufferHandle handle = mGroup.acquire().buffer;
    CMediaBuffer* buffer = handle.detach();
    EXPECT_FALSE(handle);
    EXPECT_EQ(1u, mGroup.heldCount());
    buffer->release(buffer->handle);
}

TEST_F(BufferHandleTest, BytesAreThoseOfTheRange) {
    BufferHandle handle = mGroup.acquire().buffer;
    for (uint8_t i = 0; i < 8; ++i) {
        handle.base()[i] = i;
    }
    handle.setRange(2, 3);
    EXPECT_EQ(handle.base() + 2, handle.data());
    EXPECT_EQ(2u, handle.rangeOffset());
    EXPECT_EQ(3u, handle.rangeLength());
    EXPECT_EQ((std::vector<uint8_t>{2, 3, 4}), handle.bytes());
}

TEST_F(BufferHandleTest, EmptyRangeHasNoBytes) {
    BufferHandle handle = mGroup.acquire().buffer;
    handle.setRange(8, 0);
    EXPECT_TRUE(handle.bytes().empty());
}

}  // namespace
}  // namespace android::service
