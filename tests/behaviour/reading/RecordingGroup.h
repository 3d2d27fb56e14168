// SPDX-License-Identifier: Apache-2.0
//
// A buffer group that notes what a track asks of it, and that answers as a test wants: with buffers
// of another size than asked for, with a failure, with no buffer at all. Otherwise it hands out the
// buffers of a real group, filled with a byte that shows where nothing was written. Must outlive
// every start of a track with it. One thread.

#pragma once

#include <cstddef>
#include <cstdint>
#include <map>
#include <memory>
#include <vector>

#include "service/BufferGroup.h"
#include "service/Track.h"

namespace avitest {

// What new buffers are filled with.
constexpr uint8_t kUnwritten = 0xEE;
// Bytes that a buffer of the device reports beyond those that may be written.
constexpr size_t kReportedBeyond = 16;

class RecordingGroup {
  public:
    struct Init {
        size_t buffers = 0;
        size_t size = 0;
        size_t growthLimit = 0;
    };
    enum class Answer {
        kFailure,            // a failure without a buffer
        kNoMemory,           // the same with a status that is not the track's
        kFailureWithBuffer,  // a failure, and a buffer that has to be given back
        kNothing,            // success, but no buffer
        kTooSmall,           // a buffer of one byte
    };

    // Makes buffers of `bufferSize` bytes (0: of the size that the track asks for) and `beyond`
    // more.
    explicit RecordingGroup(size_t bufferSize = 0, size_t beyond = 0);
    RecordingGroup(const RecordingGroup&) = delete;
    RecordingGroup& operator=(const RecordingGroup&) = delete;

    // Makes acquisition number `call`, counted from 0, end with `answer`.
    void answer(size_t call, Answer answer) { mAnswers[call] = answer; }

    const std::vector<Init>& inits() const { return mInits; }
    size_t acquireCount() const { return mAcquireCount; }
    size_t heldCount() const { return mGroup.heldCount() + mSmall.heldCount(); }
    // Whether the free buffers are still unwritten beyond the size that the track asked for.
    bool isUnwrittenBeyond();
    // The record to start a track with.
    android::CMediaBufferGroup* plain() { return &mRecord; }

  private:
    bool init(const Init& init);
    media_status_t acquire(android::CMediaBuffer** out, bool nonBlocking, size_t requestedSize);
    // The free buffers, held as long as the result lives.
    std::vector<android::service::BufferHandle> freeBuffers();

    android::CMediaBufferGroup mRecord{};
    android::service::BufferGroup mGroup;
    android::service::BufferGroup mSmall;  // of buffers of one byte
    size_t mBufferSize = 0;
    size_t mBeyond = 0;
    std::vector<Init> mInits;
    std::map<size_t, Answer> mAnswers;
    size_t mAcquireCount = 0;
};

// A track that reads with a group of the test's making.
class GroupReader {
  public:
    GroupReader(std::unique_ptr<android::service::Track> track, RecordingGroup* group);
    GroupReader(const GroupReader&) = delete;
    GroupReader& operator=(const GroupReader&) = delete;
    // Stops the track and expects every buffer back.
    ~GroupReader();

    android::service::ReadResult read() { return mTrack->read(); }
    media_status_t status() { return read().status; }
    android::service::Track& track() { return *mTrack; }

  private:
    std::unique_ptr<android::service::Track> mTrack;
    RecordingGroup* mGroup;  // not owned
};

}  // namespace avitest
