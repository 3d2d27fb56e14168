// SPDX-License-Identifier: Apache-2.0
#include "tools/avitool/Report.h"

#include <fmt/format.h>
#include <zlib.h>

#include "tools/avitool/Text.h"

namespace avitool {

namespace service = android::service;

namespace {

struct TagName {
    const char* key;
    const char* label;
    const char* member;
};
constexpr TagName kTagNames[] = {{"title", "Title", "title"},
                                 {"album", "Album", "album"},
                                 {"albumartist", "Album artist", "album_artist"},
                                 {"genre", "Genre", "genre"},
                                 {"year", "Year", "year"}};

// Stops the track however its reading ends: it must give its buffers back before the group goes.
class StartedTrack {
  public:
    explicit StartedTrack(service::Track& track) : mTrack(track) {}
    StartedTrack(const StartedTrack&) = delete;
    StartedTrack& operator=(const StartedTrack&) = delete;
    ~StartedTrack() { mTrack.stop(); }

  private:
    service::Track& mTrack;
};

std::optional<Failure> readFailure(uint64_t samples, const service::ReadResult& result) {
    if (result.status == AMEDIA_ERROR_END_OF_STREAM) return std::nullopt;
    const std::string after = fmt::format("after {} sample{}", samples, samples == 1 ? "" : "s");
    if (result.status == AMEDIA_OK) return Failure{"read gives no buffer " + after, result.status};
    return Failure{"read fails " + after, result.status};
}

void readStarted(service::Track& track, std::optional<uint64_t> limit,
                 const BufferFunction& onBuffer, ReadSummary* summary) {
    while (!limit || summary->samples < *limit) {
        const service::ReadResult result = track.read();
        if (result.status != AMEDIA_OK || !result.buffer) {
            summary->failure = readFailure(summary->samples, result);
            return;
        }
        onBuffer(summary->samples, result.buffer);
        ++summary->samples;
        summary->bytes += result.buffer.rangeLength();
        if (isSync(result.buffer)) ++summary->syncSamples;
    }
    summary->limited = true;
}

}  // namespace

std::string toText(const Failure& failure) {
    return failure.status ? failure.what + ": " + statusText(*failure.status) : failure.what;
}

std::vector<Tag> tagsOf(const FormatEntries& entries) {
    std::vector<Tag> tags;
    for (const TagName& name : kTagNames) {
        for (const service::FormatEntry& entry : entries) {
            const auto* text = std::get_if<std::string>(&entry.value);
            if (text == nullptr || entry.name != name.key) continue;
            tags.push_back({name.key, name.label, name.member, *text});
        }
    }
    return tags;
}

std::string stringEntry(const FormatEntries& entries, const char* name) {
    const auto* text = entryOf<std::string>(entries, name);
    return text == nullptr ? std::string() : *text;
}

TrackReport describeTrack(const service::Extractor& extractor, size_t index) {
    TrackReport report;
    report.index = index;
    const service::FormatResult result = extractor.trackMetaData(index);
    report.format = result.format.entries();
    if (result.status != AMEDIA_OK) report.formatFailure = {"has no format", result.status};
    return report;
}

ReadSummary readTrack(const service::Extractor& extractor, size_t index,
                      std::optional<uint64_t> limit, const BufferFunction& onBuffer) {
    ReadSummary summary;
    service::BufferGroup buffers;  // outlives the track
    const std::unique_ptr<service::Track> track = extractor.track(index);
    if (track == nullptr) {
        summary.failure = {"the plug-in gives no track object", std::nullopt};
        return summary;
    }
    const media_status_t status = track->start(buffers);
    if (status != AMEDIA_OK) {
        summary.failure = {"cannot be started", status};
        return summary;
    }
    const StartedTrack started(*track);
    readStarted(*track, limit, onBuffer, &summary);
    return summary;
}

bool isSync(const service::BufferHandle& buffer) {
    return buffer.metaData().getInt32(AMEDIAFORMAT_KEY_IS_SYNC_FRAME).value_or(0) != 0;
}

SampleReport describeSample(uint64_t index, const service::BufferHandle& buffer) {
    SampleReport report;
    report.index = index;
    report.timeUs = buffer.metaData().getInt64(AMEDIAFORMAT_KEY_TIME_US);
    report.sync = isSync(buffer);
    report.size = buffer.rangeLength();
    report.crc32 = static_cast<uint32_t>(crc32_z(0, buffer.data(), buffer.rangeLength()));
    return report;
}

}  // namespace avitool
