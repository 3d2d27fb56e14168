// SPDX-License-Identifier: Apache-2.0
//
// What the reading tests share: small streams, files of one stream, and a track that is started
// with its object and stopped with it. One thread.

#pragma once

#include <memory>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "service/BufferGroup.h"
#include "service/Track.h"
#include "tests/support/AviBuilder.h"
#include "tests/support/ExtractorFixture.h"
#include "tests/support/LogCapture.h"

namespace avitest {

using android::service::BufferGroup;
using android::service::Fault;
using android::service::FaultySource;
using android::service::MediaFormat;
using android::service::MemorySource;
using android::service::ReadResult;
using android::service::Track;

// Audio of one byte a sample and no configuration: scale 1, rate 8000, sample size 1.
Stream alawStream();
// Bitmap subtitles.
Stream subtitleStream();
// AVC whose samples have length prefixes of `prefixSize` bytes.
Stream lengthPrefixedStream(unsigned prefixSize);

// A file of one stream with these chunks, all of them key.
AviFile fileOf(Stream stream, const std::vector<Bytes>& chunks);
// Puts the index in front of the movi list, so that the file can be cut within the list.
void putIndexFirst(AviFile& avi);
// A subtitle chunk: its time in brackets, then the picture.
Bytes subtitleChunk(const std::string& from, const std::string& to);

class ReadingTest : public ExtractorFixture {
  protected:
    // Opens the file that one stream with these chunks makes.
    void openStream(Stream stream, const std::vector<Bytes>& chunks) {
        openFile(fileOf(std::move(stream), chunks).build());
    }
};

// A started track with a group of its own. Its end stops the track and expects every buffer back.
class StartedTrack {
  public:
    explicit StartedTrack(std::unique_ptr<Track> track);
    StartedTrack(const StartedTrack&) = delete;
    StartedTrack& operator=(const StartedTrack&) = delete;
    ~StartedTrack();

    ReadResult read() { return mTrack->read(); }
    // The next sample; a failure of the test when there is none.
    Sample sample();
    // The status of the next read, whose buffer is given back.
    media_status_t status() { return mTrack->read().status; }

    Track& track() { return *mTrack; }
    BufferGroup& group() { return mGroup; }

  private:
    BufferGroup mGroup;
    std::unique_ptr<Track> mTrack;
};

// What a fatal assertion prints, as a regular expression; `expression` as in the source.
std::string checkFailed(const std::string& expression);

}  // namespace avitest
