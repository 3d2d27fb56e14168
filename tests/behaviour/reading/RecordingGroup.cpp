// SPDX-License-Identifier: Apache-2.0

#include "tests/behaviour/reading/RecordingGroup.h"

#include <algorithm>
#include <cstring>
#include <utility>

#include <gtest/gtest.h>

namespace avitest {

using android::CMediaBuffer;
using android::CMediaBufferGroup;
using android::CMediaTrack;
using android::service::BufferHandle;
using android::service::Track;

// As a group may pass on from below it.
constexpr auto kOutOfMemory = static_cast<media_status_t>(android::NO_MEMORY);

namespace {

void fill(CMediaBuffer* buffer) {
    memset(buffer->data(buffer->handle), kUnwritten, buffer->size(buffer->handle));
}

}  // namespace

RecordingGroup::RecordingGroup(size_t bufferSize, size_t beyond)
    : mBufferSize(bufferSize), mBeyond(beyond) {
    mRecord.handle = this;
    mRecord.init = [](void* self, size_t buffers, size_t size, size_t growthLimit) {
        return static_cast<RecordingGroup*>(self)->init({buffers, size, growthLimit});
    };
    mRecord.add_buffer = [](void* self, size_t size) {
        static_cast<RecordingGroup*>(self)->mGroup.addBuffer(size);
    };
    mRecord.acquire_buffer = [](void* self, CMediaBuffer** out, bool nonBlocking, size_t size) {
        return static_cast<RecordingGroup*>(self)->acquire(out, nonBlocking, size);
    };
    mRecord.has_buffers = [](void* self) {
        return static_cast<RecordingGroup*>(self)->mGroup.hasBuffers();
    };
}

bool RecordingGroup::init(const Init& init) {
    mInits.push_back(init);
    const size_t size = (mBufferSize == 0 ? init.size : mBufferSize) + mBeyond;
    const bool made = mGroup.init(init.buffers, size, init.growthLimit);
    for (const BufferHandle& buffer : freeBuffers())
        fill(buffer.get());
    return made;
}

bool RecordingGroup::isUnwrittenBeyond() {
    const size_t asked = mInits.back().size;
    const std::vector<BufferHandle> buffers = freeBuffers();
    return std::all_of(buffers.begin(), buffers.end(), [asked](const BufferHandle& buffer) {
        const uint8_t* begin = buffer.base() + std::min(asked, buffer.size());
        const uint8_t* end = buffer.base() + buffer.size();
        return std::all_of(begin, end, [](uint8_t byte) { return byte == kUnwritten; });
    });
}

std::vector<BufferHandle> RecordingGroup::freeBuffers() {
    std::vector<BufferHandle> held;
    while (mGroup.heldCount() < mGroup.bufferCount())
        held.push_back(std::move(mGroup.acquire(true).buffer));
    return held;
}

media_status_t RecordingGroup::acquire(CMediaBuffer** out, bool nonBlocking, size_t requestedSize) {
    const auto answer = mAnswers.find(mAcquireCount++);
    CMediaBufferGroup* group = mGroup.plain();
    if (answer == mAnswers.end()) {
        const size_t count = mGroup.bufferCount();
        const media_status_t status =
            group->acquire_buffer(group->handle, out, nonBlocking, requestedSize);
        if (mGroup.bufferCount() > count) fill(*out);
        return status;
    }
    *out = nullptr;
    if (answer->second == Answer::kNothing) return AMEDIA_OK;
    if (answer->second == Answer::kNoMemory) return kOutOfMemory;
    if (answer->second == Answer::kTooSmall) {
        mSmall.addBuffer(1);
        return mSmall.plain()->acquire_buffer(mSmall.plain()->handle, out, nonBlocking, 0);
    }
    if (answer->second == Answer::kFailureWithBuffer) {
        group->acquire_buffer(group->handle, out, nonBlocking, requestedSize);
    }
    return AMEDIA_ERROR_UNKNOWN;
}

GroupReader::GroupReader(std::unique_ptr<Track> track, RecordingGroup* group)
    : mTrack(std::move(track)), mGroup(group) {
    CMediaTrack* plain = mTrack->plain();
    EXPECT_EQ(plain->start(plain->data, group->plain()), AMEDIA_OK);
}

GroupReader::~GroupReader() {
    EXPECT_EQ(mTrack->stop(), AMEDIA_OK);
    EXPECT_EQ(mGroup->heldCount(), 0u);
}

}  // namespace avitest
