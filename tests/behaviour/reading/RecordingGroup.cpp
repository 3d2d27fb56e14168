// SPDX-License-Identifier: Apache-2.0

#include "tests/behaviour/reading/RecordingGroup.h"

namespace avitest {

using android::CMediaBuffer;
using android::CMediaBufferGroup;

RecordingGroup::RecordingGroup(size_t bufferSize) : mBufferSize(bufferSize) {
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
    return mGroup.init(init.buffers, mBufferSize == 0 ? init.size : mBufferSize, init.growthLimit);
}

media_status_t RecordingGroup::acquire(CMediaBuffer** out, bool nonBlocking, size_t requestedSize) {
    const auto answer = mAnswers.find(mAcquireCount++);
    CMediaBufferGroup* group = mGroup.plain();
    if (answer == mAnswers.end()) {
        return group->acquire_buffer(group->handle, out, nonBlocking, requestedSize);
    }
    *out = nullptr;
    if (answer->second == Answer::kNothing) return AMEDIA_OK;
    if (answer->second == Answer::kFailureWithBuffer) {
        group->acquire_buffer(group->handle, out, nonBlocking, requestedSize);
    }
    return AMEDIA_ERROR_UNKNOWN;
}

}  // namespace avitest
