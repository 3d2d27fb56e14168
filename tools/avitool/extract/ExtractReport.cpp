// SPDX-License-Identifier: Apache-2.0
#include "tools/avitool/extract/ExtractReport.h"

#include <fmt/format.h>

#include "tools/avitool/JsonValues.h"
#include "tools/avitool/Text.h"

namespace avitool {

namespace {

std::string mimeOf(const ExtractedTrack& extracted) {
    return stringEntry(extracted.track.format, AMEDIAFORMAT_KEY_MIME);
}

std::string counted(uint64_t number, const char* thing) {
    return fmt::format("{} {}{}", number, thing, number == 1 ? "" : "s");
}

Json toJson(const ExtractedTrack& extracted) {
    const TrackReport& track = extracted.track;
    Json object = {{"index", track.index}, {"mime", mimeOf(extracted)}};
    object["path"] = nullptr;
    object["csv"] = nullptr;
    if (extracted.files) {
        object["path"] = extracted.files->stream;
        object["csv"] = extracted.files->list;
    }
    object["samples"] = track.read.samples;
    object["bytes"] = extracted.files ? extracted.files->bytes : 0;
    if (track.formatFailure) object["formatError"] = avitool::toJson(*track.formatFailure);
    if (track.read.failure) object["error"] = avitool::toJson(*track.read.failure);
    return object;
}

}  // namespace

void printExtractText(const ExtractReport& report, Console& console) {
    for (const ExtractedTrack& extracted : report.tracks) {
        if (!extracted.files) continue;
        const ExtractedFiles& files = *extracted.files;
        const size_t index = extracted.track.index;
        console.write(fmt::format("{}: track {}, {}, {}\n", printable(files.stream), index,
                                  printable(mimeOf(extracted), kMaxMimeBytes),
                                  counted(files.bytes, "byte")));
        console.write(fmt::format("{}: track {}, list of {}\n", printable(files.list), index,
                                  counted(extracted.track.read.samples, "sample")));
    }
    console.flush();
}

void printExtractJson(const ExtractReport& report, Console& console) {
    Json object = {{"file", report.path}, {"tracks", Json::array()}};
    for (const ExtractedTrack& extracted : report.tracks)
        object["tracks"].push_back(toJson(extracted));
    if (report.error) object["error"] = *report.error;
    console.write(dump(object, 2) + "\n");
    console.flush();
}

}  // namespace avitool
