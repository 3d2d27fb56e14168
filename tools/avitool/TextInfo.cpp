// SPDX-License-Identifier: Apache-2.0
#include <fmt/format.h>

#include <algorithm>
#include <variant>

#include "tools/avitool/InfoPrinter.h"
#include "tools/avitool/Text.h"

namespace avitool {

namespace service = android::service;

namespace {

// Keeps a line of a buffer or a long text within 100 columns.
constexpr size_t kMaxBufferBytes = 24;
constexpr size_t kMaxValueBytes = 200;
// Wide enough for all but the longest keys, so that the tables of most files look alike.
constexpr size_t kMinNameWidth = 16;

std::string valueText(int32_t value) {
    return fmt::format("{}", value);
}
std::string valueText(int64_t value) {
    return fmt::format("{}", value);
}
std::string valueText(size_t value) {
    return fmt::format("{}", value);
}
std::string valueText(float value) {
    return fmt::format("{}", value);
}
std::string valueText(double value) {
    return fmt::format("{}", value);
}
std::string valueText(const std::string& value) {
    return printable(value, kMaxValueBytes);
}

std::string valueText(const service::FormatRect& value) {
    return fmt::format("{}, {}, {}, {}", value.left, value.top, value.right, value.bottom);
}

std::string valueText(const std::vector<uint8_t>& value) {
    const char* plural = value.size() == 1 ? "" : "s";
    std::string text = fmt::format("{} byte{}", value.size(), plural);
    if (!value.empty()) text += "  " + hex(value, kMaxBufferBytes);
    return text;
}

bool isTime(const service::FormatEntry& entry) {
    return std::holds_alternative<int64_t>(entry.value) &&
           (entry.name == AMEDIAFORMAT_KEY_DURATION ||
            entry.name == AMEDIAFORMAT_KEY_THUMBNAIL_TIME);
}

std::string valueText(const service::FormatEntry& entry) {
    std::string text = std::visit([](const auto& value) { return valueText(value); }, entry.value);
    if (isTime(entry)) text += fmt::format("  ({} s)", seconds(std::get<int64_t>(entry.value)));
    return text;
}

std::string formatTable(const FormatEntries& entries) {
    size_t width = kMinNameWidth;
    for (const auto& entry : entries)
        width = std::max(width, printable(entry.name).size());
    std::string table;
    for (const auto& entry : entries) {
        table += fmt::format("  {:{}}  {:6}  {}\n", printable(entry.name), width, entry.typeName(),
                             valueText(entry));
    }
    return table;
}

// A table of the file's format, and of its tags apart from it if it has any.
std::string fileTables(FormatEntries entries) {
    std::string section;
    for (const Tag& tag : tagsOf(entries)) {
        section += fmt::format("  {:{}}  {}\n", tag.label, kMinNameWidth, valueText(tag.text));
        const auto isTag = [&tag](const auto& entry) { return entry.name == tag.key; };
        entries.erase(std::remove_if(entries.begin(), entries.end(), isTag), entries.end());
    }
    return formatTable(entries) + (section.empty() ? "" : "\nTags\n" + section);
}

std::string countLine(const char* name, uint64_t count) {
    return fmt::format("  {:{}}  {}\n", name, kMinNameWidth, count);
}

std::string trackText(const TrackReport& track) {
    std::string text = fmt::format("Track {}\n", track.index) + formatTable(track.format);
    if (track.formatFailure) text += fmt::format("  {}\n", toText(*track.formatFailure));
    text += countLine("samples", track.read.samples);
    text += countLine("key samples", track.read.syncSamples);
    text += countLine("bytes", track.read.bytes);
    if (track.read.failure) text += fmt::format("  {}\n", toText(*track.read.failure));
    return text;
}

class TextInfo : public InfoPrinter {
  public:
    explicit TextInfo(Console& console) : mConsole(console) {}

    std::string shown(const FileReport& report) const override {
        if (report.error) return "";  // reported on standard error
        std::string text =
            fmt::format("File {}\n  {:{}}  {}\n  {:{}}  {}\n", printable(report.path), "extractor",
                        kMinNameWidth, printable(report.extractor), "confidence", kMinNameWidth,
                        report.confidence);
        text += fileTables(report.format);
        for (const TrackReport& track : report.tracks)
            text += "\n" + trackText(track);
        return text;
    }

    void add(const std::string& shown) override {
        if (shown.empty()) return;
        mConsole.write(mPrinted ? "\n" + shown : shown);
        mPrinted = true;
        mConsole.flush();
    }

    void finish() override { mConsole.flush(); }

  private:
    Console& mConsole;
    bool mPrinted = false;
};

}  // namespace

std::unique_ptr<InfoPrinter> makeTextInfo(Console& console) {
    return std::make_unique<TextInfo>(console);
}

}  // namespace avitool
