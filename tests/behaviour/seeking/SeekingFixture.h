// SPDX-License-Identifier: Apache-2.0
//
// What the seeking tests share: files whose chunks all differ, so that a sample tells which chunk
// it is, and seeks that say where they landed. One thread, but for seek(), which may be called from
// several, each with a track of its own.

#pragma once

#include <deque>
#include <initializer_list>
#include <map>
#include <optional>
#include <ostream>

#include "tests/behaviour/reading/ReadingFixture.h"
#include "tests/support/LogLines.h"

namespace avitest {

constexpr uint32_t kPrevious = android::SEEK_PREVIOUS_SYNC;
constexpr uint32_t kNext = android::SEEK_NEXT_SYNC;
constexpr uint32_t kClosestSync = android::SEEK_CLOSEST_SYNC;
constexpr uint32_t kClosest = android::SEEK_CLOSEST;
constexpr uint32_t kModes = 8;  // the three bits of a mode

constexpr int64_t kFrameUs = 40000;  // of video of 25 frames a second

// Times that no file reaches.
constexpr int64_t kFarTimes[] = {int64_t{1} << 31, (int64_t{1} << 31) - 1, int64_t{1} << 40,
                                 INT64_MAX - 1, INT64_MAX};

// Landing::chunk when there is none.
constexpr int kEndOfStream = -1;
constexpr int kOtherFailure = -2;
constexpr int kUnknownChunk = -3;

// Where a seek led.
struct Landing {
    int chunk = kOtherFailure;  // number within its stream
    int64_t timeUs = 0;
    std::optional<int64_t> targetUs;
};

bool operator==(const Landing& a, const Landing& b);
void PrintTo(const Landing& landing, std::ostream* out);

// A frame of MPEG-4 video: kind 'I', 'P' or 'B'; '-' and 'k' are empty, the latter marked as key.
Bytes mpeg4Frame(char kind, size_t number, size_t size = 20);
Stream mpeg4Stream(uint32_t rate = 25, uint32_t scale = 1);
// Adds a frame for each letter of `kinds`; those of kinds I and k are key frames by the index.
void addFrames(AviFile& avi, size_t stream, const std::string& kinds, size_t size = 20);
// A file of MPEG-4 video.
AviFile videoFile(const std::string& kinds, uint32_t rate = 25, uint32_t scale = 1);
// `count` times an I-frame and `distance` - 1 P-frames.
std::string groups(size_t count, size_t distance);
// Leaves the index out: the movi list is scanned, and no key flag of a video track is trusted.
void dropIndex(AviFile& avi);

// Adds chunks of these sizes, each of another content.
void addAudio(AviFile& avi, size_t stream, const std::vector<size_t>& sizes);
AviFile audioFile(const Stream& stream, const std::vector<size_t>& sizes);

// The recorded lines that belong to seeking, with source line numbers replaced: "@L#", "@line#".
std::vector<LogLine> seekLines(const LogCapture& log);
// The texts of lines.
std::vector<std::string> textsOf(const std::vector<LogLine>& lines);

class SeekingTest : public ReadingTest {
  protected:
    using Call = FaultySource::Call;

    // Builds and opens the file, and learns which bytes are which chunk.
    void open(AviFile& avi);
    // What a sample of `bytes` shall count as, where samples are not whole chunks.
    void learn(const Bytes& bytes, int number) { mNumbers[bytes] = number; }

    // The source of the file that was opened last.
    FaultySource& source() { return mSources.back(); }
    // The reads since the last reset of the source, as (offset, size).
    std::vector<std::pair<off64_t, size_t>> reads() const;

    // Seeks and reads one sample.
    Landing seek(StartedTrack& track, uint32_t mode, int64_t timeUs) const;
    // The chunk that this leads to.
    int chunkAt(StartedTrack& track, uint32_t mode, int64_t timeUs) const {
        return seek(track, mode, timeUs).chunk;
    }
    // The same with a track object of its own.
    int chunkAt(size_t trackIndex, uint32_t mode, int64_t timeUs);
    // The chunk that a read without a seek gives.
    int nextChunk(StartedTrack& track) const;

  private:
    Landing landingOf(const ReadResult& result) const;

    std::deque<MemorySource> mMemories;
    std::deque<FaultySource> mSources;
    std::map<Bytes, int> mNumbers;
};

}  // namespace avitest
