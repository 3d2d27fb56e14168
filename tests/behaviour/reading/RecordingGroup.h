// SPDX-License-Identifier: Apache-2.0
//
// A buffer group that notes what a track asks of it, and that answers as a test wants: with buffers
// of another size than asked for, with a failure, with no buffer at all. Otherwise it hands out the
// buffers of a real group. Must outlive every start of a track with it. One thread.

#pragma once

#include <cstddef>
#include <map>
#include <vector>

#include "service/BufferGroup.h"

namespace avitest {

class RecordingGroup {
  public:
    struct Init {
        size_t buffers = 0;
        size_t size = 0;
        size_t growthLimit = 0;
    };
    enum class Answer {
        kFailure,            // a failure without a buffer
        kFailureWithBuffer,  // a failure, and a buffer that has to be given back
        kNothing,            // success, but no buffer
    };

    // Makes buffers of `bufferSize` bytes; 0: of the size that the track asks for.
    explicit RecordingGroup(size_t bufferSize = 0);
    RecordingGroup(const RecordingGroup&) = delete;
    RecordingGroup& operator=(const RecordingGroup&) = delete;

    // Makes acquisition number `call`, counted from 0, end with `answer`.
    void answer(size_t call, Answer answer) { mAnswers[call] = answer; }

    const std::vector<Init>& inits() const { return mInits; }
    size_t acquireCount() const { return mAcquireCount; }
    size_t heldCount() const { return mGroup.heldCount(); }
    // The record to start a track with.
    android::CMediaBufferGroup* plain() { return &mRecord; }

  private:
    bool init(const Init& init);
    media_status_t acquire(android::CMediaBuffer** out, bool nonBlocking, size_t requestedSize);

    android::CMediaBufferGroup mRecord{};
    android::service::BufferGroup mGroup;
    size_t mBufferSize = 0;
    std::vector<Init> mInits;
    std::map<size_t, Answer> mAnswers;
    size_t mAcquireCount = 0;
};

}  // namespace avitest
