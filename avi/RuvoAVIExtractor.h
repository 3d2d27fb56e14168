// SPDX-License-Identifier: Apache-2.0
//
// The object that the framework holds for one opened file: parses it on the first query, owns the
// tracks and answers for them.
// Threading: the framework queries from one thread at a time. Sources run on threads of their own
// and must be freed before the extractor, whose tables they read.
#pragma once

#include <media/MediaExtractorPluginHelper.h>
#include <utils/Errors.h>

#include <mutex>

#include "AviFile.h"
#include "FileReader.h"

namespace android {

class RuvoAVIExtractor : public MediaExtractorPluginHelper {
  public:
    // Takes ownership of `source`. Reads the system properties, but nothing of the file.
    explicit RuvoAVIExtractor(DataSourceHelper* source);
    ~RuvoAVIExtractor() override;

    // Number of tracks, bad ones included; 0 when the file cannot be parsed.
    size_t countTracks() override;

    // A new source over track `index`, or null. The caller owns it; it must not outlive this
    // object.
    MediaTrackHelper* getTrack(size_t index) override;

    // Copies the format of track `index` into `out`. With kIncludeExtensiveMetaData a video track
    // gets its thumbnail time. AMEDIA_ERROR_UNKNOWN for no such track or a file that does not
    // parse.
    media_status_t getTrackMetaData(AMediaFormat* out, size_t index, uint32_t flags) override;

    // Copies the file's format into `out`; AMEDIA_ERROR_UNKNOWN when the file does not parse.
    media_status_t getMetaData(AMediaFormat* out) override;

    uint32_t flags() const override;
    media_status_t setMediaCas(const uint8_t* data, size_t size) override;
    const char* name() override { return "AVIExtractor"; }

  private:
    // Parses the file once and remembers the outcome. Headers that cannot be read are tried again
    // by the next call.
    status_t readMetaData();
    status_t parseOnce();

    FileReader mReader;
    AviFile mFile;
    status_t mInitCheck = NO_INIT;  // outcome of the parse
    std::mutex mParseLock;          // held by the query that parses
};

}  // namespace android
