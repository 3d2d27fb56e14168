// SPDX-License-Identifier: Apache-2.0
//
// What the tests of opening a file share: a log that is recorded from before the file is opened
// until its extractor is gone, sources that count their reads, and small files.
// One thread.

#pragma once

#include <deque>
#include <string>
#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "service/FaultySource.h"
#include "service/MemorySource.h"
#include "tests/support/AviBuilder.h"
#include "tests/support/ExtractorFixture.h"
#include "tests/support/LogCapture.h"
#include "tests/support/LogLines.h"

namespace avitest {

// Any line with exactly this text, whatever its priority.
MATCHER_P(Text, text, "line '" + std::string(text) + "'") {
    (void)result_listener;  // the printed log says it all
    return arg.text == text;
}

// A list of 320 x 240 pictures, 25 a second, without samples.
Stream mjpegStream();

// One video stream of `frames` chunks, all key frames, of growing size.
AviFile videoFile(size_t frames = 3);

// A video stream (number 0) of three frames and a PCM stream (number 1) of two chunks.
AviFile twoStreamFile();

// The payloads of a stream's chunks, as reading its track should give them.
std::vector<Bytes> chunkBytes(const AviFile& avi, size_t stream);

// Exists as a base in front of ExtractorFixture, so that both outlive the extractor.
class OpeningState {
  protected:
    LogCapture mLog;
    std::deque<android::service::MemorySource> mMemory;
    std::deque<android::service::FaultySource> mSources;
};

class OpeningFixture : protected OpeningState, public ExtractorFixture {
  protected:
    std::vector<LogLine> log() const { return mLog.lines(); }

    // Opens the file through a source whose reads are counted and can be made to fail.
    android::service::FaultySource& openCounted(Bytes file);

    // Opens the file with the switches for all verbose lines on.
    void openVerbosely(Bytes file);

    // Payloads of all samples of a track.
    std::vector<Bytes> sampleBytes(size_t track);
};

}  // namespace avitest
