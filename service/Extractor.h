// SPDX-License-Identifier: Apache-2.0
// A plug-in's extractor for one source: asks the plug-in whether it knows the source, has it
// opened, and makes the queries that the framework makes. Owns the plug-in's extractor and the
// plain record of the source. The PluginLibrary and the DataSource are borrowed and must outlive
// the extractor and all its tracks; the tracks may outlive the Extractor object. Threads: one
// extractor is used by one thread at a time; different ones are independent.
#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <string>

#include <media/MediaExtractorPluginApi.h>

#include "service/DataSource.h"
#include "service/MediaFormat.h"
#include "service/PluginLibrary.h"
#include "service/Track.h"

namespace android::service {

/** A plug-in's opinion of a source. */
struct SniffResult {
    /** Whether the plug-in wants the source: it named a creator, with a confidence above 0. */
    bool claimed = false;
    /** What the sniffer wrote; 0 if it named no creator. */
    float confidence = 0;
};

class Extractor {
  public:
    /** `flags` of trackMetaData that asks for the keys which are costly to find out. */
    static constexpr uint32_t kIncludeExtensiveMetaData = 1;

    /**
     * Asks the plug-in about the source without opening it.
     * Throws PluginError when it names a creator but leaves the confidence unwritten, which on the
     * device is whatever was in that memory.
     */
    static SniffResult sniff(const PluginLibrary& plugin, DataSource& source);

    /**
     * Sniffs the source and opens it. Returns null when the plug-in does not claim it, or its
     * creator gives no extractor. Throws as sniff does.
     */
    static std::unique_ptr<Extractor> open(const PluginLibrary& plugin, DataSource& source);

    Extractor(const Extractor&) = delete;
    Extractor& operator=(const Extractor&) = delete;

    /** The confidence with which the source was claimed, above 0. */
    float confidence() const { return mConfidence; }
    size_t countTracks() const;
    /** A new track object for `index`; null if the plug-in gives none. */
    std::unique_ptr<Track> track(size_t index) const;
    FormatResult trackMetaData(size_t index, uint32_t flags = 0) const;
    FormatResult metaData() const;
    /** What can be done with the tracks: bits of MediaExtractorPluginHelper's CAN_ flags. */
    uint32_t flags() const;
    /** Hands over `size` bytes of conditional-access set-up. */
    media_status_t setMediaCas(const uint8_t* data, size_t size);
    /** The extractor's own name; empty if it has none. */
    std::string name() const;

    /** The plug-in's own record, for calls that this class does not make; still owned here. */
    CMediaExtractor* plain() const;

  private:
    struct Opened;  // the plug-in's extractor and the record it reads through, shared with the
                    // tracks
    Extractor(std::shared_ptr<Opened> opened, float confidence);

    std::shared_ptr<Opened> mOpened;
    float mConfidence = 0;
};

}  // namespace android::service
