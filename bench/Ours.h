// SPDX-License-Identifier: Apache-2.0
//
// The plug-in, through the tables that it exports. One thread. Its log lines are made, as on a
// device, and thrown away.
#pragma once

#include <memory>
#include <vector>

#include "bench/Contender.h"
#include "bench/CountingSource.h"
#include "service/BufferGroup.h"
#include "service/Extractor.h"

namespace avibench {

// From now on log lines are made and thrown away.
void discardLogLines();

class Ours : public Contender {
  public:
    // Loads the plug-in.
    Ours();
    ~Ours() override;

    void open(const std::string& path) override;
    void start() override;
    uint64_t read(uint64_t count) override;
    void seek(int64_t timeUs) override;
    void close() override;
    uint64_t calls() const override { return mSource->calls(); }

  private:
    struct StartedTrack {
        android::service::BufferGroup group;  // outlives the track
        std::unique_ptr<android::service::Track> track;
    };

    const android::service::PluginLibrary mPlugin;
    std::unique_ptr<CountingSource> mSource;
    std::unique_ptr<android::service::Extractor> mExtractor;
    std::vector<std::unique_ptr<StartedTrack>> mTracks;
    size_t mTrackCount = 0;
    size_t mNext = 0;  // of the tracks, which take turns
};

}  // namespace avibench
