// SPDX-License-Identifier: Apache-2.0
#include "tools/avitool/Commands.h"

#include <fmt/format.h>

#include "tools/avitool/CommandParts.h"
#include "tools/avitool/FileProcess.h"
#include "tools/avitool/InfoPrinter.h"
#include "tools/avitool/OpenedFile.h"
#include "tools/avitool/PluginLog.h"
#include "tools/avitool/Report.h"
#include "tools/avitool/SamplePrinter.h"
#include "tools/avitool/SeekPrinter.h"

namespace avitool {

namespace service = android::service;

namespace {

void inspect(const service::PluginLibrary& plugin, FileReport* report) {
    const OpenedFile file(plugin, report->path);
    report->confidence = file.extractor().confidence();
    report->extractor = file.extractor().name();
    report->format = file.format().entries();
    const size_t count = file.extractor().countTracks();
    for (size_t i = 0; i < count; ++i) {
        report->tracks.push_back(describeTrack(file.extractor(), i));
        report->tracks.back().read =
            readTrack(file.extractor(), i, std::nullopt, [](uint64_t, const auto&) {});
    }
}

// What the file's process returns: what is to be shown, and a text for each problem.
std::vector<std::string> inspected(const service::PluginLibrary& plugin, const std::string& path,
                                   const InfoPrinter& printer) {
    FileReport report;
    report.path = path;
    report.error = problemOf([&] { inspect(plugin, &report); });
    std::vector<std::string> texts = {printer.shown(report)};
    if (report.error) texts.push_back(*report.error);
    for (const TrackReport& track : report.tracks) {
        for (const std::string& problem : problemsOf(track))
            texts.push_back(problem);
    }
    return texts;
}

// The same of a file whose process has nothing more to return.
std::vector<std::string> lost(const std::string& path, const std::string& reason,
                              const InfoPrinter& printer) {
    FileReport report;
    report.path = path;
    report.error = reason;
    return {printer.shown(report), reason};
}

void showTrack(const OpenedFile& file, size_t index, const Options& options, SamplePrinter& printer,
               Console& console) {
    TrackReport track = describeTrack(file.extractor(), index);
    printer.beginTrack(track);
    track.read = readTrack(file.extractor(), index, options.limit,
                           [&](uint64_t number, const service::BufferHandle& buffer) {
                               printer.sample(track, describeSample(number, buffer));
                           });
    printer.endTrack(track);
    complainAbout(options.files.front(), track, console);
}

}  // namespace

void runInfo(const Options& options, const service::PluginLibrary& plugin, Console& console) {
    const auto printer = options.json ? makeJsonInfo(console) : makeTextInfo(console);
    for (const std::string& path : options.files) {
        std::vector<std::string> texts;
        const std::optional<std::string> reason = problemOf(
            [&] { texts = runInProcess([&] { return inspected(plugin, path, *printer); }); });
        if (reason) texts = lost(path, *reason, *printer);
        printer->add(texts.front());
        for (size_t i = 1; i < texts.size(); ++i)
            console.complain(path, texts[i]);
    }
    printer->finish();
}

void runSamples(const Options& options, const service::PluginLibrary& plugin, Console& console) {
    const auto printer = options.json ? makeJsonSamples(console) : makeTextSamples(console);
    const std::string& path = options.files.front();
    bool begun = false;
    const auto finish = [&](const std::optional<std::string>& problem) {
        if (!begun && options.json) printer->begin(path);
        printer->finish(problem);
    };
    pluginlog::setAbortAction(finish);
    const std::optional<std::string> problem = problemOf([&] {
        const OpenedFile file(plugin, path);
        const TrackRange tracks = wantedTracks(file, options);
        printer->begin(path);
        begun = true;
        for (size_t i = tracks.first; i < tracks.end; ++i) {
            showTrack(file, i, options, *printer, console);
        }
    });
    finish(problem);
    pluginlog::setAbortAction(nullptr);
    if (problem) console.complain(path, *problem);
}

void runSeek(const Options& options, const service::PluginLibrary& plugin, Console& console) {
    SeekReport report;
    report.path = options.files.front();
    report.atUs = options.seekUs;
    report.mode = options.seekMode;
    const auto print = [&] { (options.json ? printSeekJson : printSeekText)(report, console); };
    pluginlog::setAbortAction([&](const std::string& reason) {
        report.error = reason;
        print();
    });
    report.error = problemOf([&] {
        const OpenedFile file(plugin, report.path);
        report.landings = seekTracks(file, report.atUs, report.mode);
    });
    pluginlog::setAbortAction(nullptr);
    print();
    if (report.error) console.complain(report.path, *report.error);
    for (const Landing& landing : report.landings) {
        if (!landing.failure) continue;
        console.complain(report.path,
                         fmt::format("track {}: {}", landing.track, toText(*landing.failure)));
    }
}

}  // namespace avitool
