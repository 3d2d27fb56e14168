// SPDX-License-Identifier: Apache-2.0
#include <fmt/format.h>

#include <cstdlib>

#include "tools/avitool/SeekPrinter.h"
#include "tools/avitool/Text.h"

namespace avitool {

namespace {

constexpr size_t kMaxTypeBytes = 30;

constexpr char kColumns[] = "{:>5}  {:>14}  {:4}  {:>9}  {:>14}  {:>14}  {:>5}  {}\n";

std::string timeText(std::optional<int64_t> timeUs, const char* none) {
    return timeUs ? seconds(*timeUs) : none;
}

// Microseconds as milliseconds with their sign.
std::string differenceText(std::optional<int64_t> differenceUs) {
    if (!differenceUs) return "-";
    return fmt::format("{}{}.{:03} ms", *differenceUs < 0 ? "-" : "+",
                       std::abs(*differenceUs / 1000), std::abs(*differenceUs % 1000));
}

std::string landingText(const Landing& landing) {
    const std::string mime = printable(landing.mime, kMaxTypeBytes);
    if (!landing.sample) {
        return fmt::format(kColumns, landing.track,
                           landing.endOfStream ? "END_OF_STREAM" : "failed", "-", "-", "-", "-",
                           landing.reads, mime);
    }
    return fmt::format(kColumns, landing.track, timeText(landing.sample->timeUs, "none"),
                       landing.sample->sync ? "sync" : "-", landing.sample->size,
                       timeText(landing.targetUs, "-"), differenceText(landing.differenceUs),
                       landing.reads, mime);
}

}  // namespace

void printSeekText(const SeekReport& report, Console& console) {
    if (report.error) return;
    std::string text = fmt::format("File {}\nSeek to {}, mode {}\n\n", printable(report.path),
                                   seconds(report.atUs), modeName(report.mode));
    text += fmt::format(kColumns, "track", "time", "sync", "size", "target", "from video", "reads",
                        "type");
    for (const Landing& landing : report.landings)
        text += landingText(landing);
    for (const Landing& landing : report.landings) {
        if (landing.failure) {
            text += fmt::format("track {}: {}\n", landing.track, toText(*landing.failure));
        }
    }
    console.write(text);
    console.flush();
}

}  // namespace avitool
