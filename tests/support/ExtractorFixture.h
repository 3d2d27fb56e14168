// SPDX-License-Identifier: Apache-2.0
//
// Opens a file through the plug-in's exported tables, the way the extractor service does, and reads
// its tracks:
//
//     class PcmRead : public ExtractorFixture {};
//     TEST_F(PcmRead, ...) {
//         openFile(avi.build());
//         const std::vector<Sample> samples = readAll(0);
//
// The plug-in is loaded once for the whole program and stays loaded. Of the extractor of one test
// nothing is left for the next. One thread.

#pragma once

#include <cstdint>
#include <deque>
#include <limits>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "service/Extractor.h"
#include "service/FaultySource.h"
#include "service/MemorySource.h"
#include "tests/support/ByteWriter.h"
#include "tests/support/Properties.h"

namespace avitest {

// A buffer as read() handed it out, with the metadata that the framework looks at.
struct Sample {
    int64_t timeUs = 0;
    std::optional<int64_t> targetTimeUs;
    bool sync = false;
    Bytes bytes;
};

bool operator==(const Sample& a, const Sample& b);
void PrintTo(const Sample& sample, std::ostream* out);

// The payloads or the times of samples, for comparison as a whole.
std::vector<Bytes> payloadsOf(const std::vector<Sample>& samples);
std::vector<int64_t> timesOf(const std::vector<Sample>& samples);

// What reads of one track gave until a status other than OK came.
struct ReadRun {
    std::vector<Sample> samples;
    media_status_t status = AMEDIA_OK;
};

// Where a read goes first: a combination of CMediaTrackReadOptions and a time.
struct SeekRequest {
    uint32_t options = 0;
    int64_t timeUs = 0;
};

// The plug-in that the build made (AVI_PLUGIN_PATH); loading it is tried once. Throws
// service::PluginError when it cannot be used.
const android::service::PluginLibrary& pluginUnderTest();

// A buffer's range and metadata. A buffer without a time is malformed: a test failure.
Sample sampleOf(const android::service::BufferHandle& buffer);

// Starts the track with a buffer group of its own and reads, `first` in the first call only, until
// a status other than OK or `limit` samples; stops it and checks that it kept no buffer.
ReadRun readTrack(android::service::Track& track, const SeekRequest& first = {},
                  size_t limit = std::numeric_limits<size_t>::max());

class ExtractorFixture : public ::testing::Test {
  protected:
    // Gone in this order: extractor, sources, properties.
    ~ExtractorFixture() override;

    // Sets a property until the end of the test.
    void setProperty(const char* name, const std::string& value);

    // Opens the file; a failure of the test when the plug-in does not claim it. The plug-in parses
    // at the first query, so a claimed file may still turn out broken: countTracks() is 0 then.
    // A second call drops the former file.
    void openFile(Bytes file);
    // The same over a source that the test keeps (FaultySource, for example).
    void openSource(android::service::DataSource& source);
    // As openFile, but answers whether the plug-in claims the file.
    bool tryOpenFile(Bytes file);

    // The opened file. Like everything below it needs a successful open.
    android::service::Extractor& extractor();
    size_t countTracks() { return extractor().countTracks(); }

    // A track's format, as getTrackMetaData gives it; a failure of the test when it gives none.
    android::service::MediaFormat trackFormat(size_t track);
    android::service::MediaFormat fileFormat();

    // A new track object; a failure of the test and null when there is none.
    std::unique_ptr<android::service::Track> track(size_t index);
    // All samples of a track from its beginning. Anything but END_OF_STREAM at the end is a failure
    // of the test.
    std::vector<Sample> readAll(size_t trackIndex);
    // Their payloads.
    std::vector<Bytes> readPayloads(size_t trackIndex) { return payloadsOf(readAll(trackIndex)); }
    // All samples without any expectation on the status.
    ReadRun readRun(size_t trackIndex);
    // The samples from a seek on, END_OF_STREAM expected; at most `limit`.
    std::vector<Sample> readFrom(size_t trackIndex, const SeekRequest& seek,
                                 size_t limit = std::numeric_limits<size_t>::max());

  private:
    void close();

    std::deque<ScopedProperty> mProperties;
    std::unique_ptr<android::service::MemorySource> mSource;
    std::unique_ptr<android::service::Extractor> mExtractor;
};

}  // namespace avitest
