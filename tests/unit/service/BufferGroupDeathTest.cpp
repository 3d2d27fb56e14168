// SPDX-License-Identifier: Apache-2.0
// Misuse that ends the process. Expected texts are those of the fatal log message.
#include <gtest/gtest.h>

#include <limits>
#include <memory>

#include "service/BufferGroup.h"

namespace android::service {
namespace {

class BufferGroupDeathTest : public ::testing::Test {
  protected:
    BufferGroupDeathTest() { GTEST_FLAG_SET(death_test_style, DEATH_TEST_STYLE); }
};

TEST_F(BufferGroupDeathTest, DeletingTheGroupWithABufferHeldAborts) {
    auto group = std::make_unique<BufferGroup>();
    group->init(2, 10);
    BufferHandle held = group->acquire().buffer;
    EXPECT_DEATH(group.reset(), "deleted while 1 of its buffers");
    held.release();
}

TEST_F(BufferGroupDeathTest, ReleasingTwiceAborts) {
    BufferGroup group;
    group.init(1, 10);
    CMediaBuffer* buffer = group.acquire().buffer.detach();
    buffer->release(buffer->handle);
    EXPECT_DEATH(buffer->release(buffer->handle), "nobody holds");
}

TEST_F(BufferGroupDeathTest, RangeLongerThanTheBufferAborts) {
    BufferGroup group;
    group.init(1, 10);
    BufferHandle buffer = group.acquire().buffer;
    EXPECT_DEATH(buffer.setRange(0, 11), "outside the buffer's 10 bytes");
}

TEST_F(BufferGroupDeathTest, RangeOverTheEndAborts) {
    BufferGroup group;
    group.init(1, 10);
    BufferHandle buffer = group.acquire().buffer;
    EXPECT_DEATH(buffer.setRange(6, 5), "outside the buffer's 10 bytes");
}

TEST_F(BufferGroupDeathTest, RangeBehindTheEndAborts) {
    BufferGroup group;
    group.init(1, 10);
    BufferHandle buffer = group.acquire().buffer;
    EXPECT_DEATH(buffer.setRange(11, 0), "outside the buffer's 10 bytes");
}

TEST_F(BufferGroupDeathTest, RangeWhoseEndWrapsAborts) {
    BufferGroup group;
    group.init(1, 10);
    BufferHandle buffer = group.acquire().buffer;
    EXPECT_DEATH(buffer.setRange(5, std::numeric_limits<size_t>::max()), "outside the buffer");
}

}  // namespace
}  // namespace android::service
