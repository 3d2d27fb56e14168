// SPDX-License-Identifier: Apache-2.0
#include <fmt/format.h>

#include "tools/avitool/JsonValues.h"
#include "tools/avitool/SamplePrinter.h"

namespace avitool {

namespace {

// Writes the lists' brackets and commas itself. Invariant: every list it opened is closed by
// finish(), wherever an error cut the file short.
class JsonSamples : public SamplePrinter {
  public:
    explicit JsonSamples(Console& console) : mConsole(console) {}

    void begin(const std::string& path) override {
        mConsole.write(fmt::format("{{\n  \"file\": {},\n  \"tracks\": [", dump(path, -1)));
    }

    void beginTrack(const TrackReport& track) override {
        const std::string mime = stringEntry(track.format, AMEDIAFORMAT_KEY_MIME);
        mConsole.write(
            fmt::format("{}\n    {{\n      \"index\": {},\n      \"mime\": {},\n"
                        "      \"samples\": [",
                        mAnyTrack ? "," : "", track.index, dump(mime, -1)));
        mAnyTrack = mInTrack = true;
        mAnySample = false;
    }

    void sample(const TrackReport& /*track*/, const SampleReport& sample) override {
        mConsole.write((mAnySample ? ",\n        " : "\n        ") + dump(toJson(sample), -1));
        mAnySample = true;
    }

    void endTrack(const TrackReport& track) override {
        closeSamples();
        mConsole.write(fmt::format(",\n      \"limited\": {}", track.read.limited));
        if (track.formatFailure) {
            writeMember("formatError", toJson(*track.formatFailure));
        }
        if (track.read.failure) writeMember("error", toJson(*track.read.failure));
        closeTrack();
    }

    void finish(const std::optional<std::string>& error) override {
        if (mInTrack) {
            closeSamples();
            closeTrack();
        }
        mConsole.write(mAnyTrack ? "\n  ]" : "]");
        if (error) mConsole.write(",\n  \"error\": " + dump(*error, -1));
        mConsole.write("\n}\n");
        mConsole.flush();
    }

  private:
    void writeMember(const char* name, const Json& value) {
        mConsole.write(fmt::format(",\n      \"{}\": {}", name, dump(value, -1)));
    }
    void closeSamples() { mConsole.write(mAnySample ? "\n      ]" : "]"); }
    void closeTrack() {
        mConsole.write("\n    }");
        mInTrack = false;
    }

    Console& mConsole;
    bool mAnyTrack = false;
    bool mInTrack = false;
    bool mAnySample = false;
};

}  // namespace

std::unique_ptr<SamplePrinter> makeJsonSamples(Console& console) {
    return std::make_unique<JsonSamples>(console);
}

}  // namespace avitool
