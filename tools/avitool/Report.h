// SPDX-License-Identifier: Apache-2.0
// What the commands find out about a file, apart from how it is printed. Plain values and the
// functions that gather them. One thread.
#pragma once

#include <cstddef>
#include <cstdint>
#include <functional>
#include <optional>
#include <string>
#include <variant>
#include <vector>

#include "service/Extractor.h"
#include "service/MediaFormat.h"

namespace avitool {

using FormatEntries = std::vector<android::service::FormatEntry>;

/** A call on a track that did not give what it should. */
struct Failure {
    std::string what;  // "read fails after 3 samples"
    std::optional<media_status_t> status;
};

/** `what`, and name and number of the status if there is one. */
std::string toText(const Failure& failure);

/** One buffer as read handed it out. */
struct SampleReport {
    uint64_t index = 0;             // counted from 0 in the order of the reads
    std::optional<int64_t> timeUs;  // none: the buffer has no time, which players refuse
    bool sync = false;
    size_t size = 0;     // bytes
    uint32_t crc32 = 0;  // of zlib, over the bytes
};

/** What reading a track came to. */
struct ReadSummary {
    uint64_t samples = 0;
    uint64_t syncSamples = 0;
    uint64_t bytes = 0;
    bool limited = false;            // stopped by the limit: there may be more
    std::optional<Failure> failure;  // none: read up to the end of the stream, or to the limit
};

struct TrackReport {
    size_t index = 0;
    FormatEntries format;
    std::optional<Failure> formatFailure;
    ReadSummary read;
};

struct FileReport {
    std::string path;
    std::optional<std::string> error;  // why nothing else is known
    float confidence = 0;
    std::string extractor;  // its name
    FormatEntries format;
    std::vector<TrackReport> tracks;
};

/** A text of the file's INFO list, which the plug-in publishes in the file's format. */
struct Tag {
    const char* key;     // in the format
    const char* label;   // for people
    const char* member;  // in JSON
    std::string text;    // as the file has it, in whatever character set
};

/** The tags in a file's format, always in the same order: title, album, artist, genre, year. */
std::vector<Tag> tagsOf(const FormatEntries& entries);

/** The value of the entry `name` if it is of type T; else null. It lives as long as `entries`. */
template <typename T>
const T* entryOf(const FormatEntries& entries, const char* name) {
    for (const android::service::FormatEntry& entry : entries) {
        if (entry.name == name) return std::get_if<T>(&entry.value);
    }
    return nullptr;
}

/** The value of a string entry; empty if there is none. */
std::string stringEntry(const FormatEntries& entries, const char* name);

/** Fills index, format and formatFailure. */
TrackReport describeTrack(const android::service::Extractor& extractor, size_t index);

/** Receives each buffer while it is held; `index` counts them from 0. */
using BufferFunction =
    std::function<void(uint64_t index, const android::service::BufferHandle& buffer)>;

/**
 * Starts a track and reads it from its beginning to its end, a failure, or `limit` samples. A
 * limit of 0 starts and stops the track. What `onBuffer` throws ends it too, the track stopped.
 */
ReadSummary readTrack(const android::service::Extractor& extractor, size_t index,
                      std::optional<uint64_t> limit, const BufferFunction& onBuffer);

/** Whether the buffer is marked as a key frame; every buffer of audio is. */
bool isSync(const android::service::BufferHandle& buffer);

SampleReport describeSample(uint64_t index, const android::service::BufferHandle& buffer);

}  // namespace avitool
