// SPDX-License-Identifier: Apache-2.0
#include "tools/avitool/InfoPrinter.h"
#include "tools/avitool/JsonValues.h"

namespace avitool {

namespace {

Json trackJson(const TrackReport& track) {
    Json object = {{"index", track.index}, {"format", toJson(track.format)}};
    if (track.formatFailure) object["formatError"] = toJson(*track.formatFailure);
    object["samples"] = track.read.samples;
    object["keySamples"] = track.read.syncSamples;
    object["bytes"] = track.read.bytes;
    if (track.read.failure) object["error"] = toJson(*track.read.failure);
    return object;
}

// A member for each tag that the file has.
Json tagsJson(const FormatEntries& entries) {
    Json object = Json::object();
    for (const Tag& tag : tagsOf(entries))
        object[tag.member] = tag.text;
    return object;
}

Json fileJson(const FileReport& report) {
    if (report.error) return {{"file", report.path}, {"error", *report.error}};
    Json object = {{"file", report.path}};
    object["extractor"] = report.extractor;
    object["confidence"] = shortest(report.confidence);
    object["format"] = toJson(report.format);
    object["tags"] = tagsJson(report.format);
    object["tracks"] = Json::array();
    for (const TrackReport& track : report.tracks)
        object["tracks"].push_back(trackJson(track));
    return object;
}

class JsonInfo : public InfoPrinter {
  public:
    explicit JsonInfo(Console& console) : mConsole(console) {}

    std::string shown(const FileReport& report) const override {
        return dump(fileJson(report), -1);
    }

    void add(const std::string& shown) override { mFiles.push_back(Json::parse(shown)); }

    void finish() override {
        mConsole.write(dump(mFiles, 2) + "\n");
        mConsole.flush();
    }

  private:
    Console& mConsole;
    Json mFiles = Json::array();
};

}  // namespace

std::unique_ptr<InfoPrinter> makeJsonInfo(Console& console) {
    return std::make_unique<JsonInfo>(console);
}

}  // namespace avitool
