// SPDX-License-Identifier: Apache-2.0
//
// One source of a track with the buffers it reads into, and those that the player keeps. Buffers go
// back before the group goes; a source that is started when it goes is freed without a stop, as the
// framework does. One thread.
#pragma once

#include <cstdint>
#include <deque>
#include <memory>

#include "service/BufferGroup.h"
#include "service/Track.h"

namespace avifuzz {

class Playing {
  public:
    explicit Playing(std::unique_ptr<android::service::Track> track) : mTrack(std::move(track)) {}
    Playing(const Playing&) = delete;
    Playing& operator=(const Playing&) = delete;
    ~Playing();

    bool isStarted() const { return mStarted; }
    /** No effect on a started track, nor on one that asks for large buffers. */
    void start();
    /** No effect on a track that is not started. */
    void stop();

    /**
     * Reads a sample and gives its buffer back, or keeps it while few are kept. Returns false when
     * there is nothing more to read, or the track is not started.
     */
    bool read(uint32_t options = 0, int64_t timeUs = 0, bool keep = false);
    /** Reads up to `count` samples. */
    void readOn(size_t count);
    /** Gives back what is kept. */
    void giveBack() { mKept.clear(); }
    /** What a player asks a source besides samples. */
    void ask() const;

  private:
    // Declared in the order in which they have to outlive each other.
    android::service::BufferGroup mBuffers;
    std::unique_ptr<android::service::Track> mTrack;
    std::deque<android::service::BufferHandle> mKept;
    bool mStarted = false;
};

}  // namespace avifuzz
