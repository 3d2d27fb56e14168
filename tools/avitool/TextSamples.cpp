// SPDX-License-Identifier: Apache-2.0
#include <fmt/format.h>

#include "tools/avitool/SamplePrinter.h"
#include "tools/avitool/Text.h"

namespace avitool {

namespace {

std::string summaryText(const ReadSummary& read) {
    std::string text = fmt::format("samples {}, key samples {}, bytes {}", read.samples,
                                   read.syncSamples, read.bytes);
    if (read.limited) text += ", stopped by --limit";
    return text;
}

class TextSamples : public SamplePrinter {
  public:
    explicit TextSamples(Console& console) : mConsole(console) {}

    void begin(const std::string& path) override {
        mConsole.write(fmt::format("File {}\n", printable(path)));
    }

    void beginTrack(const TrackReport& track) override {
        const std::string mime = stringEntry(track.format, AMEDIAFORMAT_KEY_MIME);
        mConsole.write(
            fmt::format("\nTrack {}  {}\n", track.index, printable(mime, kMaxMimeBytes)));
        mConsole.write(fmt::format("{:>5}  {:>8}  {:>14}  {:4}  {:>9}  {}\n", "track", "index",
                                   "time", "sync", "size", "crc-32"));
    }

    void sample(const TrackReport& track, const SampleReport& sample) override {
        mConsole.write(fmt::format("{:>5}  {:>8}  {:>14}  {:4}  {:>9}  {:08x}\n", track.index,
                                   sample.index, sample.timeUs ? seconds(*sample.timeUs) : "none",
                                   sample.sync ? "sync" : "-", sample.size, sample.crc32));
    }

    void endTrack(const TrackReport& track) override {
        mConsole.write(summaryText(track.read) + "\n");
        if (track.formatFailure) mConsole.write(toText(*track.formatFailure) + "\n");
        if (track.read.failure) mConsole.write(toText(*track.read.failure) + "\n");
    }

    void finish(const std::optional<std::string>& /*error, reported on standard error*/) override {
        mConsole.flush();
    }

  private:
    Console& mConsole;
};

}  // namespace

std::unique_ptr<SamplePrinter> makeTextSamples(Console& console) {
    return std::make_unique<TextSamples>(console);
}

}  // namespace avitool
